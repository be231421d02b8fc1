// Every wrapper around a host service: the name that it asks for, its answer when there is none, and the
// arguments that it hands on. The host here is a resolver of our own that offers nothing at first, then a
// function for each name that writes down how it is called.

#include <array>
#include <cstring>

#include "frame/arrays.h"
#include "frame/errors.h"
#include "frame/graphics.h"
#include "tests/linked.h"

namespace {

using Words = std::vector<uint32_t>;

bool offering;
std::vector<std::string> asked, offered;
struct Call {
  std::string service;
  Words words;  // more than there are arguments
};
std::vector<Call> calls;

constexpr char kLoadMethod[] = "REALLoadObjectMethod";

// The service of that number among those offered. One that gives methods gives itself.
template <size_t number>
uint64_t service(uint32_t a, uint32_t b, uint32_t c, uint32_t d, uint32_t e, uint32_t f, uint32_t g) {
  calls.push_back({offered[number], {a, b, c, d, e, f, g}});
  return offered[number] == kLoadMethod ? reinterpret_cast<uintptr_t>(&service<number>) : 0x0000000100000001;
}
template <size_t... numbers>
void* serviceAt(size_t number, std::index_sequence<numbers...>) {
  return reinterpret_cast<void*>(std::array{&service<numbers>...}.at(number));
}
void* resolver(const char* name) {
  asked.push_back(name);
  if (!offering) return nullptr;
  offered.push_back(name);
  return serviceAt(offered.size() - 1, std::make_index_sequence<100>());
}

// An argument behind those words, to which it is added. It tells its place, how wide it is and whether it is
// signed.
template <typename T>
T sample(Words& words) {
  T value;
  if constexpr (std::is_pointer_v<T>) {
    value = reinterpret_cast<T>(0x1010 * (words.size() + 1));
  } else {
    value = static_cast<T>(0x8796A5B4C3D2E1F0 - words.size());
  }
  const std::conditional_t<sizeof(T) < 4, int32_t, T> slot = value;
  words.resize(words.size() + sizeof slot / 4);
  std::memcpy(words.data() + words.size() - sizeof slot / 4, &slot, sizeof slot);
  return value;
}

struct Wrapper {
  std::string service, member;  // the member is the service's second argument
  std::function<bool()> call;   // whether there is an answer that is not 0
  Words arguments;
};

// Hands on its arguments; for a member, behind the member's name or to the method of that name.
template <typename Result, typename... Parameters>
Wrapper handsOn(const std::string& service, const std::string& member,
                std::function<Result(Parameters...)> wrapper) {
  Wrapper result{service, member, {}, {}};
  const std::tuple<Parameters...> arguments{sample<Parameters>(result.arguments)...};
  result.call = [=] {
    if constexpr (std::is_void_v<Result>) {
      std::apply(wrapper, arguments);
      return false;
    } else {
      return static_cast<bool>(std::apply(wrapper, arguments));
    }
  };
  return result;
}
// Of overloaded functions the one of that type.
template <typename Callable>
Wrapper hands(const std::string& service, const Callable& wrapper, const std::string& member = {}) {
  return handsOn(service, member, std::function(wrapper));
}
#define NAMED(wrapper) hands(#wrapper, wrapper)

// As the host knows them, byte for byte.
const std::string kRect = "( x as Integer, y as Integer, width as Integer, height as Integer";
const std::string kRound = kRect + ", ArcWidth as integer, ArcHeight as integer )";

using ObjectIsA = bool(REALobjectStruct*, REALclassRefStruct*);
using Lock = bool(REALpictureStruct*, REALpictureDescription*);
using LockType = bool(REALpictureStruct*, REALpictureDescription*, int32_t);
using Draw = void(REALgraphicsStruct*, REALpictureStruct*, const void*, int32_t);
using SetFont = void(REALgraphicsStruct*, REALstringStruct*);

template <typename... Wrappers>
std::vector<Wrapper> all(const Wrappers&... wrappers) {
  return {wrappers...};
}

// Those that registered methods or other tests use are missed there when they go wrong.
const auto kWrappers = all(
    hands("PluginRegisterBackgroundTask", REALRegisterBackgroundTask),
    hands("PluginUnregisterBackgroundTask", REALUnregisterBackgroundTask),
    hands("CreateInstance", REALnewInstanceWithClass), hands<ObjectIsA>("RuntimeObjectIsa", REALObjectIsA),
    hands("GetInterfaceRoutine", REALInterfaceRoutine),
    hands("PluginGetDelegateInvoker", REALGetDelegateInvoker), NAMED(REALinRuntime), NAMED(REALInDebugMode),
    NAMED(REALYieldToRB), hands("RuntimeMsgBox", REALMessageBox),
    hands("RuntimeStringCompare", REALCompareStrings), NAMED(REALGetFontEncoding),
    NAMED(REALGetPropValueDouble), NAMED(REALGetPropValueObject), NAMED(REALGetPropValueInt64),
    NAMED(REALGetPropValueUInt64), NAMED(REALGetPropValueUInt16), NAMED(REALGetPropValueInt16),
    NAMED(REALGetPropValueInt8), NAMED(REALGetPropValueSingle), NAMED(REALSetPropValueDouble),
    NAMED(REALSetPropValueObject), NAMED(REALSetPropValueUInt64), NAMED(REALSetPropValueInt64),
    NAMED(REALSetPropValueInt16), NAMED(REALSetPropValueUInt16), NAMED(REALSetPropValueInt8),
    hands("REALSetPropValueBoolean", REALSetPropValueUInt8), NAMED(REALSetPropValueBoolean),
    hands("StringToVariant", REALNewVariantString), hands("PtrToVariant", REALNewVariantPtr),
    hands("Int32ToVariant", REALNewVariantInteger), hands("DoubleToVariant", REALNewVariantDouble),
    hands("BooleanToVariant", REALNewVariantBoolean), hands("ColorToVariant", REALNewVariantColor),
    hands("UInt32ToVariant", REALNewVariantUInt32), hands("Int64ToVariant", REALNewVariantInt64),
    hands("UInt64ToVariant", REALNewVariantUInt64), hands("SingleToVariant", REALNewVariantSingle),
    hands<Lock>("lockPictureDescription", REALLockPictureDescription),
    hands<LockType>("REALLockPictureDescription", REALLockPictureDescription),
    hands("PtrToMemoryBlock", REALPtrToMemoryBlock), NAMED(REALBuildPictureFromGWorld), NAMED(REALGraphicsDC),
    hands<Draw>("REALDrawPicturePrimitive", REALDrawPicturePrimitive),
    hands("RuntimeGraphicsDrawString", REALGraphicsDrawString),
    hands("GetControlBounds", REALGetControlBounds), NAMED(REALGetControlGraphics),
    hands("getControlWindow", REALGetControlWindow), hands("GetTabPanelVisible", REALGetTabPanelVisible),
    NAMED(REALpathFromFolderItem), hands("REALGetPropValueInt", GetPictureWidth, "Width"),
    hands("REALGetPropValueInt", GetPictureHeight, "Height"),
    hands<SetFont>("REALSetPropValueString", SetGraphicsTextFont, "TextFont"),
    hands("REALSetPropValueInt", SetGraphicsTextSize, "TextSize"),
    hands("REALSetPropValueInt", SetGraphicsPenHeight, "PenHeight"),
    hands("REALSetPropValueInt", SetGraphicsPenWidth, "PenWidth"),
    hands("REALSetPropValueBoolean", SetGraphicsUnderline, "Underline"),
    hands("REALSetPropValueBoolean", SetGraphicsItalic, "Italic"),
    hands("REALSetPropValueBoolean", SetGraphicsBold, "Bold"),
    hands("REALSetPropValueUInt32", SetGraphicsForeColor, "ForeColor"),
    hands("REALGetPropValueUInt32", GetGraphicsForeColor, "ForeColor"),
    hands(kLoadMethod, GraphicsDrawRoundRect, "DrawRoundRect" + kRound),
    hands(kLoadMethod, GraphicsFillRoundRect, "FillRoundRect" + kRound),
    hands(kLoadMethod, GraphicsDrawOval, "DrawOval" + kRect + " )"),
    hands(kLoadMethod, GraphicsFillOval, "FillOval" + kRect + " )"),
    hands(kLoadMethod, GraphicsDrawRect, "DrawRect" + kRect + " )"),
    hands(kLoadMethod, GraphicsFillRect, "FillRect" + kRect + " )"),
    hands(kLoadMethod, GraphicsClearRect, "ClearRect" + kRect + " )"),
    hands(kLoadMethod, IsMemoryBlock, "Constructor(bytes as Integer)"),
    hands(kLoadMethod, IsFolderItem, "TrueItem(Index as integer) as Folderitem"));

// Without a service there is no answer, and it is asked for again.
void expectAskedTwice(const Wrapper& wrapper) {
  asked.clear();
  for (int times = 0; times < 2; ++times)
    EXPECT_EQ(wrapper.call(), wrapper.service == "PluginRegisterBackgroundTask");
  EXPECT_EQ(asked, std::vector<std::string>(2, wrapper.service));
}

// An address is kept.
void expectHandsOn(const Wrapper& wrapper) {
  calls.clear();
  wrapper.call();
  ASSERT_FALSE(calls.empty());
  EXPECT_EQ(calls[0].service, wrapper.service);
  Words words = calls.back().words;
  if (!wrapper.member.empty()) {
    EXPECT_EQ(reinterpret_cast<const char*>(calls[0].words[1]), wrapper.member);
    if (calls.size() == 1) words.erase(words.begin() + 1);
  }
  words.resize(wrapper.arguments.size());
  EXPECT_EQ(words, wrapper.arguments);
  asked.clear();
  wrapper.call();
  EXPECT_EQ(asked, std::vector<std::string>());
}

TEST(EntryPoints, AskForTheirNameAndHandOnTheirArguments) {
  inFreshProcess([] {
    EXPECT_EQ(HCallResolver("REALLockObject"), nullptr) << "no host yet";
    gResolver = resolver;
    for (const auto expectation : {expectAskedTwice, expectHandsOn}) {
      offering = expectation == expectHandsOn;
      for (const Wrapper& wrapper : kWrappers) {
        SCOPED_TRACE(wrapper.service + ' ' + wrapper.member);
        expectation(wrapper);
      }
    }
  });
}

TEST(EntryPoints, ThoseThatDoMore) {
  inFreshProcess([] {
    gResolver = resolver;
    offering = false;
    EXPECT_EQ(REALRegisterBackgroundTask(nullptr, 1, nullptr), -1);
    int32_t value = 77;
    EXPECT_EQ(REALGetArrayValueInt32(nullptr, 3, &value), 0);
    EXPECT_EQ(value, 77) << "without an accessor nothing is stored";
    REALSetArrayValueInt32(nullptr, 3, 5);
    REALInsertArrayValueInt32(nullptr, 3, 5);

    offering = true;
    EXPECT_EQ(REALnewInstanceWithClass(nullptr), nullptr);
    EXPECT_FALSE(REALObjectIsA(nullptr, "Picture"));
    EXPECT_EQ(GetPictureWidth(nullptr), 0);
    GraphicsDrawOval(nullptr, 1, 2, 3, 4);
    for (int64_t size : {-1, 0x7FFFFFFF}) EXPECT_EQ(REALNewMemoryBlock(size), nullptr);
    EXPECT_TRUE(calls.empty()) << "these never reach the host";
    REALobjectStruct object;
    EXPECT_TRUE(REALObjectIsA(&object, "Picture") && IsMemoryBlock(&object) && IsFolderItem(&object));
    const auto expectWords = [](const Words& words) {
      calls.back().words.resize(words.size());
      EXPECT_EQ(calls.back().words, words);
    };
    REALNewMemoryBlock(0x7FFFFFFE);
    expectWords({0x7FFFFFFE});
    REALDrawPicturePrimitive(nullptr, nullptr, nullptr);
    expectWords({0, 0, 0, 0});
    SetGraphicsTextFont(nullptr, static_cast<const char*>(nullptr));
    EXPECT_EQ(calls.back().words[2], 0u);
    calls.clear();
    SetGraphicsTextFont(nullptr, "Serif");
    EXPECT_EQ(calls.at(0).words[1], 5u) << "characters";
    EXPECT_EQ(calls.at(1).words[1], kEncodingASCII);
    EXPECT_EQ(calls.at(2).service, "REALSetPropValueString");

    Words types;
    for (const auto create :
         {REALCreateArrayInteger, REALCreateArraySingle, REALCreateArrayDouble, REALCreateArrayString,
          REALCreateArrayObject, REALCreateArrayDictionary, REALCreateArrayVariant, REALCreateArrayFolderItem,
          REALCreateArrayUInt16, REALCreateArrayUInt32, REALCreateArrayUInt64, REALCreateArrayInt64}) {
      create(5);
      types.push_back(calls.back().words[0]);
      expectWords({types.back(), 5});
    }
    EXPECT_EQ(types, (Words{0, 1, 2, 3, 4, 4, 4, 4, 7, 9, 10, 11}));

    // The second word of the host's own record: on old hosts of its copy, to which the record points.
    REALoldEvent copy = {{0, 0x5678}};
    REALevent event = {"Action", &copy, {}};
    const auto place = static_cast<uint32_t>(reinterpret_cast<uintptr_t>(&copy));
    for (auto [version, second] : {std::pair(12, place), {kOldLayoutVersion, 0x5678}}) {
      CurrentREALControlVersion = version;
      EXPECT_NE(REALGetEventInstance(nullptr, &event), nullptr);
      EXPECT_EQ(calls.back().service, "GetEventInstance");
      expectWords({0, second});
    }
  });
}

}  // namespace
