#include "zvr/gallery/calls.h"

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <set>

#include "zvr/files/host_pictures.h"
#include "zvr/gallery/examples.h"
#include "zvr/gallery/scaling.h"
#include "zvr/gallery/words.h"
#include "zvr/language/signatures.h"
#include "zvr/language/walk.h"
#include "zvr/terminal/failures.h"
#include "zvr/terminal/terminal.h"

namespace zvr::gallery {
namespace {

using host::Value;

// ---- Histograms ----

// Three blocks by reference are histograms in the order red, green, blue. The second is called blue and the
// third green on purpose.
Histogram histogramIn(const std::vector<Value>& arguments) {
  Histogram histogram;
  size_t channel = 0;
  for (const Value& argument : arguments) {
    const Bytes bytes = bytesOf(argument);
    if (bytes.empty() || channel == histogram.size()) continue;
    auto& counts = histogram[channel++];
    counts.resize(bytes.size() / sizeof(uint32_t));
    std::memcpy(counts.data(), bytes.data(), counts.size() * sizeof(uint32_t));
  }
  return histogram;
}

// By the plug-in's CountColorsZVR; empty when it has none.
Histogram histogramOf(const Image& image) {
  const auto methods = host::findMethods("CountColorsZVR");
  if (methods.empty()) return {};
  std::vector<Value> arguments(methods[0]->declaration.parameters.size());
  return histogramIn(host::call(*methods[0], toPicture(image).get(), std::move(arguments)).arguments);
}

// ---- A call and its results, by the names of its parameters ----

class Call {
 public:
  Call(const host::Declaration& declaration, const host::Outcome& outcome)
      : declaration_(declaration), outcome_(outcome) {}

  void describe(Form& form) const {
    const bool isAnswer =
        declaration_.result != host::Type::none && declaration_.result != host::Type::picture;
    if (isAnswer) form.answers.emplace_back(declaration_.name, valueText(outcome_.result));
    for (size_t i = 0; i < outcome_.arguments.size(); ++i)
      describe(declaration_.parameters[i], outcome_.arguments[i], form);
  }

  // The place where a picture was found, or the rectangle of the call.
  std::optional<Place> place() const {
    const auto *left = get<int64_t>("left"), *top = get<int64_t>("top"), *width = get<int64_t>("width"),
               *height = get<int64_t>("height"), *x = get<int64_t>("x"), *y = get<int64_t>("y");
    if (left && top && width && height) return Place{*left, *top, *width, *height};
    const auto* sought = get<host::PictureRef>("pic");
    const auto* isFound = std::get_if<bool>(&outcome_.result);
    if (!x || !y || !sought || !*sought || !isFound || !*isFound) return std::nullopt;
    return Place{*x, *y, host::pictureWidth(sought->get()), host::pictureHeight(sought->get())};
  }

 private:
  template <typename T>
  const T* get(const char* name) const {
    for (size_t i = 0; i < outcome_.arguments.size(); ++i) {
      if (host::equalNames(declaration_.parameters[i].name, name))
        return std::get_if<T>(&outcome_.arguments[i]);
    }
    return nullptr;
  }

  static void describe(const host::Parameter& parameter, const Value& value, Form& form) {
    if (const auto* color = std::get_if<host::Color>(&value))
      form.swatches.push_back({parameter.name, color->rgb});
    const bool isBlock = parameter.type == host::Type::memoryBlock;
    if (parameter.byRef && !isBlock) form.answers.emplace_back(parameter.name, valueText(value));
    if (parameter.byRef || !isBlock) return;
    Bytes bytes = bytesOf(value);
    if (bytes.size() == 256 && std::count(form.curves.begin(), form.curves.end(), bytes) == 0)
      form.curves.push_back(std::move(bytes));
  }

