// zvr gallery: a page that shows what every method does to a photograph.

#include <CLI/CLI.hpp>

#include <filesystem>

#include "zvr/commands/commands.h"
#include "zvr/files/files.h"
#include "zvr/gallery/page.h"
#include "zvr/terminal/failures.h"
#include "zvr/terminal/terminal.h"

namespace zvr {
namespace {

namespace fs = std::filesystem;

struct GalleryOptions {
  std::string input, output, sound;
};

std::string folderOf(const GalleryOptions& own) {
  const fs::path input(own.input);
  const std::string folder =
      own.output.empty() ? (input.parent_path() / (input.stem().string() + "-gallery")).string() : own.output;
  std::error_code error;
  if (fs::exists(folder, error) && !fs::is_directory(folder, error)) {
    throw Failure(folder + ": exists and is not a folder");
  }
  return folder;
}

int show(const Options& options, const GalleryOptions& own) {
  const std::string folder = folderOf(own);
  const Session session(options);
  const gallery::Material material = gallery::prepare(own.input, own.sound, folder);
  const std::string host = std::string(session.host()) + ", version " + options.hostVersion;
  const std::string html = gallery::page(material, fs::path(own.input).filename(), host);
  writeFile(material.page, {html.begin(), html.end()});
  terminal::printWritten(material.page);
  return kDone;
}

}  // namespace

void addGallery(CLI::App& program, const Options& options, Run& run) {
  CLI::App* command = program.add_subcommand(
      "gallery",
      "Make one HTML page that shows every method on a photograph:\n  zvr gallery INPUT [-o FOLDER]");
  const auto own = std::make_shared<GalleryOptions>();
  command->add_option("INPUT", own->input, "Picture file")->required();
  command->add_option("-o,--output", own->output, "Folder; without it NAME-gallery beside the input");
  command->add_option("--sound", own->sound, "A sound file to draw; without it a made-up tone");
  command->callback([&run, &options, own] { run = [&options, own] { return show(options, *own); }; });
}

}  // namespace zvr
