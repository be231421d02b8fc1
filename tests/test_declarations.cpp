// Declarations of the dialect, a person's words as values, and calls of functions by declaration.

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "host/calls.h"

namespace {

using namespace host;

// ---- Declarations ----

// A declaration written out again: "Name|byref x:Integer=10|...:Result".
std::string summary(const Declaration& declaration) {
  std::string text = declaration.name;
  for (const Parameter& p : declaration.parameters) {
    text += std::string("|") + (p.byRef ? "byref " : "") + p.name + ":" + typeName(p.type);
    if (p.hasDefault) text += "=" + p.defaultText;
  }
  return text + "->" + typeName(declaration.result);
}

struct Parsed {
  const char *text, *expected;
  size_t required;
};
const Parsed kDeclarations[] = {
    {"Close", "Close->nothing", 0},
    {"Run as boolean", "Run->Boolean", 0},
    {"X() As INTEGER", "X->Integer", 0},
    {"  X ( a  as  string )  ", "X|a:String->nothing", 1},
    {"F(pic as picture, byref x as integer, ByRef y as uint32) as double",
     "F|pic:Picture|byref x:Integer|byref y:UInt32->Double", 3},
    {"R(b as memoryblock, c as color=&c88B5C4, Bits as Integer = 8 ,AutoScale as boolean = false) as Picture",
     "R|b:MemoryBlock|c:Color=&c88B5C4|Bits:Integer=8|AutoScale:Boolean=false->Picture", 1},
    {"T(dest as picture = nil) as picture", "T|dest:Picture=nil->Picture", 0},
    // Words of the language may begin a name.
    {"asX(byrefs as integer, ast as double)", "asX|byrefs:Integer|ast:Double->nothing", 2},
};

TEST(Declarations, areRead) {
  for (const Parsed& c : kDeclarations) {
    const Declaration declaration = parseDeclaration(c.text);
    EXPECT_EQ(summary(declaration), c.expected);
    EXPECT_EQ(declaration.required(), c.required) << c.text;
  }
}

// The message of a call that refuses; empty when it doesn't.
template <typename Refusing>
std::string complaint(const Refusing& refusing) {
  try {
    refusing();
  } catch (const std::invalid_argument& error) {
    return error.what();
  }
  return {};
}

const struct {
  const char *text, *expected, *position, *found;
} kMalformed[] = {
    {"", "a name", "1", "the end"},
    {"1X", "a name", "1", "'1X'"},
    {"X(", "the name of a parameter", "3", "the end"},
    {"X(a)", "'as'", "4", "')'"},
    {"X(a as foo)", "a type", "8", "'foo'"},
    {"X(a as integer", "',' or ')'", "15", "the end"},
    {"X(a as integer,)", "the name", "16", "')'"},
    {"X(a as integer = )", "a default", "18", "')'"},
    {"X as", "a type", "5", "the end"},
    {"X as boolean y", "the end", "14", "'y'"},
    {"X y", "'(', 'as' or the end", "3", "'y'"},
};

TEST(Declarations, areRefusedWithPlaceAndExpectation) {
  for (const auto& c : kMalformed) {
    const std::string message = complaint([&] { parseDeclaration(c.text); });
    for (const std::string& part :
         {std::string("expected ") + c.expected, std::string("at position ") + c.position + ",",
          std::string("found ") + c.found}) {
      EXPECT_NE(message.find(part), std::string::npos) << message << " lacks " << part;
    }
  }
}

TEST(Names, distanceFavoursPartsAndTypingErrors) {
  EXPECT_EQ(nameDistance("invertzvr", "InvertZVR"), 1U);  // the whole name counts as a part of it
  EXPECT_EQ(nameDistance("Brightness", "ChangeBrightnessLinearZVR"), 1U);
  EXPECT_EQ(nameDistance("InvrtZVR", "InvertZVR"), 1U);
  EXPECT_EQ(nameDistance("Invret", "InvertZVR"), 2U);
  EXPECT_GT(nameDistance("FindPictureZVR", "InvertZVR"), 5U);
}

// ---- Words ----

constexpr double kInfinity = std::numeric_limits<double>::infinity();
const struct {
  Type type;
  std::vector<std::pair<const char*, double>> words;
  std::vector<const char*> refused;
} kWords[] = {
    {Type::integer,
     {{"-5", -5},
      {"+7", 7},
      {"&hff", 255},
      {"2147483647", INT32_MAX},
      {"-2147483648", INT32_MIN},
      {"&hFFFFFFFF", -1}},
     {"2147483648", "&h1FFFFFFFF", "&h-1", "1.5", "5 ", "", "+-5", "nil"}},
    {Type::uint32, {{"4294967295", UINT32_MAX}, {"&hFFFFFFFF", UINT32_MAX}}, {"-1"}},
    {Type::real,
     {{"0.2", 0.2}, {"-1e3", -1000}, {"inf", kInfinity}, {"-inf", -kInfinity}},
     {"0,2", "1e999", ""}},
    {Type::boolean, {{"TRUE", 1}, {"no", 0}, {"1", 1}}, {"2"}},
    {Type::color,
     {{"&c88B5C4", 0x88B5C4}, {"#ff8000", 0xFF8000}},
     {"&c88B5C", "&c88B5C4F", "#-10000", "red!"}},
};

std::optional<double> numberOf(const Value& value) {
  if (const auto* integer = std::get_if<int64_t>(&value)) return static_cast<double>(*integer);
  if (const auto* real = std::get_if<double>(&value)) return *real;
  if (const auto* flag = std::get_if<bool>(&value)) return *flag ? 1 : 0;
  if (const auto* color = std::get_if<Color>(&value)) return color->rgb;
  return std::nullopt;
}

TEST(Words, becomeValues) {
  Parameter parameter;
  parameter.name = "amount";
  for (const auto& [type, words, refused] : kWords) {
    parameter.type = type;
    for (const auto& [word, number] : words) EXPECT_EQ(numberOf(parseValue(parameter, word)), number) << word;
    for (const char* word : refused) {
      const std::string message = complaint([&] { parseValue(parameter, word); });
      EXPECT_EQ(message.find(std::string("amount: '") + word + "' is not a"), 0U) << message;
    }
  }
}

TEST(Words, ofObjectsAreOnlyNil) {
  for (const Type type : {Type::picture, Type::memoryBlock, Type::object}) {
    Parameter parameter;
    parameter.type = type;
    EXPECT_TRUE(std::holds_alternative<std::monostate>(parseValue(parameter, "NIL")));
    EXPECT_THROW(parseValue(parameter, "photo.png"), std::invalid_argument);
  }
}

TEST(Words, mayBeNoNumber) {
  Parameter parameter;
  parameter.type = Type::real;
  EXPECT_TRUE(std::isnan(std::get<double>(parseValue(parameter, "nan"))));
}

// ---- Calls ----

template <typename F>
Method methodOf(const char* declaration, F* function) {
  Method method;
  method.text = declaration;
  method.declaration = parseDeclaration(declaration);
  method.function = reinterpret_cast<void*>(function);
  return method;
}

class Calls : public testing::Test {
 protected:
  void SetUp() override {
    Settings settings;
    settings.road = Road::console;
    start(settings);
  }
  void TearDown() override { EXPECT_EQ(held(), Ledger{}) << describeHeld(); }
};

double takesNumbers(REALobjectStruct*, int32_t, uint32_t) { return 0; }

TEST_F(Calls, refuseWhatDoesNotFit) {
  const Method method = methodOf("M(i as integer, u as uint32 = 1)", takesNumbers);
  EXPECT_THROW(call(method, nullptr, {}), std::invalid_argument);
  EXPECT_THROW(call(method, nullptr, {int64_t{1}, int64_t{1}, int64_t{1}}), std::invalid_argument);
  EXPECT_THROW(call(method, nullptr, {0.5}), std::invalid_argument);
  EXPECT_THROW(call(method, nullptr, {int64_t{0x80000000}}), std::invalid_argument);
  EXPECT_THROW(call(method, nullptr, {int64_t{1}, int64_t{-1}}), std::invalid_argument);
  EXPECT_THROW(assign(method, nullptr, {int64_t{1}}, int64_t{1}), std::invalid_argument);
}

// Registers carry more than the byte that counts.
uint32_t answersDirtyFalse(REALobjectStruct*) { return 0xABCDEF00; }

TEST_F(Calls, readOneByteOfBooleans) {
  const Outcome outcome = call(methodOf("B as boolean", answersDirtyFalse), nullptr, {});
  EXPECT_FALSE(std::get<bool>(outcome.result));
}

void changesReferences(REALobjectStruct*, REALmemoryBlockStruct** fresh, REALmemoryBlockStruct** given,
                       REALmemoryBlockStruct**, int32_t* count) {
  *fresh = newMemoryBlock("abc", 3).leak();
  *given = newMemoryBlock("de", 2).leak();
  *count += 41;
}

TEST_F(Calls, takeOverWhatIsStoredByReference) {
  const Method method = methodOf(
      "C(byref a as memoryblock, byref b as memoryblock, byref c as memoryblock, byref n as integer)",
      changesReferences);
  const MemoryBlockRef replaced = newMemoryBlock("x", 1), kept = newMemoryBlock("y", 1);
  const Outcome outcome = call(method, nullptr, {std::monostate{}, replaced, kept, int64_t{1}});
  ASSERT_EQ(outcome.arguments.size(), 4U);
  EXPECT_EQ(memoryBlockSize(std::get<MemoryBlockRef>(outcome.arguments[0]).get()), 3U);
  EXPECT_EQ(memoryBlockSize(std::get<MemoryBlockRef>(outcome.arguments[1]).get()), 2U);
  EXPECT_EQ(std::get<MemoryBlockRef>(outcome.arguments[2]).get(), kept.get());
  EXPECT_EQ(std::get<int64_t>(outcome.arguments[3]), 42);
  EXPECT_EQ(references(replaced.get()), 1);  // the caller's reference stays the caller's
  EXPECT_EQ(references(kept.get()), 2);
}

}  // namespace
