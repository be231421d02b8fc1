// Lines found for lookup tables give the tables' entries exactly, and are found for nearly all that a line
// gives.

#include "kernels/channel_tables.h"

#include "tests/plain_kernels.h"

namespace {

using kernels::ChannelTables;
using Curve = std::function<double(double)>;

void fill(uint8_t (&table)[256], const Curve& curve) {
  for (int v = 0; v < 256; ++v)
    table[v] = static_cast<uint8_t>(std::clamp(static_cast<int>(curve(v)), 0, 255));
}

class Lines : public ::testing::Test {
 protected:
  // Whether lines are found, which then must be right.
  static bool findAndCheck(const ChannelTables& tables) {
    kernels::LinearMaps lines;
    if (!kernels::findLinearMaps(tables, lines)) return false;
    uint32_t in[256], expected[256], got[256];
    for (int v = 0; v < 256; ++v) in[v] = rgb(v, v, v);
    plain::mapThroughTables(expected, in, 256, 0, tables);
    plain::mapPiecewiseLinear(got, in, 256, 0, lines);
    for (int v = 0; v < 256; ++v) EXPECT_EQ(got[v], expected[v]) << v;
    return true;
  }
  // How many of 100 triples of curves have lines.
  template <typename DrawCurve>
  static int found(const DrawCurve& drawCurve) {
    int found = 0;
    for (int i = 0; i < 100; ++i) {
      ChannelTables tables;
      for (auto* table : {&tables.red, &tables.green, &tables.blue}) fill(*table, drawCurve());
      found += findAndCheck(tables);
    }
    return found;
  }
};

TEST_F(Lines, AreFoundForBrightnessAndContrast) {
  Random random(8);
  const auto number = [&](int least, int most, double unit) { return random.between(least, most) * unit; };
  EXPECT_GE(found([&]() -> Curve {
              const double b = number(-255, 255, 1), f = (255 - std::abs(b)) / 255, o = std::max(b, 0.0);
              return [=](double v) { return v * f + o; };
            }),
            97)
      << "linear brightness";
  EXPECT_EQ(found([&]() -> Curve {
              const double b = number(-25500, 25500, 0.01);
              return [=](double v) { return v + b; };
            }),
            100)
      << "absolute brightness";
  EXPECT_GE(found([&]() -> Curve {
              const double c = number(-400, 600, 0.01), b = number(-100, 100, 1);
              return [=](double v) { return 127 + (v - 127) * (1 + c) + b; };
            }),
            90)
      << "contrast, falling and steep too";
  EXPECT_GE(found([&]() -> Curve {
              const double a = number(-1000000000, 1000000000, 1e-9),
                           b = number(-1000000000, 1000000000, 2e-7);
              return [=](double v) { return v * a + b; };
            }),
            97)
      << "any lines";
}

TEST_F(Lines, AreRightWhereTablesAreHard) {
  const auto all = [](const Curve& curve) {
    ChannelTables tables;
    for (auto* table : {&tables.red, &tables.green, &tables.blue}) fill(*table, curve);
    return findAndCheck(tables);
  };
  for (int v = 0; v < 256; ++v) {
    EXPECT_TRUE(all([=](double) { return v; })) << "constant " << v;
    // Steps of any height at any place: lines are not always steep enough, but where they are they're right.
    for (const int low : {0, 1, 100, 254}) {
      for (const int high : {1, 101, 254, 255}) all([=](double x) { return x < v ? low : high; });
      all([=](double x) { return x < v ? 255 : low; });
    }
  }
  for (int v = 1; v < 253; ++v) {
    EXPECT_FALSE(all([=](double x) { return x == v ? x + 1 : x; })) << "all on a line but " << v;
  }
  Random random(9);
  EXPECT_EQ(found([&]() -> Curve { return [&](double) { return random.between(0, 255); }; }), 0);
}

}  // namespace
