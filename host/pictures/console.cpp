#include "host/pictures/console.h"

#include <algorithm>
#include <iterator>

namespace host {
namespace {

class ConsoleView : public PixelView {
 public:
  explicit ConsoleView(Picture& picture) : record_(std::make_unique<REALbitmapRecord>()) {
    for (int32_t y = 0; y < picture.shownHeight(); ++y) {
      rows_.push_back(y == picture.oddities.nullRow ? nullptr : reinterpret_cast<uint8_t*>(picture.row(y)));
    }
    std::fill(std::begin(record_->unknown), std::end(record_->unknown), 0xA5A5A5A5);
    record_->kind = picture.oddities.bitmapKind;
    record_->width = picture.shownWidth();
    record_->height = picture.shownHeight();
    record_->required = picture.oddities.noRequired ? nullptr : record_.get();
    record_->rowTable = picture.oddities.noRowTable ? nullptr : rows_.data();
  }
  void* handle() override { return record_.get(); }

 private:
  std::unique_ptr<REALbitmapRecord> record_;
  std::vector<uint8_t*> rows_;
};

}  // namespace

std::unique_ptr<PixelView> viewByConsole(Picture& picture) { return std::make_unique<ConsoleView>(picture); }

}  // namespace host
