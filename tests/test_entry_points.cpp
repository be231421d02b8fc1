// Every wrapper around a host service: the name that it asks for, what it answers when there is none, and the
// arguments that it hands on. The host here is a resolver of our own that offers nothing at first, then one
// function that writes down its arguments.

#include <algorithm>
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

template <typename T>
uint32_t word(T value) {
  static_assert(sizeof(T) == 4);
  uint32_t bits;
  std::memcpy(&bits, &value, 4);
  return bits;
}

// Distinct stand-ins for whatever is handed through.
template <typename T>
T* at(uintptr_t address) {
  return reinterpret_cast<T*>(address);
}
auto* const object = at<REALobjectStruct>(0x1010);
auto* const picture = at<REALpictureStruct>(0x2020);
auto* const graphics = at<REALgraphicsStruct>(0x3030);
auto* const block = at<REALmemoryBlockStruct>(0x4040);
auto* const array = at<REALarrayStruct>(0x5050);
auto* const control = at<REALcontrolStruct>(0x6060);
auto* const text = at<REALstringStruct>(0x7070);
auto* const text2 = at<REALstringStruct>(0x7171);
auto* const classRef = at<REALclassRefStruct>(0x8080);
void* const memory = at<void>(0x9090);
const char* const name = "Name";

struct Wrapper {
  const char* entryPoint;
  // The result as a number; 0 for nothing.
  int64_t (*call)();
  Words arguments;
  int64_t missing = 0;
};

template <typename T>
int64_t number(T* pointer) {
  return static_cast<int64_t>(reinterpret_cast<uintptr_t>(pointer));
}
template <typename T, typename = std::enable_if_t<std::is_arithmetic_v<T>>>
int64_t number(T value) {
  return static_cast<int64_t>(value);
}

#define ANSWERS(expression) []() -> int64_t { return number(expression); }
#define DOES(statement) \
  []() -> int64_t {     \
    statement;          \
    return 0;           \
  }

// The property wrappers, each with a value of its type.
template <typename T>
T* out() {
  return at<T>(0xA0A0);
}

