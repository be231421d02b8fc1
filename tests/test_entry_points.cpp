// Every wrapper around a host service: the name that it asks for, its answer when there is none, and the
// arguments that it hands on. The host here is a resolver of our own.

#include <cstring>

#include "frame/arrays.h"
#include "frame/errors.h"
#include "frame/graphics.h"
#include "tests/linked.h"

namespace {

using Words = std::vector<uint32_t>;

bool offering;
std::vector<std::string> asked;
std::vector<Words> calls;

constexpr char kLoadMethod[] = "REALLoadObjectMethod";

// Every service and method, with more words than it has arguments.
uint64_t service(uint32_t a, uint32_t b, uint32_t c, uint32_t d, uint32_t e, uint32_t f, uint32_t g) {
  calls.push_back({a, b, c, d, e, f, g});
  return 0x0000000100000001;
}
void* loadMethod(uint32_t object, uint32_t declaration) {
  calls.push_back({object, declaration});
  return reinterpret_cast<void*>(&service);
}
void* resolver(const char* name) {
  asked.push_back(name);
  if (!offering) return nullptr;
  return name == std::string(kLoadMethod) ? reinterpret_cast<void*>(&loadMethod)
                                          : reinterpret_cast<void*>(&service);
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
  std::string service, member;  // the member is the service's second argument, or a method that it gives
  std::function<void()> call;
  Words arguments;  // as the service or the method gets them
};

template <typename Result, typename... Parameters>
Wrapper handsOn(const std::string& service, const std::string& member,
                std::function<Result(Parameters...)> wrapper) {
  Wrapper result{service, member, {}, {}};
  const std::tuple<Parameters...> arguments{sample<Parameters>(result.arguments)...};
  result.call = [=] { std::apply(wrapper, arguments); };
  return result;
}
// Hands on its arguments. Of overloaded functions the one of that type.
template <typename Callable>
Wrapper hands(const std::string& service, const Callable& wrapper, const std::string& member = {}) {
  return handsOn(service, member, std::function(wrapper));
}
#define NAMED(wrapper) hands(#wrapper, wrapper)

Wrapper creates(uint32_t type, REALarrayStruct* (*create)(int32_t)) {
  return {"RuntimeArrayCreateSingleDimBoundedArray", {}, [=] { return create(5); }, {type, 5}};
}

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
    NAMED(REALpathFromFolderItem), hands<SetFont>("REALSetPropValueString", SetGraphicsTextFont, "TextFont"),
    hands("REALSetPropValueInt", SetGraphicsTextSize, "TextSize"),
    hands("REALSetPropValueBoolean", SetGraphicsUnderline, "Underline"),
    hands("REALSetPropValueBoolean", SetGraphicsItalic, "Italic"),
    hands("REALSetPropValueBoolean", SetGraphicsBold, "Bold"),
    hands(kLoadMethod, GraphicsDrawRoundRect, "DrawRoundRect" + kRound),
    hands(kLoadMethod, GraphicsFillRoundRect, "FillRoundRect" + kRound),
    hands(kLoadMethod, GraphicsDrawOval, "DrawOval" + kRect + " )"),
    hands(kLoadMethod, GraphicsFillOval, "FillOval" + kRect + " )"),
    hands(kLoadMethod, GraphicsDrawRect, "DrawRect" + kRect + " )"),
    hands(kLoadMethod, GraphicsFillRect, "FillRect" + kRect + " )"),
    hands(kLoadMethod, GraphicsClearRect, "ClearRect" + kRect + " )"),
    hands(kLoadMethod, IsMemoryBlock, "Constructor(bytes as Integer)"),
    hands(kLoadMethod, IsFolderItem, "TrueItem(Index as integer) as Folderitem"),
    creates(0, REALCreateArrayInteger), creates(1, REALCreateArraySingle), creates(2, REALCreateArrayDouble),
    creates(3, REALCreateArrayString), creates(4, REALCreateArrayObject),
    creates(4, REALCreateArrayDictionary), creates(4, REALCreateArrayVariant),
    creates(4, REALCreateArrayFolderItem), creates(7, REALCreateArrayUInt16),
    creates(9, REALCreateArrayUInt32), creates(10, REALCreateArrayUInt64), creates(11, REALCreateArrayInt64));

TEST(EntryPoints, AskForTheirNameAndHandOnTheirArguments) {
  inFreshProcess([] {
    EXPECT_EQ(HCallResolver("REALLockObject"), nullptr) << "no host yet";
    gResolver = resolver;
    for (const Wrapper& wrapper : kWrappers) {
      asked.clear();
      for (int times = 0; times < 2; ++times) wrapper.call();
      EXPECT_EQ(asked, std::vector<std::string>(2, wrapper.service)) << "asked for until it is there";
    }
    offering = true;
    for (const Wrapper& wrapper : kWrappers) {
      SCOPED_TRACE(wrapper.service + ' ' + wrapper.member);
      calls.clear();
      wrapper.call();
      ASSERT_FALSE(calls.empty());
      Words words = calls.back();
      if (!wrapper.member.empty()) {
        EXPECT_EQ(reinterpret_cast<const char*>(calls[0][1]), wrapper.member);
        if (calls.size() == 1) words.erase(words.begin() + 1);
      }
      words.resize(wrapper.arguments.size());
      EXPECT_EQ(words, wrapper.arguments);
      asked.clear();
      wrapper.call();
      EXPECT_EQ(asked, std::vector<std::string>()) << "an address is kept";
    }
  });
}

TEST(EntryPoints, ThoseThatDoMore) {
  inFreshProcess([] {
    gResolver = resolver;
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
    EXPECT_EQ(REALNewMemoryBlock(0x7FFFFFFF), nullptr);
    EXPECT_TRUE(calls.empty()) << "these never reach the host";
    REALNewMemoryBlock(0x7FFFFFFE);
    EXPECT_EQ(calls.back()[0], 0x7FFFFFFEu);
    REALDrawPicturePrimitive(nullptr, nullptr, nullptr);
    EXPECT_EQ(calls.back()[3], 0u);
    REALobjectStruct object;
    EXPECT_TRUE(REALObjectIsA(&object, "Picture") && IsMemoryBlock(&object) && IsFolderItem(&object));
    SetGraphicsTextFont(nullptr, static_cast<const char*>(nullptr));
    EXPECT_EQ(calls.back()[2], 0u);
    calls.clear();
    SetGraphicsTextFont(nullptr, "Serif");
    EXPECT_EQ(calls.at(0)[1], 5u) << "characters";
    EXPECT_EQ(calls.at(1)[1], kEncodingASCII);

    // The second word of the host's own record: on old hosts of its copy, to which the record points.
    REALoldEvent copy = {{0, 0x5678}};
    REALevent event = {"Action", &copy, {}};
    const auto place = static_cast<uint32_t>(reinterpret_cast<uintptr_t>(&copy));
    asked.clear();
    for (auto [version, second] : {std::pair(12, place), {kOldLayoutVersion, 0x5678}}) {
      CurrentREALControlVersion = version;
      EXPECT_NE(REALGetEventInstance(nullptr, &event), nullptr);
      EXPECT_EQ(calls.back()[1], second);
    }
    EXPECT_EQ(asked, std::vector<std::string>{"GetEventInstance"});
  });
}

}  // namespace
