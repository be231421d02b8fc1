// Every method against its definition: the case lines of tests/cases, and random calls.

#include <algorithm>
#include <filesystem>
#include <fstream>

#include "tests/models.h"
#include "tests/support.h"

namespace {

using Words = std::vector<std::string>;

// As a writer leaves a literal, if it is a picture; without top bytes, alpha and masks, which literals lack.
Value comparable(Value value, bool isLiteral) {
  if (auto* pixels = std::get_if<Pixels>(&value)) {
    Pixels colors(pixels->width, pixels->height, pixels->colors);
    for (uint32_t& color : colors.colors) color &= 0xFFFFFF;
    value = isLiteral ? asWritten(colors) : colors;
  }
  return value;
}

Outcome outcomeOf(const Call& call) {
  Scene scene(call);
  scene.run();
  return scene.outcome();
}

// A line of a file in tests/cases.
class CaseLine : public EverySetTest {
 public:
  CaseLine(std::string file, int line, const std::string& text)
      : file_(std::move(file)), line_(line), words_(splitWords(text)) {}

  void TestBody() override {
    try {
      check();
    } catch (const std::exception& problem) {
      ADD_FAILURE_AT(file_.c_str(), line_) << problem.what();
    }
  }

 private:
  void check() {
    std::vector<std::function<void(Scene&)>> conditions;
    while (words_[0].find_first_of(":@-#!") != std::string::npos) {
      if (!isForThisRoad(words_[0])) return;
      takeCondition(words_[0], conditions);
      words_.erase(words_.begin());
    }
    const auto arrow = std::find(words_.begin(), words_.end(), "->");
    const Call call = parsedCall({words_.begin(), arrow});
    const std::optional<Outcome> expected = promised(call);
    if (conditions.empty() && expected) {
      onEverySet([&] {
        const std::string wrong = difference(*expected, outcomeOf(call));
        if (!wrong.empty()) fail("by the definition " + wrong);
      });
    }
    if (arrow == words_.end()) {
      if (conditions.empty() && expected) return;
      throw std::invalid_argument("an answer is missing, and the definition has none");
    }
    Scene scene(call);
    for (const auto& apply : conditions) apply(scene);
    scene.run();
    compareAnswer(call.member, {arrow + 1, words_.end()}, scene.outcome());
  }

  static bool isForThisRoad(const std::string& word) {
    constexpr const char* kRoads[] = {"cairo", "gdk", "console"};
    return word.back() != ':' || word.find(kRoads[static_cast<int>(road())]) != std::string::npos;
  }

  // @VERSION of the host; -SERVICE that it lacks, -padding of rows, -sizes of blocks; SERVICE#N, whose Nth
  // use fails; N!ODDITY of the Nth picture.
  void takeCondition(const std::string& word, std::vector<std::function<void(Scene&)>>& conditions) {
    static const std::map<std::string, void (*)(host::PictureOddities&)> kOddities = {
        {"copied", [](host::PictureOddities& o) { o.refusesLock = true; }},
        {"unlockable", [](host::PictureOddities& o) { o.refusesLock = o.copiesRefuseToo = true; }},
        {"empty", [](host::PictureOddities& o) { o.describedWidth = 0; }}};
    const size_t mark = word.find_first_of("@-#!:");
    const std::string before = word.substr(0, mark), after = word.substr(mark + 1);
    host::Settings settings = settingsForRoad();
    if (word[mark] == '@') {
      settings.version = std::stod(after);
      begin(settings);
    }
    if (word == "-padding") {
      settings.rowPadding = 0;
      begin(settings);
    } else if (word == "-sizes") {
      conditions.emplace_back([](Scene& scene) { scene.reportNoSizes(); });
    } else if (word[mark] == '-') {
      conditions.emplace_back([=](Scene&) { host::removeEntryPoint(after); });
    } else if (word[mark] == '#') {
      conditions.emplace_back([=](Scene&) { host::failAt(before, std::stoi(after)); });
    } else if (word[mark] == '!') {
      conditions.emplace_back([=](Scene& scene) {
        kOddities.at(after)(host::oddities(scene.pictures().at(std::stoul(before) - 1).get()));
      });
    }
  }

  // RESULT and byref arguments, and the receiver's pixels behind ';'; or an exception.
  void compareAnswer(const Member& member, Words words, const Outcome& got) {
    if (words[0] == "raises") {
      std::string message = "NilObjectException:";
      for (size_t i = 1; i < words.size(); ++i) message += " " + words[i];
      if (got.raised != message) fail("wanted " + message + "\ngot " + got.raised);
      return;
    }
    const std::vector<host::Parameter> parameters = parametersOf(member);
    const auto compareNext = [&](const host::Parameter& parameter, const Value& value) {
      if (words.empty()) throw std::invalid_argument("an answer is missing: " + parameter.name);
      const Value wanted = comparable(parsed(parameter, words[0]), parameter.name != "receiver");
      if (!areSame(wanted, comparable(value, false)))
        fail("wanted " + written(wanted) + "\ngot " + written(value));
      words.erase(words.begin());
    };
    host::Parameter result;
    result.type = member.assigns ? host::Type::none : member.method().declaration.result;
    if (result.type != host::Type::none) compareNext(result, got.result);
    for (size_t i = 0; i < parameters.size(); ++i) {
      if (parameters[i].byRef) compareNext(parameters[i], got.arguments[i]);
    }
    if (words.empty()) return;
    if (words[0] != ";" || words.size() != 2) throw std::invalid_argument("too many answers");
    words.erase(words.begin());
    compareNext(parameters[0], got.arguments[0]);
  }