const Wrapper kWrappers[] = {
    {"PluginRegisterMethod", DOES(REALRegisterMethod(at<REALmethodDefinition>(0x11))), {0x11}},
    {"PluginRegisterClass", DOES(REALRegisterClass(at<REALclassDefinition>(0x12))), {0x12}},
    {"PluginRegisterClassExtension", DOES(REALRegisterClassExtension(at<REALclassDefinition>(0x13))), {0x13}},
    {"PluginRegisterModule", DOES(REALRegisterModule(at<REALmoduleDefinition>(0x14))), {0x14}},
    {"PluginRegisterInterface", DOES(REALRegisterInterface(at<REALinterfaceDefinition>(0x15))), {0x15}},
    {"PluginRegisterControl", DOES(REALRegisterControl(at<REALcontrolDefinition>(0x16))), {0x16}},
    {"PluginRegisterBackgroundTask",
     ANSWERS(REALRegisterBackgroundTask(nullptr, 250, memory)),
     {0, 250, word(memory)},
     -1},
    {"PluginUnregisterBackgroundTask", DOES(REALUnregisterBackgroundTask(7)), {7}},

    {"PluginGetPluginData",
     ANSWERS(REALGetPluginData(object, at<REALclassDefinition>(0x17))),
     {word(object), 0x17}},
    {"pluginObjectType", ANSWERS(REALGetClassRef(name)), {word(name)}},
    {"PluginNewInstance", ANSWERS(REALnewInstance(name)), {word(name)}},
    {"CreateInstance", ANSWERS(REALnewInstanceWithClass(classRef)), {word(classRef)}},
    {"RuntimeObjectIsa", ANSWERS(REALObjectIsA(object, classRef)), {word(object), word(classRef)}},
    {"REALLockObject", DOES(REALLockObject(object)), {word(object)}},
    {"REALUnlockObject", DOES(REALUnlockObject(object)), {word(object)}},
    {"RuntimeRaiseException", DOES(REALRaiseException(object)), {word(object)}},
    {"REALLoadGlobalMethod", ANSWERS(REALLoadFrameworkMethod(name)), {word(name)}},
    {"REALLoadObjectMethod", ANSWERS(REALLoadObjectMethod(object, name)), {word(object), word(name)}},
    {"GetInterfaceRoutine", ANSWERS(REALInterfaceRoutine(object, name, "r")), {word(object), word(name)}},
    {"PluginGetDelegateInvoker", ANSWERS(REALGetDelegateInvoker(memory)), {word(memory)}},
    {"REALinRuntime", ANSWERS(REALinRuntime()), {}},
    {"REALInDebugMode", ANSWERS(REALInDebugMode()), {}},
    {"REALYieldToRB", DOES(REALYieldToRB()), {}},
    {"RuntimeMsgBox", DOES(REALMessageBox(text)), {word(text)}},

    {"REALBuildString", ANSWERS(originalREALBuildString(memory, 5)), {word(memory), 5}},
    {"REALLockString", DOES(REALLockString(text)), {word(text)}},
    {"REALUnlockString", DOES(REALUnlockString(text)), {word(text)}},
    {"RuntimeAddString", ANSWERS(REALAddStrings(text, text2)), {word(text), word(text2)}},
    {"RuntimeStringCompare", ANSWERS(REALCompareStrings(text, text2)), {word(text), word(text2)}},
    {"REALGetStringEncoding", ANSWERS(REALGetStringEncoding(text)), {word(text)}},
    {"REALSetStringEncoding", DOES(REALSetStringEncoding(text, 0x600)), {word(text), 0x600}},
    {"REALConvertString", ANSWERS(REALConvertString(text, 0x100)), {word(text), 0x100}},
    {"REALGetFontEncoding", ANSWERS(REALGetFontEncoding(text)), {word(text)}},

    {"REALGetPropValueInt",
     ANSWERS(REALGetPropValueInt32(object, name, out<int32_t>())),
     {word(object), word(name), 0xA0A0}},
    {"REALGetPropValueString",
     ANSWERS(REALGetPropValueString(object, name, out<REALstringStruct*>())),
     {word(object), word(name), 0xA0A0}},
    {"REALGetPropValueDouble",
     ANSWERS(REALGetPropValueDouble(object, name, out<double>())),
     {word(object), word(name), 0xA0A0}},
    {"REALGetPropValueObject",
     ANSWERS(REALGetPropValueObject(object, name, out<REALobjectStruct*>())),
     {word(object), word(name), 0xA0A0}},
    {"REALGetPropValueInt64",
     ANSWERS(REALGetPropValueInt64(object, name, out<int64_t>())),
     {word(object), word(name), 0xA0A0}},
    {"REALGetPropValueUInt64",
     ANSWERS(REALGetPropValueUInt64(object, name, out<uint64_t>())),
     {word(object), word(name), 0xA0A0}},
    {"REALGetPropValueUInt32",
     ANSWERS(REALGetPropValueUInt32(object, name, out<uint32_t>())),
     {word(object), word(name), 0xA0A0}},
    {"REALGetPropValueUInt16",
     ANSWERS(REALGetPropValueUInt16(object, name, out<uint16_t>())),
     {word(object), word(name), 0xA0A0}},
    {"REALGetPropValueInt16",
     ANSWERS(REALGetPropValueInt16(object, name, out<int16_t>())),
     {word(object), word(name), 0xA0A0}},
    {"REALGetPropValueInt8",
     ANSWERS(REALGetPropValueInt8(object, name, out<int8_t>())),
     {word(object), word(name), 0xA0A0}},
    {"REALGetPropValueSingle",
     ANSWERS(REALGetPropValueSingle(object, name, out<float>())),
     {word(object), word(name), 0xA0A0}},
    {"REALGetPropValueBool",
     ANSWERS(REALGetPropValueUInt8(object, name, out<uint8_t>())),
     {word(object), word(name), 0xA0A0}},
    {"REALSetPropValueInt",
     ANSWERS(REALSetPropValueInt32(object, name, -7)),
     {word(object), word(name), word(-7)}},
    {"REALSetPropValueString",
     ANSWERS(REALSetPropValueString(object, name, text)),
     {word(object), word(name), word(text)}},
    {"REALSetPropValueDouble",
     ANSWERS(REALSetPropValueDouble(object, name, 2.0)),
     {word(object), word(name), 0, 0x40000000}},
    {"REALSetPropValueObject",
     ANSWERS(REALSetPropValueObject(object, name, picture)),
     {word(object), word(name), word(picture)}},
    {"REALSetPropValueUInt32",
     ANSWERS(REALSetPropValueUInt32(object, name, 0xFFFFFFF9)),
     {word(object), word(name), 0xFFFFFFF9}},
    {"REALSetPropValueUInt64",
     ANSWERS(REALSetPropValueUInt64(object, name, 0x500000006)),
     {word(object), word(name), 6, 5}},
    {"REALSetPropValueInt64",
     ANSWERS(REALSetPropValueInt64(object, name, -2)),
     {word(object), word(name), 0xFFFFFFFE, 0xFFFFFFFF}},
    {"REALSetPropValueInt16",
     ANSWERS(REALSetPropValueInt16(object, name, -3)),
     {word(object), word(name), word(-3)}},
    {"REALSetPropValueUInt16",
     ANSWERS(REALSetPropValueUInt16(object, name, 0xFFF0)),
     {word(object), word(name), 0xFFF0}},
    {"REALSetPropValueInt8",
     ANSWERS(REALSetPropValueInt8(object, name, -4)),
     {word(object), word(name), word(-4)}},
    {"REALSetPropValueBoolean",
     ANSWERS(REALSetPropValueUInt8(object, name, 1)),
     {word(object), word(name), 1}},
    {"REALSetPropValueBoolean",
     ANSWERS(REALSetPropValueBoolean(object, name, true)),
     {word(object), word(name), 1}},

    {"StringToVariant", ANSWERS(REALNewVariantString(text)), {word(text)}},
    {"PtrToVariant", ANSWERS(REALNewVariantPtr(memory)), {word(memory)}},
    {"Int32ToVariant", ANSWERS(REALNewVariantInteger(-5)), {word(-5)}},
    {"DoubleToVariant", ANSWERS(REALNewVariantDouble(2.0)), {0, 0x40000000}},
    {"BooleanToVariant", ANSWERS(REALNewVariantBoolean(true)), {1}},
    {"ColorToVariant", ANSWERS(REALNewVariantColor(0x123456)), {0x123456}},
    {"UInt32ToVariant", ANSWERS(REALNewVariantUInt32(0xFFFFFFF9)), {0xFFFFFFF9}},
    {"Int64ToVariant", ANSWERS(REALNewVariantInt64(-2)), {0xFFFFFFFE, 0xFFFFFFFF}},
    {"UInt64ToVariant", ANSWERS(REALNewVariantUInt64(0x500000006)), {6, 5}},
    {"SingleToVariant", ANSWERS(REALNewVariantSingle(1.0f)), {0x3F800000}},

    {"RuntimeArrayCreateSingleDimBoundedArray", ANSWERS(REALCreateArrayInteger(3)), {0, 3}},
    {"RuntimeUBound", ANSWERS(REALGetArrayUBound(array)), {word(array)}},

    {"newMemoryBlock", ANSWERS(REALNewMemoryBlockOriginal(64)), {64}},
    {"memoryBlockGetPtr", ANSWERS(REALMemoryBlockGetPtr(block)), {word(block)}},
    {"memoryBlockGetSize", ANSWERS(REALMemoryBlockGetSize(block)), {word(block)}},
    {"PtrToMemoryBlock", ANSWERS(REALPtrToMemoryBlock(memory)), {word(memory)}},

    {"newPicture", ANSWERS(REALNewPicture(40, 30, 32)), {40, 30, 32}},
    {"REALBuildPictureFromBuffer",
     ANSWERS(REALBuildPictureFromBuffer(40, 30, 1, memory, 120)),
     {40, 30, 1, word(memory), 120}},
    {"REALBuildPictureFromGWorld", ANSWERS(REALBuildPictureFromGWorld(memory)), {word(memory)}},
    {"lockPictureDescription",
     ANSWERS(REALLockPictureDescription(picture, at<REALpictureDescription>(0x18))),
     {word(picture), 0x18}},
    {"REALLockPictureDescription",
     ANSWERS(REALLockPictureDescription(picture, at<REALpictureDescription>(0x18), 12)),
     {word(picture), 0x18, 12}},
    {"unlockPictureDescription", DOES(REALUnlockPictureDescription(picture)), {word(picture)}},
    {"REALPictureClearCache", DOES(REALPictureClearCache(picture)), {word(picture)}},
    {"REALGetPictureMask", ANSWERS(REALGetPictureMask(picture, true)), {word(picture), 1}},
    {"pluginPictureGraphicsGetter", ANSWERS(REALGetPictureGraphics(picture)), {word(picture)}},

    {"REALGraphicsDC", ANSWERS(REALGraphicsDC(graphics)), {word(graphics)}},
    {"REALDrawPicturePrimitive",
     DOES(REALDrawPicturePrimitive(graphics, picture, memory)),
     {word(graphics), word(picture), word(memory), 0}},
    {"RuntimeGraphicsDrawLine", DOES(GraphicsDrawLine(graphics, 1, 2, 3, 4)), {word(graphics), 1, 2, 3, 4}},
    {"RuntimeGraphicsDrawString",
     DOES(REALGraphicsDrawString(graphics, text, 1, 2)),
     {word(graphics), word(text), 1, 2}},

    {"GetControlBounds", DOES(REALGetControlBounds(control, memory)), {word(control), word(memory)}},
    {"REALGetControlGraphics", ANSWERS(REALGetControlGraphics(control)), {word(control)}},
    {"getControlWindow", ANSWERS(REALGetControlWindow(control)), {word(control)}},
    {"GetTabPanelVisible", ANSWERS(REALGetTabPanelVisible(control)), {word(control)}},
    {"REALpathFromFolderItem", ANSWERS(REALpathFromFolderItem(at<REALfolderItemStruct>(0x19))), {0x19}},
};

