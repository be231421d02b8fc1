#include "zvr/gallery/calls.h"

#include <algorithm>
#include <cstring>

#include "zvr/files/host_pictures.h"
#include "zvr/gallery/scaling.h"
#include "zvr/gallery/words.h"
#include "zvr/language/signatures.h"
#include "zvr/terminal/failures.h"

namespace zvr::gallery {
namespace {

// ---- Calls ----

struct Call {
  const Step& step;
  host::PictureRef receiver;
  std::vector<host::Value> arguments;
  host::Value assigned;

  host::Outcome run() const { return callStep(step, receiver, arguments, assigned); }
};

// The current @: a picture or bytes.
struct Now {
  host::PictureRef picture;
  Bytes data;

  host::Value valueOf(const Argument& argument, host::Type type) const {
    if (const auto* file = std::get_if<ArgumentFile>(&argument)) return valueOfFile(file->path, type);
    if (!std::holds_alternative<Current>(argument)) return std::get<host::Value>(argument);
    if (type == host::Type::picture) return picture;
    return valueOfBytes(data, type);
  }

  Call prepare(const Step& step) const {
    const host::Declaration& declaration = step.declaration;
    Call call{step, step.takesReceiver() ? picture : host::PictureRef(), {}, {}};
    for (size_t i = 0; i < step.arguments.size(); ++i) {
      call.arguments.push_back(valueOf(step.arguments[i], declaration.parameters[i].type));
    }
    if (step.assigned) call.assigned = valueOf(*step.assigned, declaration.result);
    return call;
  }

