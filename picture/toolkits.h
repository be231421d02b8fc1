// The desktop's drawing libraries, opened at run time, never linked.
#pragma once

#include <stdint.h>

// GDK and cairo types, opaque here.
struct GdkPixbuf;
struct GdkDrawable;
struct cairo_t;
struct cairo_surface_t;

// Opens GTK/GDK, or cairo, on the first call; later calls return the first one's result. True if every
// function needed for pixel access was found. The libraries stay open.
bool LoadGTK();
bool LoadCairo();

// Functions of the libraries, each named after its symbol; null until loaded, or if the library lacks it.
extern uint8_t* (*_gdk_pixbuf_get_pixels)(const GdkPixbuf*);
extern int (*_gdk_pixbuf_get_rowstride)(const GdkPixbuf*);
extern GdkPixbuf* (*_gdk_pixbuf_get_from_drawable)(GdkPixbuf* into, GdkDrawable* source, void* colormap,
                                                   int sourceX, int sourceY, int x, int y, int width,
                                                   int height);
extern void (*_gdk_pixbuf_unref)(GdkPixbuf*);
extern uint8_t* (*_cairo_image_surface_get_data)(cairo_surface_t*);
extern int (*_cairo_image_surface_get_width)(cairo_surface_t*);
extern int (*_cairo_image_surface_get_height)(cairo_surface_t*);
extern int (*_cairo_image_surface_get_stride)(cairo_surface_t*);
extern cairo_surface_t* (*_cairo_get_target)(cairo_t*);

// Resolved with the others, on purpose, but not called by the plug-in.
extern void* _gdk_unicode_to_keyval;
extern void* _gdk_keyval_to_unicode;
extern void* _gtk_settings_get_default;
extern void* _g_object_get;
