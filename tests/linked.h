// Tests of inner layers, with the plug-in's objects linked in: our host around them, without a library to
// load.
#pragma once

#include <gtest/gtest.h>

#include "frame/plugin_main.h"
#include "host/host.h"
#include "host/objects.h"
#include "host/strings.h"
#include "tests/support.h"

// After each test the host must hold nothing.
class LinkedTest : public ::testing::Test {
 protected:
  void SetUp() override { beginAt(2013.03); }
  void TearDown() override {
    EXPECT_FALSE(host::takeException()) << "an exception is still pending";
    EXPECT_EQ(host::held(), host::Ledger()) << host::describeHeld();
  }
  // A new host of that version. What the plug-in resolved before stays resolved, at the same addresses.
  void beginAt(double version) {
    host::Settings settings = settingsForRoad();
    settings.version = version;
    host::start(settings);
    gResolver = host::resolve;
    rbversion_rbversion = version;
  }
};
