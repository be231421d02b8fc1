// Memory, handles, arrays, errors, lines.

#include <algorithm>
#include <cmath>

#include "frame/arrays.h"
#include "frame/errors.h"
#include "frame/graphics.h"
#include "frame/memory.h"
#include "tests/linked.h"

namespace {

using Frame = LinkedTest;

// The pending exception as "Class: message".
std::string raised() {
  const auto exception = host::takeException();
  return exception ? exception->className + ": " + exception->message : "none";
}

// ---- Memory ----

TEST_F(Frame, BlocksAreZeroFilledAndLimited) {
  for (int times = 0; times < 2; ++times) {  // the second time in used memory
    void* block = AllocateClearMemory(1000);
    EXPECT_EQ(bytesAt(block, 1000), std::string(1000, '\0'));
    FillMemory(block, 1000, 'x');
    ClearMemory(block, 500);
    EXPECT_EQ(bytesAt(block, 1000), std::string(500, '\0') + std::string(500, 'x'));
    FreeMemoryNow(block);
  }
  for (int64_t size : {int64_t{0}, int64_t{-1}, int64_t{0x80000000}, int64_t{1} << 32,
                       (int64_t{1} << 32) + 16, INT64_MIN, INT64_MAX})
    EXPECT_EQ(AllocateClearMemory(size), nullptr) << size;
}

TEST_F(Frame, HandlesKnowTheirSizeOnlyOnceResized) {
  MemoryHandle handle = allocateHandle(100);
  EXPECT_EQ(getHandleSize(handle), 0u);
  EXPECT_EQ(lockHandle(handle), static_cast<uint8_t*>(handle) + 4);
  EXPECT_EQ(bytesAt(lockHandle(handle), 100), std::string(100, '\0'));
  FillMemory(lockHandle(handle), 100, 'x');
  unlockHandle(handle);
  for (uint32_t size : {5000u, 100u}) {
    handle = resizeHandle(handle, size);
    EXPECT_EQ(getHandleSize(handle), size);
    EXPECT_EQ(bytesAt(lockHandle(handle), 100), std::string(100, 'x'));
  }
  // The handle itself is freed then: a leak checker sees to that.
  for (int64_t size : {int64_t{-1}, int64_t{0x7FFFFFF1}, int64_t{1} << 32, INT64_MAX}) {
    EXPECT_EQ(resizeHandle(handle, size), nullptr) << size;
    handle = allocateHandle(0);
    EXPECT_TRUE(handle);
  }
  freeHandle(handle);
  EXPECT_EQ(getHandleSize(nullptr), 0u);
  for (int64_t size : {int64_t{-1}, int64_t{0x80000000}, INT64_MIN, INT64_MAX})
    EXPECT_EQ(allocateHandle(size), nullptr) << size;
}

// ---- Arrays ----

// Whoever reads an element has a reference of its own.
template <typename T>
void letGo(T) {}
void letGo(REALstringStruct* string) { host::StringRef::adopt(string); }
void letGo(REALobjectStruct* object) { host::ObjectRef::adopt(object); }

// Elements that are set, inserted and read; after them nothing may be held.
template <typename T>
void expectElements(REALarrayStruct* (*create)(int32_t), T first, T second,
                    T (*getOld)(REALarrayStruct*, int32_t) = nullptr) {
  const auto owner = host::ObjectRef::adopt(create(2));
  auto* array = static_cast<REALarrayStruct*>(owner.get());
  for (const T value : {second, first, first}) REALSetArrayValue(array, 1, value);
  REALInsertArrayValue(array, 1, second);
  std::vector<T> expected = {T{}, second, first, T{}};
  if constexpr (std::is_pointer_v<T>) {
    expected.push_back(first);
    REALAppendArrayValue(array, first);
  }
  const int32_t count = REALGetArrayUBound(array) + 1;
  ASSERT_EQ(static_cast<size_t>(count), expected.size());
  for (int32_t i = 0; i < count; ++i) {
    T value = first;
    REALGetArrayValue(array, i, &value);
    EXPECT_EQ(value, expected[static_cast<size_t>(i)]) << "element " << i;
    letGo(value);
    if (!getOld) continue;
    EXPECT_EQ(value = getOld(array, i), expected[static_cast<size_t>(i)]) << "element " << i;
    letGo(value);
  }
  if (getOld) {
    EXPECT_EQ(getOld(nullptr, 0), T{});
  }
}

// Elements of types that the plug-in neither creates nor inserts.
template <typename T>
host::ObjectRef expectStored(int32_t type, T value) {
  auto object = host::newArray(type, 2);
  REALSetArrayValue(static_cast<REALarrayStruct*>(object.get()), 1, value);
  const auto* elements = reinterpret_cast<T* const*>(object.get())[2];
  EXPECT_EQ(std::vector<T>(elements, elements + 3), (std::vector<T>{0, value, 0})) << type;
  return object;
}

// Up to 2013.9 elements are read where they lie; later hosts are asked.
TEST_F(Frame, ArraysOfEveryType) {
  for (double version : {2009.0, 2013.9, 2013.91, 2014.1}) {
    SCOPED_TRACE(version);
    beginAt(version);
    expectElements<int32_t>(REALCreateArrayInteger, -5, INT32_MAX, REALGetArrayInt);
    expectElements<float>(REALCreateArraySingle, 0.5f, -3.25f);
    expectElements<double>(REALCreateArrayDouble, 0.1, -1e300);
    expectElements<uint16_t>(REALCreateArrayUInt16, 65535, 1);
    expectElements<uint32_t>(REALCreateArrayUInt32, 0xFFFFFFFF, 1);
    expectElements<uint64_t>(REALCreateArrayUInt64, UINT64_MAX, 1);
    expectElements<int64_t>(REALCreateArrayInt64, INT64_MIN, 1);
    const auto text = host::newString("one"), other = host::newString("two");
    expectElements(REALCreateArrayString, text.get(), other.get(), REALGetArrayString);
    expectStored<int8_t>(5, -100);
    expectStored<int16_t>(6, -10000);
    const auto bytes = expectStored<uint8_t>(8, 255), objects = host::newArray(4, -1);
    expectElements(REALCreateArrayObject, bytes.get(), objects.get(), REALGetArrayObject);
    uint8_t byte = 77;
    REALGetArrayValue(static_cast<REALarrayStruct*>(bytes.get()), 1, &byte);
    EXPECT_EQ(byte, 255);
    EXPECT_EQ(host::uses("RuntimeArrayDirectGetGetProc") > 0, version > 2013.9);
    EXPECT_EQ(host::uses("RuntimeArrayDirectGetSetProc") > 0, version > 2013.9);
  }
}

TEST_F(Frame, ArraysThatHoldNothing) {
  int32_t value = 77;
  REALGetArrayValue(nullptr, 0, &value);
  EXPECT_EQ(value, 77);
  REALSetArrayValue(nullptr, 0, value);
  REALAppendArrayValue(nullptr, static_cast<REALobjectStruct*>(nullptr));
  REALAppendArrayValue(nullptr, static_cast<REALstringStruct*>(nullptr));
  EXPECT_EQ(host::uses(), 0);
  rbversion_rbversion = 2013.0;
  const auto empty = host::newArray(0, -1);
  REALGetArrayValue(static_cast<REALarrayStruct*>(empty.get()), 0, &value);
  EXPECT_EQ(raised(), "OutOfBoundsException: ") << "without storage the host is asked";
}

// ---- Errors ----

TEST_F(Frame, ExceptionsInEveryForm) {
  const auto a = host::newString("a"), b = host::newString("b"), c = host::newString("c");
  const auto expect = [](const std::string& text, auto... parts) {
    RaiseException("NilObjectException", parts...);
    EXPECT_EQ(raised(), "NilObjectException: " + text);
  };
  const char* const none = nullptr;
  expect("a", a.get());
  expect("picture is nil", "picture is nil", kEncodingASCII);
  expect("", none, kEncodingASCII);
  expect("abc", a.get(), b.get(), c.get());
  expect("one two three", "one ", "two ", "three", kEncodingASCII);
  expect("one", "one", none, none, kEncodingASCII);
  // There is no such class; nor can it be made; nor the one in its stead; nor can that be raised.
  using Fail = std::tuple<const char*, int, const char*>;
  for (auto [service, nth, raises] :
       {Fail("PluginNewInstance", 9, "RuntimeException: text"),
        Fail("PluginNewInstance", 1, "RuntimeException: text"), Fail("PluginNewInstance", 2, "none"),
        Fail("RuntimeRaiseException", 1, "none")}) {
    host::clearFaults();
    host::failAt(service, nth);
    RaiseException("NoSuchException", "text", kEncodingASCII);
    EXPECT_EQ(raised(), raises) << service;
  }
}

TEST_F(Frame, OutOfBoundsSaysTheRange) {
  const auto expect = [](const std::string& text, int64_t value, int64_t minimum, int64_t limit,
                         const char* parameter, const char* method) {
    RaiseOutOfBoundsException(value, minimum, limit, parameter, method);
    EXPECT_EQ(raised(), "OutOfBoundsException: Parameter " + text + ".");
  };
  expect("x to method M is too small. Range is 10 to 19, but value is 5", 5, 10, 20, "x", "M");
  expect("x to method M is too big. Range is 10 to 19, but value is 25", 25, 10, 20, "x", "M");
  expect("x to method M is too big. Range is 10 to 19, but value is 10", 10, 10, 20, "x", "M");
  expect("? to method ? is too small. Range is 0 to 0, but value is -1", -1, 0, 1, nullptr, nullptr);
  expect(
      " to method Run is too big. Range is -9223372036854775808 to 9223372036854775806, but value is "
      "9223372036854775807",
      INT64_MAX, INT64_MIN, INT64_MAX, "", "Run");
  const std::string name(3000, 'n');
  expect(name + " to method " + name + " is too small. Range is 1 to 1, but value is 0", 0, 1, 2,
         name.c_str(), name.c_str());
}

TEST_F(Frame, MemoryBlocksFromBytes) {
  const auto block = host::MemoryBlockRef::adopt(REALBuildMemoryblock("0123", 4));
  ASSERT_EQ(host::memoryBlockSize(block.get()), 4u);
  EXPECT_EQ(bytesAt(host::memoryBlockBytes(block.get()), 4), "0123");
  for (auto [bytes, length] : {std::pair<const char*, int>("x", 0), {"x", -1}, {nullptr, 5}})
    EXPECT_EQ(REALBuildMemoryblock(bytes, length), nullptr);
  host::failAt("memoryBlockGetPtr", 1);
  EXPECT_EQ(REALBuildMemoryblock("0123", 4), nullptr);
  EXPECT_EQ(raised(), "none");
  host::failAt("newMemoryBlock", 1);
  EXPECT_EQ(REALBuildMemoryblock("0123", 4), nullptr);
  EXPECT_EQ(raised(), "OutOfMemoryException: Failed to allocate a memoryblock with 4 bytes in size.");
}

TEST_F(Frame, DebugLogIsALineOfUtf8) {
  testing::internal::CaptureStderr();
  DebugLog(host::newString("caf\xE9 %s", kEncodingWindows).get());
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "caf\xC3\xA9 %s\n");
}

