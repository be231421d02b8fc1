#include "tests/support.h"

#include <signal.h>

#include <algorithm>
#include <cstring>
#include <iostream>
#include <sstream>
#include <stdexcept>

namespace {

host::Road roadOfProcess = host::Road::cairo;

size_t area(int width, int height) { return static_cast<size_t>(width) * static_cast<size_t>(height); }

}  // namespace

host::Road road() { return roadOfProcess; }

host::Settings settingsForRoad() {
  host::Settings settings;
  settings.road = road();
  settings.freshPixel = kFreshPixel;
  settings.rowPadding = 12;
  settings.guardPages = true;
  return settings;
}

void PrintTo(const Pixels& pixels, std::ostream* out) {
  *out << pixels.width << " x " << pixels.height << std::hex;
  for (size_t i = 0; i < pixels.colors.size() && i < 16; ++i) *out << ' ' << pixels.colors[i];
  *out << std::dec;
}

host::PictureRef makePictureFromWords(int width, int height, const std::vector<uint32_t>& words, bool alpha) {
  host::PictureRef picture = host::newPicture(width, height, alpha);
  if (!picture) throw std::runtime_error("no picture");
  for (int y = 0; y < height; ++y) {
    std::memcpy(host::pictureRow(picture.get(), y), &words[area(width, y)], area(width, 1) * 4);
  }
  return picture;
}

host::PictureRef makePicture(const Pixels& pixels, bool alpha) {
  std::vector<uint32_t> words(pixels.colors);
  // Sources carry top bytes that no operation may take for a colour.
  for (size_t i = 0; i < words.size(); ++i) words[i] |= (i * 37 + 11) << 24;
  return makePictureFromWords(pixels.width, pixels.height, words, alpha);
}

std::vector<uint32_t> wordsOf(const host::PictureRef& picture) {
  const int width = host::pictureWidth(picture.get()), height = host::pictureHeight(picture.get());
  std::vector<uint32_t> words(area(width, height));
  for (int y = 0; y < height; ++y) {
    std::memcpy(&words[area(width, y)], host::pictureRow(picture.get(), y), area(width, 1) * 4);
  }
  return words;
}

Pixels colorsOf(const host::PictureRef& picture) {
  if (!picture) return {};
  std::vector<uint32_t> words = wordsOf(picture);
  for (uint32_t& word : words) word &= 0xFFFFFF;
  return {host::pictureWidth(picture.get()), host::pictureHeight(picture.get()), std::move(words)};
}

Pixels asWritten(Pixels expected) {
  if (road() == host::Road::gdk) {
    for (int x = 0; x < expected.width; ++x) expected.at(x, 0) = 0;
  }
  return expected;
}

Rgb unwrittenColor() { return road() == host::Road::gdk ? 0 : kFreshColor; }

uint32_t opaqueTopByte() { return road() == host::Road::console ? 0 : 0xFF; }

std::vector<host::Value> numbers(std::initializer_list<int64_t> values) {
  return {values.begin(), values.end()};
}

std::optional<Rgb> seenInRectangle(const Pixels& source, int left, int x, int y) {
  if (road() != host::Road::gdk) return source.at(x, y);
  const auto byte = [&](size_t at) { return source.colors[at / 3] >> (16 - 8 * (at % 3)) & 0xFF; };
  const auto at = static_cast<size_t>(y * source.width * 3 + left * 4 + (x - left) * 3);
  if (at + 3 > source.colors.size() * 3) return {};
  return byte(at) << 16 | byte(at + 1) << 8 | byte(at + 2);
}

void expectNilException(const host::Outcome& outcome, const std::string& message) {
  EXPECT_FALSE(std::get<host::PictureRef>(outcome.result)) << message;
  ASSERT_TRUE(outcome.exception) << message;
  EXPECT_EQ(outcome.exception->className, "NilObjectException");
  EXPECT_EQ(outcome.exception->message, message);
}

Rgb Random::color() {
  const int kind = between(0, 5);
  if (kind == 0) return chance(50) ? 0 : 0xFFFFFF;
  if (kind == 1) return static_cast<Rgb>(between(0, 255)) * 0x10101;                           // gray
  if (kind == 2) return static_cast<Rgb>(between(0, 255)) * 0x10101 ^ (1u << between(0, 23));  // nearly gray
  if (kind == 3) return rgb(chance(50) * 255, chance(50) * 255, chance(50) * 255);  // a corner of the cube
  return word() & 0xFFFFFF;
}

Pixels Random::pixels(int width, int height) {
  Pixels result(width, height, Rgb{0});
  const int longestRun = chance(50) ? 1 : 40;
  Rgb current = 0;
  int left = 0;
  for (Rgb& pixel : result.colors) {
    if (left-- <= 0) {
      current = color();
      left = between(0, longestRun - 1);
    }
    pixel = current;
  }
  return result;
}

int Random::side() {
  const int kind = between(0, 3);
  if (kind == 0) return 1;
  if (kind == 1) return between(1, 20);
  if (kind == 2) return between(60, 70);
  return chance(80) ? between(1, 200) : between(500, 530);
}

void HostTest::begin(const host::Settings& settings) {
  plugin_.reset();
  host::start(settings);
  plugin_ = std::make_unique<host::Plugin>(ZVR_PLUGIN);
}

