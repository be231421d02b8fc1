// zvr run: a picture through a filter class.

#include <CLI/CLI.hpp>

#include "zvr/commands/commands.h"
#include "zvr/language/filters.h"
#include "zvr/language/outputs.h"
#include "zvr/terminal/failures.h"
#include "zvr/terminal/terminal.h"

namespace zvr {
namespace {

struct RunOptions {
  std::string type, input, output;
  std::vector<std::string> settings;
  PictureOptions pictures;
};

void apply(Filter& filter, const std::string& setting) {
  const size_t sign = setting.find('=');
  if (sign == std::string::npos || sign == 0) {
    throw UsageError("'" + setting + "' is not of the form PROPERTY=VALUE");
  }
  filter.set(setting.substr(0, sign), setting.substr(sign + 1));
}

int runFilter(const Options& options, const RunOptions& own) {
  const Session session(options);
  Filter filter(own.type);
  for (const std::string& setting : own.settings) apply(filter, setting);
  const std::string output = planOutput(own.input, own.output, filter.name(), own.pictures, filter.files());
  runOnFile(filter, own.input, output, own.pictures);
  terminal::printWritten(output);
  return kDone;
}

}  // namespace

void addRun(CLI::App& program, const Options& options, Run& run) {
  CLI::App* command = program.add_subcommand("run", "Run a filter class on a picture");
  const auto own = std::make_shared<RunOptions>();
  command->add_option("CLASS", own->type, "Name of a class, in any case")->required();
  command->add_option("INPUT", own->input, "Picture file")->required();
  command->add_option("PROPERTY=VALUE", own->settings, "Properties to set before it runs, in any case")
      ->option_text(" ...");
  command->add_option("-o,--output", own->output,
                      "File, folder, or pattern with {name}; without it NAME-CLASS.png beside the input");
  addPictureOptions(*command, own->pictures);
  command->footer(
      "The input becomes the SourcePicture of a new instance; after Run its DestinationPicture is written.\n"
      "`zvr show CLASS` lists the properties.\n"
      "\n"
      "Examples:\n"
      "  zvr run PictureSepiaZVR photo.png SepiaRed=40 SepiaGreen=20 -o out.png\n"
      "  zvr run picturesepiazvr photo.png FactorRed=0.6 FactorBlue=0.2 MaxX=200 -o out.png\n");
  command->callback([&run, &options, own] { run = [&options, own] { return runFilter(options, *own); }; });
}

}  // namespace zvr
