// Declarations of the dialect, a person's words as values, and calls of functions by declaration.

#include <fstream>
#include <sstream>

#include "tests/support.h"
#include "tests/written_declaration.h"

namespace {

using namespace host;

// ---- Declarations and words ----

// What an attempt answers, or its complaint.
template <typename Attempt>
std::string answerOf(const Attempt& attempt) {
  try {
    return attempt();
  } catch (const std::invalid_argument& error) {
    return error.what();
  }
}

std::string shown(const host::Value& value) {
  std::ostringstream text;
  if (const auto* integer = std::get_if<int64_t>(&value)) text << *integer;
  if (const auto* real = std::get_if<double>(&value)) text << *real;
  if (const auto* flag = std::get_if<bool>(&value)) text << std::boolalpha << *flag;
  if (const auto* color = std::get_if<Color>(&value)) text << '#' << std::hex << color->rgb;
  return std::holds_alternative<std::monostate>(value) ? "nil" : text.str();
}

void expectValues(std::istringstream& words, const std::string& description) {
  std::string type;
  std::getline(words, type, ':');
  const Parameter amount = parseDeclaration("X(amount as " + type + ")").parameters.at(0);
  for (std::string word; words >> word && word != "|";) {
    const size_t sign = word.rfind('=');
    const std::string given = word.substr(0, sign), value = word.substr(sign + 1);
    EXPECT_EQ(answerOf([&] { return shown(parseValue(amount, given)); }),
              value == "?" ? "amount: '" + given + "' is not " + description : value);
  }
}

TEST(Declarations, AndWordsAreReadOrRefused) {
  std::ifstream file(ZVR_SOURCE_DIR "/tests/declarations.txt");
  ASSERT_TRUE(file);
  for (std::string line; std::getline(file, line);) {
    if (line[0] == '#') continue;
    SCOPED_TRACE(line);
    std::istringstream words(line);
    const size_t arrow = line.find(" => ");
    if (arrow == std::string::npos) {
      expectValues(words, line.substr(line.find('|') + 2));
      continue;
    }
    const std::string text = line.substr(0, arrow), wanted = line.substr(arrow + 4);
    const std::string answer = answerOf([&] { return written(parseDeclaration(text)); });
    EXPECT_TRUE(answer == wanted || answer == "declaration \"" + text + "\": " + wanted) << answer;
  }
}

TEST(Names, AreNearWhenAPartOrMistyped) {
  EXPECT_EQ(nameDistance("invertzvr", "InvertZVR"), 1U);  // the whole name counts as a part of it
  EXPECT_EQ(nameDistance("Brightness", "ChangeBrightnessLinearZVR"), 1U);
  EXPECT_EQ(nameDistance("InvrtZVR", "InvertZVR"), 1U);
  EXPECT_EQ(nameDistance("Invret", "InvertZVR"), 2U);
  EXPECT_EQ(nameDistance("FindPictureZVR", "InvertZVR"), 8U);
}

// ---- Calls ----

uint32_t answersFalse(REALobjectStruct*, int32_t, uint32_t) { return 0xABCDEF00; }  // in the byte that counts

TEST(Calls, FitTheDeclaration) {
  Method method;
  method.declaration = parseDeclaration("M(i as integer, u as uint32 = 1) as boolean");
  method.function = reinterpret_cast<void*>(answersFalse);
  const host::Value one = int64_t{1}, tooLarge = int64_t{0x80000000}, negative = int64_t{-1};
  EXPECT_EQ(shown(call(method, nullptr, {one}).result), "false");
  for (const std::vector<host::Value>& arguments :
       {std::vector<host::Value>{}, {one, one, one}, {0.5}, {tooLarge}, {one, negative}})
    EXPECT_THROW(call(method, nullptr, arguments), std::invalid_argument) << arguments.size();
  EXPECT_THROW(assign(method, nullptr, {one}, true), std::invalid_argument);
}

}  // namespace
