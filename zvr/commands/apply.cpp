// zvr apply: pictures through one method after another.

#include <CLI/CLI.hpp>

#include "zvr/commands/commands.h"
#include "zvr/files/files.h"
#include "zvr/language/outputs.h"
#include "zvr/language/walk.h"
#include "zvr/terminal/failures.h"
#include "zvr/terminal/terminal.h"

namespace zvr {
namespace {

struct ApplyOptions {
  std::vector<std::string> words, ins, outs;
  std::string output;
  PictureOptions pictures;
};

// The files to write, for each input.
struct Outputs {
  std::vector<std::string> results;
  std::vector<std::vector<std::string>> blocks;  // as Chain::blocks
};

Outputs planAll(const Chain& chain, const ApplyOptions& own) {
  std::string label;
  for (const Step& step : chain.steps) label += (label.empty() ? "" : "-") + step.method->declaration.name;
  OutputPlan plan(filesRead(chain), own.pictures);
  Outputs outputs;
  outputs.results = chain.left == Kind::data ? plan.data(chain.inputs, "-o", own.output, label)
                                             : plan.pictures(chain.inputs, "-o", own.output, label);
  for (const BlockOutput& block : chain.blocks) {
    const std::string& name = chain.steps[block.step].method->declaration.parameters[block.parameter].name;
    outputs.blocks.push_back(plan.data(chain.inputs, "--out " + name, block.pattern, name));
  }
  return outputs;
}

// Takes the walk through every step. Answers the blocks to write, in the order of Chain::blocks.
std::vector<Bytes> takeAll(Walk& walk, const Chain& chain) {
  std::vector<Bytes> blocks(chain.blocks.size());
  for (size_t i = 0; i < chain.steps.size(); ++i) {
    std::vector<size_t> kept;
    for (const BlockOutput& block : chain.blocks) {
      if (block.step == i) kept.push_back(block.parameter);
    }
    std::map<size_t, Bytes> taken = walk.take(chain.steps[i], kept);
    for (size_t j = 0; j < blocks.size(); ++j) {
      if (chain.blocks[j].step == i) blocks[j] = std::move(taken[chain.blocks[j].parameter]);
    }
  }
  return blocks;
}

// Nothing is written before every step is done.
void applyToOne(size_t input, const Chain& chain, const Outputs& outputs, const ApplyOptions& own) {
  Walk walk(chain.inputs[input], chain.inputs.size() > 1 ? chain.inputs[input] + ": " : "", own.pictures,
            concernsTransparency(chain));
  const std::vector<Bytes> blocks = takeAll(walk, chain);
  for (size_t i = 0; i < blocks.size(); ++i) {
    writeFile(outputs.blocks[i][input], blocks[i]);
    terminal::printWritten(outputs.blocks[i][input]);
  }
  const std::string& output = outputs.results[input];
  // Methods without a picture result may have changed their picture in place.
  if (own.output.empty() && !own.pictures.isInPlace && !walk.hasResult()) return;
  if (chain.left == Kind::picture) {
    saveImage(walk.picture(), output, own.pictures.writing);
  } else {
    writeFile(output, walk.data());
  }
  terminal::printWritten(output);
}

int apply(const Options& options, const ApplyOptions& own) {
  const Session session(options);
  const Chain chain = parseChain(own.words, own.ins, own.outs);
  const Outputs outputs = planAll(chain, own);
  int status = kDone;
  terminal::Progress progress(chain.inputs.size());
  for (size_t i = 0; i < chain.inputs.size(); ++i) {
    try {
      applyToOne(i, chain, outputs, own);
    } catch (const Failure& failure) {
      status = kFailed;
      terminal::complain(failure.what());
    } catch (const std::bad_alloc&) {
      status = kFailed;
      terminal::complain(chain.inputs[i] + ": not enough memory");
    }
    progress.advance();
  }
  return status;
}

constexpr const char* kNotes =
    "INPUT is a picture file, or for a method that takes @ as a String or MemoryBlock any file. The "
    "first\n"
    "word that names a registered method (in any case) ends the inputs; a file of such a name is written\n"
    "./NAME. Methods of Picture run on the current picture: the input, later what the step before answered.\n"
    "\n"
    "Arguments of type Picture, MemoryBlock and String are file names, nil, or @: what the step before\n"
    "answered, or the input. A global method whose only argument is one takes @ when it is left out.\n"
    "--in NAME=PATH gives a file to the argument of that name, which then takes no word (METHOD.NAME=PATH\n"
    "where several steps have one).\n"
    "\n"
    "Arguments by reference take no word: they are printed after the call, as are numbers and booleans that "
    "a\n"
    "method answers. A MemoryBlock by reference starts as nil, or as the file that --in names; --out "
    "NAME=PATH\n"
    "writes it to a file instead of printing a summary. METHOD ... = VALUE assigns where `zvr show` says "
    "that\n"
    "one can.\n"
    "\n"
    "A String that is the last answer goes to -o byte by byte, into a file of any name. A picture that no "
    "step\n"
    "made or changed is not written unless -o is given. JPEG and BMP have no transparency: it becomes "
    "white.\n"
    "Options stand anywhere; words after -- are never options. No result is written over a file that is "
    "read,\n"
    "except over its own input with --in-place.\n"
    "\n"
    "Examples:\n"
    "  zvr apply photo.png InvertZVR -o out.png\n"
    "  zvr apply photo.png InvertZVR 20 20 100 80 -o out.jpg --quality 85\n"
    "  zvr apply photo.png ChangeContrastZVR 0.2 + ChangeSaturationZVR 60 -o out.png\n"
    "  zvr apply *.jpg TintPictureZVR @ '&c555555' '&c704214' -o 'toned/{name}.png'\n"
    "  zvr apply shot.png FindPictureZVR icon.png\n"
    "  zvr apply photo.png CountColorsZVR --out red=red.bin --out green=green.bin\n"
    "  zvr apply photo.png TransformColorsZVR red.bin blue.bin green.bin -o out.png\n"
    "  zvr apply photo.png PicturetoBinaryStringZVR -o photo.ppic\n"
    "  zvr apply photo.ppic BinaryStringtoPictureZVR -o back.png\n"
    "  zvr apply samples.raw RenderSamplesZVR @ 8000 3 300 100 1 -o wave.png\n";

void addFileOption(CLI::App& command, const char* name, std::vector<std::string>& files, const char* help) {
  command.add_option(name, files, help)->allow_extra_args(false)->type_name("NAME=PATH");
}

}  // namespace

void addApply(CLI::App& program, const Options& options, Run& run) {
  CLI::App* command = program.add_subcommand(
      "apply",
      "Run methods on pictures and other files, one after another:\n"
      "  zvr apply INPUT... METHOD [ARGUMENT...] [+ METHOD [ARGUMENT...]]... [-o OUT]");
  const auto own = std::make_shared<ApplyOptions>();
  command->add_option("INPUT... METHOD [ARGUMENT]", own->words)->required()->option_text(" ");
  command->add_option(
      "-o,--output", own->output,
      "File, folder, or pattern with {name}, {ext} and {n}; without it NAME-METHOD.png\nbeside the "
      "input (.bin for a String)");
  addFileOption(*command, "--in", own->ins,
                "A file for a Picture, MemoryBlock or String argument, by its name");
  addFileOption(*command, "--out", own->outs, "Where a MemoryBlock by reference goes; PATH as for -o");
  addPictureOptions(*command, own->pictures);
  command->footer(kNotes);
  command->callback([&run, &options, own] { run = [&options, own] { return apply(options, *own); }; });
}

}  // namespace zvr
