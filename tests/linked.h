// Tests of inner layers, with the plug-in's objects linked in: our host around them, without a library to
// load.
#pragma once

#include <cstdlib>
#include <iostream>

#include "frame/host_state.h"
#include "host/strings.h"
#include "tests/support.h"

inline std::string bytesAt(const void* memory, size_t size) {
  return {static_cast<const char*>(memory), size};
}

// After each test, and before a host is followed by another, it must hold nothing.
class LinkedTest : public ::testing::Test {
 protected:
  void SetUp() override { beginAt(2013.03); }
  void TearDown() override { expectHeld({}); }
  // A new host of that version. Services that the plug-in found before stay found, at the same addresses.
  void beginAt(double version) {
    expectHeld({});
    host::Settings settings = settingsForRoad();
    settings.version = version;
    host::start(settings);
    gResolver = host::resolve;
    rbversion_rbversion = version;
  }
};

// Runs a body in a process of its own, in which the plug-in has found no service of a host yet, and after
// which a host holds nothing.
template <typename Body>
void inFreshProcess(const Body& body) {
  const auto runAndExit = [&] {
    body();
    EXPECT_EQ(host::held(), host::Ledger()) << host::describeHeld();
    const auto& result = *testing::UnitTest::GetInstance()->current_test_info()->result();
    for (int i = 0; i < result.total_part_count(); ++i) std::cerr << result.GetTestPartResult(i);
    std::exit(result.Failed());
  };
  testing::GTEST_FLAG(death_test_style) = "threadsafe";  // a process from its beginning
  EXPECT_EXIT(runAndExit(), testing::ExitedWithCode(0), "");
}