void HostTest::beginAt(std::optional<double> version) {
  host::Settings settings = settingsForRoad();
  settings.version = version;
  begin(settings);
}

void HostTest::TearDown() {
  EXPECT_FALSE(host::takeException()) << "an exception is still pending";
  EXPECT_EQ(host::held(), leaves) << host::describeHeld();
  plugin_.reset();
}

host::Outcome HostTest::call(const std::string& name, REALobjectStruct* receiver,
                             std::vector<host::Value> arguments) {
  for (const host::Method* method : host::findMethods(name)) {
    const host::Declaration& declaration = method->declaration;
    if (arguments.size() >= declaration.required() && arguments.size() <= declaration.parameters.size()) {
      return host::call(*method, receiver, std::move(arguments));
    }
  }
  ADD_FAILURE() << "no method " << name << " takes " << arguments.size() << " arguments";
  return {};
}

host::PictureRef HostTest::callPicture(const std::string& name, const host::PictureRef& receiver,
                                       std::vector<host::Value> arguments) {
  host::Outcome outcome = call(name, receiver.get(), std::move(arguments));
  if (outcome.exception)
    ADD_FAILURE() << name << " raised " << outcome.exception->className << ": " << outcome.exception->message;
  const auto* picture = std::get_if<host::PictureRef>(&outcome.result);
  return picture ? *picture : host::PictureRef();
}

namespace {

// ---- How failures are told ----

// The running case, for handlers of signals.
std::string runningCase;
struct sigaction handlersBefore[NSIG];

void tellSignal(int signal) {
  std::cerr << "signal " << signal << " in " << runningCase << std::endl;
  if (describeRunning) std::cerr << describeRunning() << std::endl;
  sigaction(signal, &handlersBefore[signal], nullptr);  // and on to what would have happened
  if (signal == SIGABRT) raise(signal);                 // which may have been sent
}

// The first and last lines of a message, none of them endless.
std::string shortened(const std::string& message) {
  constexpr size_t kHead = 5, kTail = 3, kWidth = 300;
  std::vector<std::string> lines;
  std::istringstream stream(message);
  for (std::string line; std::getline(stream, line);) {
    if (line.empty() || line == "Google Test trace:") continue;
    lines.push_back(line.size() > kWidth ? line.substr(0, kWidth) + " ..." : line);
  }
  std::string text;
  for (size_t i = 0; i < lines.size(); ++i) {
    const bool isLeftOut = i >= kHead && i + kTail < lines.size();
    if (!isLeftOut) text += lines[i] + '\n';
    if (isLeftOut && i == kHead) text += "...\n";
  }
  return text;
}

// Ends a case at its second failure, or its first that is fatal, wherever that is found. Prints the first
// failures of all and the names of the cases that failed.
class FirstFailures : public testing::EmptyTestEventListener {
  void OnTestStart(const testing::TestInfo& test) override {
    runningCase = std::string(test.test_suite_name()) + '.' + test.name();
    failures_ = 0;
  }
  void OnTestPartResult(const testing::TestPartResult& result) override {
    if (!result.failed()) return;
    if (shown_++ < 2) {
      std::cerr << (result.file_name() ? result.file_name() : runningCase.c_str()) << ':'
                << result.line_number() << ": " << shortened(result.message());
    }
    // Without a file it is an exception that gtest is about to swallow.
    const bool isLast = ++failures_ == 2 || result.fatally_failed();
    if (isLast && result.file_name()) throw testing::AssertionException(result);
  }
  void OnTestEnd(const testing::TestInfo& test) override {
    if (test.result()->Failed() && ++cases_ <= 5) std::cerr << "FAILED " << runningCase << '\n';
  }
  void OnTestProgramEnd(const testing::UnitTest& tests) override {
    std::cout << tests.test_to_run_count() << " cases, " << cases_ << " failed, "
              << tests.skipped_test_count() << " skipped\n";
  }

  int shown_ = 0, failures_ = 0, cases_ = 0;
};

}  // namespace

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  const std::pair<const char*, host::Road> roads[] = {{"--road=cairo", host::Road::cairo},
                                                      {"--road=gdk", host::Road::gdk},
                                                      {"--road=console", host::Road::console}};
  for (int i = 1; i < argc; ++i) {
    const auto found = std::find_if(std::begin(roads), std::end(roads),
                                    [&](const auto& one) { return one.first == std::string(argv[i]); });
    if (found == std::end(roads)) {
      std::cerr << "unknown argument " << argv[i] << ", expected --road=cairo, gdk or console\n";
      return 2;
    }
    roadOfProcess = found->second;
  }
  auto& listeners = testing::UnitTest::GetInstance()->listeners();
  delete listeners.Release(listeners.default_result_printer());
  listeners.Append(new FirstFailures);
  for (const int signal : {SIGSEGV, SIGBUS, SIGILL, SIGFPE, SIGABRT}) {
    struct sigaction action = {};
    action.sa_handler = tellSignal;
    action.sa_flags = static_cast<int>(SA_ONSTACK);
    sigaction(signal, &action, &handlersBefore[signal]);
  }
  const int status = RUN_ALL_TESTS();
  if (testing::UnitTest::GetInstance()->test_to_run_count() > 0) return status;
  std::cerr << "no case was run\n";
  return 1;
}
