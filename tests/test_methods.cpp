// Every method against its definition: the case lines of tests/cases, and random calls.

#include <dlfcn.h>

#include <algorithm>
#include <filesystem>
#include <fstream>

#include "tests/chosen_kernels.h"
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

// Calls on every instruction set of this processor.
class MethodTest : public HostTest {
 protected:
  void SetUp() override {
    begin(settingsForRoad(), ZVR_FAULTY_PLUGIN);
    void* library = dlopen(ZVR_FAULTY_PLUGIN, RTLD_NOW | RTLD_NOLOAD);
    kernels_ = reinterpret_cast<ChosenKernels* (*)()>(dlsym(library, "chosenKernels"))();
    dlclose(library);
  }
  // What differs from the definition, or nothing.
  std::string wrongIn(const Call& call, const Outcome& expected) {
    for (kernels_->index = 0; kernels_->index < kernels_->count; ++kernels_->index) {
      Scene scene(call);
      scene.run();
      const std::string wrong = difference(expected, scene.outcome());
      if (!wrong.empty()) return "instruction set " + std::to_string(kernels_->index) + ", " + wrong;
    }
    return {};
  }

 private:
  ChosenKernels* kernels_ = nullptr;
};

// A line of a file in tests/cases.
class CaseLine : public MethodTest {
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
    if (words_[0].back() == ':') {
      constexpr const char* kRoads[] = {"cairo", "gdk", "console"};
      if (words_[0].find(kRoads[static_cast<int>(road())]) == std::string::npos) return;
      words_.erase(words_.begin());
    }
    const auto arrow = std::find(words_.begin(), words_.end(), "->");
    const Call call = parsedCall({words_.begin(), arrow});
    const Outcome expected = promised(call).value();
    const std::string wrong = wrongIn(call, expected);
    if (!wrong.empty()) fail("by the definition " + wrong);
    if (arrow != words_.end()) compareAnswer(call.member, {arrow + 1, words_.end()}, expected);
  }

  // RESULT and byref arguments, and the receiver's pixels behind ';'; or an exception.
  void compareAnswer(const Member& member, Words words, const Outcome& expected) {
    if (words[0] == "raises") {
      std::string message = "NilObjectException:";
      for (size_t i = 1; i < words.size(); ++i) message += " " + words[i];
      if (expected.raised != message) fail("wanted " + message + "\ngot " + expected.raised);
      return;
    }
    const std::vector<host::Parameter> parameters = parametersOf(member);
    const auto compareNext = [&](const host::Parameter& parameter, const Value& value) {
      if (words.empty()) throw std::invalid_argument("an answer is missing: " + parameter.name);
      const Value wanted = comparable(parsed(parameter, words[0]), parameter.name != "receiver");
      if (!(wanted == comparable(value, false)))
        fail("wanted " + written(wanted) + "\ngot " + written(value));
      words.erase(words.begin());
    };
    host::Parameter result;
    result.type = member.kind == Member::Kind::assign ? host::Type::none : member.method().declaration.result;
    if (result.type != host::Type::none) compareNext(result, expected.result);
    for (size_t i = 0; i < parameters.size(); ++i) {
      if (parameters[i].byRef) compareNext(parameters[i], expected.arguments[i]);
    }
    if (words.empty()) return;
    if (words[0] != ";" || words.size() != 2) throw std::invalid_argument("too many answers");
    words.erase(words.begin());
    compareNext(parameters[0], expected.arguments[0]);
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

#ifdef ZVR_SANITIZED
constexpr int kRounds = 40;
#else
constexpr int kRounds = 120;
#endif

class RandomCalls : public MethodTest, public ::testing::WithParamInterface<std::string> {};

TEST_P(RandomCalls, AnswerAsDefined) {
  int answered = 0;
  for (const Member& member : everyMember()) {
    if (member.isOfClass() || member.name() != GetParam()) continue;
    for (int round = 0; round < kRounds; ++round) {
      Random random(static_cast<uint32_t>(round));
      // The mask's definition starts over and over.
      const Call call = makeCall(member, random, GetParam() == "ExtractColorRectangleMaskZVR" ? 40 : 1300);
      const std::optional<Outcome> expected = promised(call);
      if (!expected) continue;
      const std::string wrong = wrongIn(call, *expected);
      ASSERT_TRUE(wrong.empty()) << "round " << round << ": " << call.describe() << '\n' << wrong;
      answered += !isNull(call, *expected);
    }
  }
  const bool changesPictures = GetParam().rfind("Scroll", 0) == 0;  // which drawables refuse
  EXPECT_TRUE(answered >= kRounds / 8 || (changesPictures && isGdk())) << "hardly anything but nil";
}

INSTANTIATE_TEST_SUITE_P(Methods, RandomCalls, ::testing::ValuesIn(modelledMethods()),
                         [](const auto& tested) { return tested.param; });

}  // namespace
