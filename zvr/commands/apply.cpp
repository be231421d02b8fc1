// zvr apply, and the short words for it: files through one step after another.

#include <CLI/CLI.hpp>

#include <algorithm>
#include <filesystem>

#include "zvr/commands/commands.h"
#include "zvr/files/files.h"
#include "zvr/files/sound.h"
#include "zvr/language/answers.h"
#include "zvr/language/outputs.h"
#include "zvr/language/walk.h"
#include "zvr/terminal/failures.h"
#include "zvr/terminal/terminal.h"

namespace zvr {
namespace {

using Words = std::vector<std::string>;

struct ApplyOptions {
  Words words, outs;
  std::string output;
  PictureOptions pictures;
  bool isQuiet = false, isJson = false;
};

// A chain with the files that it writes.
class Job {
 public:
  Job(const Chain& wanted, const ApplyOptions& options, bool isOfSounds)
      : chain(wanted), own(options), readsSound(isOfSounds) {
    OutputPlan plan(filesRead(chain), own.pictures);
    std::string label;
    for (const Step& step : chain.steps) label += (label.empty() ? "" : "-") + step.name;
    using Content = OutputPlan::Content;
    try {
      const Content content = chain.left == Kind::data ? Content::data : Content::picture;
      results_ = plan.add(content, chain.inputs, "-o", own.output, label);
    } catch (const UsageError&) {
      if (!own.output.empty() || chain.steps.back().makesCurrent()) throw;
      // A question writes nothing of its own accord, unless it turns out to change its picture.
      refusal_ = std::current_exception();
    }
    for (const BlockOutput& block : chain.blocks) {
      const std::string& name = chain.steps[block.step].declaration.parameters[block.parameter].name;
      blocks_.push_back(plan.add(Content::data, chain.inputs, "--out " + name, block.pattern, name));
    }
  }

  // Throws UsageError.
  const std::string& result(size_t input) const {
    if (refusal_) std::rethrow_exception(refusal_);
    return results_[input];
  }
  // Where a step's argument goes; empty: nowhere.
  std::string block(size_t step, size_t parameter, size_t input) const {
    for (size_t i = 0; i < blocks_.size(); ++i) {
      if (chain.blocks[i].step == step && chain.blocks[i].parameter == parameter) return blocks_[i][input];
    }
    return "";
  }

  const Chain& chain;
  const ApplyOptions& own;
  const bool readsSound;

