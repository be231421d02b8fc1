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
class Declarations : public testing::TestWithParam<Parsed> {};

TEST_P(Declarations, areRead) {
  const Declaration declaration = parseDeclaration(GetParam().text);
  EXPECT_EQ(summary(declaration), GetParam().expected);
  EXPECT_EQ(declaration.required(), GetParam().required);
}

INSTANTIATE_TEST_SUITE_P(
    Forms, Declarations,
    testing::Values(
        Parsed{"Close", "Close->nothing", 0}, Parsed{"Run as boolean", "Run->Boolean", 0},
        Parsed{"X() As INTEGER", "X->Integer", 0},
        Parsed{"  X ( a  as  string )  ", "X|a:String->nothing", 1},
        Parsed{"InvertZVR(left as integer,top as integer) as picture",
               "InvertZVR|left:Integer|top:Integer->Picture", 2},
        Parsed{"FindPictureZVR(pic as picture, byref x as integer, ByRef y as integer) as boolean",
               "FindPictureZVR|pic:Picture|byref x:Integer|byref y:Integer->Boolean", 3},
        Parsed{"R(b as memoryblock, c as color=&c88B5C4, Bits as Integer = 8 ,AutoScale as boolean = false) "
               "as Picture",
               "R|b:MemoryBlock|c:Color=&c88B5C4|Bits:Integer=8|AutoScale:Boolean=false->Picture", 1},
        Parsed{"T(dest as picture = nil) as picture", "T|dest:Picture=nil->Picture", 0},
        Parsed{"Table(r as UInt32, x as UInt32) as double", "Table|r:UInt32|x:UInt32->Double", 2},
        // Words of the language may begin a name.
        Parsed{"asX(byrefs as integer, ast as double)", "asX|byrefs:Integer|ast:Double->nothing", 2}));

struct Malformed {
  const char *text, *expected, *position, *found;
};
class MalformedDeclarations : public testing::TestWithParam<Malformed> {};

