// zvr lut: a picture through a film look.

#include <CLI/CLI.hpp>

#include <algorithm>
#include <cmath>

#include "zvr/commands/commands.h"
#include "zvr/files/cube.h"
#include "zvr/language/filters.h"
#include "zvr/language/look_table.h"
#include "zvr/language/outputs.h"
#include "zvr/language/signatures.h"
#include "zvr/language/walk.h"
#include "zvr/terminal/failures.h"
#include "zvr/terminal/terminal.h"

namespace zvr {
namespace {

struct LutOptions {
  std::vector<std::string> files;
  std::string output;
  bool identity = false, dump = false;
  PictureOptions pictures;
};

// The files that the words name; either may be empty.
struct LutFiles {
  std::string picture, cube;
};

LutFiles filesOf(const LutOptions& own) {
  std::vector<std::string> words = own.files;
  LutFiles files;
  if (!own.identity && !words.empty()) {
    files.cube = words.back();
    words.pop_back();
  }
  if (!words.empty()) files.picture = words[0];
  if (words.size() > 1) throw UsageError("unexpected word '" + words[1] + "'");
  if (!own.identity && files.cube.empty()) throw UsageError("expected a .cube file, or --identity");
  if (files.picture.empty() && (!own.dump || !own.output.empty())) {
    throw UsageError(own.identity ? "expected a picture"
                                  : "expected a picture and a .cube file, found only " + files.cube);
  }
  return files;
}

// A look without a table of three dimensions is three curves, which TransformColorsZVR applies exactly.
using Curves = std::array<Bytes, 3>;

Curves curvesOf(const Cube& cube) {
  constexpr int kFull = 255;
  Curves curves;
  for (int value = 0; value <= kFull; ++value) {
    const double input = value / double{kFull};
    const Cube::Color color = cube.at({input, input, input});
    for (size_t x = 0; x < 3; ++x) {
      curves[x].push_back(static_cast<uint8_t>(std::lround(std::clamp(color[x], 0.0, 1.0) * kFull)));
    }
  }
  return curves;
}

void runCurves(const Curves& curves, const std::string& picture, const std::string& output,
               const PictureOptions& options) {
  const auto block = [&](size_t x) { return valueOfBytes(curves[x], host::Type::memoryBlock); };
  const Step step{host::findMethods("TransformColorsZVR").at(0),
                  {block(0), block(2), block(1), host::PictureRef()},  // red, blue, green
                  {}};
  Walk walk(picture, "", options, false);
  walk.take(step, {});
  saveImage(walk.picture(), output, options.writing);
}

void dump(const Curves& curves) {
  terminal::print("# value  red green blue");
  for (size_t value = 0; value < curves[0].size(); ++value) {
    std::string line = std::to_string(value) + " ";
    for (const Bytes& curve : curves) line += " " + std::to_string(curve[value]);
    terminal::print(line);
  }
}

void dump(Filter& filter) {
  const host::Method& table = filter.method("Table");
  terminal::print("# r g b  Table(r, g, b, 0) Table(r, g, b, 1) Table(r, g, b, 2)");
  forEachEntry([&](int64_t r, int64_t g, int64_t b) {
    std::string line = std::to_string(r) + " " + std::to_string(g) + " " + std::to_string(b) + " ";
    for (int64_t x = 0; x < 3; ++x) line += " " + valueText(filter.call(table, {r, g, b, x}));
    terminal::print(line);
  });
}

int lut(const Options& options, const LutOptions& own) {
  const LutFiles files = filesOf(own);
  const Session session(options);
  const std::vector<std::string> cubes(own.identity ? 0 : 1, files.cube);
  const bool writes = !own.dump || !own.output.empty();
  const std::string output = writes ? planOutput(files.picture, own.output, "lut", own.pictures, cubes) : "";
  const Cube cube = own.identity ? Cube() : loadCube(files.cube);
  if (cube.curves.size != 0 && cube.space.size == 0) {
    const Curves curves = curvesOf(cube);
    if (own.dump) dump(curves);
    if (writes) runCurves(curves, files.picture, output, own.pictures);
  } else {
    Filter filter("PictureLut3DZVR");
    fillTable(filter, cube);
    if (own.dump) dump(filter);
    if (writes) runOnFile(filter, files.picture, output, own.pictures);
  }
  if (writes) terminal::printWritten(output);
  return kDone;
}

}  // namespace

void addLut(CLI::App& program, const Options& options, Run& run) {
  CLI::App* command =
      program.add_subcommand("lut", "Apply a film look from a .cube file:\n  zvr lut INPUT CUBE [-o OUT]");
  const auto own = std::make_shared<LutOptions>();
  command->add_option("INPUT CUBE", own->files, "Picture file, and the .cube file")->option_text(" ");
  command->add_option("-o,--output", own->output,
                      "File, folder, or pattern with {name}; without it NAME-lut.png beside the input");
  command->add_flag("--identity", own->identity,
                    "Instead of a .cube file, the table that leaves every colour as it is");
  command->add_flag("--dump", own->dump,
                    "Print the table, or curves, as applied; without -o no picture is needed or written");
  addPictureOptions(*command, own->pictures);
  command->footer(
      "Looks of three dimensions, with or without a shaper of one before them, are resampled to the\n"
      "16 x 16 x 16 entries that PictureLut3DZVR uses (tetrahedral interpolation), on a scale from 0 to 255\n"
      "plus 0.5, so that results are rounded. Looks of one dimension are applied exactly, by\n"
      "TransformColorsZVR. LUT_3D_SIZE can be 2 to 256, LUT_1D_SIZE 2 to 65536.\n"
      "\n"
      "Examples:\n"
      "  zvr lut photo.png film.cube -o out.png\n"
      "  zvr lut photo.png --identity -o same.png\n"
      "  zvr lut film.cube --dump\n");
  command->callback([&run, &options, own] { run = [&options, own] { return lut(options, *own); }; });
}

}  // namespace zvr
