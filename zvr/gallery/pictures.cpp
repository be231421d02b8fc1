#include "zvr/gallery/pictures.h"

#include <magick/api.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <memory>
#include <new>
#include <unordered_set>

#include "zvr/files/host_pictures.h"
#include "zvr/language/arguments.h"
#include "zvr/language/signatures.h"

namespace zvr::gallery {
namespace {

// The same share of another total.
int shareOf(int part, int total, int other) {
  return static_cast<int>(static_cast<int64_t>(part) * other / total);
}

// Right and bottom lie outside. A box has fewer than 66,000 pixels, so that the sums fit.
Pixel meanOf(const Image& image, int left, int top, int right, int bottom) {
  std::array<uint32_t, 3> sums{};
  uint32_t opacity = 0;
  for (int y = top; y < bottom; ++y) {
    for (int x = left; x < right; ++x) {
      const Pixel pixel = pixelAt(image, x, y);
      for (size_t i = 0; i < sums.size(); ++i) sums[i] += uint32_t{pixel[i]} * pixel[3];
      opacity += pixel[3];
    }
  }
  Pixel mean{};
  for (size_t i = 0; i < sums.size() && opacity > 0; ++i)
    mean[i] = static_cast<uint8_t>((sums[i] + opacity / 2) / opacity);
  const auto count = static_cast<uint32_t>((right - left) * (bottom - top));
  mean[3] = static_cast<uint8_t>((opacity + count / 2) / count);
  return mean;
}

bool isDrawing(const Image& image) {
  constexpr size_t kFewColors = 256;
  std::unordered_set<uint32_t> colors;
  for (size_t i = 0; i < image.byteCount() && colors.size() <= kFewColors; i += sizeof(uint32_t)) {
    uint32_t pixel = 0;
    std::memcpy(&pixel, image.pixels.get() + i, sizeof(pixel));
    colors.insert(pixel);
  }
  return colors.size() <= kFewColors;
}

}  // namespace

Image scaledDown(const Image& image, int longest) {
  const int side = std::max({image.width, image.height, longest});
  const int width = std::max(1, shareOf(image.width, side, longest)),
            height = std::max(1, shareOf(image.height, side, longest));
  return drawn(width, height, image.hasAlpha, [&](int x, int y) {
    return meanOf(image, shareOf(x, width, image.width), shareOf(y, height, image.height),
                  shareOf(x + 1, width, image.width), shareOf(y + 1, height, image.height));
  });
}

std::string dataUri(const Image& image, int side, int quality) {
  const Image shown = scaledDown(image, side);
  Writing writing;
  writing.format = isDrawing(shown) ? "png" : "webp";
  writing.quality = quality;
  writing.compression = 9;
  const Bytes bytes = encodeImage(shown, writing);
  size_t length = 0;
  const std::unique_ptr<char, void (*)(void*)> text(Base64Encode(bytes.data(), bytes.size(), &length),
                                                    MagickFree);
  if (!text) throw std::bad_alloc();
  return "data:image/" + writing.format + ";base64," + std::string(text.get(), length);
}

// The blocks by reference are red, green and blue. The method's names for the second and third are crossed on
// purpose.
Histogram histogramIn(const std::vector<host::Value>& arguments) {
  Histogram histogram;
  size_t channel = 0;
  for (const host::Value& argument : arguments) {
    const auto* block = std::get_if<host::MemoryBlockRef>(&argument);
    std::vector<uint32_t> counts = block && *block ? countsIn(*block) : std::vector<uint32_t>();
    if (counts.size() == 256 && channel < histogram.size()) histogram[channel++] = std::move(counts);
  }
  return histogram;
}

Histogram histogramOf(const Image& image) {
  const auto methods = host::findMethods("CountColorsZVR");
  if (methods.empty()) return {};
  std::vector<host::Value> arguments(methods[0]->declaration.parameters.size());
  return histogramIn(host::call(*methods[0], toPicture(image).get(), std::move(arguments)).arguments);
}

uint32_t tallestOf(const Histogram& histogram) {
  uint32_t tallest = 0;
  for (const auto& channel : histogram)
    for (const uint32_t count : channel) tallest = std::max(tallest, count);
  return tallest;
}

// A few values, often black and white, occur so often that plain heights would show nothing else.
double heightOf(uint32_t count, uint32_t tallest) {
  return std::cbrt(static_cast<double>(count) / static_cast<double>(tallest));
}

std::string barsPath(const std::vector<uint32_t>& counts, uint32_t tallest) {
  constexpr double kHeight = 80;
  std::string path = "M0 0";
  long last = 0;
  for (const uint32_t count : counts) {
    const long y = std::lround(-kHeight * heightOf(count, tallest));
    path += "v" + std::to_string(y - last) + "h1";
    last = y;
  }
  return path + "V0Z";
}

std::string curvePath(const std::vector<uint8_t>& table) {
  std::string path;
  for (size_t i = 0; i < table.size(); ++i)
    path += (i == 0 ? "M" : "L") + std::to_string(i) + " " + std::to_string(255 - table[i]);
  return path;
}

}  // namespace zvr::gallery
