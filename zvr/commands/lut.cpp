// zvr lut: a picture through a film look.

#include <CLI/CLI.hpp>

#include <cmath>

#include "zvr/commands/commands.h"
#include "zvr/files/cube.h"
#include "zvr/language/filters.h"
#include "zvr/language/look_table.h"
#include "zvr/language/outputs.h"
#include "zvr/language/signatures.h"
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
  Filter filter("PictureLut3DZVR");
  const std::vector<std::string> cubes(own.identity ? 0 : 1, files.cube);
  const bool writes = !own.dump || !own.output.empty();
  const std::string output = writes ? planOutput(files.picture, own.output, "lut", own.pictures, cubes) : "";
  if (own.identity) {
    fillTable(filter, nullptr);
  } else {
    const Cube cube = loadCube(files.cube);
    fillTable(filter, &cube);
  }
  if (own.dump) dump(filter);
  if (!writes) return kDone;
  runOnFile(filter, files.picture, output, own.pictures);
  terminal::printWritten(output);
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
                    "Print the table as the class holds it; without -o no picture is needed or written");
  addPictureOptions(*command, own->pictures);
  command->footer(
      "The look is resampled to the 16 x 16 x 16 entries that PictureLut3DZVR uses (tetrahedral\n"
      "interpolation), on a scale from 0 to 255; what lies within 0.002 of a whole number becomes that.\n"
      "Tables of 2 to 256 entries a side can be read.\n"
      "\n"
      "Examples:\n"
      "  zvr lut photo.png film.cube -o out.png\n"
      "  zvr lut photo.png --identity -o same.png\n"
      "  zvr lut film.cube --dump\n");
  command->callback([&run, &options, own] { run = [&options, own] { return lut(options, *own); }; });
}

}  // namespace zvr