// ---- Graphics ----

// A white picture's graphics object that draws in black, used and let go.
Pixels drawn(const std::function<void(REALgraphicsStruct*)>& use) {
  const auto picture = makePicture({12, 8, Rgb{0xFFFFFF}});
  const auto graphics = host::Ref<REALgraphicsStruct>::adopt(REALGetPictureGraphics(picture.get()));
  SetGraphicsForeColor(graphics.get(), 0x123456);
  EXPECT_EQ(GetGraphicsForeColor(graphics.get()), 0x123456u);
  SetGraphicsForeColor(graphics.get(), 0x000000);
  use(graphics.get());
  return colorsOf(picture);
}

// A line as it is defined: the pen's rectangle at each point, however far away. Points are counted from the
// left end, those of a steep line from the upper one.
Pixels stamped(int x1, int y1, int x2, int y2, int penWidth, int penHeight) {
  const bool isSteep = std::abs(y2 - y1) > std::abs(x2 - x1);
  if (isSteep ? y2 < y1 : x2 < x1) return stamped(x2, y2, x1, y1, penWidth, penHeight);
  Pixels result(12, 8, Rgb{0xFFFFFF});
  const int steps = std::max({std::abs(x2 - x1), std::abs(y2 - y1), 1});
  for (int i = 0; i <= steps; ++i) {
    const int left = x1 + static_cast<int>(std::lround(double{1} * (x2 - x1) * i / steps));
    const int top = y1 + static_cast<int>(std::lround(double{1} * (y2 - y1) * i / steps));
    for (int y = std::max(top, 0); y < std::min(top + penHeight, 8); ++y)
      for (int x = std::max(left, 0); x < std::min(left + penWidth, 12); ++x) result.at(x, y) = 0;
  }
  return result;
}

