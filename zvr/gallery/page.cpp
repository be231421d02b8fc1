#include "zvr/gallery/page.h"

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <kainjow/mustache.hpp>
#include <map>
#include <stdexcept>

#include "zvr/gallery/examples.h"
#include "zvr/gallery/pictures.h"
#include "zvr/gallery/words.h"
#include "zvr/language/signatures.h"
#include "zvr/language/walk.h"
#include "zvr/terminal/failures.h"
#include "zvr/terminal/terminal.h"

namespace zvr::gallery {

// page.html, from the build. It names what is shown; a section whose name is missing is left out.
extern const char* const kGalleryHtml;

namespace {

using kainjow::mustache::data;
using kainjow::mustache::list;
using kainjow::mustache::object;

// Longer side and quality of pictures for screens of double density, from what is wanted to what fits. Others
// get half the side, and the contact sheet a third.
struct Fineness {
  int side, quality;
};
constexpr Fineness kFinenesses[] = {{800, 60}, {800, 45}, {640, 45}, {480, 40}, {240, 30}};
// The same of pictures that calls were given.
constexpr int kFactSide = 128, kFactQuality = 60;

template <typename Range, typename Make>
list listOf(const Range& range, Make make) {
  list result;
  for (const auto& one : range) result.push_back(make(one));
  return result;
}

// ---- Names ----

// A long name may be broken before its capitals.
list wordsOf(const std::string& name) {
  const auto isLower = [](char c) { return c >= 'a' && c <= 'z'; };
  const auto isUpper = [](char c) { return c >= 'A' && c <= 'Z'; };
  list words;
  size_t begin = 0;
  for (size_t i = 1; i <= name.size(); ++i) {
    if (i < name.size() && !(isLower(name[i - 1]) && isUpper(name[i]))) continue;
    words.push_back(name.substr(begin, i - begin));
    begin = i;
  }
  return words;
}

// "Replace…ChannelZVR" for names that begin alike; otherwise one after the other.
std::string joined(const std::string& title, const std::string& name) {
  if (title.empty()) return name;
  if (title.find(name) != std::string::npos) return title;
  const auto prefix = std::mismatch(name.begin(), name.end(), title.begin(), title.end()).first;
  const auto suffix = std::mismatch(name.rbegin(), name.rend(), title.rbegin(), title.rend()).first.base();
  if (prefix == name.begin()) return title + ", " + name;
  return std::string(name.begin(), prefix) + "…" + std::string(suffix, name.end());
}

// ---- What a call was given and what it answered ----

class Call {
 public:
  Call(const Step& step, const host::Outcome& outcome) : step_(step), outcome_(outcome) {}

  // Everything but pictures and blocks.
  list answers() const {
    list answers;
    const auto add = [&](const std::string& name, host::Type type, const host::Value& value) {
      if (type == host::Type::none || type == host::Type::picture || type == host::Type::memoryBlock) return;
      answers.push_back(object{{"answer", name}, {"value", valueText(value)}});
    };
    add(step_.declaration.name, step_.declaration.result, outcome_.result);
    for (size_t i = 0; i < outcome_.arguments.size(); ++i) {
      const host::Parameter& parameter = step_.declaration.parameters[i];
      if (parameter.byRef) add(parameter.name, parameter.type, outcome_.arguments[i]);
    }
    return answers;
  }

  // Colours, pictures from files, and tables of 256 values, each table once.
  list facts() const {
    list facts;
    std::vector<Bytes> tables;
    for (size_t i = 0; i < outcome_.arguments.size(); ++i) {
      const host::Parameter& parameter = step_.declaration.parameters[i];
      const host::Value& value = outcome_.arguments[i];
      if (std::holds_alternative<host::Color>(value))
        facts.push_back(
            object{{"name", parameter.name}, {"hex", valueText(value).substr(std::strlen("&c"))}});
      addPicture(step_.arguments[i], parameter.type, facts);
      Bytes bytes = bytesOf(value);
      if (bytes.size() != 256 || std::count(tables.begin(), tables.end(), bytes) > 0) continue;
      facts.push_back(object{{"curve", curvePath(bytes)}});
      tables.push_back(std::move(bytes));
    }
    if (step_.assigned) addPicture(*step_.assigned, step_.declaration.result, facts);
    return facts;
  }

