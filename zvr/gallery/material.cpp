#include "zvr/gallery/material.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <unordered_map>

#include "zvr/files/files.h"
#include "zvr/files/sound.h"
#include "zvr/gallery/pictures.h"
#include "zvr/language/arguments.h"
#include "zvr/language/chain.h"
#include "zvr/language/outputs.h"
#include "zvr/language/signatures.h"

namespace zvr::gallery {
namespace {

namespace fs = std::filesystem;

// Larger photographs are scaled down before the calls run on them.
constexpr int64_t kMostPixels = 3'000'000;

// ---- Pictures ----

Image turned(const Image& photo) {
  return drawn(photo.width, photo.height, photo.hasAlpha,
               [&](int x, int y) { return pixelAt(photo, photo.width - 1 - x, photo.height - 1 - y); });
}

// A part from near the middle.
Image partOf(const Image& photo) {
  return drawn(photo.width / 6, photo.height / 5, photo.hasAlpha, [&](int x, int y) {
    return pixelAt(photo, photo.width * 2 / 5 + x, photo.height * 3 / 10 + y);
  });
}

// In hundredths of the sides; right and bottom lie outside.
struct Area {
  int left, top, right, bottom;

  bool has(double x, double y) const { return x >= left && x < right && y >= top && y < bottom; }
};

// A white page with a black edge: the photograph in gray, two parts of it in colour.
Image scanOf(const Image& photo) {
  constexpr Area kEdge{94, 0, 100, 100}, kPrint{6, 10, 88, 90},
      kColoured[] = {{14, 20, 42, 60}, {54, 44, 80, 82}};
  return drawn(photo.width, photo.height, false, [&](int column, int row) {
    const double x = 100.0 * column / photo.width, y = 100.0 * row / photo.height;
    Pixel pixel = pixelAt(photo, column, row);
    pixel[3] = 255;
    const auto gray = [&](int value) { std::fill_n(pixel.begin(), 3, static_cast<uint8_t>(value)); };
    if (kEdge.has(x, y)) {
      gray(0);
    } else if (!kPrint.has(x, y)) {
      gray(255);
    } else if (!kColoured[0].has(x, y) && !kColoured[1].has(x, y)) {
      gray((3 * pixel[0] + 6 * pixel[1] + pixel[2]) / 10);
    }
    return pixel;
  });
}

// An oval with a soft edge, transparent around it.
Image cutoutOf(const Image& photo) {
  return drawn(photo.width, photo.height, true, [&](int column, int row) {
    const double x = 2.2 * column / photo.width - 1.1, y = 2.2 * row / photo.height - 1.1;
    Pixel pixel = pixelAt(photo, column, row);
    pixel[3] = static_cast<uint8_t>(std::lround(255 * std::clamp(3 * (1 - x * x - y * y), 0.0, 1.0)));
    return pixel;
  });
}

// The colour that occurs most often among up to about 260,000 pixels, evenly spread.
std::string commonColor(const Image& image) {
  const size_t count = image.byteCount() / 4, step = count / (size_t{1} << 18) + 1;
  std::unordered_map<uint32_t, size_t> counts;
  for (size_t i = 0; i < count; i += step) {
    const uint8_t* pixel = image.pixels.get() + i * 4;
    ++counts[static_cast<uint32_t>(pixel[0] << 16 | pixel[1] << 8 | pixel[2])];
  }
  const auto common = std::max_element(counts.begin(), counts.end(), [](const auto& a, const auto& b) {
    return std::pair(a.second, a.first) < std::pair(b.second, b.first);
  });
  return valueText(host::Color{common->first});
}

// ---- Others ----

// Four levels.
Bytes posterTable() {
  Bytes table;
  for (int value = 0; value < 256; ++value) table.push_back(static_cast<uint8_t>(value / 64 * 85));
  return table;
}

constexpr std::string_view kLook =
    "# Warm lights, teal shadows.\nTITLE \"Gallery\"\nLUT_3D_SIZE 2\n"
    "0.02 0.07 0.12\n1.00 0.16 0.06\n0.14 0.92 0.16\n1.00 0.94 0.10\n"
    "0.04 0.16 0.86\n0.92 0.20 0.80\n0.16 0.86 0.92\n1.00 0.96 0.86\n";

// Some syllables: a tone with a swelling envelope.
Bytes tone() {
  constexpr int kCount = 12000;
  Bytes samples;
  for (int i = 0; i < kCount; ++i) {
    const double envelope = std::sin(i * 3.14159 / kCount) * (0.25 + 0.75 * std::pow(std::sin(i / 900.0), 2));
    const auto sample = static_cast<uint16_t>(std::lrint(23000 * envelope * std::sin(i * 0.7)));
    samples.push_back(static_cast<uint8_t>(sample));
    samples.push_back(static_cast<uint8_t>(sample >> 8));
  }
  return samples;
}

// The photograph, no larger than the calls take; `path` becomes that of a smaller copy's file, otherwise its
// own.
Image photographOf(const std::string& input, std::string& path, std::string& notes) {
  Image photo = loadImage(input);
  const int64_t pixels = int64_t{photo.width} * photo.height;
  if (pixels <= kMostPixels) {
    path = inputWord(input);
    notes = "Every call ran on the whole photograph.";
    return photo;
  }
  notes = "The photograph of " + std::to_string(photo.width) + " × " + std::to_string(photo.height) +
          " pixels was scaled down to " + path + ", on which every call ran.";
  const double share = std::sqrt(static_cast<double>(kMostPixels) / static_cast<double>(pixels));
  photo = scaledDown(photo, static_cast<int>(std::max(photo.width, photo.height) * share));
  Writing png;
  png.format = "png";
  writeFile(path, encodeImage(photo, png));
  return photo;
}

}  // namespace

Material prepare(const std::string& input, const std::string& sound, const std::string& folder) {
  Material material;
  OutputPlan plan({input, sound}, {});
  const auto claimed = [&](const std::string& name) {
    const std::string path = fs::path(folder) / name;
    plan.claim(path, name, input);
    return path;
  };
  material.page = claimed("index.html");
  auto& fields = material.fields;
  for (const char* name : {"photo.png", "scan.png", "cutout.png", "other.jpg", "part.png", "table.bin",
                           "samples.raw", "look.cube"}) {
    fields[fs::path(name).stem()] = claimed(std::string("files/") + name);
  }
  const Bytes samples = sound.empty() ? tone() : loadSound(sound);
  const Image photo = photographOf(input, fields["photo"], material.notes);
  material.notes += sound.empty() ? " The waveform is of a made-up tone; --sound FILE draws a sound of yours."
                                  : " The waveform is of " + fs::path(sound).filename().string() + ".";
  saveImage(scanOf(photo), fields["scan"], {});
  saveImage(cutoutOf(photo), fields["cutout"], {});
  saveImage(turned(photo), fields["other"], {});
  saveImage(partOf(photo), fields["part"], {});
  writeFile(fields["table"], posterTable());
  writeFile(fields["samples"], samples);
  writeFile(fields["look"], Bytes(kLook.begin(), kLook.end()));
  // Every column has two samples of its own; the page shows no more of them.
  fields["columns"] = std::to_string(std::clamp<size_t>(samples.size() / 4, 1, 800));
  fields["common"] = commonColor(photo);
  material.pictures = {"photo", "scan", "cutout"};
  material.width = photo.width;
  material.height = photo.height;
  return material;
}

}  // namespace zvr::gallery