 private:
  Words results_;
  std::exception_ptr refusal_;  // why there are no results
  std::vector<Words> blocks_;   // as Chain::blocks
};

// ---- One input ----

// With two samples to a column none is empty; an empty one would be drawn as a full bar.
void checkLength(const std::string& path, size_t samples, const Step& step) {
  for (size_t i = 0; i < step.arguments.size(); ++i) {
    if (step.declaration.parameters[i].name != "Width") continue;
    const auto columns = std::get<int64_t>(std::get<host::Value>(step.arguments[i]));
    const auto most = static_cast<int64_t>(std::max<size_t>(samples / 2, 1));
    if (columns <= most) return;
    throw Failure(path + ": too short: " + std::to_string(samples) + " samples for " +
                  std::to_string(columns) + " columns; Width=" + std::to_string(most) + " is the most");
  }
}

Bytes readInput(const std::string& path, const Job& job) {
  if (!job.readsSound) return readBytes(path);
  Bytes samples = loadSound(path);
  checkLength(path, samples.size() / 2, job.chain.steps[0]);
  return samples;
}

void addAnswers(const Job& job, size_t input, size_t index, const host::Outcome& outcome, Report& report) {
  const Step& step = job.chain.steps[index];
  const host::Declaration& declaration = step.declaration;
  if (declaration.result != host::Type::none && !step.makesCurrent() && !step.assigned)
    report.answers.push_back({step.name, declaration.name, outcome.result, ""});
  for (size_t i = 0; i < outcome.arguments.size(); ++i) {
    const host::Parameter& parameter = declaration.parameters[i];
    if (!parameter.byRef) continue;
    Answer answer{step.name, parameter.name, outcome.arguments[i], job.block(index, i, input)};
    if (!answer.output.empty() && bytesOf(answer.value).empty())
      throw Failure(declaration.name + " left no bytes in " + parameter.name);
    report.answers.push_back(std::move(answer));
  }
}

// Nothing is written before every step is done.
void applyToOne(const Job& job, size_t input, Report& report) {
  Walk walk(report.input, readInput(report.input, job), job.own.pictures, concernsTransparency(job.chain));
  for (size_t i = 0; i < job.chain.steps.size(); ++i)
    addAnswers(job, input, i, walk.take(job.chain.steps[i]), report);
  for (const Answer& answer : report.answers) {
    if (answer.output.empty()) continue;
    writeFile(answer.output, bytesOf(answer.value));
    terminal::printWritten(answer.output);
  }
  // A chain that ends in a question leaves no picture of its own accord.
  if (job.own.output.empty() && !walk.hasResult()) return;
  const std::string& output = job.result(input);
  if (job.chain.left == Kind::picture) {
    saveImage(walk.picture(), output, job.own.pictures.writing);
  } else {
    writeFile(output, walk.data());
  }
  report.output = output;
  terminal::printWritten(output);
}

// To standard output, where no result goes there.
void print(const Report& report, bool isJson, bool isBatch) {
  bool isTaken = report.output == kStandardStream;
  for (const Answer& answer : report.answers) isTaken = isTaken || answer.output == kStandardStream;
  const auto say = isTaken ? terminal::printAside : terminal::print;
  if (isJson) return say(jsonLine(report));
  const std::string label = isBatch ? report.input + ": " : "";
  for (const std::string& line : answerLines(report)) say(terminal::escaped(label + line));
}

bool runOne(const Job& job, size_t input) {
  Report report;
  report.input = job.chain.inputs[input];
  try {
    applyToOne(job, input, report);
  } catch (const Failure& failure) {
    report.problem = failure.what();
  } catch (const std::bad_alloc&) {
    report.problem = report.input + ": not enough memory";
  }
  print(report, job.own.isJson, job.chain.inputs.size() > 1);
  if (!report.problem.empty()) terminal::complain(report.problem);
  return report.problem.empty();
}

// ---- The commands ----

// A subcommand: apply, or a short word for it whose first step is known.
struct Command {
  const char *name, *purpose, *words;
  const char* expects;  // null: any step
  bool (*isExpected)(const Step& first);
};

const Command kCommands[] = {
    {"apply", "Run methods, filter classes and film looks on pictures and other files, one after another",
     "INPUT... STEP [+ STEP]...", nullptr, nullptr},
    {"run", "Run a filter class on pictures", "INPUT... CLASS [PROPERTY=VALUE]... [+ STEP]...", "a class",
     [](const Step& first) { return first.type && first.look.empty(); }},
    {"lut", "Apply a film look to pictures", "INPUT... FILE.cube [+ STEP]...", "a FILE.cube",
     [](const Step& first) { return !first.look.empty(); }},
    {"wave", "Draw sound files as waveforms", "INPUT... [NAME=VALUE]... [+ STEP]...", nullptr, nullptr},
};

// The words of `zvr wave` with the step that they leave out: the samples are all of the input's, the rest is
// as it is asked for, or as it looks well.
Words waveWords(const Words& words) {
  const auto endsInputs = [](const std::string& word) {
    std::error_code error;
    return word == "+" || beginsStep(word) ||
           (word.find('=') != std::string::npos && !std::filesystem::exists(word, error));
  };
  const auto given = std::find_if(words.begin(), words.end(), endsInputs);
  const auto end = std::find(given, words.end(), "+");
  Words all(words.begin(), given);
  all.insert(all.end(), {"RenderSamplesZVR", "Samples=@", "SampleCount=0", "Bits=15"});
  for (const std::string standard : {"Smooth=1", "Width=1200", "Height=300", "outlinewidth=0"}) {
    const auto isSame = [&](const std::string& word) {
      return host::equalNames(word.substr(0, word.find('=') + 1), standard.substr(0, standard.find('=') + 1));
    };
    if (std::none_of(given, end, isSame)) all.push_back(standard);
  }
  all.insert(all.end(), given, words.end());
  return all;
}

void noteDesktopOnly(const Chain& chain) {
  if (host::settings().road != host::Road::console) return;
  for (const Step& step : chain.steps) {
    if (!step.isConsoleSafe())
      terminal::note(step.declaration.name + " isn't console-safe: programs for the console don't have it");
  }
}

int apply(const Command& command, const Options& options, const ApplyOptions& own) {
  const Session session(options);
  if (own.isQuiet) terminal::setQuiet();
  const bool readsSound = command.name == std::string("wave");
  const Chain chain = parseChain(readsSound ? waveWords(own.words) : own.words, own.outs);
  if (command.expects && !command.isExpected(chain.steps[0]))
    throw UsageError(std::string("expected ") + command.expects + " after the inputs, not " +
                     chain.steps[0].name + "; `zvr apply` takes any step");
  noteDesktopOnly(chain);
  const Job job(chain, own, readsSound);
  int status = kDone;
  terminal::Progress progress(chain.inputs.size());
  for (size_t i = 0; i < chain.inputs.size(); ++i) {
    if (!runOne(job, i)) status = kFailed;
    progress.advance();
  }
  return status;
}

void addCommand(CLI::App& program, const Command& command, const Options& options, Run& run) {
  const std::string name = command.name;
  CLI::App* added = program.add_subcommand(
      name, std::string(command.purpose) + ":\n  zvr " + name + " " + command.words + " [-o OUT]");
  const auto own = std::make_shared<ApplyOptions>();
  added->add_option("INPUT", own->words)->required()->option_text(" ");
  added->add_option("-o,--output", own->output,
                    "File, folder, pattern with {name}, {ext} and {n}, or - for standard output;\n"
                    "without it NAME-STEP.png beside the input (.bin for a String)");
  added->add_option("--out", own->outs, "Where a MemoryBlock by reference goes; PATH as for -o")
      ->allow_extra_args(false)
      ->type_name("NAME=PATH");
  addPictureOptions(*added, own->pictures);
  added->add_flag("--json", own->isJson, "Answers as a JSON object for each input, in a line of its own");
  added->add_flag("-q,--quiet", own->isQuiet, "Say nothing of what is written, noted or under way");
  added->callback([&, own] { run = [&command, &options, own] { return apply(command, options, *own); }; });
}

}  // namespace

void addApply(CLI::App& program, const Options& options, Run& run) {
  for (const Command& command : kCommands) addCommand(program, command, options, run);
}

}  // namespace zvr
