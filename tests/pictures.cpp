#include "tests/pictures.h"

#include <cstring>
#include <stdexcept>

namespace {

host::Road roadOfProcess = host::Road::cairo;

size_t area(int width, int height) { return static_cast<size_t>(width) * static_cast<size_t>(height); }

}  // namespace

host::Road road() { return roadOfProcess; }
void setRoad(host::Road road) { roadOfProcess = road; }

host::Settings settingsForRoad() {
  host::Settings settings;
  settings.road = road();
  settings.freshPixel = kFreshPixel;
  settings.rowPadding = 12;
  settings.guardPages = true;
  return settings;
}

host::PictureRef pictureOf(const Pixels& pixels) {
  host::PictureRef picture = host::newPicture(pixels.width, pixels.height, pixels.alpha);
  if (!picture) throw std::runtime_error("no picture");
  for (int y = 0; y < pixels.height; ++y)
    std::memcpy(host::pictureRow(picture.get(), y), &pixels.colors[area(pixels.width, y)],
                area(pixels.width, 1) * 4);
  if (pixels.mask) host::setPictureMask(picture.get(), pictureOf(*pixels.mask).get());
  return picture;
}

Pixels pixelsOf(REALpictureStruct* picture) {
  Pixels pixels(host::pictureWidth(picture), host::pictureHeight(picture), Rgb{0});
  for (int y = 0; y < pixels.height; ++y)
    std::memcpy(&pixels.colors[area(pixels.width, y)], host::pictureRow(picture, y),
                area(pixels.width, 1) * 4);
  pixels.alpha = host::pictureHasAlpha(picture);
  if (REALpictureStruct* mask = host::pictureMask(picture))
    pixels.mask = std::make_shared<Pixels>(pixelsOf(mask));
  return asHeld(pixels);
}

Pixels asHeld(Pixels pixels) {
  if (!isGdk()) return pixels;
  pixels.alpha = false;
  for (uint32_t& word : pixels.colors) word &= 0xFFFFFF;
  if (pixels.mask) pixels.mask = std::make_shared<Pixels>(asHeld(*pixels.mask));
  return pixels;
}

Pixels colorsOf(const host::PictureRef& picture) {
  if (!picture) return {};
  Pixels pixels = pixelsOf(picture.get());
  for (uint32_t& word : pixels.colors) word &= 0xFFFFFF;
  return {pixels.width, pixels.height, std::move(pixels.colors)};
}

Pixels asWritten(Pixels expected) {
  for (int x = 0; x < expected.width && isGdk(); ++x) expected.at(x, 0) = 0;
  return expected;
}

uint32_t opaqueTopByte() { return road() == host::Road::cairo ? 0xFF : 0; }

Value plainValue(const host::Value& value) {
  const auto convert = [](const auto& held) -> Value {
    using Held = std::decay_t<decltype(held)>;
    if constexpr (std::is_constructible_v<Value, Held>) {
      return held;
    } else if (!held) {
      return {};
    } else if constexpr (std::is_same_v<Held, host::StringRef>) {
      return host::stringBytes(held.get());
    } else if constexpr (std::is_same_v<Held, host::MemoryBlockRef>) {
      const uint8_t* bytes = host::memoryBlockBytes(held.get());
      return Bytes(bytes, bytes + host::memoryBlockSize(held.get()));
    } else if constexpr (std::is_same_v<Held, host::PictureRef>) {
      return pixelsOf(held.get());
    } else {
      throw std::runtime_error("an object of a class among values");
    }
  };
  return std::visit(convert, value);
}
