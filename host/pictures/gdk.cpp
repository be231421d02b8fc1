#include "host/pictures/gdk.h"

#include <gdk/gdk.h>

#include <new>

#include "host/pictures/library.h"

namespace host {
namespace {

struct {
  decltype(&gdk_init_check) initCheck;
  decltype(&gdk_visual_get_system) systemVisual;
  decltype(&gdk_visual_get_depth) visualDepth;
  decltype(&gdk_colormap_get_system) systemColormap;
  decltype(&gdk_pixmap_new) newPixmap;
  decltype(&gdk_drawable_set_colormap) setColormap;
  decltype(&gdk_gc_new) newGc;
  decltype(&gdk_draw_rgb_image) drawRgbImage;
  decltype(&gdk_error_trap_push) trapErrors;
  decltype(&gdk_error_trap_pop) trappedError;
  decltype(&gdk_flush) flush;
  decltype(&g_object_unref) unref;
} gdk;
int depth = 0;

constexpr int kUsableDepth = 24;

std::vector<guchar> bytesRgb(const Picture& picture) {
  std::vector<guchar> bytes(static_cast<size_t>(picture.width) * static_cast<size_t>(picture.height) * 3);
  guchar* to = bytes.data();
  for (int32_t y = 0; y < picture.height; ++y) {
    const uint32_t* row = picture.row(y);
    for (int32_t x = 0; x < picture.width; ++x) {
      for (const int shift : {16, 8, 0}) *to++ = static_cast<guchar>(row[x] >> shift);
    }
  }
  return bytes;
}

class GdkView : public PixelView {
 public:
  // Throws std::bad_alloc, also when the display lacks the memory.
  explicit GdkView(const Picture& picture) {
    const auto bytes = bytesRgb(picture);
    gdk.trapErrors();
    pixmap_ = gdk.newPixmap(nullptr, picture.shownWidth(), picture.shownHeight(), depth);
    if (pixmap_) {
      gdk.setColormap(pixmap_, gdk.systemColormap());
      GdkGC* gc = gdk.newGc(pixmap_);
      gdk.drawRgbImage(pixmap_, gc, 0, 0, picture.shownWidth(), picture.shownHeight(), GDK_RGB_DITHER_NONE,
                       bytes.data(), picture.width * 3);
      gdk.unref(gc);
    }
    gdk.flush();
    const bool failed = gdk.trappedError() != 0 || !pixmap_;
    if (failed) {
      release();
      throw std::bad_alloc();
    }
  }
  ~GdkView() override { release(); }
  void* handle() override { return pixmap_; }

 private:
  void release() {
    if (pixmap_) gdk.unref(pixmap_);
  }
  GdkPixmap* pixmap_;
};

}  // namespace

void openGdk() {
  const Library gdkLibrary("libgdk-x11-2.0.so.0"), objectLibrary("libgobject-2.0.so.0");
  gdkLibrary.find("gdk_init_check", gdk.initCheck);
  gdkLibrary.find("gdk_visual_get_system", gdk.systemVisual);
  gdkLibrary.find("gdk_visual_get_depth", gdk.visualDepth);
  gdkLibrary.find("gdk_colormap_get_system", gdk.systemColormap);
  gdkLibrary.find("gdk_pixmap_new", gdk.newPixmap);
  gdkLibrary.find("gdk_drawable_set_colormap", gdk.setColormap);
  gdkLibrary.find("gdk_gc_new", gdk.newGc);
  gdkLibrary.find("gdk_draw_rgb_image", gdk.drawRgbImage);
  gdkLibrary.find("gdk_error_trap_push", gdk.trapErrors);
  gdkLibrary.find("gdk_error_trap_pop", gdk.trappedError);
  gdkLibrary.find("gdk_flush", gdk.flush);
  objectLibrary.find("g_object_unref", gdk.unref);
  if (!gdk.initCheck(nullptr, nullptr)) {
    throw std::runtime_error("this host needs an X display: run it on a desktop, or through xvfb-run");
  }
  depth = gdk.visualDepth(gdk.systemVisual());
  if (depth != kUsableDepth) {
    throw std::runtime_error("this host needs an X display of 24 bits a pixel, but it has " +
                             std::to_string(depth));
  }
}

std::unique_ptr<PixelView> viewByGdk(Picture& picture) try {
  return std::make_unique<GdkView>(picture);
} catch (const std::bad_alloc&) {
  return nullptr;
}

}  // namespace host
