#include "zvr/language/original.h"

#include "host/host.h"
#include "zvr/terminal/terminal.h"

namespace zvr {
namespace {

const char* howHostsKeepTransparency() {
  switch (host::settings().road) {
    case host::Road::gdk:
      return "a GDK host keeps it, in a mask";
    case host::Road::console:
      return "a console host keeps it, in 7 bits";
    case host::Road::cairo:
      break;
  }
  return "a cairo host keeps it, premultiplied";
}

}  // namespace

Original::Original(const std::string& path, const std::vector<uint8_t>& file, const PictureOptions& options,
                   bool asOnHost)
    : path_(path), options_(options) {
  Image image = decodeImage(path, file, options.upright);
  const Transparent road = roadOf(options, asOnHost);
  picture_ = toPicture(image, road);
  width_ = image.width;
  height_ = image.height;
  if (!options.strips) metadata_ = std::move(image.metadata);
  if (!image.hasAlpha) return;
  if (asOnHost && options.alpha == Alpha::keep) {
    terminal::note(path + ": its transparency goes through the library as " + howHostsKeepTransparency());
  }
  if (road == Transparent::asOnHost || options.alpha == Alpha::drop) return;
  opacities_.resize(image.byteCount() / 4);
  for (size_t i = 0; i < opacities_.size(); ++i) opacities_[i] = image.pixels[i * 4 + 3];
}

Image Original::finished(Image result) const {
  result.metadata = metadata_;
  const bool fits = result.width == width_ && result.height == height_;
  if (options_.alpha == Alpha::drop) {
    result.hasAlpha = false;
    for (size_t i = 3; i < result.byteCount(); i += 4) result.pixels[i] = 255;
  } else if (!opacities_.empty() && fits) {
    result.hasAlpha = true;
    for (size_t i = 0; i < opacities_.size(); ++i) result.pixels[i * 4 + 3] = opacities_[i];
  } else if (!opacities_.empty()) {
    terminal::note(path_ + ": its transparency is left out, because the result measures " +
                   std::to_string(result.width) + " x " + std::to_string(result.height));
  }
  return result;
}

}  // namespace zvr
