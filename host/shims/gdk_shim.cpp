#include <gdk/gdk.h>

#include "host/shims/real.h"
#include "host/shims/shims.h"

namespace {
GdkShim shim;
constexpr const char* kGdk = "libgdk-x11-2.0.so.0";
constexpr const char* kPixbuf = "libgdk_pixbuf-2.0.so.0";
}  // namespace

SHIM_EXPORT GdkShim* gdkShim() { return &shim; }

SHIM_EXPORT GdkPixbuf* gdk_pixbuf_get_from_drawable(GdkPixbuf* destination, GdkDrawable* source,
                                                    GdkColormap* colormap, int x, int y, int toX, int toY,
                                                    int width, int height) {
  static const auto real =
      realFunction<decltype(gdk_pixbuf_get_from_drawable)>(kGdk, "gdk_pixbuf_get_from_drawable");
  if (shim.refusesDrawable) return nullptr;
  GdkPixbuf* pixbuf = real(destination, source, colormap, x, y, toX, toY, width, height);
  if (pixbuf && !destination) ++shim.livePixbufs;
  return pixbuf;
}

SHIM_EXPORT guchar* gdk_pixbuf_get_pixels(const GdkPixbuf* pixbuf) {
  static const auto real = realFunction<decltype(gdk_pixbuf_get_pixels)>(kPixbuf, "gdk_pixbuf_get_pixels");
  return shim.hidesPixels ? nullptr : real(pixbuf);
}

SHIM_EXPORT void gdk_pixbuf_unref(GdkPixbuf* pixbuf) {
  static const auto real = realFunction<void(GdkPixbuf*)>(kPixbuf, "gdk_pixbuf_unref");
  --shim.livePixbufs;
  real(pixbuf);
}
