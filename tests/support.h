// Shared by all tests: a host with the built plug-in in it, pictures from colours and back, calls by name.
//
// A case ends at its second failure, and at its first ASSERT wherever that stands: loops need not look for
// failures. A program prints its first two failures, and on a signal names the case that runs.
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "tests/governed_plugin.h"
#include "tests/pictures.h"

// Adds what is being worked on, for the message of a process that a signal ends.
inline std::function<std::string()> describeRunning;

#ifdef ZVR_SANITIZED
constexpr bool kIsSanitized = true;
#else
constexpr bool kIsSanitized = false;
#endif

// Expects that the host holds exactly that, and that no exception is pending.
void expectHeld(const host::Ledger& wanted);

// A test in a host with the plug-in loaded. After each test the host must hold exactly `leaves`, by default
// nothing.
class HostTest : public ::testing::Test {
 protected:
  void SetUp() override { begin(settingsForRoad()); }
  void TearDown() override;
  // Begins the host anew with other settings and loads the plug-in afresh.
  void begin(const host::Settings& settings, const char* library = ZVR_PLUGIN);
  void unloadPlugin() { plugin_.reset(); }

  // Calls a registered method; the overload is chosen by the number of arguments. A failure of the test when
  // there is none.
  host::Outcome call(const std::string& name, REALobjectStruct* receiver,
                     std::vector<host::Value> arguments = {});
  // The picture that a call answers, empty for nil. Throws when an exception was raised.
  host::PictureRef callPicture(const std::string& name, const host::PictureRef& receiver,
                               std::vector<host::Value> arguments = {});

  host::Ledger leaves;

 private:
  std::unique_ptr<host::Plugin> plugin_;
};

// A test with a plug-in whose instruction set can be chosen.
class EverySetTest : public HostTest {
 protected:
  void SetUp() override { begin(settingsForRoad()); }
  void begin(const host::Settings& settings);
  // For each set that this processor has, the best one last.
  void onEverySet(const std::function<void()>& body);

 private:
  GovernedPlugin* governed_ = nullptr;
};
