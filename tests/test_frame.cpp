// Memory, handles, arrays, errors, lines.

#include "frame/arrays.h"
#include "frame/errors.h"
#include "frame/memory.h"
#include "frame/text.h"
#include "tests/linked.h"

namespace {

using Frame = LinkedTest;

// The pending exception as "Class: message".
std::string raised() {
  const auto exception = host::takeException();
  return exception ? exception->className + ": " + exception->message : "none";
}

// ---- Memory ----

TEST_F(Frame, HandlesKnowTheirSizeOnlyOnceResized) {
  void* used = allocateHandle(100);
  FillMemory(used, 104, 'x');
  freeHandle(used);
  MemoryHandle handle = allocateHandle(100);
  EXPECT_EQ(getHandleSize(handle), 0u);
  EXPECT_EQ(lockHandle(handle), static_cast<uint8_t*>(handle) + 4);
  EXPECT_EQ(bytesAt(lockHandle(handle), 100), std::string(100, '\0'));
  FillMemory(lockHandle(handle), 100, 'x');
  ClearMemory(lockHandle(handle), 50);
  unlockHandle(handle);
  for (uint32_t size : {5000u, 100u}) {
    handle = resizeHandle(handle, size);
    EXPECT_EQ(getHandleSize(handle), size);
    EXPECT_EQ(bytesAt(lockHandle(handle), 100), std::string(50, '\0') + std::string(50, 'x'));
  }
  // The handle itself is freed: a leak checker sees to that.
  EXPECT_EQ(resizeHandle(handle, 0x7FFFFFF1), nullptr);
  EXPECT_EQ(getHandleSize(nullptr), 0u);
}

TEST_F(Frame, NothingHasAnImpossibleSize) {
  EXPECT_EQ(AllocateClearMemory(0), nullptr);
  for (int64_t size :
       {int64_t{-1}, int64_t{0x80000000}, int64_t{1} << 32, (int64_t{1} << 32) + 16, INT64_MIN, INT64_MAX}) {
    EXPECT_EQ(AllocateClearMemory(size), nullptr) << size;
    EXPECT_EQ(allocateHandle(size), nullptr) << size;
    EXPECT_EQ(resizeHandle(allocateHandle(0), size), nullptr) << size;
    EXPECT_EQ(REALNewMemoryBlock(size), nullptr) << size;
    EXPECT_EQ(REALBuildUnicodeString("text", size, kEncodingUTF32), nullptr) << size;
  }
  EXPECT_EQ(host::uses(), 0);
}

// ---- Arrays ----

// Whoever reads an element has a reference of its own.
template <typename T>
void letGo(T) {}
void letGo(REALstringStruct* string) { host::StringRef::adopt(string); }
void letGo(REALobjectStruct* object) { host::ObjectRef::adopt(object); }

// Elements that are set, inserted and read; after them nothing may be held. A null array has none.
template <typename T>
void expectElements(int32_t type, T first, T second, T (*getOld)(REALarrayStruct*, int32_t) = nullptr) {
  const auto owner = host::newArray(type, 1);
  auto* const array = static_cast<REALarrayStruct*>(owner.get());
  for (const T value : {second, first, first}) REALSetArrayValue(array, 1, value);
  REALSetArrayValue(nullptr, 1, first);
  REALInsertArrayValue(array, 1, second);
  std::vector<T> expected = {T{}, second, first};
  if constexpr (std::is_pointer_v<T>) {
    REALAppendArrayValue(array, second);
    REALAppendArrayValue(nullptr, second);
    expected.push_back(second);
  }
  for (int32_t i = 0; i <= REALGetArrayUBound(array); ++i) {
    T value = first;
    REALGetArrayValue(nullptr, i, &value);
    EXPECT_EQ(value, first);
    REALGetArrayValue(array, i, &value);
    EXPECT_EQ(value, expected.at(static_cast<size_t>(i))) << "element " << i;
    letGo(value);
    if (!getOld) continue;
    EXPECT_EQ(getOld(nullptr, i), T{});
    EXPECT_EQ(getOld(array, i), value);
    letGo(value);
  }
}

// Elements of types that are not inserted.
template <typename T>
host::ObjectRef expectStored(int32_t type, T value) {
  auto array = host::newArray(type, 1);
  REALSetArrayValue(static_cast<REALarrayStruct*>(array.get()), 1, value);
  EXPECT_EQ(reinterpret_cast<T* const*>(array.get())[2][1], value) << type;
  return array;
}

// Up to 2013.9 elements are read where they lie; later hosts are asked.
TEST_F(Frame, ArraysOfEveryType) {
  for (double version : {2009.0, 2013.9, 2013.91, 2014.1}) {
    SCOPED_TRACE(version);
    beginAt(version);
    expectElements<int32_t>(0, -5, INT32_MAX, REALGetArrayInt);
    expectElements<float>(1, 0.5f, -3.25f);
    expectElements<double>(2, 0.1, -1e300);
    expectElements<uint16_t>(7, 65535, 1);
    expectElements<uint32_t>(9, 0xFFFFFFFF, 1);
    expectElements<uint64_t>(10, UINT64_MAX, 1);
    expectElements<int64_t>(11, INT64_MIN, 1);
    expectStored<int8_t>(5, -100);
    expectStored<int16_t>(6, -10000);
    const auto bytes = expectStored<uint8_t>(8, 255), objects = host::newArray(4, -1);
    const auto text = host::newString("one"), other = host::newString("two");
    expectElements(3, text.get(), other.get(), REALGetArrayString);
    expectElements(4, bytes.get(), objects.get(), REALGetArrayObject);
    uint8_t byte = 77;
    REALGetArrayValue(static_cast<REALarrayStruct*>(bytes.get()), 1, &byte);
    EXPECT_EQ(byte, 255);
    EXPECT_EQ(host::uses("RuntimeArrayDirectGetGetProc") > 0, version > 2013.9);
    EXPECT_EQ(host::uses("RuntimeArrayDirectGetSetProc") > 0, version > 2013.9);
    REALGetArrayValue(static_cast<REALarrayStruct*>(objects.get()), 0, &byte);
    EXPECT_EQ(raised(), "OutOfBoundsException: ") << "without storage the host is asked";
    REALInsertArrayValue(static_cast<REALarrayStruct*>(host::newArray(0, 1).get()), 3, 5);
    EXPECT_EQ(raised(), "OutOfBoundsException: ") << "inserted behind the place after the last";
  }
}

// ---- Errors ----

TEST_F(Frame, ExceptionsAndLinesInEveryForm) {
  testing::internal::CaptureStderr();
  DebugLog(host::newString("caf\xE9 %s", kEncodingWindows).get());
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "caf\xC3\xA9 %s\n");
  RaiseException("NilObjectException", "one ", "two ", "three", kEncodingASCII);
  EXPECT_EQ(raised(), "NilObjectException: one two three");
  RaiseException("NoSuchException", "text", kEncodingASCII);
  EXPECT_EQ(raised(), "RuntimeException: text");
  host::failAt("PluginNewInstance", 2);
  RaiseException("NoSuchException", static_cast<const char*>(nullptr), kEncodingASCII);
  const std::string parameter(3000, 'p'), method(3000, 'm');
  RaiseOutOfBoundsException(10, 10, INT64_MIN, parameter.c_str(), method.c_str());
  EXPECT_EQ(raised(), "OutOfBoundsException: Parameter " + parameter + " to method " + method +
                          " is too big. Range is 10 to 9223372036854775807, but value is 10.");
  RaiseOutOfBoundsException(INT64_MIN, -9, -8, nullptr, nullptr);
  EXPECT_EQ(raised(),
            "OutOfBoundsException: Parameter ? to method ? is too small. Range is -9 to -9, "
            "but value is -9223372036854775808.");
}

TEST_F(Frame, MemoryBlocksFromBytes) {
  const auto block = host::MemoryBlockRef::adopt(REALBuildMemoryblock("0123", 4));
  ASSERT_EQ(host::memoryBlockSize(block.get()), 4u);
  EXPECT_EQ(bytesAt(host::memoryBlockBytes(block.get()), 4), "0123");
  EXPECT_EQ(REALBuildMemoryblock("x", 0), nullptr);
  EXPECT_EQ(REALBuildMemoryblock(nullptr, 5), nullptr);
  host::failAt("memoryBlockGetPtr", 1);
  EXPECT_EQ(REALBuildMemoryblock("0123", 4), nullptr);
  host::failAt("newMemoryBlock", 1);
  EXPECT_EQ(REALBuildMemoryblock("0123", 4), nullptr);
  EXPECT_EQ(raised(), "OutOfMemoryException: Failed to allocate a memoryblock with 4 bytes in size.");
}

}  // namespace
