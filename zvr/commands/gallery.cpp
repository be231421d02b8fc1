// zvr gallery: a page that shows what every method does to a photograph.

#include <CLI/CLI.hpp>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <set>

#include "zvr/commands/commands.h"
#include "zvr/files/files.h"
#include "zvr/files/sound.h"
#include "zvr/gallery/calls.h"
#include "zvr/gallery/scaling.h"
#include "zvr/language/outputs.h"
#include "zvr/language/signatures.h"
#include "zvr/terminal/failures.h"
#include "zvr/terminal/terminal.h"

namespace zvr {
namespace {

namespace fs = std::filesystem;
using gallery::Card;
using gallery::Group;
using gallery::Material;
using gallery::Stage;

// Larger photographs are scaled down before the calls run on them.
constexpr int64_t kMostPixels = 12'000'000;

struct GalleryOptions {
  std::string input, output, sound;
};

// ---- Files that the calls are given ----

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

Image turned(const Image& image) {
  Image result = scaledDown(image, static_cast<int>(kLongestSide));
  for (int y = 0; y < result.height; ++y) {
    for (int x = 0; x < result.width; ++x) {
      const uint8_t* source = image.row(image.height - 1 - y) + static_cast<size_t>(image.width - 1 - x) * 4;
      std::copy_n(source, 4, result.row(y) + static_cast<size_t>(x) * 4);
    }
  }
  return result;
}

// A part from near the middle.
Image partOf(const Image& image) {
  Image part;
  part.allocate(static_cast<unsigned>(std::max(1, image.width / 6)),
                static_cast<unsigned>(std::max(1, image.height / 5)));
  part.hasAlpha = image.hasAlpha;
  const int left = image.width * 2 / 5, top = image.height * 3 / 10;
  for (int y = 0; y < part.height; ++y) {
    std::copy_n(image.row(top + y) + static_cast<size_t>(left) * 4, part.rowBytes(), part.row(y));
  }
  return part;
}

// The colour that occurs most often among up to about 260,000 pixels, evenly spread.
std::string commonColor(const Image& image) {
  const size_t count = image.byteCount() / 4, step = count / (size_t{1} << 18) + 1;
  std::vector<uint32_t> colors;
  for (size_t i = 0; i < count; i += step) {
    const uint8_t* pixel = image.pixels.get() + i * 4;
    colors.push_back(static_cast<uint32_t>(pixel[0] << 16 | pixel[1] << 8 | pixel[2]));
  }
  std::sort(colors.begin(), colors.end());
  size_t most = 0;
  uint32_t common = 0;
  for (auto begin = colors.begin(); begin != colors.end();) {
    const auto end = std::upper_bound(begin, colors.end(), *begin);
    if (static_cast<size_t>(end - begin) > most) {
      most = static_cast<size_t>(end - begin);
      common = *begin;
    }
    begin = end;
  }
  return valueText(host::Color{common});
}

// Four levels.
Bytes posterTable() {
  Bytes table;
  for (int value = 0; value < 256; ++value) table.push_back(static_cast<uint8_t>(value / 64 * 85));
  return table;
}

constexpr const char* kLook =
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

// Every column has two samples of its own.
int columnsFor(const Bytes& samples) {
  return static_cast<int>(std::clamp<size_t>(samples.size() / 4, 1, gallery::kShownSide));
}

// The files of a gallery. None is one that it is made from.
struct Files {
  std::string page, photo, other, part, table, samples, look;

