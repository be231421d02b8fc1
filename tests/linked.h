// Tests of inner layers, with the plug-in's objects linked in: our host around them, without a library to
// load.
#pragma once

#include <gtest/gtest.h>

#include <cstdlib>

#include "frame/plugin_main.h"
#include "host/host.h"
#include "host/objects.h"
#include "host/strings.h"
#include "tests/support.h"

// Runs a body in a process of its own, in which the plug-in has found no service of a host yet, and after
// which a host holds nothing.
template <typename Body>
void inFreshProcess(const Body& body) {
  const auto runAndExit = [&] {
    body();
    EXPECT_EQ(host::held(), host::Ledger()) << host::describeHeld();
    std::exit(testing::Test::HasFailure());
  };
  testing::GTEST_FLAG(death_test_style) = "threadsafe";  // a process from its beginning
  EXPECT_EXIT(runAndExit(), testing::ExitedWithCode(0), "");
}

// After each test the host must hold nothing.
class LinkedTest : public ::testing::Test {
 protected:
  void SetUp() override { beginAt(2013.03); }
  void TearDown() override {
    EXPECT_FALSE(host::takeException()) << "an exception is still pending";
    EXPECT_EQ(host::held(), host::Ledger()) << host::describeHeld();
  }
  // A new host of that version. Services that the plug-in found before stay found, at the same addresses.
  void beginAt(double version) {
    host::Settings settings = settingsForRoad();
    settings.version = version;
    host::start(settings);
    gResolver = host::resolve;
    rbversion_rbversion = version;
  }
};