  const host::Declaration& declaration_;
  const host::Outcome& outcome_;
};

// ---- Cards ----

Form formOf(const Step& step) {
  Form form;
  form.name = step.declaration.name;
  form.signature = step.method ? step.method->text : "Class " + form.name;
  form.isConsoleSafe = step.isConsoleSafe();
  return form;
}

// Pictures from files that the call took.
void addPictures(const Step& step, Form& form) {
  const auto add = [&](const Argument& argument, host::Type type) {
    const auto* file = std::get_if<ArgumentFile>(&argument);
    if (file && type == host::Type::picture)
      form.pictures.emplace_back(std::filesystem::path(file->path).stem(),
                                 scaledDown(loadImage(file->path), kThumbSide));
  };
  for (size_t i = 0; i < step.arguments.size(); ++i)
    add(step.arguments[i], step.declaration.parameters[i].type);
  if (step.assigned) add(*step.assigned, step.declaration.result);
}

void addPicture(const Image& after, const Material& material, Form& form) {
  form.isComparable = form.before && after.width == material.width && after.height == material.height;
  form.histogram = histogramOf(after);
  form.after = scaledDown(after, kShownSide);
}

void run(const Chain& chain, const Material& material, Form& form) {
  const bool asOnHost = concernsTransparency(chain);
  PictureOptions options;
  if (asOnHost) options.alpha = Alpha::premultiplied;
  Walk walk(chain.inputs[0], readBytes(chain.inputs[0]), options, asOnHost);
  for (size_t i = 0; i + 1 < chain.steps.size(); ++i) walk.take(chain.steps[i]);
  const Step& step = chain.steps.back();
  const host::Outcome outcome = walk.take(step);
  const Call call(step.declaration, outcome);
  call.describe(form);
  addPictures(step, form);
  if (walk.hasResult() && step.declaration.result != host::Type::string)
    return addPicture(walk.picture(), material, form);
  form.place = call.place();
  form.histogram = histogramIn(outcome.arguments);
}

// Nothing when a member of the example is not registered.
std::optional<Form> formOf(const Example& example, const Material& material,
                           const std::vector<Before>& befores) {
  const std::vector<std::string> words =
      filledWords(example.words, material.fields, material.width, material.height);
  if (std::none_of(words.begin() + 1, words.end(), beginsStep)) return std::nullopt;
  const Chain chain = parseChain(words, {});
  const Step& step = chain.steps.back();
  Form form = formOf(step);
  form.label = example.label;
  form.says = example.says;
  form.basicLines = basicLines(chain);
  const auto before = std::find_if(befores.begin(), befores.end(), [&](const Before& candidate) {
    return material.fields.at(candidate.name) == words[0];
  });
  if (before != befores.end()) form.before = &*before;
  try {
    run(chain, material, form);
  } catch (const Failure& failure) {
    form.problem = failure.what();
  }
  const bool isString = step.declaration.result == host::Type::string;
  const bool isPicture = form.after || step.declaration.result == host::Type::picture;
  form.zvrLine = shellLine(words, isString ? "out.bin" : isPicture ? "out.png" : "");
  return form;
}

// Members that no example shows.
std::vector<Card> othersThan(std::set<std::string> shown) {
  std::vector<Card> others;
  const auto add = [&](const std::string& name) {
    for (const Step& step : stepsNamed(name)) {
      Form form = formOf(step);
      if (!shown.insert(form.signature).second) continue;
      form.problem = "No example yet: its section in docs/manual has no <!-- gallery … --> line.";
      others.emplace_back().forms.push_back(std::move(form));
    }
  };
  const host::Members& members = host::members();
  for (const auto* methods : {&members.pictureMethods, &members.globals})
    for (const host::Method& method : *methods) add(method.declaration.name);
  for (const host::Class& type : members.classes) add(type.name);
  return others;
}

}  // namespace

Exhibition exhibitionOf(const Material& material) {
  Exhibition exhibition;
  exhibition.notes = material.notes;
  exhibition.width = material.width;
  exhibition.height = material.height;
  for (const std::string& name : material.pictures) {
    const Image image = loadImage(material.fields.at(name));
    exhibition.befores.push_back({name, scaledDown(image, kShownSide), histogramOf(image)});
  }
  auto& groups = exhibition.groups;
  std::set<std::string> shown;
  const std::vector<Example> all = examples();
  terminal::Progress progress(all.size());
  for (const Example& example : all) {
    if (auto form = formOf(example, material, exhibition.befores)) {
      shown.insert(form->signature);
      const int place = example.place / 10;
      if (groups.empty() || groups.back().title != example.family)
        groups.emplace_back().title = example.family;
      auto& cards = groups.back().cards;
      if (cards.empty() || cards.back().place != place) cards.emplace_back().place = place;
      cards.back().forms.push_back(std::move(*form));
    }
    progress.advance();
  }
  if (auto others = othersThan(shown); !others.empty()) {
    groups.emplace_back().title = "Others";
    groups.back().cards = std::move(others);
  }
  return exhibition;
}

}  // namespace zvr::gallery