  // The place where a picture was found, or the rectangle of the call.
  data mark() const {
    if (const host::Value* left = value("left"))
      return object{{"left", valueText(*left)},
                    {"top", valueText(*value("top"))},
                    {"width", valueText(*value("width"))},
                    {"height", valueText(*value("height"))}};
    const host::Value* sought = value("pic");
    const auto* isFound = std::get_if<bool>(&outcome_.result);
    if (!sought || !isFound || !*isFound) return false;
    REALpictureStruct* found = std::get<host::PictureRef>(*sought).get();
    return object{{"left", valueText(*value("x"))},
                  {"top", valueText(*value("y"))},
                  {"width", std::to_string(host::pictureWidth(found))},
                  {"height", std::to_string(host::pictureHeight(found))}};
  }

 private:
  static void addPicture(const Argument& argument, host::Type type, list& facts) {
    const auto* file = std::get_if<ArgumentFile>(&argument);
    if (!file || type != host::Type::picture) return;
    facts.push_back(object{{"name", std::filesystem::path(file->path).stem().string()},
                           {"picture", dataUri(loadImage(file->path), kFactSide, kFactQuality)}});
  }

  // Null without a parameter of the name.
  const host::Value* value(const char* name) const {
    for (size_t i = 0; i < outcome_.arguments.size(); ++i)
      if (host::equalNames(step_.declaration.parameters[i].name, name)) return &outcome_.arguments[i];
    return nullptr;
  }

  const Step& step_;
  const host::Outcome& outcome_;
};

// ---- The page ----

// Neighbours that are alike.
template <typename IsAlike>
std::vector<std::vector<Example>> parted(const std::vector<Example>& examples, IsAlike isAlike) {
  std::vector<std::vector<Example>> parts;
  for (const Example& example : examples) {
    if (parts.empty() || !isAlike(parts.back().back(), example)) parts.emplace_back();
    parts.back().push_back(example);
  }
  return parts;
}

list channelsOf(const Histogram& histogram, uint32_t tallest) {
  list channels;
  for (size_t i = 0; i < histogram.size(); ++i) {
    channels.push_back(
        object{{"channel", std::string(1, "rgb"[i])}, {"path", barsPath(histogram[i], tallest)}});
  }
  return channels;
}

data plotOf(const Histogram& histogram, const Histogram& behind) {
  const uint32_t before = tallestOf(behind), tallest = std::max(before, tallestOf(histogram));
  if (tallest == 0) return false;
  object plot{{"channels", channelsOf(histogram, tallest)}};
  if (before > 0) plot["behind"] = std::to_string(heightOf(before, tallest));
  return plot;
}

class Page {
 public:
  Page(const Material& material, const Fineness& fineness)
      : material_(material),
        fineness_(fineness),
        examples_(registeredExamples()),
        progress_(examples_.size()) {}

  std::string html(const std::string& title, const std::string& host) {
    const list befores = listOf(material_.pictures, [&](auto& name) { return before(name); });
    const auto families = parted(examples_, [](auto& a, auto& b) { return a.family == b.family; });
    const std::string width = std::to_string(material_.width), height = std::to_string(material_.height);
    kainjow::mustache::mustache page{kGalleryHtml};
    std::string html =
        page.render(object{{"input", title},
                           {"notes", material_.notes},
                           {"photoWidth", width},
                           {"photoHeight", height},
                           {"ratio", width + " / " + height},
                           {"befores", befores},
                           {"groups", listOf(families, [&](auto& part) { return group(part); })},
                           {"version", ZVR_VERSION},
                           {"host", host}});
    if (!page.is_valid()) throw std::logic_error("page.html: " + page.error_message());
    return html;
  }

 private:
  // A picture that calls start from.
  struct Before {
    std::string name;
    Histogram histogram;
  };

  std::vector<std::string> filled(const Example& example) const {
    return filledWords(example.words, material_.fields, material_.width, material_.height);
  }

  // Those that the loaded plug-in has members for.
  std::vector<Example> registeredExamples() const {
    std::vector<Example> registered;
    for (Example& example : examples()) {
      const std::vector<std::string> words = filled(example);
      if (std::any_of(words.begin() + 1, words.end(), beginsStep)) registered.push_back(std::move(example));
    }
    return registered;
  }

  // A small picture has no large one beside it.
  object sizesOf(const Image& image) const {
    const auto [side, quality] = fineness_;
    const Image large = scaledDown(image, side);
    object sizes{{"thumb", dataUri(large, side / 3, quality)},
                 {"small", dataUri(large, side / 2, quality + 15)},
                 {"width", std::to_string(large.width)},
                 {"height", std::to_string(large.height)}};
    if (std::max(large.width, large.height) > side / 2) sizes["large"] = dataUri(large, side, quality);
    return sizes;
  }

  object before(const std::string& name) {
    const Image image = loadImage(material_.fields.at(name));
    const Histogram histogram = histogramOf(image);
    befores_[material_.fields.at(name)] = {name, histogram};
    object result = sizesOf(image);
    result["before"] = name;
    result["channels"] = channelsOf(histogram, tallestOf(histogram));
    return result;
  }

