// The filter classes' kernels on every instruction set that this machine has.

#include "kernels/kernels.h"
#include "tests/filter_models.h"
#include "tests/plain_kernels.h"

namespace {

// The words 0 to 0xFFFFFF in rows of odd length, so that every tail length is met.
template <typename Kernel>
void forAllColors(Kernel kernel) {
  constexpr uint32_t kAll = 1 << 24;
  std::vector<uint32_t> in, out;
  uint32_t length = 1;
  for (uint32_t first = 0; first < kAll; first += length) {
    length = std::min(kAll - first, length < 300 ? length + 1 : 1 << 14);
    in.resize(length);
    out.assign(length, 0);
    for (uint32_t i = 0; i < length; ++i) in[i] = (first + i) | i << 24;
    kernel(in, out);
  }
}

kernels::Pixel* pixels(std::vector<uint32_t>& words) { return words.data(); }

class Kernels : public ::testing::TestWithParam<int> {
 protected:
  void SetUp() override {
    if (GetParam() >= kernels::supported().count) GTEST_SKIP() << "this processor can't run it";
    table_ = kernels::supported().table[GetParam()];
  }
  const kernels::Table* table_ = nullptr;
};
INSTANTIATE_TEST_SUITE_P(Sets, Kernels, ::testing::Range(0, 3));

TEST_P(Kernels, AnIdentityTableKeepsAllColours) {
  const std::vector<double> cube = identityCube();
  forAllColors([&](std::vector<uint32_t>& in, std::vector<uint32_t>& out) {
    table_->mapThroughCube(pixels(out), pixels(in), in.size(), 0xFF000000, cube.data());
    for (size_t i = 0; i < in.size(); ++i) ASSERT_EQ(out[i], in[i] | 0xFF000000);
  });
}

TEST_P(Kernels, WholeTablesGiveWhatTheirDoublesGive) {
  Random random(3);
  const std::vector<double> cube = wholeCube(random);
  std::vector<uint32_t> words, expected;
  for (size_t i = 0; i < kUsed * kUsed * kUsed; ++i) {
    const double* entry = &cube[place(i / 256, i / 16 % 16, i % 16, 0)];
    words.push_back(rgb(static_cast<int>(entry[0]), static_cast<int>(entry[1]), static_cast<int>(entry[2])));
  }
  forAllColors([&](std::vector<uint32_t>& in, std::vector<uint32_t>& out) {
    table_->mapThroughWholeCube(pixels(out), pixels(in), in.size(), 0, pixels(words));
    expected.resize(in.size());
    table_->mapThroughCube(pixels(expected), pixels(in), in.size(), 0, cube.data());
    ASSERT_EQ(out, expected) << std::hex << in[0];
    ASSERT_EQ(out[0], tetrahedral(cube, in[0])) << std::hex << in[0];
  });
}

// Sums around 17 * k, where kernels may calculate otherwise than by dividing.
TEST_P(Kernels, EntriesAtAndJustBelowEachWholeNumber) {
  std::vector<uint32_t> in, out, expected;
  for (uint32_t gray = 0; gray < 64; ++gray)
    in.insert(in.end(), {gray * 0x010101, gray << 16 | 17, gray * 3});
  out.resize(in.size());
  expected.resize(in.size());
  for (int k = 1; k <= 256; ++k) {
    const double below = std::nextafter(k, 0), farBelow = std::nextafter(below, 0);
    const std::vector<double> cube = makeCube([&](const auto&, size_t x) {
      return x == 0 ? k : x == 1 ? below : farBelow;
    });
    plain::mapThroughCube(pixels(expected), pixels(in), in.size(), 0, cube.data());
    table_->mapThroughCube(pixels(out), pixels(in), in.size(), 0, cube.data());
    ASSERT_EQ(out, expected) << k;
  }
}

// Entries that no picture can show give the same on every instruction set, and never more than a colour.
TEST_P(Kernels, StrangeEntries) {
  Random random(4);
  const double strange[] = {kNaN, -kNaN, kInfinity, -kInfinity, 1e308, -1e308, 5e-324, -0.0, 255.5, 1e9};
  const std::vector<double> cube = makeCube([&](const auto&, size_t) {
    return random.chance(50) ? strange[random.between(0, 9)] : random.between(0, 255);
  });
  std::vector<uint32_t> in(5000), out(5000), expected(5000);
  for (uint32_t& word : in) word = random.color();
  kernels::supported().table[0]->mapThroughCube(pixels(expected), pixels(in), in.size(), 0, cube.data());
  table_->mapThroughCube(pixels(out), pixels(in), in.size(), 0, cube.data());
  EXPECT_EQ(out, expected);
  for (uint32_t word : out) ASSERT_LE(word, 0xFFFFFFu);
}

TEST_P(Kernels, Toning) {
  Random random(5);
  for (int round = 0; round < 200; ++round) {
    const auto word = [&] { return random.chance(50) ? random.word() : random.word() % 4096 - 2048; };
    const kernels::Toning t{word(), word(), word(), word(), word(), word()};
    const auto weight = [](uint32_t bits) { return static_cast<int32_t>(bits) / 1024.0; };
    const Weights weights{weight(t.redWeight), weight(t.greenWeight), weight(t.blueWeight)};
    std::vector<uint32_t> in(static_cast<size_t>(random.between(1, 70))), out(in.size());
    for (uint32_t& pixel : in) pixel = random.color() | 0xAB000000;
    table_->tone(pixels(out), pixels(in), in.size(), 0xFF000000, t);
    for (size_t i = 0; i < in.size(); ++i) {
      ASSERT_EQ(out[i],
                toned(in[i], weights, {wrapped(t.red), wrapped(t.green), wrapped(t.blue)}) | 0xFF000000)
          << "round " << round;
    }
  }
}

}  // namespace
