#include "host/pictures/cairo.h"

#include <cairo.h>

#include "host/pictures/library.h"

namespace host {
namespace {

struct {
  decltype(&cairo_image_surface_create_for_data) surfaceOver;
  decltype(&cairo_surface_destroy) destroySurface;
  decltype(&cairo_create) create;
  decltype(&cairo_status) status;
  decltype(&cairo_destroy) destroy;
} cairo;

class CairoView : public PixelView {
 public:
  explicit CairoView(Picture& picture) {
    const auto format = picture.alpha ? CAIRO_FORMAT_ARGB32 : CAIRO_FORMAT_RGB24;
    cairo_surface_t* surface = cairo.surfaceOver(picture.pixels.data(), format, picture.shownWidth(),
                                                 picture.shownHeight(), picture.stride);
    context_ = cairo.create(surface);
    cairo.destroySurface(surface);  // the context keeps it
  }
  ~CairoView() override { cairo.destroy(context_); }
  void* handle() override { return context_; }
  bool isUsable() const { return cairo.status(context_) == CAIRO_STATUS_SUCCESS; }

 private:
  cairo_t* context_;
};

}  // namespace

void openCairo() {
  const Library library("libcairo.so.2");
  library.find("cairo_image_surface_create_for_data", cairo.surfaceOver);
  library.find("cairo_surface_destroy", cairo.destroySurface);
  library.find("cairo_create", cairo.create);
  library.find("cairo_status", cairo.status);
  library.find("cairo_destroy", cairo.destroy);
}

std::unique_ptr<PixelView> viewByCairo(Picture& picture) {
  auto view = std::make_unique<CairoView>(picture);
  return view->isUsable() ? std::move(view) : nullptr;
}

}  // namespace host
