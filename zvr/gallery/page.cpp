#include "zvr/gallery/page.h"

#include <magick/api.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <kainjow/mustache.hpp>
#include <map>
#include <stdexcept>
#include <unordered_set>

#include "zvr/gallery/scaling.h"
#include "zvr/terminal/failures.h"

namespace zvr::gallery {

// page.html, from the build.
extern const char* const kGalleryHtml;

namespace {

using kainjow::mustache::data;
using kainjow::mustache::list;
using kainjow::mustache::object;

// Longer side and quality of the large pictures, from what is wanted to what fits.
struct Fineness {
  int side, quality;
};
constexpr Fineness kFinenesses[] = {{kShownSide, 70}, {kShownSide, 50}, {640, 50}, {480, 40}, {320, 40}};
constexpr int kThumbQuality = 65;

template <typename Range, typename Make>
list listOf(const Range& range, Make make) {
  list result;
  for (const auto& one : range) result.push_back(make(one));
  return result;
}

// A section of an empty text is left out.
data textOrNothing(const std::string& text) { return text.empty() ? data(false) : data(text); }

// ---- Pictures ----

bool isFlat(const Image& image) {
  constexpr size_t kFewColors = 256;
  std::unordered_set<uint32_t> colors;
  for (size_t i = 0; i < image.byteCount() && colors.size() <= kFewColors; i += sizeof(uint32_t)) {
    uint32_t pixel = 0;
    std::memcpy(&pixel, image.pixels.get() + i, sizeof(pixel));
    colors.insert(pixel);
  }
  return colors.size() <= kFewColors;
}

// Drawings as PNG, photographs as WebP, which keeps transparency as well.
std::string dataUri(const Image& image, int side, int quality) {
  const Image shown = scaledDown(image, side);
  Writing writing;
  writing.format = isFlat(shown) ? "png" : "webp";
  writing.quality = quality;
  writing.compression = 9;
  const Bytes bytes = encodeImage(shown, writing);
  size_t length = 0;
  const std::unique_ptr<char, void (*)(void*)> text(Base64Encode(bytes.data(), bytes.size(), &length),
                                                    MagickFree);
  if (!text) throw std::bad_alloc();
  return "data:image/" + writing.format + ";base64," + std::string(text.get(), length);
}

// For both densities of screens; a small picture is the same for both.
object bothSizes(const Image& image, const Fineness& fineness) {
  const int half = fineness.side / 2;
  const bool isLarge = std::max(image.width, image.height) > half;
  return {{"small", dataUri(image, half, fineness.quality + 10)},
          {"large", isLarge ? data(dataUri(image, fineness.side, fineness.quality)) : data(false)},
          {"width", std::to_string(image.width)},
          {"height", std::to_string(image.height)}};
}

// ---- Plots ----

uint32_t tallestOf(const Histogram& histogram) {
  uint32_t tallest = 0;
  for (const auto& channel : histogram)
    for (const uint32_t count : channel) tallest = std::max(tallest, count);
  return tallest;
}

// Of a bar, from 0 to 1. A few values, often black and white, occur so often that plain heights would show
// nothing else.
double heightOf(uint32_t count, uint32_t tallest) {
  return std::cbrt(static_cast<double>(count) / static_cast<double>(tallest));
}

// Bars above a base line at 0.
std::string barsPath(const std::vector<uint32_t>& counts, uint32_t tallest) {
  constexpr double kHeight = 80;
  std::string path = "M0 0";
  long last = 0;
  for (const uint32_t count : counts) {
    const long y = std::lround(-kHeight * heightOf(count, tallest));
    path += "v" + std::to_string(y - last) + "h1";
    last = y;
  }
  return path + "V0Z";
}

list channelsOf(const Histogram& histogram, uint32_t tallest) {
  list channels;
  for (size_t i = 0; i < histogram.size(); ++i) {
    channels.push_back(
        object{{"channel", std::string(1, "rgb"[i])}, {"path", barsPath(histogram[i], tallest)}});
  }
  return channels;
}

data plotOf(const Form& form) {
  const uint32_t before = form.isComparable ? tallestOf(form.before->histogram) : 0;
  const uint32_t tallest = std::max(before, tallestOf(form.histogram));
  if (tallest == 0) return false;
  return object{{"behind", before == 0 ? data(false) : data(std::to_string(heightOf(before, tallest)))},
                {"channels", channelsOf(form.histogram, tallest)}};
}

std::string curvePath(const Bytes& table) {
  std::string path;
  for (size_t i = 0; i < table.size(); ++i)
    path += (i == 0 ? "M" : "L") + std::to_string(i) + " " + std::to_string(255 - table[i]);
  return path;
}

// ---- Cards ----

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

// "Replace…ChannelZVR" for names that begin alike; otherwise all of them.
std::string titleOf(const Card& card) {
  std::string title = card.forms[0].name;
  for (const Form& form : card.forms) {
    const std::string& name = form.name;
    if (title.find(name) != std::string::npos) continue;
    const auto prefix = std::mismatch(name.begin(), name.end(), title.begin(), title.end()).first;
    const auto suffix = std::mismatch(name.rbegin(), name.rend(), title.rbegin(), title.rend()).first.base();
    title = prefix == name.begin()
                ? title + ", " + name
                : std::string(name.begin(), prefix) + "…" + std::string(suffix, name.end());
  }
  return title;
}

data markOf(const std::optional<Place>& place) {
  if (!place) return false;
  return object{{"left", std::to_string(place->left)},
                {"top", std::to_string(place->top)},
                {"width", std::to_string(place->width)},
                {"height", std::to_string(place->height)}};
}

object swatchOf(const Swatch& swatch) {
  char hex[8];
  std::snprintf(hex, sizeof(hex), "%06X", swatch.rgb & 0xFFFFFF);
  return {{"swatch", swatch.name}, {"hex", hex}};
}

list callsOf(const Form& form) {
  std::string basic;
  for (const std::string& line : form.basicLines) basic += (basic.empty() ? "" : "\n") + line;
  list calls;
  if (!form.zvrLine.empty()) calls.push_back(object{{"language", "zvr"}, {"code", form.zvrLine}});
  if (!basic.empty()) calls.push_back(object{{"language", "BASIC"}, {"code", basic}});
  return calls;
}

class Writer {
 public:
  explicit Writer(const Fineness& fineness) : fineness_(fineness) {}