  void fail(const std::string& what) {
    std::string text;
    for (const std::string& word : words_) text += word + " ";
    ADD_FAILURE_AT(file_.c_str(), line_) << text << '\n' << what;
  }

  const std::string file_;
  const int line_;
  Words words_;
};

const bool kHaveCases = [] {
  for (const auto& entry : std::filesystem::directory_iterator(ZVR_SOURCE_DIR "/tests/cases")) {
    if (entry.path().extension() != ".txt") continue;
    std::ifstream file(entry.path());
    int number = 1;
    for (std::string text; std::getline(file, text); ++number) {
      if (text.empty() || text[0] == '#') continue;
      const std::string path = entry.path();
      testing::RegisterTest(entry.path().stem().c_str(), std::to_string(number).c_str(), nullptr, nullptr,
                            path.c_str(), number,
                            [=]() -> HostTest* { return new CaseLine(path, number, text); });
    }
  }
  return true;
}();

// ---- Random calls ----

// The X server of the GDK road takes its time.
int rounds() { return kIsSanitized ? 40 : isGdk() ? 60 : 90; }

class RandomCalls : public EverySetTest, public ::testing::WithParamInterface<std::string> {};

TEST_P(RandomCalls, AnswerAsDefined) {
  int answered = 0;
  const std::vector<Member> members = everyMember();
  host::Settings settings = settingsForRoad();
  for (int round = 0; round < rounds(); ++round) {
    // Rows with padding and without.
    if (round == rounds() / 2) settings.rowPadding = 0;
    if (round % (rounds() / 2) == 0) begin(settings);
    for (const Member& member : members) {
      if (member.definition() != GetParam()) continue;
      Random random(static_cast<uint32_t>(round));
      // The mask's definition starts over and over.
      const Call call = makeCall(member, random, GetParam() == "ExtractColorRectangleMaskZVR" ? 40 : 600);
      const std::optional<Outcome> expected = promised(call);
      if (!expected) continue;
      onEverySet([&] {
        const std::string wrong = difference(*expected, outcomeOf(call));
        ASSERT_TRUE(wrong.empty()) << "round " << round << ": " << call.describe() << '\n' << wrong;
      });
      answered += !isNull(call, *expected);
    }
  }
  const bool changesPictures = GetParam().rfind("Scroll", 0) == 0;  // which drawables refuse
  EXPECT_TRUE(answered >= rounds() / 8 || (changesPictures && isGdk())) << "hardly anything but nil";
}

class EveryColor : public EverySetTest, public ::testing::WithParamInterface<std::string> {};

// All 2^24 colours, where kernels compute more coarsely and then decide what is right. It takes a minute, so
// only
// --gtest_also_run_disabled_tests runs it.
TEST_P(EveryColor, DISABLED_AnswersAsDefined) {
  Pixels colors(4096, 4096, Rgb{0});
  for (uint32_t& word : colors.colors) word = static_cast<uint32_t>(&word - colors.colors.data());
  int answered = 0;
  for (uint32_t round = 0; round < 12; ++round) {
    for (const Member& member : everyMember()) {
      if (member.definition() != GetParam()) continue;
      Random random(round);
      Call call = makeCall(member, random, 1);
      for (Value& argument : call.arguments) {
        if (std::holds_alternative<Pixels>(argument)) argument = colors;
      }
      const std::optional<Outcome> expected = promised(call);
      if (!expected || isNull(call, *expected)) continue;
      onEverySet([&] {
        const std::string wrong = difference(*expected, outcomeOf(call));
        ASSERT_TRUE(wrong.empty()) << "round " << round << ": " << wrong;
      });
      ++answered;
    }
  }
  EXPECT_GT(answered, 4);
}

INSTANTIATE_TEST_SUITE_P(Methods, EveryColor, ::testing::Values("TintPictureZVR", "PictureLut3DZVR"),
                         [](const auto& tested) { return tested.param; });

using Definitions = HostTest;

TEST_F(Definitions, EveryMethodHasOne) {
  const std::vector<std::string> names = modelledMethods();
  for (const Member& member : everyMember()) {
    const std::string name = member.definition();
    EXPECT_TRUE(name.empty() || std::find(names.begin(), names.end(), name) != names.end()) << member.text;
  }
}

INSTANTIATE_TEST_SUITE_P(Methods, RandomCalls, ::testing::ValuesIn(modelledMethods()),
                         [](const auto& tested) { return tested.param; });

}  // namespace
