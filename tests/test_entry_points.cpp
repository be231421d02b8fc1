// Every wrapper around a host service: the name that it asks for, its answer when there is none, and the
// arguments that it hands on. The host here is a resolver of our own that offers nothing at first, then one
// function that writes down its arguments.

#include <cstring>

#include "frame/arrays.h"
#include "frame/errors.h"
#include "frame/graphics.h"
#include "tests/linked.h"

namespace {

using Words = std::vector<uint32_t>;

std::vector<std::string> asked;
bool offering;
Words handed;
size_t wordsWanted;

// Called with any arguments: keeps as many words as the case wants to see.
uint64_t recorder(uint32_t a, uint32_t b, uint32_t c, uint32_t d, uint32_t e) {
  handed = {a, b, c, d, e};
  handed.resize(wordsWanted);
  return 0x0000000100000001;
}

void* resolver(const char* name) {
  asked.push_back(name);
  return offering ? reinterpret_cast<void*>(&recorder) : nullptr;
}

// Stands for whatever is handed through.
struct Pointer {
  uint32_t word;
  template <typename T>
  operator T*() const {
    return reinterpret_cast<T*>(uintptr_t{word});
  }
};
constexpr Pointer object{0x1010}, picture{0x2020}, graphics{0x3030}, array{0x5050}, control{0x6060},
    text{0x7070}, text2{0x7171}, type{0x8080}, memory{0x9090}, name{0xA0A0}, record{0xB0B0}, place{0xC0C0};

template <typename T>
void append(Words& words, T value) {
  if constexpr (std::is_integral_v<T> && sizeof(T) < 4) {
    words.push_back(static_cast<uint32_t>(int32_t{value}));
  } else {
    uint32_t parts[sizeof(T) / 4];
    std::memcpy(parts, &value, sizeof value);
    words.insert(words.end(), parts, parts + sizeof(T) / 4);
  }
}

struct Wrapper {
  const char* entryPoint;
  std::function<int64_t()> call;  // answers the result as a number; 0 for nothing
  Words arguments;
};

// Hands on these very arguments.
template <typename Result, typename... Parameters, typename... Arguments>
Wrapper hands(const char* entryPoint, std::function<Result(Parameters...)> wrapper, Arguments... arguments) {
  Wrapper result{entryPoint, {}, {}};
  (append(result.arguments, static_cast<Parameters>(arguments)), ...);
  result.call = [=]() -> int64_t {
    if constexpr (std::is_void_v<Result>) {
      wrapper(static_cast<Parameters>(arguments)...);
      return 0;
    } else if constexpr (std::is_pointer_v<Result>) {
      return reinterpret_cast<intptr_t>(wrapper(static_cast<Parameters>(arguments)...));
    } else {
      return static_cast<int64_t>(wrapper(static_cast<Parameters>(arguments)...));
    }
  };
  return result;
}

template <typename Result, typename... Parameters, typename... Arguments>
Wrapper hands(const char* entryPoint, Result (*wrapper)(Parameters...), Arguments... arguments) {
  return hands(entryPoint, std::function<Result(Parameters...)>(wrapper), arguments...);
}
template <typename Result, typename... Parameters, typename... Arguments>
Wrapper hands(const char* entryPoint, HostEntry<Result(Parameters...)>& wrapper, Arguments... arguments) {
  return hands(entryPoint, std::function<Result(Parameters...)>(std::ref(wrapper)), arguments...);
}

// Of overloads the one of that type.
template <typename Function>
Function* overload(Function* function) {
  return function;
}

// Those that registered methods or other tests use are missed there when they go wrong.
const std::vector<Wrapper> kWrappers = {
    hands("PluginRegisterBackgroundTask", REALRegisterBackgroundTask, nullptr, 250, memory),
    hands("PluginUnregisterBackgroundTask", REALUnregisterBackgroundTask, 7),
    hands("CreateInstance", REALnewInstanceWithClass, type),
    hands("RuntimeObjectIsa", overload<bool(REALobjectStruct*, REALclassRefStruct*)>(REALObjectIsA), object,
          type),
    hands("GetInterfaceRoutine", REALInterfaceRoutine, object, name, text),
    hands("PluginGetDelegateInvoker", REALGetDelegateInvoker, memory),
    hands("REALinRuntime", REALinRuntime),
    hands("REALInDebugMode", REALInDebugMode),
    hands("REALYieldToRB", REALYieldToRB),
    hands("RuntimeMsgBox", REALMessageBox, text),
    hands("RuntimeStringCompare", REALCompareStrings, text, text2),
    hands("REALGetFontEncoding", REALGetFontEncoding, text),
    hands("REALGetPropValueDouble", REALGetPropValueDouble, object, name, place),
    hands("REALGetPropValueObject", REALGetPropValueObject, object, name, place),
    hands("REALGetPropValueInt64", REALGetPropValueInt64, object, name, place),
    hands("REALGetPropValueUInt64", REALGetPropValueUInt64, object, name, place),
    hands("REALGetPropValueUInt16", REALGetPropValueUInt16, object, name, place),
    hands("REALGetPropValueInt16", REALGetPropValueInt16, object, name, place),
    hands("REALGetPropValueInt8", REALGetPropValueInt8, object, name, place),
    hands("REALGetPropValueSingle", REALGetPropValueSingle, object, name, place),
    hands("REALSetPropValueDouble", REALSetPropValueDouble, object, name, 0.1),
    hands("REALSetPropValueObject", REALSetPropValueObject, object, name, picture),
    hands("REALSetPropValueUInt64", REALSetPropValueUInt64, object, name, 0x500000006),
    hands("REALSetPropValueInt64", REALSetPropValueInt64, object, name, -2),
    hands("REALSetPropValueInt16", REALSetPropValueInt16, object, name, -3),
    hands("REALSetPropValueUInt16", REALSetPropValueUInt16, object, name, 0xFFF0),
    hands("REALSetPropValueInt8", REALSetPropValueInt8, object, name, -4),
    hands("REALSetPropValueBoolean", REALSetPropValueUInt8, object, name, 1),
    hands("REALSetPropValueBoolean", REALSetPropValueBoolean, object, name, true),
    hands("StringToVariant", REALNewVariantString, text),
    hands("PtrToVariant", REALNewVariantPtr, memory),
    hands("Int32ToVariant", REALNewVariantInteger, -5),
    hands("DoubleToVariant", REALNewVariantDouble, 0.1),
    hands("BooleanToVariant", REALNewVariantBoolean, true),
    hands("ColorToVariant", REALNewVariantColor, 0x123456),
    hands("UInt32ToVariant", REALNewVariantUInt32, 0xFFFFFFF9),
    hands("Int64ToVariant", REALNewVariantInt64, -2),
    hands("UInt64ToVariant", REALNewVariantUInt64, 0x500000006),
    hands("SingleToVariant", REALNewVariantSingle, 1.0f),
    hands("lockPictureDescription",
          overload<bool(REALpictureStruct*, REALpictureDescription*)>(REALLockPictureDescription), picture,
          record),
    hands("PtrToMemoryBlock", REALPtrToMemoryBlock, memory),
    hands("REALBuildPictureFromGWorld", REALBuildPictureFromGWorld, memory),
    hands("REALLockPictureDescription",
          overload<bool(REALpictureStruct*, REALpictureDescription*, int32_t)>(REALLockPictureDescription),
          picture, record, 12),
    hands("REALGraphicsDC", REALGraphicsDC, graphics),
    hands("REALDrawPicturePrimitive",
          overload<void(REALgraphicsStruct*, REALpictureStruct*, const void*, int32_t)>(
              REALDrawPicturePrimitive),
          graphics, picture, memory, 1),
    hands("RuntimeGraphicsDrawString", REALGraphicsDrawString, graphics, text, 1, 2),
    hands("GetControlBounds", REALGetControlBounds, control, memory),
    hands("REALGetControlGraphics", REALGetControlGraphics, control),
    hands("getControlWindow", REALGetControlWindow, control),
    hands("GetTabPanelVisible", REALGetTabPanelVisible, control),
    hands("REALpathFromFolderItem", REALpathFromFolderItem, record)};

class EntryPoints : public ::testing::Test {
 protected:
  void SetUp() override { gResolver = resolver; }
};

TEST_F(EntryPoints, AskForTheirNameAndHandOnTheirArguments) {
  inFreshProcess([&] {
    for (const Wrapper& wrapper : kWrappers) {
      SCOPED_TRACE(wrapper.entryPoint);
      asked.clear();
      offering = false;
      const int missing = wrapper.entryPoint == std::string("PluginRegisterBackgroundTask") ? -1 : 0;
      EXPECT_EQ(wrapper.call(), missing);
      EXPECT_EQ(wrapper.call(), missing);
      EXPECT_EQ(asked, std::vector<std::string>(2, wrapper.entryPoint)) << "a null answer is not remembered";

      asked.clear();
      offering = true;
      wordsWanted = wrapper.arguments.size();
      handed = {0xDEAD};
      wrapper.call();
      EXPECT_EQ(handed, wrapper.arguments);
      wrapper.call();
      EXPECT_EQ(asked, std::vector<std::string>{wrapper.entryPoint}) << "an address is asked for once";
    }
    REALDrawPicturePrimitive(graphics, picture, memory);
    wordsWanted = 4;
    REALDrawPicturePrimitive(graphics, picture, memory);
    EXPECT_EQ(handed[3], 0u) << "not transparent";
  });
}

// Three steps from an array to an element: each wrapper asks for the procedure of its kind by itself.

template <typename T>
void expectGetter(ElementGetter<T>& get) {
  asked.clear();
  T value{};
  std::memset(&value, 0x5A, sizeof value);
  const T before = value;
  EXPECT_EQ(get(array, 3, &value), T{});
  EXPECT_EQ(value, before) << "without an accessor nothing is stored";
  EXPECT_EQ(asked, std::vector<std::string>{"RuntimeArrayDirectGetGetProc"});
}
template <typename... T>
void expectGetters(ElementGetter<T>&... get) {
  (expectGetter(get), ...);
}
template <template <typename> typename Kind, typename... T>
void expectSetters(const char* procedure, Kind<T>&... set) {
  const auto expectSetter = [&](auto& setter, auto value) {
    asked.clear();
    setter(array, 3, value);
    EXPECT_EQ(asked, std::vector<std::string>{procedure});
  };
  (expectSetter(set, T{}), ...);
}

TEST_F(EntryPoints, ArrayElementsGoThroughAProcedureEach) {
  offering = false;
  expectGetters(REALGetArrayValueInt64, REALGetArrayValueInt32, REALGetArrayValueUInt64,
                REALGetArrayValueUInt32, REALGetArrayValueUInt16, REALGetArrayValueUInt8,
                REALGetArrayValueSingle, REALGetArrayValueDouble, REALGetArrayValueString,
                REALGetArrayValueObject);
  expectSetters("RuntimeArrayDirectGetSetProc", REALSetArrayValueInt64, REALSetArrayValueInt32,
                REALSetArrayValueInt16, REALSetArrayValueInt8, REALSetArrayValueUInt64,
                REALSetArrayValueUInt32, REALSetArrayValueUInt16, REALSetArrayValueUInt8,
                REALSetArrayValueSingle, REALSetArrayValueDouble, REALSetArrayValueString,
                REALSetArrayValueObject);
  expectSetters("RuntimeArrayDirectGetInsertProc", REALInsertArrayValueInt64, REALInsertArrayValueInt32,
                REALInsertArrayValueUInt64, REALInsertArrayValueUInt32, REALInsertArrayValueUInt16,
                REALInsertArrayValueSingle, REALInsertArrayValueDouble, REALInsertArrayValueString,
                REALInsertArrayValueObject);
}

TEST_F(EntryPoints, OldArrayHandlesHaveServicesOfTheirOwn) {
  offering = false;
  rbversion_rbversion = 2014;  // later hosts are asked for elements
  asked.clear();
  EXPECT_EQ(REALGetArrayInt(array, 1), 0);
  EXPECT_EQ(REALGetArrayString(array, 1), nullptr);
  EXPECT_EQ(REALGetArrayObject(array, 1), nullptr);
  EXPECT_EQ(asked, (std::vector<std::string>{"RuntimeDirectReadIntArray", "RuntimeDirectReadStringArray",
                                             "RuntimeDirectReadObjectArray"}));
}

// The record on the host's side: its second word, wherever that leads.
TEST_F(EntryPoints, AnEventIsHandedOnByItsOwnSecondWord) {
  inFreshProcess([&] {
    offering = true;
    wordsWanted = 2;
    REALevent event = {"Action", Pointer{0x1234}, {}};
    CurrentREALControlVersion = 12;
    asked.clear();
    EXPECT_NE(REALGetEventInstance(control, &event), nullptr);
    EXPECT_EQ(asked, std::vector<std::string>{"GetEventInstance"});
    EXPECT_EQ(handed, (Words{control.word, 0x1234}));

    REALoldEvent copy = {{0, 0x5678}};
    event.forOldHosts = &copy;
    CurrentREALControlVersion = 9;
    REALGetEventInstance(control, &event);
    EXPECT_EQ(handed, (Words{control.word, 0x5678}));
  });
}

TEST_F(EntryPoints, NullsThatNeverReachTheHost) {
  offering = true;
  handed.clear();
  EXPECT_EQ(REALnewInstanceWithClass(nullptr), nullptr);
  EXPECT_FALSE(REALObjectIsA(nullptr, "Picture"));
  EXPECT_EQ(GetPictureWidth(nullptr), 0);
  EXPECT_EQ(GetPictureHeight(nullptr), 0);
  EXPECT_EQ(REALNewMemoryBlock(-1), nullptr);
  EXPECT_EQ(REALNewMemoryBlock(0x7FFFFFFF), nullptr);
  EXPECT_EQ(handed, Words());
  wordsWanted = 1;
  EXPECT_NE(REALNewMemoryBlock(0x7FFFFFFE), nullptr);
  EXPECT_EQ(handed, Words{0x7FFFFFFE});
}

// An object's kind is told by a method that only that kind has.
TEST_F(EntryPoints, KindsAreToldByTheirMethods) {
  offering = true;
  wordsWanted = 2;
  EXPECT_TRUE(IsMemoryBlock(object));
  EXPECT_EQ(handed[0], object.word);
  EXPECT_STREQ(static_cast<char*>(Pointer{handed[1]}), "Constructor(bytes as Integer)");
  EXPECT_TRUE(IsFolderItem(object));
  EXPECT_STREQ(static_cast<char*>(Pointer{handed[1]}), "TrueItem(Index as integer) as Folderitem");
}

TEST_F(EntryPoints, ArraysAreMadeByElementType) {
  offering = true;
  wordsWanted = 2;
  struct Case {
    REALarrayStruct* (*create)(int32_t);
    uint32_t type;
  };
  for (const Case& c :
       {Case{REALCreateArrayInteger, 0}, Case{REALCreateArraySingle, 1}, Case{REALCreateArrayDouble, 2},
        Case{REALCreateArrayString, 3}, Case{REALCreateArrayObject, 4}, Case{REALCreateArrayDictionary, 4},
        Case{REALCreateArrayVariant, 4}, Case{REALCreateArrayFolderItem, 4}, Case{REALCreateArrayUInt16, 7},
        Case{REALCreateArrayUInt32, 9}, Case{REALCreateArrayUInt64, 10}, Case{REALCreateArrayInt64, 11}}) {
    c.create(5);
    EXPECT_EQ(handed, (Words{c.type, 5}));
  }
}

TEST_F(EntryPoints, WithoutAHostEverythingIsMissing) {
  gResolver = nullptr;
  EXPECT_EQ(HCallResolver("REALLockObject"), nullptr);
}

}  // namespace