TEST_P(MalformedDeclarations, areRefusedWithPlaceAndExpectation) {
  try {
    parseDeclaration(GetParam().text);
    FAIL() << "accepted";
  } catch (const std::invalid_argument& error) {
    const std::string message = error.what();
    for (const std::string& part : {std::string("expected ") + GetParam().expected,
                                    std::string("at position ") + GetParam().position + ",",
                                    std::string("found ") + GetParam().found}) {
      EXPECT_NE(message.find(part), std::string::npos) << message << " lacks " << part;
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Broken, MalformedDeclarations,
                         testing::Values(Malformed{"", "a name", "1", "the end"},
                                         Malformed{"1X", "a name", "1", "'1X'"},
                                         Malformed{"X(", "the name of a parameter", "3", "the end"},
                                         Malformed{"X(a)", "'as'", "4", "')'"},
                                         Malformed{"X(a as foo)", "a type", "8", "'foo'"},
                                         Malformed{"X(a as integer", "',' or ')'", "15", "the end"},
                                         Malformed{"X(a as integer,)", "the name", "16", "')'"},
                                         Malformed{"X(a as integer = )", "a default", "18", "')'"},
                                         Malformed{"X as", "a type", "5", "the end"},
                                         Malformed{"X as boolean y", "the end", "14", "'y'"},
                                         Malformed{"X y", "'(', 'as' or the end", "3", "'y'"}));

TEST(Names, distanceFavoursPartsAndTypingErrors) {
  EXPECT_EQ(nameDistance("invertzvr", "InvertZVR"), 1U);  // the whole name counts as a part of it
  EXPECT_EQ(nameDistance("Brightness", "ChangeBrightnessLinearZVR"), 1U);
  EXPECT_EQ(nameDistance("InvrtZVR", "InvertZVR"), 1U);
  EXPECT_EQ(nameDistance("Invret", "InvertZVR"), 2U);
  EXPECT_GT(nameDistance("FindPictureZVR", "InvertZVR"), 5U);
}

// ---- Words ----

struct Word {
  Type type;
  const char* word;
  std::optional<double> number;  // of integers, doubles, booleans and colours; nothing: refused
};
class Words : public testing::TestWithParam<Word> {};

std::optional<double> numberOf(const Value& value) {
  if (const auto* integer = std::get_if<int64_t>(&value)) return static_cast<double>(*integer);
  if (const auto* real = std::get_if<double>(&value)) return *real;
  if (const auto* flag = std::get_if<bool>(&value)) return *flag ? 1 : 0;
  if (const auto* color = std::get_if<Color>(&value)) return color->rgb;
  return std::nullopt;
}

TEST_P(Words, becomeValues) {
  Parameter parameter;
  parameter.name = "amount";
  parameter.type = GetParam().type;
  if (GetParam().number) {
    EXPECT_EQ(numberOf(parseValue(parameter, GetParam().word)), GetParam().number) << GetParam().word;
    return;
  }
  try {
    parseValue(parameter, GetParam().word);
    FAIL() << GetParam().word << " accepted";
  } catch (const std::invalid_argument& error) {
    const std::string message = error.what();
    EXPECT_EQ(message.find(std::string("amount: '") + GetParam().word + "' is not a"), 0U) << message;
  }
}

constexpr double kInfinity = std::numeric_limits<double>::infinity();
INSTANTIATE_TEST_SUITE_P(
    Numbers, Words,
    testing::Values(Word{Type::integer, "-5", -5}, Word{Type::integer, "+7", 7},
                    Word{Type::integer, "&hff", 255}, Word{Type::integer, "2147483647", 2147483647},
                    Word{Type::integer, "-2147483648", -2147483648.0}, Word{Type::integer, "2147483648", {}},
                    Word{Type::integer, "&hFFFFFFFF", -1}, Word{Type::integer, "&h1FFFFFFFF", {}},
                    Word{Type::integer, "&h-1", {}}, Word{Type::integer, "1.5", {}},
                    Word{Type::integer, "5 ", {}}, Word{Type::integer, "", {}},
                    Word{Type::integer, "+-5", {}}, Word{Type::integer, "nil", {}},
                    Word{Type::uint32, "4294967295", 4294967295.0},
                    Word{Type::uint32, "&hFFFFFFFF", 4294967295.0}, Word{Type::uint32, "-1", {}},
                    Word{Type::real, "0.2", 0.2}, Word{Type::real, "-1e3", -1000},
                    Word{Type::real, "inf", kInfinity}, Word{Type::real, "-inf", -kInfinity},
                    Word{Type::real, "0,2", {}}, Word{Type::real, "1e999", {}}, Word{Type::real, "", {}}));
INSTANTIATE_TEST_SUITE_P(Others, Words,
                         testing::Values(Word{Type::boolean, "TRUE", 1}, Word{Type::boolean, "no", 0},
                                         Word{Type::boolean, "1", 1}, Word{Type::boolean, "2", {}},
                                         Word{Type::color, "&c88B5C4", 0x88B5C4},
                                         Word{Type::color, "#ff8000", 0xFF8000},
                                         Word{Type::color, "&c88B5C", {}}, Word{Type::color, "&c88B5C4F", {}},
                                         Word{Type::color, "#-10000", {}}, Word{Type::color, "red!", {}}));

TEST(Words, ofObjectsAreNilAlone) {
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

Method methodOf(const char* declaration, void* function, void* setter = nullptr) {
  Method method;
  method.text = declaration;
  method.declaration = parseDeclaration(declaration);
  method.function = function;
  method.setter = setter;
  return method;
}
template <typename F>
void* address(F* function) {
  return reinterpret_cast<void*>(function);
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

struct Seen {
  REALobjectStruct* receiver;
  int32_t integer;
  uint32_t word;
  double real;
  int32_t flag;
  RBColor color;
} seen;

double takesAll(REALobjectStruct* receiver, int32_t i, uint32_t u, double d, int32_t b, RBColor c) {
  seen = {receiver, i, u, d, b, c};
  return d / 2;
}

TEST_F(Calls, passEveryType) {
  const Method method =
      methodOf("All(i as integer, u as uint32, d as double, b as boolean, c as color = &c010203) as double",
               address(takesAll));
  const PictureRef receiver = newPicture(1, 1);
  const Outcome outcome = call(method, receiver.get(), {int64_t{-5}, int64_t{0xFFFFFFFF}, 0.7, true});
  EXPECT_EQ(std::get<double>(outcome.result), 0.35);
  EXPECT_EQ(seen.receiver, receiver.get());
  EXPECT_EQ(seen.integer, -5);
  EXPECT_EQ(seen.word, 0xFFFFFFFF);
  EXPECT_EQ(seen.real, 0.7);
  EXPECT_EQ(seen.flag, 1);
  EXPECT_EQ(seen.color, 0x010203U);
  EXPECT_FALSE(outcome.exception);
}

TEST_F(Calls, refuseWhatDoesNotFit) {
  const Method method = methodOf("M(i as integer, u as uint32 = 1)", address(takesAll));
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
  const Outcome outcome = call(methodOf("B as boolean", address(answersDirtyFalse)), nullptr, {});
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
      address(changesReferences));
  const MemoryBlockRef replaced = newMemoryBlock("x", 1), kept = newMemoryBlock("y", 1);
  const Outcome outcome = call(method, nullptr, {std::monostate{}, replaced, kept, int64_t{1}});
  ASSERT_EQ(outcome.arguments.size(), 4U);
  EXPECT_EQ(memoryBlockSize(std::get<MemoryBlockRef>(outcome.arguments[0]).get()), 3U);
  EXPECT_EQ(memoryBlockSize(std::get<MemoryBlockRef>(outcome.arguments[1]).get()), 2U);
  EXPECT_EQ(std::get<MemoryBlockRef>(outcome.arguments[2]).get(), kept.get());
  EXPECT_EQ(std::get<int64_t>(outcome.arguments[3]), 42);
  EXPECT_EQ(references(replaced.get()), 1);  // what the caller held stays the caller's
  EXPECT_EQ(references(kept.get()), 2);
}

void storesThenThrows(REALobjectStruct*, REALmemoryBlockStruct** block) {
  *block = newMemoryBlock("abc", 3).leak();
  throw Unwound{};
}

TEST_F(Calls, unwindThroughTheForeignFrame) {
  const Method method = methodOf("U(byref a as memoryblock)", address(storesThenThrows));
  EXPECT_THROW(call(method, nullptr, {}), Unwound);
}

REALpictureStruct* answersPicture(REALobjectStruct*) { return newPicture(3, 2).leak(); }
REALpictureStruct* setTo = nullptr;
void setsPicture(REALobjectStruct*, int32_t, REALpictureStruct* value) { setTo = value; }

TEST_F(Calls, adoptResultsAndAssignValues) {
  const Outcome outcome = call(methodOf("P as picture", address(answersPicture)), nullptr, {});
  const auto& picture = std::get<PictureRef>(outcome.result);
  EXPECT_EQ(references(picture.get()), 1);
  const Method property =
      methodOf("P(swap as boolean) as picture", address(answersPicture), address(setsPicture));
  assign(property, nullptr, {false}, picture);
  EXPECT_EQ(setTo, picture.get());
  EXPECT_EQ(references(picture.get()), 1);
}

}  // namespace
