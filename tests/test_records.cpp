// Records as hosts of every age get them: flags, and the shorter layout of old hosts; also for kinds of
// record that this plug-in never registers.

#include <numeric>

#include "frame/memory.h"
#include "frame/registration.h"
#include "tests/linked.h"

namespace {

using Records = LinkedTest;
using Words = std::vector<uint32_t>;

// In every member, whatever other flags it has. Older hosts know none: tests/test_library.
TEST_F(Records, MarkersBecomeFlags) {
  REALclassDefinition type = {};
  REALmoduleDefinition module = {};
  const auto expectFlags = [&](auto& members, int32_t& count) {
    std::remove_pointer_t<std::decay_t<decltype(members)>> two[2] = {};
    type.flags = two[0].flags = 0x140000;
    two[1].flags = ~0x14000Cu;
    members = two;
    count = 2;
    FixConsoleFlags(&type);
    FixConsoleFlags(&module);
    EXPECT_EQ(type.flags, 4u);
    EXPECT_EQ(two[0].flags, 4u);
    EXPECT_EQ(two[1].flags, ~0x1C0004u);
    members = nullptr;  // from now on a count without an array
  };
  expectFlags(type.methods, type.methodCount);
  expectFlags(type.sharedMethods, type.sharedMethodCount);
  expectFlags(type.properties, type.propertyCount);
  expectFlags(type.sharedProperties, type.sharedPropertyCount);
  expectFlags(module.methods, module.methodCount);
  expectFlags(module.properties, module.propertyCount);
  type.flags = 0x1A;
  EXPECT_EQ(SetClassConsoleSafe(&type)->flags, 0x1Eu);
  EXPECT_EQ(SetClassWebOnly(&type), 0x116u);
  EXPECT_EQ(type.flags, 0x116u);
}

// An array of a record: the word that points to it (its count follows), and the words of each element in the
// current and in the old layout.
struct Array {
  size_t pointer, current, old;
};

uint32_t addressOf(const void* place) { return static_cast<uint32_t>(reinterpret_cast<uintptr_t>(place)); }

// On old hosts the first words of each element are kept and the others go; a missing or empty array is none,
// with its count. Every other word stays, and tells its place.
template <typename Record>
void expectAdjusted(void (*add)(Record*), const std::vector<Array>& arrays, bool isThere, uint32_t count) {
  const bool isOld = CurrentREALControlVersion == kOldLayoutVersion;
  Words record(sizeof(Record) / 4), elements[6], sources[6];
  std::iota(record.begin(), record.end(), 1);
  for (size_t i = 0; i < arrays.size(); ++i) {
    elements[i].resize(3 * arrays[i].current);
    std::iota(elements[i].begin(), elements[i].end(), 100 * (i + 1));
    sources[i] = elements[i];
    record[arrays[i].pointer] = isThere ? addressOf(elements[i].data()) : 0;
    record[arrays[i].pointer + 1] = count;
  }
  Words expected = record;
  expected[0] = static_cast<uint32_t>(CurrentREALControlVersion);
  if constexpr (std::is_same_v<Record, REALclassDefinition>) {
    if (add == MyREALRegisterClass) expected[3] = 16;  // bytes of instance data
    if (isOld) expected[16] = expected[17] = 0;        // obsolete
  }
  add(reinterpret_cast<Record*>(record.data()));
  for (size_t i = 0; i < arrays.size() && isOld; ++i) {
    const auto [pointer, current, old] = arrays[i];
    auto* const copies = reinterpret_cast<uint32_t*>(record[pointer]);
    expected[pointer] = isThere && count > 0 ? record[pointer] : 0;
    EXPECT_NE(copies, elements[i].data());
    for (size_t n = 0; copies && n < count; ++n) {
      EXPECT_EQ(bytesAt(copies + n * old, 4 * old), bytesAt(&sources[i][n * current], 4 * old)) << pointer;
      if (pointer == 11) sources[i][n * current + 1] = addressOf(copies + n * old);
    }
    EXPECT_EQ(elements[i], sources[i]) << "only events are told where their copies are";
    FreeMemoryNow(copies);
  }
  EXPECT_EQ(record, expected);
}

template <typename Record>
void expectEveryAge(const char* entryPoint, void (*add)(Record*), const std::vector<Array>& arrays) {
  for (int32_t version : {9, 10, 12}) {
    for (auto [isThere, count] : {std::pair(true, 3u), {false, 3u}, {true, 0u}}) {
      SCOPED_TRACE(entryPoint + std::to_string(version));
      CurrentREALControlVersion = version;
      host::clearFaults();
      host::failAt(entryPoint, 1);  // the host doesn't look into the record
      expectAdjusted(add, arrays, isThere, count);
      EXPECT_EQ(host::uses(entryPoint), 1);
    }
  }
}

TEST_F(Records, OldHostsGetShorterRecords) {
  const std::vector<Array> ofControls = {{7, 12, 10}, {9, 6, 4}, {11, 4, 2}};
  std::vector<Array> ofClasses = ofControls;
  ofClasses.insert(ofClasses.end(), {{18, 5, 3}, {21, 12, 10}, {23, 6, 4}});
  expectEveryAge("PluginRegisterClass", MyREALRegisterClass, ofClasses);
  expectEveryAge("PluginRegisterClassExtension", MyREALRegisterClassExtension, ofClasses);
  expectEveryAge("PluginRegisterModule", MyREALRegisterModule, {{2, 6, 4}, {4, 5, 3}, {6, 12, 10}});
  expectEveryAge("PluginRegisterInterface", MyREALRegisterInterface, {{2, 6, 4}});
  expectEveryAge("PluginRegisterControl", MyREALRegisterControl, ofControls);
}

}  // namespace
