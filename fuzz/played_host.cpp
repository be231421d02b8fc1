#include "fuzz/played_host.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <utility>

#include "frame/application.h"
#include "frame/host_state.h"
#include "picture/toolkits.h"
#include "plugin/plugin_main.h"

// A copy of a picture's pixels as GDK makes it: RGB24, the last row without padding. It has its own heap
// block, so that the sanitizer detects every out-of-bounds byte.
struct GdkPixbuf {
  std::vector<uint8_t> pixels;
  int32_t stride = 0;
};

namespace fuzz {
namespace {

std::optional<HostKind> played;

// ---- GDK without a display ----

using Lock = RBBoolean (*)(REALpictureStruct*, REALpictureDescription*, int32_t);

GdkPixbuf* copyDrawable(GdkPixbuf*, GdkDrawable* drawable, void*, int, int, int, int, int width, int height) {
  auto* picture = reinterpret_cast<REALpictureStruct*>(drawable);
  auto* copy = new GdkPixbuf;
  copy->stride = width * 3 + played->padding;
  copy->pixels.resize(static_cast<size_t>(copy->stride * (height - 1) + width * 3));
  copy->pixels.shrink_to_fit();
  for (int y = 0; y < height; ++y) {
    const uint32_t* from = host::pictureRow(picture, y);
    uint8_t* to = copy->pixels.data() + copy->stride * y;
    for (int x = 0; x < width; ++x, to += 3) {
      to[0] = static_cast<uint8_t>(from[x] >> 16);
      to[1] = static_cast<uint8_t>(from[x] >> 8);
      to[2] = static_cast<uint8_t>(from[x]);
    }
  }
  return copy;
}

// Locks the pictures of a console host as drawables.
RBBoolean lockAsDrawable(REALpictureStruct* picture, REALpictureDescription* description, int32_t type) {
  static const auto lock = reinterpret_cast<Lock>(host::resolve("REALLockPictureDescription"));
  if (played->pixels != Pixels::pixbuf) return lock(picture, description, type);
  if (type != kPictureTypeDrawable || !lock(picture, description, kPictureTypeBitmap)) return 0;
  description->pictureType = kPictureTypeDrawable;
  description->handle = picture;
  return 1;
}

void* resolve(const char* name) {
  if (std::strcmp(name, "REALLockPictureDescription") == 0) return reinterpret_cast<void*>(lockAsDrawable);
  return host::resolve(name);
}

void replaceGdk() {
  LoadGTK();  // first, because it sets the functions that are replaced below
  _gdk_pixbuf_get_pixels = [](const GdkPixbuf* copy) { return const_cast<uint8_t*>(copy->pixels.data()); };
  _gdk_pixbuf_get_rowstride = [](const GdkPixbuf* copy) { return int{copy->stride}; };
  _gdk_pixbuf_get_from_drawable = copyDrawable;
  _gdk_pixbuf_unref = [](GdkPixbuf* copy) { delete copy; };
}

void fillRow(FuzzedDataProvider& data, uint32_t* row, int width) {
  uint32_t word = 0;
  for (int x = 0; x < width; ++x) {
    if (data.remaining_bytes() > 0) word = word << 8 ^ data.ConsumeIntegral<uint8_t>() * 0x010001U;
    row[x] = word;
  }
}

}  // namespace

HostKind takeHostKind(FuzzedDataProvider& data) {
  HostKind kind;
  kind.pixels = data.ConsumeEnum<Pixels>();
  kind.padding = data.ConsumeIntegralInRange<int32_t>(0, 7);
  return kind;
}

void play(const HostKind& kind) {
  if (played && played->pixels == kind.pixels && played->padding == kind.padding) return;
  played = kind;
  host::Settings settings;
  settings.road = kind.pixels == Pixels::surface ? host::Road::cairo : host::Road::console;
  if (kind.pixels == Pixels::pixbuf) settings.applicationClass = "Application";
  settings.rowPadding = kind.padding * 4;
  host::start(settings);
  replaceGdk();
  // In a real process the kind of host never changes.
  setApplicationKind(ApplicationKind::unknown);
  REALPluginMain(resolve);
}

void expectNothingHeld() {
  host::takeException();
  if (host::held() == host::Ledger{}) return;
  fail(host::describeHeld().c_str());
}

void fail(const char* what) {
  std::fprintf(stderr, "%s\n", what);
  std::abort();
}

int32_t takeInteger(FuzzedDataProvider& data) {
  constexpr int32_t kEdges[] = {INT32_MIN, INT32_MIN + 1, INT32_MAX, INT32_MAX - 1, 0x40000000, -0x40000000,
                                32767,     32768,         65535,     511,           512,        513};
  switch (data.ConsumeIntegralInRange(0, 3)) {
    case 0:
      return data.ConsumeIntegral<int32_t>();
    case 1:
      return data.PickValueInArray(kEdges);
    default:
      return data.ConsumeIntegralInRange<int32_t>(-50, 600);
  }
}

double takeReal(FuzzedDataProvider& data) {
  if (data.ConsumeBool()) return data.ConsumeIntegralInRange(-3000, 3000) / 10.0;
  const auto bits = data.ConsumeIntegral<uint64_t>();
  double value = 0;
  std::memcpy(&value, &bits, sizeof value);
  return value;
}

host::PictureRef takePicture(FuzzedDataProvider& data) {
  const int width =
      data.ConsumeBool() ? data.ConsumeIntegralInRange(1, 40) : data.ConsumeIntegralInRange(1, 600);
  return takePicture(data, width, data.ConsumeIntegralInRange(1, 40));
}

host::PictureRef takePicture(FuzzedDataProvider& data, int width, int height) {
  host::PictureRef picture = host::newPicture(width, height, data.ConsumeBool());
  for (int y = 0; y < height; ++y) {
    uint32_t* row = host::pictureRow(picture.get(), y);
    // When the input runs out, rows repeat the one above.
    if (y > 0 && data.remaining_bytes() == 0) {
      std::memcpy(row, host::pictureRow(picture.get(), y - 1), static_cast<size_t>(width) * 4);
    } else {
      fillRow(data, row, width);
    }
  }
  return picture;
}

host::MemoryBlockRef takeBlock(FuzzedDataProvider& data) {
  if (data.ConsumeIntegralInRange(0, 9) == 0) return {};
  const size_t size = data.ConsumeIntegralInRange<size_t>(0, 1100);
  std::vector<uint8_t> bytes = data.ConsumeBytes<uint8_t>(std::min<size_t>(size, 64));
  for (size_t i = bytes.size(); i < size; ++i) bytes.push_back(static_cast<uint8_t>(i * 37));
  return host::newMemoryBlock(bytes.data(), bytes.size());
}

}  // namespace fuzz
