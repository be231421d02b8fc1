#include "host/pictures/plain.h"

#include "host/shims/plain_drawable.h"

namespace host {
namespace {

class PlainView : public PixelView {
 public:
  explicit PlainView(const Picture& picture)
      : drawable_{picture.takenOverBuffer ? static_cast<uint8_t*>(picture.takenOverBuffer.get())
                                          : picture.pixels.data(),
                  picture.takenOverBuffer ? picture.width * 3 : plainStride(picture.width)} {}
  void* handle() override { return &drawable_; }

 private:
  PlainDrawable drawable_;
};

}  // namespace

std::unique_ptr<PixelView> viewPlainly(Picture& picture) { return std::make_unique<PlainView>(picture); }

}  // namespace host
