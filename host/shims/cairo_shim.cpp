#include <cairo.h>

#include "host/shims/real.h"
#include "host/shims/shims.h"

namespace {

CairoShim shim;

template <typename Function>
Function* real(const char* name) {
  return realFunction<Function>("libcairo.so.2", name);
}

}  // namespace

SHIM_EXPORT CairoShim* cairoShim() { return &shim; }

SHIM_EXPORT cairo_surface_t* cairo_get_target(cairo_t* context) {
  static const auto target = real<decltype(cairo_get_target)>("cairo_get_target");
  return shim.hidesTarget ? nullptr : target(context);
}

SHIM_EXPORT unsigned char* cairo_image_surface_get_data(cairo_surface_t* surface) {
  static const auto data = real<decltype(cairo_image_surface_get_data)>("cairo_image_surface_get_data");
  return shim.hidesData ? nullptr : data(surface);
}

SHIM_EXPORT int cairo_image_surface_get_width(cairo_surface_t* surface) {
  static const auto width = real<decltype(cairo_image_surface_get_width)>("cairo_image_surface_get_width");
  return shim.zeroWidth ? 0 : width(surface);
}

SHIM_EXPORT int cairo_image_surface_get_height(cairo_surface_t* surface) {
  static const auto height = real<decltype(cairo_image_surface_get_height)>("cairo_image_surface_get_height");
  return shim.zeroHeight ? 0 : height(surface);
}

SHIM_EXPORT int cairo_image_surface_get_stride(cairo_surface_t* surface) {
  static const auto stride = real<decltype(cairo_image_surface_get_stride)>("cairo_image_surface_get_stride");
  return shim.zeroStride ? 0 : shim.halfStride ? stride(surface) / 2 : stride(surface);
}
