// Adjusting records for the host at hand: flags, and the shorter layout of old hosts; also for kinds of
// record that this plug-in never registers.

#include <cstring>

#include "frame/memory.h"
#include "frame/registration.h"
#include "tests/linked.h"

namespace {

class Records : public LinkedTest {};

TEST_F(Records, MarkersBecomeFlagsOnHostsThatKnowThem) {
  struct Case {
    uint32_t marked, known, unknown;
  };
  for (const Case& c : {Case{0x40000, 0x4, 0}, Case{0x80000, 0x8, 0}, Case{0xC0000, 0xC, 0},
                        Case{0x100000, 0, 0}, Case{0x140000, 0x4, 0}, Case{0, 0, 0}, Case{0x40004, 0x4, 0x4},
                        Case{0x40100, 0x104, 0x100}, Case{0xFFE3FFF3, 0xFFE3FFF3, 0xFFE3FFF3}}) {
    for (double version : {0.0, 2010.028, 2010.029, 2013.03}) {
      beginAt(version);
      const uint32_t expected = version >= 2010.029 ? c.known : c.unknown;
      REALmethodDefinition methods[2] = {}, shared[1] = {}, globals[2] = {}, alone = {}, ofModule[1] = {};
      REALproperty properties[2] = {}, sharedProperties[1] = {}, propertiesOfModule[1] = {};
      REALclassDefinition type = {};
      REALmoduleDefinition module = {};
      uint32_t* const flags[] = {
          &methods[0].flags,          &methods[1].flags,    &shared[0].flags,
          &globals[0].flags,          &globals[1].flags,    &alone.flags,
          &ofModule[0].flags,         &properties[0].flags, &properties[1].flags,
          &sharedProperties[0].flags, &type.flags,          &propertiesOfModule[0].flags};
      for (uint32_t* word : flags) *word = c.marked;
      type.methods = methods;
      type.methodCount = 2;
      type.sharedMethods = shared;
      type.sharedMethodCount = 1;
      type.properties = properties;
      type.propertyCount = 2;
      type.sharedProperties = sharedProperties;
      type.sharedPropertyCount = 1;
      module.methods = ofModule;
      module.properties = propertiesOfModule;
      module.methodCount = module.propertyCount = 1;
      FixConsoleFlags(&type);
      FixConsoleFlags(globals, 2);
      FixConsoleFlags(&alone);
      FixConsoleFlags(&module);
      for (uint32_t* word : flags) {
        EXPECT_EQ(*word, expected) << std::hex << c.marked << " at " << version << ", word "
                                   << word - flags[0];
      }
    }
  }
  REALclassDefinition empty = {};
  empty.methodCount = 3;  // a count without an array
  FixConsoleFlags(&empty);
  REALmethodDefinition untouched = {};
  untouched.flags = 0x40000;
  FixConsoleFlags(&untouched, -1);
  EXPECT_EQ(untouched.flags, 0x40000u);
}

TEST_F(Records, FlagsSetByCode) {
  REALclassDefinition type = {};
  type.flags = 0x1A;
  EXPECT_EQ(SetClassConsoleSafe(&type), &type);
  EXPECT_EQ(type.flags, 0x1Eu);
  EXPECT_EQ(SetClassWebOnly(&type), 0x116u);
  EXPECT_EQ(type.flags, 0x116u);
}

TEST_F(Records, InstanceDataIsRoundedUpForClassesAlone) {
  CurrentREALControlVersion = 12;
  struct Case {
    int32_t declared, registered;
  };
  for (const Case& c :
       {Case{0, 0}, Case{1, 16}, Case{16, 16}, Case{17, 32}, Case{64, 64}, Case{139992, 140000}}) {
    REALclassDefinition type = {};
    type.name = "Picture";
    type.dataSize = c.declared;
    MyREALRegisterClass(&type);
    EXPECT_EQ(type.dataSize, c.registered);
    EXPECT_EQ(type.version, 12);
    type.dataSize = c.declared;
    MyREALRegisterClassExtension(&type);
    EXPECT_EQ(type.dataSize, c.declared);
  }
}

// Words that tell their place: the first words of each record are kept, the others go.
template <typename Record>
void number(Record* records, size_t count, uint32_t start) {
  auto* words = reinterpret_cast<uint32_t*>(records);
  for (size_t i = 0; i < count * sizeof(Record) / 4; ++i) words[i] = start + static_cast<uint32_t>(i);
}
template <typename Record, typename Old>
void expectShortened(const void* copies, const Record* sources, size_t count) {
  ASSERT_TRUE(copies);
  EXPECT_NE(copies, static_cast<const void*>(sources));
  const auto* words = static_cast<const uint32_t*>(copies);
  for (size_t i = 0; i < count; ++i)
    EXPECT_EQ(std::memcmp(words + i * sizeof(Old) / 4, sources + i, sizeof(Old)), 0) << "record " << i;
}

TEST_F(Records, OldHostsGetShorterRecords) {
  CurrentREALControlVersion = 9;
  REALproperty properties[3], shared[2];
  REALmethodDefinition methods[3], sharedMethods[2];
  REALconstant constants[3];
  REALevent events[2];
  number(properties, 3, 100);
  number(shared, 2, 200);
  number(methods, 3, 300);
  number(sharedMethods, 2, 400);
  number(constants, 3, 500);
  number(events, 2, 600);
  const REALevent eventsBefore[2] = {events[0], events[1]};

  REALclassDefinition type;
  number(&type, 1, 1);
  type.properties = properties;
  type.propertyCount = 3;
  type.sharedProperties = shared;
  type.sharedPropertyCount = 2;
  type.methods = methods;
  type.methodCount = 3;
  type.sharedMethods = sharedMethods;
  type.sharedMethodCount = 2;
  type.constants = constants;
  type.constantCount = 3;
  type.events = events;
  type.eventCount = 2;

  REALclassDefinition* old = FixClass(&type);
  ASSERT_TRUE(old);
  expectShortened<REALproperty, REALoldProperty>(old->properties, properties, 3);
  expectShortened<REALproperty, REALoldProperty>(old->sharedProperties, shared, 2);
  expectShortened<REALmethodDefinition, REALoldMethodDefinition>(old->methods, methods, 3);
  expectShortened<REALmethodDefinition, REALoldMethodDefinition>(old->sharedMethods, sharedMethods, 2);
  expectShortened<REALconstant, REALoldConstant>(old->constants, constants, 3);
  expectShortened<REALevent, REALoldEvent>(old->events, eventsBefore, 2);
  for (size_t i = 0; i < 2; ++i)
    EXPECT_EQ(events[i].forOldHosts, reinterpret_cast<REALoldEvent*>(old->events) + i);
  // Everything else as it was, but for the version and the obsolete words.
  const auto* words = reinterpret_cast<const uint32_t*>(old);
  const auto* before = reinterpret_cast<const uint32_t*>(&type);
  EXPECT_EQ(words[0], 9u);
  EXPECT_EQ(words[16], 0u);
  EXPECT_EQ(words[17], 0u);
  for (size_t i : {1u, 2u, 3u, 4u, 5u, 6u, 8u, 10u, 12u, 13u, 14u, 15u, 19u, 20u, 22u, 24u})
    EXPECT_EQ(words[i], before[i]) << "word " << i;

  for (void* array : {static_cast<void*>(old->properties), static_cast<void*>(old->sharedProperties),
                      static_cast<void*>(old->methods), static_cast<void*>(old->sharedMethods),
                      static_cast<void*>(old->constants), static_cast<void*>(old->events)})
    FreeMemoryNow(array);
  FreeMemoryNow(old);
}

TEST_F(Records, AMissingArrayKeepsItsCount) {
  CurrentREALControlVersion = 9;
  REALmethodDefinition method = {};
  REALclassDefinition type = {};
  type.methodCount = 5;
  type.properties = reinterpret_cast<REALproperty*>(&method);
  type.propertyCount = 0;
  REALclassDefinition* old = FixClass(&type);
  EXPECT_EQ(old->methods, nullptr);
  EXPECT_EQ(old->methodCount, 5);
  EXPECT_EQ(old->properties, nullptr);
  EXPECT_EQ(old->propertyCount, 0);
  FreeMemoryNow(old);
}

// Kinds that this plug-in never registers go the same way.
TEST_F(Records, OtherKindsOfRecordAreRegisteredAlike) {
  REALmethodDefinition methods[2];
  for (int32_t version : {9, 10, 12}) {
    CurrentREALControlVersion = version;
    host::start(host::settings());
    number(methods, 2, 300);
    REALmoduleDefinition module = {};
    REALinterfaceDefinition interface = {};
    REALcontrolDefinition control = {};
    module.methods = interface.methods = control.methods = methods;
    module.methodCount = interface.methodCount = control.methodCount = 2;
    MyREALRegisterModule(&module);
    MyREALRegisterInterface(&interface);
    MyREALRegisterControl(&control);
    const auto& journal = host::members().journal;
    ASSERT_EQ(journal.size(), 3u);
    const char* const entryPoints[] = {"PluginRegisterModule", "PluginRegisterInterface",
                                       "PluginRegisterControl"};
    const REALmethodDefinition* const arrays[] = {module.methods, interface.methods, control.methods};
    for (size_t i = 0; i < 3; ++i) {
      EXPECT_EQ(journal[i].entryPoint, entryPoints[i]);
      EXPECT_EQ(journal[i].version, version);
      if (version > 9) {
        EXPECT_EQ(arrays[i], methods);
      } else {
        expectShortened<REALmethodDefinition, REALoldMethodDefinition>(arrays[i], methods, 2);
        FreeMemoryNow(const_cast<REALmethodDefinition*>(arrays[i]));
      }
    }
  }
}

}  // namespace
