// Beneath the methods, which are compared on every instruction set: the choice of a set; and that lines found
// for lookup tables give the tables' entries exactly, and are found for nearly all that a line gives.

#include "kernels/channel_tables.h"

#include <csignal>

#include "kernels/kernels.h"
#include "tests/support.h"

namespace {

using Curve = std::function<double(double)>;

Curve line(double slope, double offset) {
  return [=](double v) { return v * slope + offset; };
}

// How many of so many triples of curves have lines, which then must be right.
int found(int triples, const std::function<Curve()>& drawCurve) {
  int found = 0;
  for (int i = 0; i < triples; ++i) {
    kernels::ChannelTables tables;
    for (auto* table : {&tables.red, &tables.green, &tables.blue}) {
      const Curve curve = drawCurve();
      for (int v = 0; v < 256; ++v)
        (*table)[v] = static_cast<uint8_t>(std::clamp(static_cast<int>(curve(v)), 0, 255));
    }
    kernels::LinearMaps lines;
    if (!kernels::findLinearMaps(tables, lines)) continue;
    ++found;
    for (int v = 0; v < 256; ++v) {
      uint32_t in = rgb(v, v, v), got;
      kernels::best().mapPiecewiseLinear(&got, &in, 1, 0, lines);
      EXPECT_EQ(got, rgb(tables.red[v], tables.green[v], tables.blue[v])) << v;
    }
  }
  return found;
}

TEST(Sets, TheBestOfThisProcessorIsUsed) {
  const kernels::Tables sets = kernels::supported();
  for (int i = 0; i < sets.count; ++i) std::cout << "instruction set: " << sets.table[i]->name << '\n';
  EXPECT_EQ(&kernels::best(), sets.table[sets.count - 1]);
}

// For old_processor.sh: the first instructions that came after SSE2 are illegal there indeed.
TEST(Sets, DISABLED_OldProcessorHasOnlySse2) {
  EXPECT_EXIT(__asm__ volatile("haddps %xmm0, %xmm0"), testing::KilledBySignal(SIGILL), "");
  EXPECT_EQ(kernels::supported().count, 1);
}

TEST(Lines, AreFoundForBrightnessAndContrast) {
  Random random(8);
  const auto number = [&](double least, double most) {
    return least + (most - least) * random.word() / 0x1p32;
  };
  const auto linear = [&] {
    const double brightness = random.between(-255, 255);
    return line((255 - std::abs(brightness)) / 255, std::max(brightness, 0.0));
  };
  const auto contrast = [&] {
    const double steeper = number(-4, 6);
    return line(1 + steeper, random.between(-100, 100) - 127 * steeper);
  };
  EXPECT_GE(found(100, linear), 97);
  EXPECT_EQ(found(100, [&] { return line(1, number(-255, 255)); }), 100) << "absolute brightness";
  EXPECT_GE(found(100, contrast), 90) << "falling and steep too";
  EXPECT_GE(found(100, [&] { return line(number(-1, 1), number(-200, 200)); }), 97);
}

TEST(Lines, AreRightWhereTablesAreHard) {
  for (int v = 0; v < 256; ++v) {
    EXPECT_EQ(found(1, [=] { return line(0, v); }), 1) << "constant " << v;
    // Steps of any height at any place: lines are not always steep enough, but where they are they're right.
    for (const int low : {0, 1, 100, 254, 255}) {
      for (const int high : {0, 1, 101, 254, 255})
        found(1, [=]() -> Curve { return [=](double x) { return x < v ? low : high; }; });
    }
  }
  for (int v = 1; v < 253; ++v) {
    const Curve bent = [=](double x) { return x == v ? x + 1 : x; };
    EXPECT_EQ(found(1, [=] { return bent; }), 0) << "all on a line but " << v;
  }
  Random random(9);
  EXPECT_EQ(found(100, [&]() -> Curve { return [&](double) { return random.between(0, 255); }; }), 0);
}

}  // namespace
