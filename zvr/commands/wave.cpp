// zvr wave: a sound file as a waveform.

#include <CLI/CLI.hpp>

#include <algorithm>
#include <map>

#include "host/calls.h"
#include "zvr/commands/commands.h"
#include "zvr/files/host_pictures.h"
#include "zvr/files/sound.h"
#include "zvr/language/causes.h"
#include "zvr/language/outputs.h"
#include "zvr/terminal/failures.h"
#include "zvr/terminal/terminal.h"

namespace zvr {
namespace {

constexpr const char* kMethod = "RenderSamplesZVR";

struct WaveOptions {
  std::string input, output;
  std::string backColor, foreColor, outlineColor;  // empty: the method's own
  int width = 1200, height = 300, smooth = 1, outline = 0;
  PictureOptions pictures;  // of which only how they are written
  bool autoScale = false;
};

// The method's parameters by name, in a person's words; without a word a parameter has its default.
std::map<std::string, std::string> wordsOf(const WaveOptions& own, const Sound& sound) {
  return {
      {"SampleCount", std::to_string(sound.count())},
      {"Smooth", std::to_string(own.smooth)},
      {"Width", std::to_string(own.width)},
      {"Height", std::to_string(own.height)},
      {"outlinewidth", std::to_string(own.outline)},
      {"BackColor", own.backColor},
      {"ForeColor", own.foreColor},
      {"OutLineColor", own.outlineColor},
      {"Bits", std::to_string(sound.bits)},
      {"AutoScale", own.autoScale ? "true" : "false"},
  };
}

const host::Method& findMethod() {
  const std::vector<const host::Method*> methods = host::findMethods(kMethod);
  if (methods.empty()) throw Failure(std::string("the plug-in has no ") + kMethod);
  return *methods[0];
}

std::vector<host::Value> argumentsOf(const host::Declaration& declaration, const WaveOptions& own,
                                     const Sound& sound) {
  const std::map<std::string, std::string> words = wordsOf(own, sound);
  std::vector<host::Value> arguments;
  for (const host::Parameter& parameter : declaration.parameters) {
    if (parameter.type == host::Type::memoryBlock) {
      host::MemoryBlockRef block = host::newMemoryBlock(sound.bytes.data(), sound.bytes.size());
      if (!block) throw std::bad_alloc();
      arguments.emplace_back(std::move(block));
      continue;
    }
    const std::string& word = words.at(parameter.name);
    try {
      arguments.push_back(host::parseValue(parameter, word.empty() ? parameter.defaultText : word));
    } catch (const std::invalid_argument& error) {
      throw UsageError(error.what());
    }
  }
  return arguments;
}

// With two samples to a column none is empty; an empty one would be drawn as a full bar.
void checkLength(const WaveOptions& own, const Sound& sound) {
  const size_t most = std::max<size_t>(sound.count() / 2, 1);
  if (static_cast<size_t>(own.width) <= most) return;
  throw Failure(own.input + ": too short: " + std::to_string(sound.count()) + " samples for " +
                std::to_string(own.width) + " columns; --width " + std::to_string(most) + " is the most");
}

int wave(const Options& options, const WaveOptions& own) {
  const Session session(options);
  const std::string output = planOutput(own.input, own.output, "wave", own.pictures);
  const host::Method& method = findMethod();
  const Sound sound = loadSound(own.input);
  checkLength(own, sound);
  const host::Outcome outcome = host::call(method, nullptr, argumentsOf(method.declaration, own, sound));
  if (outcome.exception) {
    throw Failure(std::string(kMethod) + ": " + outcome.exception->className + ": " +
                  outcome.exception->message);
  }
  const auto* picture = std::get_if<host::PictureRef>(&outcome.result);
  if (!picture || !*picture) throw Failure(nilText(method.declaration, {}, outcome.arguments));
  saveImage(fromPicture(picture->get()), output, own.pictures.writing);
  terminal::printWritten(output);
  return kDone;
}

void addOptions(CLI::App& command, WaveOptions& own) {
  constexpr int kLongest = static_cast<int>(kLongestSide);
  command.add_option("INPUT", own.input, "Sound file: WAV, AIFF, FLAC, Ogg and others")->required();
  command.add_option("-o,--output", own.output,
                     "File, folder, or pattern with {name}; without it NAME-wave.png beside the input");
  command.add_option("--width", own.width, "Columns")->check(CLI::Range(1, kLongest))->capture_default_str();
  command.add_option("--height", own.height, "Rows")->check(CLI::Range(1, kLongest))->capture_default_str();
  command.add_option("--smooth", own.smooth, "Columns of the moving average; 1 for none")
      ->check(CLI::Range(1, kLongest))
      ->capture_default_str();
  command.add_option("--outline", own.outline, "Width of the outline; 0 for none")
      ->check(CLI::Range(0, kLongest))
      ->capture_default_str();
  command.add_option("--back-color", own.backColor, "Background: '&cRRGGBB', '#rrggbb' or a CSS name");
  command.add_option("--fore-color", own.foreColor, "Bars");
  command.add_option("--outline-color", own.outlineColor, "Outline");
  command.add_flag("--auto-scale", own.autoScale, "Let the loudest column fill half the height");
  addWriting(command, own.pictures.writing);
}

}  // namespace

void addWave(CLI::App& program, const Options& options, Run& run) {
  CLI::App* command = program.add_subcommand("wave", "Draw a sound file as a waveform");
  const auto own = std::make_shared<WaveOptions>();
  addOptions(*command, *own);
  command->footer(
      "Channels are mixed down to one. Files of 8 bits are drawn as unsigned bytes (Bits 8), all others as\n"
      "signed 16-bit samples (Bits 15). Negative excursions lie above the centre line.\n"
      "\n"
      "Examples:\n"
      "  zvr wave speech.wav -o wave.png\n"
      "  zvr wave speech.wav --smooth 3 --outline 1 --auto-scale --fore-color firebrick -o wave.png\n");
  command->callback([&run, &options, own] { run = [&options, own] { return wave(options, *own); }; });
}

}  // namespace zvr
