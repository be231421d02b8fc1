// A stand-in for GDK that reads plain drawables in place: neither X nor a copy comes between the plug-in and
// its RGB24 pixels.

#include "host/shims/plain_drawable.h"
#include "host/shims/real.h"

SHIM_EXPORT PlainDrawable* gdk_pixbuf_get_from_drawable(void*, PlainDrawable* source, void*, int, int, int,
                                                        int, int, int) {
  return source;
}
SHIM_EXPORT uint8_t* gdk_pixbuf_get_pixels(const PlainDrawable* pixbuf) { return pixbuf->pixels; }
SHIM_EXPORT int gdk_pixbuf_get_rowstride(const PlainDrawable* pixbuf) { return pixbuf->stride; }
SHIM_EXPORT void gdk_pixbuf_unref(PlainDrawable*) {}