  Files(const GalleryOptions& own, const fs::path& folder) {
    OutputPlan plan({own.input, own.sound}, {});
    const auto in = [&](const char* name) {
      const std::string path = folder / name;
      plan.claim(path, name, own.input);
      return path;
    };
    page = in("index.html");
    photo = in("files/photo.png");
    other = in("files/other.jpg");
    part = in("files/part.png");
    table = in("files/table.bin");
    samples = in("files/samples.raw");
    look = in("files/look.cube");
  }
};

// Scales the photograph down when it is too large, and writes the files that the calls take.
Material prepare(const GalleryOptions& own, const Files& files, std::string& notes) {
  const Bytes sound = own.sound.empty() ? tone() : loadSound(own.sound);
  Material material;
  material.photo = loadImage(own.input);
  material.photoPath = inputWord(own.input);
  const int64_t pixels = int64_t{material.photo.width} * material.photo.height;
  notes = "Every call ran on the whole photograph.";
  if (pixels > kMostPixels) {
    const double share = std::sqrt(static_cast<double>(kMostPixels) / static_cast<double>(pixels));
    const int side = std::max(material.photo.width, material.photo.height);
    notes = "The photograph of " + std::to_string(material.photo.width) + " × " +
            std::to_string(material.photo.height) + " pixels was scaled down to " + files.photo +
            ", on which every call ran.";
    material.photo = scaledDown(material.photo, static_cast<int>(side * share));
    material.photoPath = files.photo;
    Writing png;
    png.format = "png";
    writeFile(material.photoPath, encodeImage(material.photo, png));
  }
  notes += own.sound.empty() ? " The waveform is of a made-up tone; --sound FILE draws a sound of yours."
                             : " The waveform is of " + fs::path(own.sound).filename().string() + ".";
  const std::string look = kLook;
  material.lookPath = files.look;
  saveImage(turned(material.photo), files.other, {});
  saveImage(partOf(material.photo), files.part, {});
  writeFile(files.table, posterTable());
  writeFile(files.samples, sound);
  writeFile(material.lookPath, Bytes(look.begin(), look.end()));
  material.fields = {{"photo", material.photoPath},
                     {"other", files.other},
                     {"part", files.part},
                     {"table", files.table},
                     {"samples", files.samples},
                     {"look", files.look},
                     {"common", commonColor(material.photo)},
                     {"columns", std::to_string(columnsFor(sound))},
                     {"bits", "15"}};
  return material;
}

// ---- Cards ----

Card cardWithoutCall(const host::Method& method) {
  Card card;
  card.name = card.call = method.declaration.name;
  card.signature = method.text;
  card.isConsoleSafe = method.consoleSafe();
  card.problem = "No example yet: its section in docs/manual has no <!-- gallery … --> line.";
  return card;
}

// The calls of the families; methods without one come last.
std::vector<Group> methodGroups(Stage& stage, terminal::Progress& progress) {
  std::vector<Group> groups;
  std::set<const host::Method*> shown;
  for (const gallery::Example& example : gallery::examples()) {
    const std::optional<Chain> chain = stage.parse(example);
    if (!chain) continue;
    if (groups.empty() || groups.back().title != example.family) groups.push_back({example.family, {}});
    groups.back().cards.push_back(stage.show(*chain, example));
    if (shown.insert(chain->steps.back().method).second) progress.advance();
  }
  Group others{"Others", {}};
  for (const auto* methods : {&host::members().pictureMethods, &host::members().globals}) {
    for (const host::Method& method : *methods) {
      if (shown.count(&method)) continue;
      others.cards.push_back(cardWithoutCall(method));
      progress.advance();
    }
  }
  if (!others.cards.empty()) groups.push_back(std::move(others));
  return groups;
}

Group classGroup(Stage& stage, terminal::Progress& progress) {
  Group group{"Filter classes", {}};
  const std::vector<gallery::Example> examples = gallery::examples();
  for (const host::Class& type : host::members().classes) {
    const auto example =
        std::find_if(examples.begin(), examples.end(), [&](const gallery::Example& candidate) {
          return host::equalNames(candidate.words.substr(0, candidate.words.find(' ')), type.name);
        });
    group.cards.push_back(stage.show(type, example == examples.end() ? nullptr : &*example));
    progress.advance();
  }
  return group;
}

int show(const Options& options, const GalleryOptions& own) {
  const Files files(own, folderOf(own));
  const Session session(options);
  gallery::Exhibition exhibition;
  const Material material = prepare(own, files, exhibition.notes);
  Stage stage(material);
  const host::Members& members = host::members();
  terminal::Progress progress(members.pictureMethods.size() + members.globals.size() +
                              members.classes.size());
  exhibition.input = fs::path(own.input).filename();
  exhibition.photo = scaledDown(material.photo, gallery::kShownSide);
  exhibition.width = material.photo.width;
  exhibition.height = material.photo.height;
  exhibition.host = std::string(session.host()) + ", version " + options.hostVersion;
  exhibition.histogram = gallery::histogramOf(toPicture(material.photo));
  exhibition.groups = methodGroups(stage, progress);
  exhibition.groups.push_back(classGroup(stage, progress));
  const std::string html = gallery::page(exhibition);
  writeFile(files.page, Bytes(html.begin(), html.end()));
  terminal::printWritten(files.page);
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