  object group(const std::vector<Example>& examples) {
    const auto cards = parted(examples, [](auto& a, auto& b) { return a.place / 10 == b.place / 10; });
    return {{"group", "group-" + std::to_string(++groupCount_)},
            {"title", examples[0].family},
            {"cards", listOf(cards, [&](auto& part) { return card(part); })}};
  }

  object card(const std::vector<Example>& examples) {
    std::string title;
    bool isConsoleSafe = false;
    list forms;
    for (const Example& example : examples) {
      const std::vector<std::string> words = filled(example);
      const Chain chain = parseChain(words, {});
      const Step& step = chain.steps.back();
      title = joined(title, step.declaration.name);
      isConsoleSafe = isConsoleSafe || step.isConsoleSafe();
      object shown = form(example, chain);
      shown["calls"] = list{object{{"language", "zvr"}, {"code", shellLine(words, outputOf(step, shown))}},
                            object{{"language", "BASIC"}, {"code", basicText(chain)}}};
      shown["isShown"] = forms.empty();
      forms.push_back(shown);
      progress_.advance();
    }
    return {{"card", "card-" + std::to_string(++cardCount_)},
            {"title", title},
            {"words", wordsOf(title)},
            {"isForDesktops", !isConsoleSafe},
            {"isSwitched", forms.size() > 1},
            {"forms", forms}};
  }

  static std::string outputOf(const Step& step, const object& form) {
    if (step.declaration.result == host::Type::string) return "out.bin";
    return step.declaration.result == host::Type::picture || form.count("thumb") > 0 ? "out.png" : "";
  }

  object form(const Example& example, const Chain& chain) {
    const Step& step = chain.steps.back();
    const std::string& name = step.declaration.name;
    const int count = ++uses_[name];
    object form{{"anchor", name + (count == 1 ? "" : "-" + std::to_string(count))},
                {"isFirst", count == 1},
                {"name", name},
                {"words", wordsOf(name)},
                {"label", example.label},
                {"signature", step.method ? step.method->text : "Class " + name},
                {"says", example.says}};
    try {
      run(chain, form);
    } catch (const Failure& failure) {
      form["problem"] = failure.what();
    }
    return form;
  }

  void run(const Chain& chain, object& form) {
    PictureOptions options;
    const bool asOnHost = concernsTransparency(chain);
    if (asOnHost) options.alpha = Alpha::premultiplied;
    const std::string& input = chain.inputs[0];
    Walk walk(input, readBytes(input), options, asOnHost);
    host::Outcome outcome;
    for (const Step& step : chain.steps) outcome = walk.take(step);
    const Step& step = chain.steps.back();
    const Call call(step, outcome);
    const list answers = call.answers(), facts = call.facts();
    if (!answers.empty()) form["answers"] = object{{"list", answers}};
    if (!facts.empty()) form["facts"] = object{{"list", facts}};
    const auto before = befores_.find(input);
    if (before != befores_.end()) form["before"] = before->second.name;
    const Histogram counted = histogramIn(outcome.arguments);
    if (walk.hasResult() && step.declaration.result != host::Type::string) {
      addPicture(walk.picture(), before == befores_.end() ? nullptr : &before->second, form);
    } else if (tallestOf(counted) > 0) {
      form["plot"] = plotOf(counted, {});
    } else if (before != befores_.end()) {
      form["asked"] = object{{"value", valueText(outcome.result)}};
      form["mark"] = call.mark();
    }
  }

  void addPicture(const Image& after, const Before* before, object& form) const {
    const bool isCompared = before && after.width == material_.width && after.height == material_.height;
    object sizes = sizesOf(after);
    form["thumb"] = data(sizes["thumb"]);
    form[isCompared ? "compared" : "alone"] = sizes;
    if (isCompared) form["plot"] = plotOf(histogramOf(after), before->histogram);
  }

  const Material& material_;
  const Fineness fineness_;
  const std::vector<Example> examples_;
  terminal::Progress progress_;
  std::map<std::string, Before> befores_;  // by their paths
  std::map<std::string, int> uses_;
  int groupCount_ = 0, cardCount_ = 0;
};

}  // namespace

std::string page(const Material& material, const std::string& title, const std::string& host) {
  for (const Fineness& fineness : kFinenesses) {
    std::string html = Page(material, fineness).html(title, host);
    if (html.size() <= kLargestPage) return html;
  }
  throw Failure("the page would be larger than " + std::to_string(kLargestPage) + " bytes");
}

}  // namespace zvr::gallery
