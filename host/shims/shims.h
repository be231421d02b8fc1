// Stand-ins for the GDK and cairo libraries that the plug-in opens while it runs: they pass every call on to
// the real ones, count, and fail on demand. A program whose run path begins with the folder of the shims
// gives them to its plug-in. It reaches their switches by opening the same library name itself:
//   auto* library = dlopen("libgdk-x11-2.0.so", RTLD_NOW);
//   auto* shim = reinterpret_cast<GdkShim* (*)()>(dlsym(library, "gdkShim"))();
#pragma once

// Switches of libgdk-x11-2.0.so and a counter; all zero at first.
struct GdkShim {
  int livePixbufs;       // made by gdk_pixbuf_get_from_drawable and not yet given back by gdk_pixbuf_unref
  bool refusesDrawable;  // gdk_pixbuf_get_from_drawable answers null
  bool hidesPixels;      // gdk_pixbuf_get_pixels answers null
};

// Switches of libcairo.so; all zero at first.
struct CairoShim {
  bool hidesTarget;  // cairo_get_target answers null
  bool hidesData;    // cairo_image_surface_get_data answers null
  bool zeroWidth;    // the surface's width, height or stride is told as 0
  bool zeroHeight;
  bool zeroStride;
  bool halfStride;  // half the stride is told
};

// The C names under which each shim hands out its own record.
extern "C" {
GdkShim* gdkShim();
CairoShim* cairoShim();
}