#undef ANSWERS
#undef DOES

class EntryPoints : public ::testing::Test {
 protected:
  void SetUp() override { gResolver = resolver; }
};

TEST_F(EntryPoints, AskForTheirNameAndHandOnTheirArguments) {
  for (const Wrapper& wrapper : kWrappers) {
    SCOPED_TRACE(wrapper.entryPoint);
    asked.clear();
    offering = false;
    EXPECT_EQ(wrapper.call(), wrapper.missing);
    EXPECT_EQ(wrapper.call(), wrapper.missing);
    // A null answer is not remembered. (Some ask twice in a call.)
    EXPECT_GE(asked.size(), 2u);
    EXPECT_EQ(std::count(asked.begin(), asked.end(), wrapper.entryPoint), static_cast<int>(asked.size()));

    asked.clear();
    offering = true;
    wordsWanted = wrapper.arguments.size();
    handed = {0xDEAD};
    wrapper.call();
    EXPECT_EQ(handed, wrapper.arguments);
    wrapper.call();
    EXPECT_EQ(asked, std::vector<std::string>{wrapper.entryPoint}) << "an address is asked for once";
  }
}

// Three steps from an array to an element: each wrapper asks for the procedure of its kind by itself.

template <typename T>
void expectGetter(T (*get)(REALarrayStruct*, int32_t, T*)) {
  asked.clear();
  offering = false;
  T value{};
  std::memset(&value, 0x5A, sizeof value);
  const T before = value;
  EXPECT_EQ(get(array, 3, &value), T{});
  EXPECT_EQ(value, before) << "without an accessor nothing is stored";
  EXPECT_EQ(asked, std::vector<std::string>{"RuntimeArrayDirectGetGetProc"});
}
template <typename T>
void expectSetter(const char* procedure, void (*set)(REALarrayStruct*, int32_t, T)) {
  asked.clear();
  offering = false;
  set(array, 3, T{});
  EXPECT_EQ(asked, std::vector<std::string>{procedure});
}

