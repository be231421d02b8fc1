// Opening GTK, GDK and cairo.

#include "picture/toolkits.h"

#include <stddef.h>

#include "old_c_library/dynamic_loader.h"

uint8_t* (*_gdk_pixbuf_get_pixels)(const GdkPixbuf*);
int (*_gdk_pixbuf_get_rowstride)(const GdkPixbuf*);
GdkPixbuf* (*_gdk_pixbuf_get_from_drawable)(GdkPixbuf*, GdkDrawable*, void*, int, int, int, int, int, int);
void (*_gdk_pixbuf_unref)(GdkPixbuf*);
uint8_t* (*_cairo_image_surface_get_data)(cairo_surface_t*);
int (*_cairo_image_surface_get_width)(cairo_surface_t*);
int (*_cairo_image_surface_get_height)(cairo_surface_t*);
int (*_cairo_image_surface_get_stride)(cairo_surface_t*);
cairo_surface_t* (*_cairo_get_target)(cairo_t*);
void* _gdk_unicode_to_keyval;
void* _gdk_keyval_to_unicode;
void* _gtk_settings_get_default;
void* _g_object_get;

namespace {

// "Tried" is set last: a second thread that arrives during loading loads too, instead of seeing a failure.
bool gtkTried, gtkLoaded;
bool cairoTried, cairoLoaded;

// Opens the first library of a list that is installed.
template <size_t count>
void* openFirst(const char* const (&names)[count]) {
  for (const char* name : names) {
    if (void* library = openLibrary(name)) return library;
  }
  return nullptr;
}

template <typename Function>
void find(void* library, const char* symbol, Function* function) {
  *function = reinterpret_cast<Function>(findSymbol(library, symbol));
}

}  // namespace

bool LoadGTK() {
  if (gtkTried) return gtkLoaded;
  void* gtk = openFirst({"libgtk-x11-2.0.so", "libgtk-x11-2.0.so.0", "/usr/lib/libgtk-x11-2.0.so",
                         "/usr/lib32/libgtk-x11-2.0.so", "/usr/lib/libgtk-x11-2.0.so.0",
                         "/usr/lib32/libgtk-x11-2.0.so.0"});
  void* gdk = openFirst({"libgdk-x11-2.0.so", "libgdk-x11-2.0.so.0", "/usr/lib/libgdk-x11-2.0.so",
                         "/usr/lib32/libgdk-x11-2.0.so", "/usr/lib/libgdk-x11-2.0.so.0",
                         "/usr/lib32/libgdk-x11-2.0.so.0"});
  if (gdk) {
    find(gdk, "gdk_pixbuf_get_pixels", &_gdk_pixbuf_get_pixels);
    find(gdk, "gdk_pixbuf_get_rowstride", &_gdk_pixbuf_get_rowstride);
    find(gdk, "gdk_pixbuf_get_from_drawable", &_gdk_pixbuf_get_from_drawable);
    find(gdk, "gdk_pixbuf_unref", &_gdk_pixbuf_unref);
    find(gdk, "gdk_unicode_to_keyval", &_gdk_unicode_to_keyval);
    find(gdk, "gdk_keyval_to_unicode", &_gdk_keyval_to_unicode);
  }
  if (gtk) {
    find(gtk, "gtk_settings_get_default", &_gtk_settings_get_default);
    find(gtk, "g_object_get", &_g_object_get);
  }
  gtkLoaded = _gdk_pixbuf_get_pixels && _gdk_pixbuf_get_rowstride && _gdk_pixbuf_get_from_drawable &&
              _gdk_pixbuf_unref;
  gtkTried = true;
  return gtkLoaded;
}

bool LoadCairo() {
  if (cairoTried) return cairoLoaded;
  void* cairo = openFirst({"libcairo.so", "libcairo.so.2", "libcairo.so.2.10800.10"});
  if (cairo) {
    find(cairo, "cairo_image_surface_get_data", &_cairo_image_surface_get_data);
    find(cairo, "cairo_image_surface_get_width", &_cairo_image_surface_get_width);
    find(cairo, "cairo_image_surface_get_height", &_cairo_image_surface_get_height);
    find(cairo, "cairo_image_surface_get_stride", &_cairo_image_surface_get_stride);
    find(cairo, "cairo_get_target", &_cairo_get_target);
  }
  cairoLoaded = _cairo_image_surface_get_data && _cairo_image_surface_get_width &&
                _cairo_image_surface_get_height && _cairo_image_surface_get_stride && _cairo_get_target;
  cairoTried = true;
  return cairoLoaded;
}
