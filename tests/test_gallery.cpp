// zvr gallery: the page has everything that is registered and needs nothing beside itself.

#include <algorithm>
#include <cstdlib>
#include <iterator>
#include <map>
#include <random>
#include <regex>
#include <set>

#include "host/host.h"
#include "tests/zvr_program.h"
#include "zvr/gallery/scaling.h"

namespace {

using namespace zvr_test;

std::string unescaped(std::string text) {
  const std::pair<const char*, const char*> kMarks[] = {
      {"&lt;", "<"}, {"&gt;", ">"}, {"&quot;", "\""}, {"&amp;", "&"}};
  for (const auto& [mark, character] : kMarks) {
    for (size_t at = 0; (at = text.find(mark, at)) != std::string::npos; ++at) {
      text.replace(at, std::string(mark).size(), character);
    }
  }
  return text;
}

// The texts between the two marks.
std::vector<std::string> between(const std::string& page, const std::string& begin, const std::string& end) {
  std::vector<std::string> parts;
  for (size_t at = 0; (at = page.find(begin, at)) != std::string::npos;) {
    at += begin.size();
    const size_t stop = page.find(end, at);
    if (stop == std::string::npos) break;
    parts.push_back(unescaped(page.substr(at, stop - at)));
  }
  return parts;
}

std::map<std::string, int> counted(const std::vector<std::string>& words) {
  std::map<std::string, int> counts;
  for (const std::string& word : words) ++counts[word];
  return counts;
}

// Every element that is opened is closed, in order. Text, scripts and styles hold no "<" of their own here.
void expectNested(const std::string& page) {
  static const std::set<std::string> kEmpty = {"!DOCTYPE", "meta", "link", "img", "input", "wbr"};
  std::vector<std::string> open;
  for (size_t at = 0; (at = page.find('<', at)) != std::string::npos;) {
    const size_t end = page.find('>', at);
    ASSERT_NE(end, std::string::npos);
    const std::string tag = page.substr(at + 1, end - at - 1);
    at = end;
    const std::string name = tag.substr(0, tag.find_first_of(" \n"));
    if (tag.back() == '/' || kEmpty.count(name)) continue;
    if (tag[0] != '/') {
      open.push_back(name);
      if (name == "script") at = page.find("</script", end) - 1;
      continue;
    }
    ASSERT_FALSE(open.empty()) << tag;
    ASSERT_EQ("/" + open.back(), tag) << "before byte " << at;
    open.pop_back();
  }
  EXPECT_TRUE(open.empty());
}

class Gallery : public Zvr {
 protected:
  void SetUp() override {
    Zvr::SetUp();
    Pixels photo = pattern(64, 40, false);
    std::mt19937 random(7);
    for (uint8_t& byte : photo.bytes) byte = static_cast<uint8_t>(random());
    writePng(folder_ / "photo.png", photo, PNG_FORMAT_RGB);
  }
  std::string make(const std::vector<std::string>& options, const std::string& input = "photo.png") {
    std::vector<std::string> words{"gallery", "-o", "out", "--ledger"};
    words.insert(words.end(), options.begin(), options.end());
    words.insert(words.end(), {"--", input});
    const Finished done = run(words);
    EXPECT_EQ(done.status, 0) << done.errors;
    EXPECT_EQ(done.output, "wrote out/index.html\n");
    EXPECT_TRUE(contains(done.errors, "held: 0 objects, 0 strings, 0 locks, 0 string data; 0 errors"))
        << done.errors;
    return textOf(folder_ / "out/index.html");
  }
};

// The page's lines for a shell, without "zvr", one a card.
std::vector<std::string> linesOn(const std::string& page) {
  const std::vector<std::string> lines = between(page, "<b>zvr</b><code>zvr ", "</code>");
  EXPECT_FALSE(lines.empty());
  EXPECT_EQ(lines.size(), between(page, "<article id=\"", "\"").size());
  return lines;
}

class GalleryOn : public Gallery, public testing::WithParamInterface<const char*> {};

TEST_P(GalleryOn, showsEverythingThatIsRegistered) {
  const std::string page = make({"--host", GetParam()});
  const std::map<std::string, int> shown = counted(between(page, "<p class=\"signature\">", "</p>"));
  host::start(host::Settings());
  const host::Plugin plugin(ZVR_PLUGIN);
  const host::Members& members = host::members();
  ASSERT_FALSE(members.pictureMethods.empty() || members.globals.empty());
  for (const auto* methods : {&members.pictureMethods, &members.globals}) {
    for (const host::Method& method : *methods) {
      // Methods that can be assigned to are shown twice.
      const auto entry = shown.find(method.text);
      ASSERT_NE(entry, shown.end()) << method.text;
      EXPECT_EQ(entry->second, method.setter ? 2 : 1) << method.text;
    }
  }
  for (const host::Class& type : members.classes) EXPECT_EQ(shown.count("Class " + type.name), 1U);
  // No call failed, and none is missing.
  EXPECT_EQ(between(page, "class=\"problem\">", "<"), std::vector<std::string>());
}

TEST_P(GalleryOn, isOneSoundPage) {
  const std::string page = make({"--host", GetParam()});
  expectNested(page);
  EXPECT_FALSE(contains(page, "{{"));
  EXPECT_FALSE(contains(page, "http://") || contains(page, "https://"));
  EXPECT_LE(page.size(), 3'000'000U);
  const std::vector<std::string> ids = between(page, " id=\"", "\"");
  const std::set<std::string> anchors(ids.begin(), ids.end());
  EXPECT_EQ(anchors.size(), ids.size());
  for (const std::string& target : between(page, "href=\"#", "\"")) {
    EXPECT_EQ(anchors.count(target), 1U) << target;
  }
  for (const char* attribute : {"src=\"", "href=\"", "url("}) {
    for (const std::string& source : between(page, attribute, attribute[3] == '(' ? ")" : "\"")) {
      EXPECT_TRUE(source[0] == '#' || source.rfind("data:", 0) == 0) << source.substr(0, 80);
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Hosts, GalleryOn, testing::Values("cairo", "console"));

// Every line for a shell on the page is one that zvr takes, with the files beside the page, whatever the
// photograph's name reads as.
TEST_F(Gallery, linesRun) {
  fs::copy(folder_ / "photo.png", folder_ / "-o");
  for (const std::string& line : linesOn(make({}, "-o"))) {
    const Finished done = runLine(line);
    EXPECT_EQ(done.status, 0) << line << "\n" << done.errors;
  }
}

// They call every method in each of its forms. All kinds of host that can be had here give the same answers
// and files, except where pixels are copies: nothing is moved in place there, and the first row is lost.
TEST_F(Gallery, linesRunOnEveryKindOfHost) {
#ifdef ZVR_SANITIZED
  GTEST_SKIP() << "the case before runs the same lines";
#endif
  fs::copy(folder_ / "photo.png", folder_ / "InvertZVR");
  const char* display = std::getenv("DISPLAY");
  for (const std::string& line : linesOn(make({}, "InvertZVR"))) {
    struct {
      std::string printed;
      Bytes picture, string;
    } first;
    for (const char* host : {"cairo", "console", "gdk"}) {
      if (host[0] == 'g' && (!display || !*display)) continue;
      SCOPED_TRACE(line + " on " + host);
      for (const char* file : {"out.png", "out.bin"}) fs::remove(folder_ / file);
      const size_t command = line.find(' ');
      const Finished done =
          runLine(line.substr(0, command) + " --ledger --host " + host + line.substr(command));
      ASSERT_EQ(done.status, 0) << done.errors;
      EXPECT_TRUE(contains(done.errors, "held: 0 objects, 0 strings, 0 locks, 0 string data; 0 errors"))
          << done.errors;
      for (const char* file : {"out.png", "out.bin"})
        EXPECT_EQ(fs::exists(folder_ / file), contains(line, file));
      const Bytes picture = readBytes(folder_ / "out.png"), string = readBytes(folder_ / "out.bin");
      if (host[1] == 'a') first = {done.output, picture, string};
      if (host[1] != 'o') continue;
      EXPECT_EQ(done.output, first.printed);
      EXPECT_TRUE(string == first.string);
      // The alpha channel of a picture without one is another on each.
      EXPECT_TRUE(picture == first.picture || contains(line, " EmbeddedMaskZVR false -o"));
    }
  }
}

TEST_F(Gallery, marksWhatWasFoundAndPlotsWhatWasCounted) {
  const std::string page = make({});
  const std::vector<std::string> cards = between(page, "<article id=\"", "</article>");
  const auto card = [&](const std::string& name) -> const std::string& {
    return *std::find_if(cards.begin(), cards.end(),
                         [&](const std::string& text) { return text.rfind(name + "\"", 0) == 0; });
  };
  // The part was cut out at 2/5 and 3/10 of the sides.
  EXPECT_TRUE(
      contains(card("FindPictureZVR"), "<rect class=\"over\" x=\"25\" y=\"12\" width=\"10\" height=\"8\""))
      << card("FindPictureZVR");
  EXPECT_TRUE(contains(card("CountColorsZVR"), "count = <b>2560</b>"));
  const std::vector<std::string> paths = between(card("CountColorsZVR"), "<path class=\"", "\"/>");
  ASSERT_EQ(paths.size(), 3U);
  for (const std::string& path : paths) {
    EXPECT_EQ(std::count(path.begin(), path.end(), 'h'), 256) << path;
    EXPECT_TRUE(contains(path, "v-")) << path;  // not all bars are empty
  }
  EXPECT_TRUE(contains(card("TintPictureZVR"), "fill=\"#FFD08C\"")) << card("TintPictureZVR");
}

// Boxes of a row of five: two pixels and three. Transparent pixels have no say in the colour.
TEST(ScaledDown, takesMeansOfBoxes) {
  zvr::Image image;
  image.allocate(5, 1);
  const uint8_t pixels[] = {10, 20, 30, 255, 20, 40, 60, 255, 90, 90, 90, 255, 0, 0, 0, 0, 30, 30, 30, 255};
  std::copy(std::begin(pixels), std::end(pixels), image.pixels.get());
  const zvr::Image scaled = zvr::scaledDown(image, 2);
  ASSERT_EQ(std::make_pair(scaled.width, scaled.height), std::make_pair(2, 1));
  const std::vector<int> expected = {15, 30, 45, 255, 60, 60, 60, 170};
  EXPECT_EQ(std::vector<int>(scaled.pixels.get(), scaled.pixels.get() + 8), expected);
  EXPECT_TRUE(zvr::scaledDown(image, 5) == image);
}

TEST_F(Gallery, saysWhatIsWrong) {
  writeBytes(folder_ / "taken", {1});
  struct {
    std::vector<std::string> words;
    int status;
    const char* says;
  } const kCases[] = {
      {{"gallery"}, 2, "INPUT is required"},
      {{"gallery", "gone.png"}, 1, "gone.png: No such file"},
      {{"gallery", "photo.png", "-o", "taken"}, 1, "taken: exists and is not a folder"},
      {{"gallery", "photo.png", "--sound", "photo.png"}, 1, "photo.png: not a sound file"},
  };
  for (const auto& [words, status, says] : kCases) {
    const Finished done = run(words);
    EXPECT_EQ(done.status, status) << says;
    EXPECT_TRUE(contains(done.errors, says)) << done.errors;
  }
  EXPECT_EQ(filesIn(folder_), (std::vector<std::string>{"photo.png", "taken"}));
}

}  // namespace
