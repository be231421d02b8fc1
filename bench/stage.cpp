#include "bench/stage.h"

#include <algorithm>
#include <stdexcept>

#include "bench/clock.h"
#include "host/shims/plain_drawable.h"

namespace bench {
namespace {

host::Settings settingsFor(Pixels pixels) {
  host::Settings settings;
  settings.road = pixels == Pixels::words  ? host::Road::cairo
                  : pixels == Pixels::rows ? host::Road::console
                                           : host::Road::gdk;
  settings.recyclesBuffers = true;
  settings.plainDrawables = pixels == Pixels::rgb24;
  settings.serviceWatcher = watchService;
  return settings;
}

template <typename Range, typename Fits>
const auto& theOne(const Range& range, const std::string& what, const Fits& fits) {
  const auto found = std::find_if(range.begin(), range.end(), fits);
  if (found == range.end()) throw std::runtime_error("the library has no " + what);
  return *found;
}

}  // namespace

std::string nameOf(Pixels pixels) {
  return pixels == Pixels::words ? "words" : pixels == Pixels::rows ? "rows" : "rgb24";
}

Stage::Stage(Pixels pixels, const std::string& library) : pixels_(pixels), library_(library) {
  host::start(settingsFor(pixels));
  plugin_ = std::make_unique<host::Plugin>(library);
}

Stage& Stage::of(Pixels pixels, const std::string& library) {
  static std::unique_ptr<Stage> last;
  if (!last || last->pixels_ != pixels || last->library_ != library) {
    last.reset();
    last = std::make_unique<Stage>(pixels, library);
  }
  return *last;
}

host::PictureRef Stage::picture(Content content, const Size& size) {
  if (!(size == lastSize_)) {
    pictures_.clear();
    lastSize_ = size;
  }
  host::PictureRef& kept = pictures_[content];
  if (kept) return kept;
  kept = newPicture(size, nullptr);
  std::vector<uint32_t> row(static_cast<size_t>(size.width));
  for (int y = 0; y < size.height; ++y) {
    drawRow(content, size, y, row.data());
    setRow(kept, y, size, row.data());
  }
  return kept;
}

host::PictureRef Stage::newPicture(const Size& size, const uint32_t* words) {
  host::PictureRef made = host::newPicture(size.width, size.height);
  if (!made) throw std::runtime_error("no memory for a picture of " + bench::nameOf(size));
  for (int y = 0; words && y < size.height; ++y) setRow(made, y, size, words + y * size.width);
  return made;
}

void Stage::setRow(const host::PictureRef& picture, int y, const Size& size, const uint32_t* words) const {
  if (pixels_ != Pixels::rgb24) {
    std::transform(words, words + size.width, host::pictureRow(picture.get(), y),
                   [](uint32_t word) { return 0xFF000000 | word; });
    return;
  }
  auto* to = reinterpret_cast<uint8_t*>(host::pictureRow(picture.get(), 0)) + plainStride(size.width) * y;
  for (int x = 0; x < size.width; ++x) {
    for (const int shift : {16, 8, 0}) *to++ = static_cast<uint8_t>(words[x] >> shift);
  }
}

const host::Method& Stage::method(const std::string& name, size_t parameters) const {
  return *theOne(host::findMethods(name), name, [&](const host::Method* method) {
    return method->declaration.parameters.size() == parameters;
  });
}

const host::Method& Stage::method(const std::string& className, const std::string& name) const {
  const host::Class& known =
      theOne(host::members().classes, className, [&](const host::Class& c) { return c.name == className; });
  return theOne(known.methods, className + "." + name,
                [&](const host::Method& method) { return method.declaration.name == name; });
}

}  // namespace bench