  void become(const host::Value& result) {
    if (const auto* answered = std::get_if<host::PictureRef>(&result)) picture = *answered;
    if (const auto* string = std::get_if<host::StringRef>(&result); string && *string) {
      const std::string bytes = host::stringBytes(string->get());
      data.assign(bytes.begin(), bytes.end());
    }
  }
};

const host::Value* valueNamed(const char* name, const host::Declaration& declaration,
                              const std::vector<host::Value>& values) {
  for (size_t i = 0; i < values.size(); ++i) {
    if (host::equalNames(declaration.parameters[i].name, name)) return &values[i];
  }
  return nullptr;
}

std::optional<int64_t> numberNamed(const char* name, const host::Declaration& declaration,
                                   const std::vector<host::Value>& values) {
  const host::Value* value = valueNamed(name, declaration, values);
  const auto* number = value ? std::get_if<int64_t>(value) : nullptr;
  return number ? std::optional(*number) : std::nullopt;
}

// ---- Results of a call ----

// Three blocks by reference are histograms in the order red, green, blue. The second is called blue and the
// third green on purpose.
Histogram histogramIn(const std::vector<host::Value>& arguments) {
  Histogram histogram;
  size_t channel = 0;
  for (const host::Value& argument : arguments) {
    const Bytes bytes = bytesOf(argument);
    if (bytes.empty() || channel == histogram.size()) continue;
    histogram[channel].resize(bytes.size() / sizeof(uint32_t));
    std::memcpy(histogram[channel++].data(), bytes.data(),
                bytes.size() / sizeof(uint32_t) * sizeof(uint32_t));
  }
  return histogram;
}

void addAnswers(const host::Declaration& declaration, const host::Outcome& outcome, Card& card) {
  const bool isAnswer = declaration.result != host::Type::none && declaration.result != host::Type::picture;
  if (isAnswer) card.answers.push_back(declaration.name + " = " + valueText(outcome.result));
  for (size_t i = 0; i < outcome.arguments.size(); ++i) {
    const host::Parameter& parameter = declaration.parameters[i];
    // Blocks are shown as histograms.
    if (parameter.byRef && parameter.type != host::Type::memoryBlock)
      card.answers.push_back(parameter.name + " = " + valueText(outcome.arguments[i]));
  }
}

void addArguments(const host::Declaration& declaration, const std::vector<host::Value>& arguments,
                  Card& card) {
  for (size_t i = 0; i < arguments.size(); ++i) {
    const host::Parameter& parameter = declaration.parameters[i];
    if (const auto* color = std::get_if<host::Color>(&arguments[i])) {
      card.swatches.push_back({parameter.name, color->rgb});
    }
    if (parameter.byRef || parameter.type != host::Type::memoryBlock) continue;
    Bytes bytes = bytesOf(arguments[i]);
    if (bytes.size() == 256 && std::count(card.curves.begin(), card.curves.end(), bytes) == 0) {
      card.curves.push_back(std::move(bytes));
    }
  }
}

// The place where a picture was found, or the rectangle of the call.
std::optional<Place> placeOf(const host::Declaration& declaration, const host::Outcome& outcome) {
  const auto& values = outcome.arguments;
  const auto left = numberNamed("left", declaration, values), top = numberNamed("top", declaration, values),
             width = numberNamed("width", declaration, values),
             height = numberNamed("height", declaration, values);
  if (left && top && width && height) return Place{*left, *top, *width, *height};
  const auto x = numberNamed("x", declaration, values), y = numberNamed("y", declaration, values);
  const host::Value* sought = valueNamed("pic", declaration, values);
  const auto* picture = sought ? std::get_if<host::PictureRef>(sought) : nullptr;
  const auto* found = std::get_if<bool>(&outcome.result);
  if (!x || !y || !picture || !*picture || !found || !*found) return std::nullopt;
  return Place{*x, *y, host::pictureWidth(picture->get()), host::pictureHeight(picture->get())};
}

void addPicture(const host::PictureRef& picture, const Image& before, Card& card) {
  const Image after = fromPicture(picture.get());
  card.isComparable = after.width == before.width && after.height == before.height;
  card.after = scaledDown(after, kShownSide);
  card.histogram = histogramOf(picture);
}

std::string propertyLine(const std::string& setting) {
  const size_t sign = setting.find('=');
  return "filter." + setting.substr(0, sign) + " = " + setting.substr(sign + 1);
}

}  // namespace

Histogram histogramOf(const host::PictureRef& picture) {
  const std::vector<const host::Method*> methods = host::findMethods("CountColorsZVR");
  if (methods.empty()) return {};
  std::vector<host::Value> arguments(methods[0]->declaration.parameters.size());
  return histogramIn(host::call(*methods[0], picture.get(), std::move(arguments)).arguments);
}

Stage::Stage(const Material& material)
    : material_(material), before_(fromPicture(toPicture(material.photo).get())) {}

std::vector<std::string> Stage::wordsOf(const std::string& words) const {
  return filledWords(words, material_.fields, material_.photo.width, material_.photo.height);
}

std::optional<Chain> Stage::parse(const Example& example) const {
  const std::vector<std::string> words = wordsOf(example.words);
  const auto isStep = [](const std::string& word) { return !host::findMethods(word).empty(); };
  if (std::none_of(words.begin() + 1, words.end(), isStep)) return std::nullopt;
  return parseChain(words, {});
}

void Stage::run(const Chain& chain, Card& card) {
  Now now;
  const bool isPhoto = chain.inputs[0] == material_.photoPath;
  if (isPhoto) {
    now.picture = toPicture(material_.photo);
  } else {
    now.data = readBytes(chain.inputs[0]);
  }
  for (size_t i = 0; i + 1 < chain.steps.size(); ++i) now.become(now.prepare(chain.steps[i]).run().result);
  const host::Declaration& declaration = chain.steps.back().method->declaration;
  const Call call = now.prepare(chain.steps.back());
  addArguments(declaration, call.arguments, card);
  const host::Outcome outcome = call.run();
  addAnswers(declaration, outcome, card);
  if (const auto* picture = std::get_if<host::PictureRef>(&outcome.result); picture && !call.step.assigned) {
    addPicture(*picture, before_, card);
    card.isComparable = card.isComparable && isPhoto;
  } else if (call.receiver && !(fromPicture(call.receiver.get()) == before_)) {
    addPicture(call.receiver, before_, card);
  } else {
    card.place = placeOf(declaration, outcome);
    card.histogram = histogramIn(outcome.arguments);
  }
}

Card Stage::show(const Chain& chain, const Example& example) {
  const Step& step = chain.steps.back();
  const host::Declaration& declaration = step.method->declaration;
  Card card;
  card.name = declaration.name;
  card.call = shortCall(declaration) + (step.assigned ? " = …" : "");
  card.signature = step.method->text;
  card.says = example.says;
  card.isConsoleSafe = step.method->consoleSafe();
  card.basicLines = basicLines(chain);
  try {
    run(chain, card);
  } catch (const Failure& failure) {
    card.problem = failure.what();
  }
  std::string output;
  if (card.after || declaration.result == host::Type::picture) output = "out.png";
  if (declaration.result == host::Type::string) output = "out.bin";
  card.zvrLine = shellLine("apply", wordsOf(example.words), output);
  return card;
}

Card Stage::show(const host::Class& type, const Example* example) {
  Card card;
  card.name = card.call = type.name;
  card.signature = "Class " + type.name;
  card.says = example ? example->says : "";
  card.isConsoleSafe = (type.flags & kFlagConsoleSafe) != 0;
  std::vector<std::string> settings = wordsOf(example ? example->words : type.name);
  settings.erase(settings.begin());
  const bool isLook = settings == std::vector<std::string>{material_.lookPath};
  if (isLook) settings.clear();
  std::vector<std::string> words = {material_.photoPath, isLook ? material_.lookPath : type.name};
  words.insert(words.end(), settings.begin(), settings.end());
  card.zvrLine = shellLine("apply", words, "out.png");
  card.basicLines = {"Dim filter As New " + type.name, "filter.SourcePicture = photo"};
  for (const std::string& setting : settings) card.basicLines.push_back(propertyLine(setting));
  if (isLook)
    card.basicLines.emplace_back("// filter.Table(r, g, b, channel) = …, for r, g and b from 0 to 15");
  card.basicLines.emplace_back("If filter.Run Then photo = filter.DestinationPicture");
  try {
    Now now;
    now.picture = toPicture(material_.photo);
    now.become(now.prepare(parseChain(words, {}).steps[0]).run().result);
    addPicture(now.picture, before_, card);
  } catch (const Failure& failure) {
    card.problem = failure.what();
  }
  return card;
}

}  // namespace zvr::gallery
