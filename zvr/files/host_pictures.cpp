#include "zvr/files/host_pictures.h"

#include <algorithm>
#include <new>
#include <string_view>

#include "host/host.h"

namespace zvr {
namespace {

// Pictures with an opacity of their own exist on hosts from 2011.04 on, but not as GDK drawables.
bool hostHasAlpha() {
  constexpr double kFirstVersion = 2011.04;
  const host::Settings& settings = host::settings();
  return settings.road != host::Road::gdk && settings.version && *settings.version >= kFirstVersion;
}

uint32_t packed(unsigned top, unsigned r, unsigned g, unsigned b) { return top << 24 | r << 16 | g << 8 | b; }

// How one pixel lies in a host picture: `pack` makes the word, `unpack` writes the four bytes.
struct Opaque {
  // The unused byte is as the host leaves it: 255 on desktops, 0 in bitmaps.
  const unsigned unused = host::settings().road == host::Road::console ? 0 : 0xFF;
  uint32_t pack(const uint8_t* p) const { return packed(unused, p[0], p[1], p[2]); }
  static unsigned opacity(uint32_t) { return 255; }
  static unsigned channel(uint32_t value, unsigned) { return value; }
};
struct Premultiplied {
  static uint32_t pack(const uint8_t* p) {
    const auto times = [&](unsigned channel) { return (channel * p[3] + 127) / 255; };
    return packed(p[3], times(p[0]), times(p[1]), times(p[2]));
  }
  static unsigned opacity(uint32_t word) { return word >> 24; }
  static unsigned channel(uint32_t value, unsigned opacity) {
    return opacity == 0 ? 0 : std::min(255U, (value * 255 + opacity / 2) / opacity);
  }
};
// Seven bits of transparency in bits 24 to 30.
struct Transparency {
  static uint32_t pack(const uint8_t* p) { return packed((255U - p[3]) >> 1, p[0], p[1], p[2]); }
  static unsigned opacity(uint32_t word) {
    const unsigned bits = word >> 24 & 127;
    return 255 - (bits * 2 + (bits & 1));
  }
  static unsigned channel(uint32_t value, unsigned) { return value; }
};

template <typename Layout>
void packRows(const Image& image, REALpictureStruct* picture) {
  const Layout layout{};
  for (int y = 0; y < image.height; ++y) {
    const uint8_t* source = image.row(y);
    uint32_t* row = host::pictureRow(picture, y);
    for (int x = 0; x < image.width; ++x, source += 4) row[x] = layout.pack(source);
  }
}

template <typename Layout>
void unpackRows(REALpictureStruct* picture, const Image& image) {
  for (int y = 0; y < image.height; ++y) {
    const uint32_t* row = host::pictureRow(picture, y);
    uint8_t* target = image.row(y);
    for (int x = 0; x < image.width; ++x, target += 4) {
      const unsigned opacity = Layout::opacity(row[x]);
      for (unsigned i = 0; i < 3; ++i) {
        const uint32_t value = row[x] >> (16 - 8 * i) & 0xFF;
        target[i] = static_cast<uint8_t>(Layout::channel(value, opacity));
      }
      target[3] = static_cast<uint8_t>(opacity);
    }
  }
}

host::PictureRef pictureOf(const Image& image, bool hasAlpha) {
  host::PictureRef picture = host::newPicture(image.width, image.height, hasAlpha);
  if (!picture) throw std::bad_alloc();
  return picture;
}

void addMask(const Image& image, REALpictureStruct* picture) {
  const host::PictureRef mask = pictureOf(image, false);
  const Opaque layout{};
  for (int y = 0; y < image.height; ++y) {
    const uint8_t* opacity = image.row(y) + 3;
    uint32_t* row = host::pictureRow(mask.get(), y);
    for (int x = 0; x < image.width; ++x, opacity += 4) {
      const auto gray = static_cast<uint8_t>(255 - *opacity);
      const uint8_t pixel[4] = {gray, gray, gray, 255};
      row[x] = layout.pack(pixel);
    }
  }
  host::setPictureMask(picture, mask.get());
}

// The mask's red is the transparency; outside the mask everything is opaque.
void applyMask(REALpictureStruct* mask, const Image& image) {
  const int width = std::min(image.width, host::pictureWidth(mask));
  const int height = std::min(image.height, host::pictureHeight(mask));
  for (int y = 0; y < height; ++y) {
    const uint32_t* row = host::pictureRow(mask, y);
    uint8_t* opacity = image.row(y) + 3;
    for (int x = 0; x < width; ++x, opacity += 4)
      *opacity = static_cast<uint8_t>(255 - (row[x] >> 16 & 0xFF));
  }
}

}  // namespace

host::PictureRef toPicture(const Image& image, Transparent transparent) {
  const bool keepsAlpha = image.hasAlpha && transparent == Transparent::asOnHost;
  const bool hasAlpha = keepsAlpha && hostHasAlpha();
  host::PictureRef picture = pictureOf(image, hasAlpha);
  if (!hasAlpha) {
    packRows<Opaque>(image, picture.get());
    if (keepsAlpha) addMask(image, picture.get());
  } else if (host::settings().road == host::Road::console) {
    packRows<Transparency>(image, picture.get());
  } else {
    packRows<Premultiplied>(image, picture.get());
  }
  return picture;
}

Image fromPicture(REALpictureStruct* picture) {
  Image image;
  image.allocate(static_cast<unsigned>(host::pictureWidth(picture)),
                 static_cast<unsigned>(host::pictureHeight(picture)));
  REALpictureStruct* mask = host::pictureMask(picture);
  image.hasAlpha = host::pictureHasAlpha(picture) || mask;
  if (!host::pictureHasAlpha(picture)) {
    unpackRows<Opaque>(picture, image);
    if (mask) applyMask(mask, image);
  } else if (host::settings().road == host::Road::console) {
    unpackRows<Transparency>(picture, image);
  } else {
    unpackRows<Premultiplied>(picture, image);
  }
  return image;
}

size_t fingerprintOf(REALpictureStruct* picture) {
  const size_t rowBytes = static_cast<size_t>(host::pictureWidth(picture)) * sizeof(uint32_t);
  size_t sum = 0;
  for (int y = 0; y < host::pictureHeight(picture); ++y) {
    const std::string_view row(reinterpret_cast<const char*>(host::pictureRow(picture, y)), rowBytes);
    sum = sum * 31 + std::hash<std::string_view>()(row);
  }
  REALpictureStruct* mask = host::pictureMask(picture);
  return mask ? sum * 31 + fingerprintOf(mask) : sum;
}

}  // namespace zvr
