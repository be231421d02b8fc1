#include "fuzz/played_host.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "frame/application.h"
#include "frame/host_state.h"
#include "picture/toolkits.h"
#include "plugin/plugin_main.h"

// A copy of a picture's pixels as GDK makes it: RGB24, rows from multiples of 4 bytes on, the last one
// without padding. It has its own heap block, so that the sanitizer detects every out-of-bounds byte.
struct GdkPixbuf {
  std::vector<uint8_t> pixels;
  int stride = 0;
};

namespace fuzz {
namespace {

GdkPixbuf* copyDrawable(GdkPixbuf*, GdkDrawable* drawable, void*, int, int, int, int, int width, int height) {
  auto* picture = reinterpret_cast<REALpictureStruct*>(drawable);
  auto* copy = new GdkPixbuf;
  copy->stride = (width * 3 + 3) / 4 * 4;
  for (int y = 0; y < height; ++y) {
    copy->pixels.resize(static_cast<size_t>(copy->stride * y));
    const uint32_t* row = host::pictureRow(picture, y);
    for (int i = 0; i < width * 3; ++i)
      copy->pixels.push_back(static_cast<uint8_t>(row[i / 3] >> (16 - i % 3 * 8)));
  }
  copy->pixels.shrink_to_fit();
  return copy;
}

// The pictures of a console host, shown as drawables when GDK is played.
RBBoolean lockPicture(REALpictureStruct* picture, REALpictureDescription* description, int32_t type) {
  static const auto lock =
      reinterpret_cast<decltype(&lockPicture)>(host::resolve("REALLockPictureDescription"));
  if (!isGdk()) return lock(picture, description, type);
  if (type != kPictureTypeDrawable || !lock(picture, description, kPictureTypeBitmap)) return 0;
  description->pictureType = kPictureTypeDrawable;
  description->handle = picture;
  return 1;
}

void* resolve(const char* name) {
  if (std::strcmp(name, "REALLockPictureDescription") == 0) return reinterpret_cast<void*>(lockPicture);
  return host::resolve(name);
}

}  // namespace

void play(host::Road kind) {
  setRoad(kind);
  host::Settings settings = settingsForRoad();
  settings.guardPages = false;  // the sanitizer watches
  if (isGdk()) {
    settings.road = host::Road::console;
    settings.applicationClass = "Application";
  }
  host::start(settings);
  LoadGTK();  // first, because it sets the functions that are replaced here
  _gdk_pixbuf_get_pixels = [](const GdkPixbuf* copy) { return const_cast<uint8_t*>(copy->pixels.data()); };
  _gdk_pixbuf_get_rowstride = [](const GdkPixbuf* copy) { return copy->stride; };
  _gdk_pixbuf_get_from_drawable = copyDrawable;
  _gdk_pixbuf_unref = [](GdkPixbuf* copy) { delete copy; };
  // In a real process the kind of host never changes.
  setApplicationKind(ApplicationKind::unknown);
  REALPluginMain(resolve);
}

void fail(const char* what) {
  std::fprintf(stderr, "%s\n", what);
  std::abort();
}

}  // namespace fuzz