TEST_F(EntryPoints, ArrayElementsGoThroughAProcedureEach) {
  expectGetter(REALGetArrayValueInt64);
  expectGetter(REALGetArrayValueInt32);
  expectGetter(REALGetArrayValueUInt64);
  expectGetter(REALGetArrayValueUInt32);
  expectGetter(REALGetArrayValueUInt16);
  expectGetter(REALGetArrayValueUInt8);
  expectGetter(REALGetArrayValueSingle);
  expectGetter(REALGetArrayValueDouble);
  expectGetter(REALGetArrayValueString);
  expectGetter(REALGetArrayValueObject);
  const char* set = "RuntimeArrayDirectGetSetProc";
  expectSetter(set, REALSetArrayValueInt64);
  expectSetter(set, REALSetArrayValueInt32);
  expectSetter(set, REALSetArrayValueInt16);
  expectSetter(set, REALSetArrayValueInt8);
  expectSetter(set, REALSetArrayValueUInt64);
  expectSetter(set, REALSetArrayValueUInt32);
  expectSetter(set, REALSetArrayValueUInt16);
  expectSetter(set, REALSetArrayValueUInt8);
  expectSetter(set, REALSetArrayValueSingle);
  expectSetter(set, REALSetArrayValueDouble);
  expectSetter(set, REALSetArrayValueString);
  expectSetter(set, REALSetArrayValueObject);
  const char* insert = "RuntimeArrayDirectGetInsertProc";
  expectSetter(insert, REALInsertArrayValueInt64);
  expectSetter(insert, REALInsertArrayValueInt32);
  expectSetter(insert, REALInsertArrayValueUInt64);
  expectSetter(insert, REALInsertArrayValueUInt32);
  expectSetter(insert, REALInsertArrayValueUInt16);
  expectSetter(insert, REALInsertArrayValueSingle);
  expectSetter(insert, REALInsertArrayValueDouble);
  expectSetter(insert, REALInsertArrayValueString);
  expectSetter(insert, REALInsertArrayValueObject);
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
  offering = true;
  wordsWanted = 2;
  REALevent event = {"Action", at<void>(0x1234), {}};
  CurrentREALControlVersion = 12;
  asked.clear();
  EXPECT_NE(REALGetEventInstance(control, &event), nullptr);
  EXPECT_EQ(asked, std::vector<std::string>{"GetEventInstance"});
  EXPECT_EQ(handed, (Words{word(control), 0x1234}));

  REALoldEvent copy = {{0, 0x5678}};
  event.forOldHosts = &copy;
  CurrentREALControlVersion = 9;
  REALGetEventInstance(control, &event);
  EXPECT_EQ(handed, (Words{word(control), 0x5678}));
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
  EXPECT_EQ(handed[0], word(object));
  EXPECT_STREQ(at<char>(handed[1]), "Constructor(bytes as Integer)");
  EXPECT_TRUE(IsFolderItem(object));
  EXPECT_STREQ(at<char>(handed[1]), "TrueItem(Index as integer) as Folderitem");
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
