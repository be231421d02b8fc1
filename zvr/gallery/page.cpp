#include "zvr/gallery/page.h"

#include <algorithm>
#include <cmath>
#include <functional>

#include "zvr/gallery/scaling.h"
#include "zvr/gallery/template.h"
#include "zvr/terminal/failures.h"

namespace zvr::gallery {
namespace {

// Longer side and JPEG quality of the pictures, from what is wanted to what fits.
struct Fineness {
  int side, quality;
};
constexpr Fineness kFinenesses[] = {{kShownSide, 85}, {kShownSide, 70}, {480, 70}, {360, 60}, {240, 50}};

// ---- Pictures ----

std::string base64(const Bytes& bytes) {
  constexpr char kDigits[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::string text;
  text.reserve((bytes.size() + 2) / 3 * 4);
  for (size_t i = 0; i < bytes.size(); i += 3) {
    const size_t count = std::min<size_t>(3, bytes.size() - i);
    uint32_t group = 0;
    for (size_t j = 0; j < 3; ++j) group = group << 8 | (j < count ? bytes[i + j] : 0U);
    for (size_t j = 0; j < 4; ++j) text += j <= count ? kDigits[group >> (18 - 6 * j) & 63] : '=';
  }
  return text;
}

// As PNG or JPEG, whichever is smaller; only PNG keeps transparency.
std::string dataUri(const Image& image, const Fineness& fineness) {
  const Image shown = scaledDown(image, fineness.side);
  Writing writing;
  writing.format = "png";
  writing.compression = 9;
  const Bytes png = encodeImage(shown, writing);
  if (!shown.hasAlpha) {
    writing.format = "jpeg";
    writing.quality = fineness.quality;
    const Bytes jpeg = encodeImage(shown, writing);
    if (jpeg.size() < png.size()) return "data:image/jpeg;base64," + base64(jpeg);
  }
  return "data:image/png;base64," + base64(png);
}

// ---- Plots ----

std::string channelPath(const std::vector<uint32_t>& counts, double tallest, int height) {
  std::string path = "M0 " + std::to_string(height);
  int last = height;
  for (const uint32_t count : counts) {
    const int y = height - static_cast<int>(std::lround(std::min(1.0, std::sqrt(count) / tallest) * height));
    path += "v" + std::to_string(y - last) + "h1";
    last = y;
  }
  return path + "V" + std::to_string(height) + "Z";
}

// A few bars, often those of black and white, would leave no room for the others: they are cut off.
double cutOff(const Histogram& histogram) {
  constexpr size_t kTaller = 8;
  std::vector<uint32_t> counts;
  for (const auto& channel : histogram) counts.insert(counts.end(), channel.begin(), channel.end());
  if (counts.size() <= kTaller) return 0;
  std::sort(counts.begin(), counts.end(), std::greater<>());
  return counts[kTaller] > 0 ? counts[kTaller] : counts[0];
}

std::string plot(const Histogram& histogram, const std::string& label, int height, const std::string& size) {
  const double tallest = std::sqrt(cutOff(histogram));
  if (tallest <= 0) return "";
  const auto path = [&](size_t channel) { return channelPath(histogram[channel], tallest, height); };
  return fill("histogram", {{"label", label},
                            {"height", std::to_string(height)},
                            {"size", size},
                            {"red", path(0)},
                            {"green", path(1)},
                            {"blue", path(2)}});
}

std::string curvePlot(const Bytes& table) {
  std::string path;
  for (size_t i = 0; i < table.size() && i < 256; ++i) {
    path += (i == 0 ? "M" : "L") + std::to_string(i) + " " + std::to_string(255 - table[i]);
  }
  return fill("curve", {{"path", path}});
}

// ---- Cards ----

// As HTML; a long name may be broken before its capitals.
std::string breakable(const std::string& name) {
  const auto isLower = [](char c) { return c >= 'a' && c <= 'z'; };
  const auto isUpper = [](char c) { return c >= 'A' && c <= 'Z'; };
  std::string html;
  for (size_t i = 0; i < name.size(); ++i) {
    if (i > 0 && isLower(name[i - 1]) && isUpper(name[i])) html += "<wbr>";
    html += escaped(name.substr(i, 1));
  }
  return html;
}

class Writer {
 public:
  Writer(const Exhibition& exhibition, const Fineness& fineness)
      : exhibition_(exhibition), fineness_(fineness) {}

  std::string page() {
    std::string contents, groups;
    for (const Group& group : exhibition_.groups) addGroup(group, contents, groups);
    const Image& photo = exhibition_.photo;
    return fill(
        "page",
        {{"input", exhibition_.input},
         {"photo", dataUri(photo, fineness_)},
         {"ratio", std::to_string(exhibition_.width) + " / " + std::to_string(exhibition_.height)},
         {"width", std::to_string(exhibition_.width)},
         {"height", std::to_string(exhibition_.height)},
         {"intro", exhibition_.notes + " Pictures are shown here at most " + std::to_string(fineness_.side) +
                       " pixels long; drag across one, or use the arrow keys, to compare before and after."},
         {"histogram", plot(exhibition_.histogram,
                            "How often each value occurs, 0 to 255, of red, green and blue; heights "
                            "are square roots, the tallest cut off",
                            80, "")},
         {"contents", contents},
         {"groups", groups},
         {"version", ZVR_VERSION},
         {"host", exhibition_.host}});
  }

 private:
  void addGroup(const Group& group, std::string& contents, std::string& groups) {
    const std::string anchor = "group-" + std::to_string(++groupCount_);
    std::string entries, cards, previous;
    for (const Card& card : group.cards) {
      if (card.name != previous) {
        entries += fill("entry", {{"anchor", anchorOf(card)}, {"name", breakable(card.name)}});
      }
      previous = card.name;
      cards += cardHtml(card);
    }
    contents += fill("contents", {{"title", group.title}, {"entries", entries}});
    groups += fill("group", {{"anchor", anchor}, {"title", group.title}, {"cards", cards}});
  }

  // Cards are told apart by their addresses, which stay while the page is written.
  std::string anchorOf(const Card& card) {
    const auto entry = anchors_.find(&card);
    if (entry != anchors_.end()) return entry->second;
    const int count = ++uses_[card.name];
    return anchors_[&card] = card.name + (count == 1 ? "" : "-" + std::to_string(count));
  }

  std::string cardHtml(const Card& card) {
    std::string calls;
    const auto addCall = [&](const char* language, const std::string& code) {
      calls += fill("call", {{"language", language}, {"code", code}, {"name", card.name}});
    };
    if (!card.zvrLine.empty()) addCall("zvr", card.zvrLine);
    std::string basic;
    for (const std::string& line : card.basicLines) basic += (basic.empty() ? "" : "\n") + line;
    if (!basic.empty()) addCall("BASIC", basic);
    return fill("card",
                {{"anchor", anchorOf(card)},
                 {"name", breakable(card.name)},
                 {"signature", card.signature},
                 {"says", card.says + (card.isConsoleSafe ? "" : " Registered for desktop hosts only.")},
                 {"shown", shownHtml(card)},
                 {"facts", factsHtml(card)},
                 {"calls", calls}});
  }

  // The picture or the place; without them the answers.
  std::string shownHtml(const Card& card) const {
    std::string html = pictureHtml(card);
    if (card.place) html += placeHtml(*card.place);
    if (!card.problem.empty()) html += fill("problem", {{"text", card.problem}});
    if (!html.empty()) return html;
    return answersHtml(card) +
           plot(card.histogram, "Counts of red, green and blue values, 0 to 255", 100, "");
  }

  // Answers beside a picture, colours and tables.
  std::string factsHtml(const Card& card) const {
    std::string html = card.after || card.place ? answersHtml(card) : "";
    if (!card.swatches.empty()) html += swatchesHtml(card.swatches);
    for (const Bytes& curve : card.curves) html += curvePlot(curve);
    if (card.isComparable) html += plot(card.histogram, "Its histogram", 60, "small");
    return html;
  }

  static std::string answersHtml(const Card& card) {
    std::string lines;
    for (const std::string& answer : card.answers) {
      const size_t sign = answer.find(" = ") + 3;
      lines += fill("answer", {{"name", answer.substr(0, sign)}, {"value", answer.substr(sign)}});
    }
    return lines.empty() ? "" : fill("answers", {{"lines", lines}});
  }

  std::string pictureHtml(const Card& card) const {
    if (!card.after) return "";
    return fill(card.isComparable ? "compare" : "picture", {{"name", card.name},
                                                            {"picture", dataUri(*card.after, fineness_)},
                                                            {"width", std::to_string(card.after->width)},
                                                            {"height", std::to_string(card.after->height)}});
  }

  std::string placeHtml(const Place& place) const {
    return fill("place", {{"viewWidth", std::to_string(exhibition_.width)},
                          {"viewHeight", std::to_string(exhibition_.height)},
                          {"left", std::to_string(place.left)},
                          {"top", std::to_string(place.top)},
                          {"width", std::to_string(place.width)},
                          {"height", std::to_string(place.height)}});
  }

  static std::string swatchesHtml(const std::vector<Swatch>& swatches) {
    std::string entries;
    for (const Swatch& swatch : swatches) {
      char hex[8];
      std::snprintf(hex, sizeof(hex), "%06X", swatch.rgb & 0xFFFFFF);
      entries += fill("swatch", {{"name", swatch.name}, {"hex", hex}});
    }
    return fill("swatches", {{"entries", entries}});
  }

  const Exhibition& exhibition_;
  const Fineness fineness_;
  int groupCount_ = 0;
  std::map<const Card*, std::string> anchors_;
  std::map<std::string, int> uses_;
};

}  // namespace

std::string page(const Exhibition& exhibition) {
  for (const Fineness& fineness : kFinenesses) {
    std::string html = Writer(exhibition, fineness).page();
    if (html.size() <= kLargestPage) return html;
  }
  throw Failure("the page would be larger than " + std::to_string(kLargestPage) + " bytes");
}

}  // namespace zvr::gallery
