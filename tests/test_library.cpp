// The library as hosts see it: its members as registered, loaded and left again and again.

#include <dlfcn.h>

#include <algorithm>
#include <cmath>
#include <fstream>

#include "tests/support.h"

namespace {

using Library = HostTest;

struct HostCase {
  std::optional<double> version;
  int32_t controlVersion;
  bool knowsFlags;
};
const HostCase kHosts[] = {
    {std::nullopt, 9, false}, {NAN, 9, false},     {2009, 9, false},    {2010.028, 9, false},
    {2010.029, 9, true},      {2011.99, 9, true},  {2012.0, 10, true},  {2012.99, 10, true},
    {2013.0, 11, true},       {2013.02, 11, true}, {2013.03, 12, true}, {2019, 12, true},
};
const std::string kConsoleSafe = " | console-safe";

// Lines of members.txt, as such a host should be handed them.
std::string wantedMembers(const HostCase& host) {
  std::ifstream file(ZVR_SOURCE_DIR "/tests/members.txt");
  std::string lines;
  for (std::string line; std::getline(file, line);) {
    if (line[0] == '#') continue;
    if (!host.knowsFlags) line = line.substr(0, line.find(kConsoleSafe));
    lines += line + '\n';
  }
  return lines;
}

std::string flagsOf(uint32_t flags) {
  return flags == kFlagConsoleSafe ? kConsoleSafe : flags == 0 ? "" : " | other flags";
}
std::string described(const host::Method& method) {
  return method.text + (method.setter ? " | assignable" : "") + flagsOf(method.flags) + '\n';
}
std::string described(const host::Property& property) {
  const bool isStored = property.getter == kStoredProperty && property.setter == kStoredProperty;
  const std::string place = (isStored ? "at " : "computed with ") + std::to_string(property.offset);
  return property.name + " as " + property.type + " | " + place + flagsOf(property.flags) + '\n';
}
// Everything that the host was handed, in the words of members.txt.
std::string handedMembers(int32_t version) {
  std::vector<host::Class> types = host::members().classes;
  types.emplace_back().methods = host::members().pictureMethods;
  auto type = types.begin();
  auto global = host::members().globals.begin();
  std::string lines;
  for (const host::Registration& call : host::members().journal) {
    lines += call.entryPoint + ' ';
    if (call.entryPoint == "PluginRegisterMethod") {
      lines += described(*global++);
      continue;
    }
    EXPECT_EQ(call.version, version) << call.name;
    const auto& record = *static_cast<const REALclassDefinition*>(call.record);
    const auto* words = static_cast<const uint32_t*>(call.record);
    lines += call.name + ", " + std::to_string(record.dataSize) + " bytes, flags " +
             std::to_string(record.flags) + ", unused words " +
             std::to_string(std::count(words, words + sizeof record / 4, 0u)) + '\n';
    for (const host::Property& property : type->properties) lines += "  " + described(property);
    for (const host::Method& method : type->methods) lines += "  " + described(method);
    ++type;
  }
  return lines;
}

std::unique_ptr<host::Plugin> enterAndCompare(const HostCase& c) {
  host::Settings settings = settingsForRoad();
  settings.version = c.version;
  host::start(settings);
  auto plugin = std::make_unique<host::Plugin>(ZVR_PLUGIN);
  EXPECT_EQ(host::members().controlVersion, c.controlVersion);
  EXPECT_EQ(handedMembers(c.controlVersion), wantedMembers(c)) << c.version.value_or(0);
  return plugin;
}

TEST_F(Library, HandsItsMembersToHostsOfEveryVersionAndCanBeLeft) {
  unloadPlugin();
  for (const HostCase& host : kHosts) {
    EXPECT_FALSE(dlopen(ZVR_PLUGIN, RTLD_NOW | RTLD_NOLOAD)) << "the library stays loaded";
    const auto stays = enterAndCompare(host);
    if (!host.version) continue;  // a host that tells no version is taken for the one before
    // Registration changed the records, for old hosts most of all; they are handed over as written again.
    enterAndCompare({2013.03, 12, true});
    enterAndCompare(host);
  }
}

}  // namespace