TEST_F(Frame, WidePensFromFarAway) {
  const auto line = [](int x1, int y1, int x2, int y2, int penWidth, int penHeight) {
    return drawn([&](REALgraphicsStruct* graphics) {
      SetGraphicsPenWidth(graphics, penWidth);
      SetGraphicsPenHeight(graphics, penHeight);
      GraphicsDrawLine(graphics, x1, y1, x2, y2);
    });
  };
  Random random(1);
  const auto far = [&] { return random.between(-60, 60); };
  for (int i = 0; i < 300; ++i) {
    const int x1 = far(), y1 = far(), x2 = far(), y2 = far();
    const int width = random.between(1, 60), height = random.between(1, 60);
    EXPECT_EQ(line(x1, y1, x2, y2, width, height), stamped(x1, y1, x2, y2, width, height))
        << x1 << ' ' << y1 << ' ' << x2 << ' ' << y2 << ' ' << width << ' ' << height;
  }
  EXPECT_EQ(GetGraphicsForeColor(nullptr), 0u);
  // Point by point these would take hours.
  EXPECT_EQ(line(5, INT32_MIN, 5, 0, INT32_MAX, INT32_MAX), stamped(5, -9, 5, 0, 90, 90));
  EXPECT_EQ(line(12, INT32_MIN, 12, INT32_MAX, INT32_MAX, INT32_MAX), Pixels(12, 8, Rgb{0xFFFFFF}));
}

}  // namespace
