// zvr apply: pictures through one method after another.

#include <CLI/CLI.hpp>

#include "host/zvr/chain.h"
#include "host/zvr/images.h"
#include "host/zvr/outputs.h"
#include "host/zvr/program.h"
#include "host/zvr/signatures.h"
#include "host/zvr/terminal.h"

namespace zvr {
namespace {

struct ApplyOptions {
  std::vector<std::string> words;
  std::string output;
  int quality = 92;
};

host::PictureRef loadPicture(const std::string& path) { return toPicture(loadImage(path)); }

// The state of one input on its way through the chain.
class Walk {
 public:
  // `label` stands before every line that is printed.
  Walk(host::PictureRef picture, std::string label)
      : current_(std::move(picture)), label_(std::move(label)) {}

  void take(const Step& step) {
    const host::Method& method = *step.method;
    std::vector<host::Value> arguments;
    for (const Argument& argument : step.arguments) arguments.push_back(valueOf(argument));
    REALobjectStruct* receiver = host::takesReceiver(method) ? current_.get() : nullptr;
    host::Outcome outcome = host::call(method, receiver, std::move(arguments));
    if (outcome.exception) {
      throw Failure(method.declaration.name + ": " + outcome.exception->className + ": " +
                    outcome.exception->message);
    }
    report(method.declaration, outcome);
    if (method.declaration.result == host::Type::picture) become(method, outcome.result);
  }

  const host::PictureRef& current() const { return current_; }
  bool hasResult() const { return hasResult_; }

 private:
  host::Value valueOf(const Argument& argument) const {
    if (std::holds_alternative<CurrentPicture>(argument)) return current_;
    if (const auto* file = std::get_if<PictureFile>(&argument)) return loadPicture(file->path);
    return std::get<host::Value>(argument);
  }

  void become(const host::Method& method, const host::Value& result) {
    const auto* picture = std::get_if<host::PictureRef>(&result);
    if (!picture || !*picture) throw Failure(method.declaration.name + " answered nil");
    current_ = *picture;
    hasResult_ = true;
  }

  void report(const host::Declaration& declaration, const host::Outcome& outcome) const {
    const bool hasValue = declaration.result != host::Type::none && declaration.result != host::Type::picture;
    if (hasValue) print(declaration.name, outcome.result);
    for (size_t i = 0; i < declaration.parameters.size(); ++i) {
      if (declaration.parameters[i].byRef) print(declaration.parameters[i].name, outcome.arguments[i]);
    }
  }
  void print(const std::string& name, const host::Value& value) const {
    terminal::print(label_ + name + " = " + valueText(value));
  }

  host::PictureRef current_;
  std::string label_;
  bool hasResult_ = false;
};

// Methods without a picture result may have changed their picture in place.
void applyToOne(const std::string& input, const Chain& chain, const std::string& output,
                const ApplyOptions& options) {
  Walk walk(loadPicture(input), chain.inputs.size() > 1 ? input + ": " : "");
  const Image before = fromPicture(walk.current().get());
  for (const Step& step : chain.steps) walk.take(step);
  const Image after = fromPicture(walk.current().get());
  if (!walk.hasResult() && options.output.empty() && before == after) return;
  saveImage(after, output, options.quality);
  terminal::print("wrote " + output);
}

int apply(const Options& options, const ApplyOptions& own) {
  const Session session(options);
  const Chain chain = parseChain(own.words);
  std::string label;
  for (const Step& step : chain.steps) label += (label.empty() ? "" : "-") + step.method->declaration.name;
  const std::vector<std::string> outputs = planOutputs(chain.inputs, own.output, label);
  int status = kDone;
  terminal::Progress progress(chain.inputs.size());
  for (size_t i = 0; i < chain.inputs.size(); ++i) {
    try {
      applyToOne(chain.inputs[i], chain, outputs[i], own);
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

}  // namespace

void addApply(CLI::App& program, const Options& options, Run& run) {
  CLI::App* command = program.add_subcommand(
      "apply",
      "Run methods on pictures, one after another:\n"
      "  zvr apply INPUT... METHOD [ARGUMENT...] [+ METHOD [ARGUMENT...]]... [-o OUT]");
  const auto own = std::make_shared<ApplyOptions>();
  command->add_option("INPUT... METHOD [ARGUMENT]", own->words)->required()->option_text(" ");
  command->add_option(
      "-o,--output", own->output,
      "File, folder, or pattern with {name}, {ext} and {n}; without it NAME-METHOD.png beside "
      "the input");
  command->add_option("--quality", own->quality, "Quality of written JPEG files")
      ->check(CLI::Range(1, 100))
      ->capture_default_str();
  command->footer(
      "Inputs are PNG and JPEG files. The first word that names a registered method (in any case) ends "
      "them;\n"
      "a file of such a name is written ./NAME. Methods of Picture run on the current picture: the input, "
      "later\n"
      "what the step before answered. Picture arguments are @ (the current picture), a file name or nil.\n"
      "Arguments by reference take no word: they are printed after the call, as are results that are no\n"
      "picture. A picture that no step made or changed is not written unless -o is given. Options stand\n"
      "anywhere; words after -- are never options. JPEG has no transparency: it becomes white.\n"
      "\n"
      "Examples:\n"
      "  zvr apply photo.png InvertZVR -o out.png\n"
      "  zvr apply photo.png InvertZVR 20 20 100 80 -o out.jpg --quality 85\n"
      "  zvr apply photo.png ChangeContrastZVR 0.2 + ChangeSaturationZVR 60 -o out.png\n"
      "  zvr apply *.jpg TintPictureZVR @ '&c555555' '&c704214' -o 'toned/{name}.png'\n"
      "  zvr apply shot.png FindPictureZVR icon.png\n");
  command->callback([&run, &options, own] { run = [&options, own] { return apply(options, *own); }; });
}

}  // namespace zvr