  std::string page(const Exhibition& exhibition) {
    const std::string width = std::to_string(exhibition.width), height = std::to_string(exhibition.height);
    kainjow::mustache::mustache sheet{kGalleryHtml};
    const std::string html =
        sheet.render(object{{"input", exhibition.input},
                            {"notes", exhibition.notes},
                            {"photoWidth", width},
                            {"photoHeight", height},
                            {"ratio", width + " / " + height},
                            {"befores", listOf(exhibition.befores, [&](auto& one) { return before(one); })},
                            {"groups", listOf(exhibition.groups, [&](auto& one) { return group(one); })},
                            {"version", ZVR_VERSION},
                            {"host", exhibition.host}});
    if (!sheet.is_valid()) throw std::logic_error("page.html: " + sheet.error_message());
    return html;
  }

 private:
  object before(const Before& before) const {
    object result = bothSizes(before.image, fineness_);
    result["before"] = before.name;
    result["channels"] = channelsOf(before.histogram, tallestOf(before.histogram));
    return result;
  }

  object group(const Group& group) {
    return {{"group", "group-" + std::to_string(++groupCount_)},
            {"title", group.title},
            {"cards", listOf(group.cards, [&](auto& one) { return card(one); })}};
  }

  object card(const Card& card) {
    const std::string title = titleOf(card);
    list forms = listOf(card.forms, [&](auto& one) { return form(one, &one == &card.forms[0]); });
    return {{"card", "card-" + std::to_string(++cardCount_)},
            {"title", title},
            {"words", wordsOf(title)},
            {"isForDesktops", std::none_of(card.forms.begin(), card.forms.end(),
                                           [](const Form& form) { return form.isConsoleSafe; })},
            {"isSwitched", card.forms.size() > 1},
            {"forms", forms}};
  }

  object form(const Form& form, bool isShown) {
    const int count = ++uses_[form.name];
    const bool isCounted = !form.after && !form.histogram[0].empty();
    const data picture = form.after ? data(bothSizes(*form.after, fineness_)) : data(false);
    return {{"anchor", form.name + (count == 1 ? "" : "-" + std::to_string(count))},
            {"isFirst", count == 1},
            {"isShown", isShown},
            {"name", form.name},
            {"words", wordsOf(form.name)},
            {"label", form.label},
            {"signature", form.signature},
            {"says", form.says},
            {"problem", textOrNothing(form.problem)},
            {"before", form.before && !isCounted ? form.before->name : ""},
            {"thumb", form.after ? data(dataUri(*form.after, kThumbSide, kThumbQuality)) : data(false)},
            {"compared", form.isComparable ? picture : data(false)},
            {"alone", form.isComparable ? data(false) : picture},
            {"asked", form.before && !form.after && !isCounted},
            {"mark", markOf(form.place)},
            {"answer",
             form.after || isCounted || form.answers.empty() ? data(false) : data(form.answers[0].second)},
            {"hasAnswers", !form.answers.empty()},
            {"answers", listOf(form.answers,
                               [](auto& one) {
                                 return object{{"answer", one.first}, {"value", one.second}};
                               })},
            {"hasFacts", !form.swatches.empty() || !form.pictures.empty() || !form.curves.empty()},
            {"swatches", listOf(form.swatches, swatchOf)},
            {"pictures", listOf(form.pictures,
                                [](auto& one) {
                                  return object{
                                      {"file", one.first},
                                      {"picture", dataUri(one.second, kThumbSide / 2, kThumbQuality)}};
                                })},
            {"curves", listOf(form.curves, curvePath)},
            {"plot", plotOf(form)},
            {"calls", callsOf(form)}};
  }

  const Fineness fineness_;
  int groupCount_ = 0, cardCount_ = 0;
  std::map<std::string, int> uses_;
};

}  // namespace

std::string page(const Exhibition& exhibition) {
  for (const Fineness& fineness : kFinenesses) {
    std::string html = Writer(fineness).page(exhibition);
    if (html.size() <= kLargestPage) return html;
  }
  throw Failure("the page would be larger than " + std::to_string(kLargestPage) + " bytes");
}

}  // namespace zvr::gallery
