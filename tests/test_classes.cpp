// The two filter classes: arithmetic, limits, references, properties.

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>

#include "kernels/kernels.h"
#include "tests/support.h"

namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

constexpr const char *kLut = "PictureLut3DZVR", *kSepia = "PictureSepiaZVR";

const host::Method& methodOf(const std::string& type, const std::string& name) {
  for (const host::Class& candidate : host::members().classes) {
    for (const host::Method& method : candidate.methods) {
      if (candidate.name == type && method.declaration.name == name) return method;
    }
  }
  throw std::runtime_error("no method " + type + "." + name);
}

class Filter {
 public:
  explicit Filter(std::string type) : type_(std::move(type)), instance_(host::newInstance(type_)) {}

  void set(const std::string& name, const host::Value& value) const {
    host::setProperty(instance_.get(), name, value);
  }
  host::Value get(const std::string& name) const { return host::getProperty(instance_.get(), name); }
  host::PictureRef destination() const { return std::get<host::PictureRef>(get("DestinationPicture")); }
  bool run() const { return std::get<bool>(call("Run")); }
  void close() const { call("Close"); }
  // The result for a picture, empty when Run answers false.
  host::PictureRef run(const host::PictureRef& source) const {
    set("SourcePicture", source);
    return run() ? destination() : host::PictureRef();
  }

  double table(int64_t r, int64_t g, int64_t b, int64_t x) const {
    return std::get<double>(call("Table", {r, g, b, x}));
  }
  void setTable(int64_t r, int64_t g, int64_t b, int64_t x, double value) const {
    host::assign(methodOf(type_, "Table"), instance_.get(), {r, g, b, x}, value);
  }
  // Fills the whole table in the instance's data.
  void fill(const std::vector<double>& cube) const {
    std::memcpy(host::instanceData(instance_.get()) + 24, cube.data(), cube.size() * sizeof(double));
  }

 private:
  host::Value call(const std::string& name, std::vector<host::Value> arguments = {}) const {
    const host::Outcome outcome = host::call(methodOf(type_, name), instance_.get(), std::move(arguments));
    EXPECT_FALSE(outcome.exception) << name;
    return outcome.result;
  }

  std::string type_;
  host::ObjectRef instance_;
};

// ---- Tables and the plain definition ----

constexpr size_t kSide = 18, kUsed = 16;

size_t place(size_t r, size_t g, size_t b, size_t x) { return ((r * kSide + g) * kSide + b) * 3 + x; }

// A table of 64ths, which sums keep exactly; what may not be read would make the result 0 or 255.
template <typename Entry>
std::vector<double> makeCube(Entry entry) {
  std::vector<double> cube(kSide * kSide * kSide * 3, kNaN);
  for (size_t r = 0; r < kUsed; ++r) {
    for (size_t g = 0; g < kUsed; ++g) {
      for (size_t b = 0; b < kUsed; ++b) {
        for (size_t x = 0; x < 3; ++x) cube[place(r, g, b, x)] = entry(std::array<size_t, 3>{r, g, b}, x);
      }
    }
  }
  return cube;
}

std::vector<double> identityCube() {
  return makeCube([](const auto& node, size_t x) { return 17.0 * static_cast<double>(node[x]); });
}
std::vector<double> wholeCube(Random& random) {
  return makeCube([&](const auto&, size_t) { return random.between(0, 255); });
}
// Also out of range on both sides.
std::vector<double> fractionalCube(Random& random) {
  return makeCube([&](const auto&, size_t) { return random.between(-64 * 40, 64 * 300) / 64.0; });
}

// In whole numbers: the sum of four entries in 17ths of 64ths.
Rgb tetrahedral(const std::vector<double>& cube, Rgb color) {
  const std::array<int, 3> channels{red(color), green(color), blue(color)};
  std::array<size_t, 3> node{}, order{0, 1, 2};
  std::array<int, 3> share{};
  for (size_t i = 0; i < 3; ++i) {
    node[i] = static_cast<size_t>(channels[i] / 17);
    share[i] = channels[i] % 17;
  }
  std::sort(order.begin(), order.end(), [&](size_t a, size_t b) { return share[a] > share[b]; });
  std::array<int, 3> result{};
  for (size_t x = 0; x < 3; ++x) {
    std::array<size_t, 3> corner = node;
    int64_t sum = 0;
    int before = 17;
    const auto add = [&](int weight) {
      if (weight > 0)
        sum += weight * static_cast<int64_t>(cube[place(corner[0], corner[1], corner[2], x)] * 64);
    };
    for (size_t axis : order) {
      add(before - share[axis]);
      before = share[axis];
      ++corner[axis];
    }
    add(before);
    result[x] = static_cast<int>(std::clamp<int64_t>(sum / (17 * 64), 0, 255));
  }
  return rgb(result[0], result[1], result[2]);
}

struct Weights {
  double red = 0.299, green = 0.587, blue = 0.114;
};

int32_t wrapped(int64_t value) { return static_cast<int32_t>(static_cast<uint32_t>(value)); }

int64_t fixedPoint(double weight) {
  const double scaled = 1024 * weight;
  return std::fabs(scaled) < 2147483648.0 ? static_cast<int64_t>(scaled) : INT32_MIN;
}

Rgb toned(Rgb color, const Weights& weights, const std::array<int32_t, 3>& tone) {
  const int32_t sum = wrapped(wrapped(red(color) * fixedPoint(weights.red)) +
                              int64_t{wrapped(green(color) * fixedPoint(weights.green))} +
                              wrapped(blue(color) * fixedPoint(weights.blue)));
  std::array<int, 3> result{};
  for (size_t x = 0; x < 3; ++x) result[x] = std::clamp(wrapped(int64_t{tone[x]} + sum / 1024), 0, 255);
  return rgb(result[0], result[1], result[2]);
}

template <typename Pixel>
Pixels mapped(const Pixels& source, Pixel pixel) {
  Pixels result = source;
  for (Rgb& color : result.colors) color = pixel(color);
  return asWritten(result);
}

// ---- Kernels on every instruction set ----

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
    if (road() != host::Road::cairo) GTEST_SKIP() << "kernels know no host";
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

// ---- The 3D table ----

class Lut3D : public HostTest {};

TEST_F(Lut3D, AnIdentityTableKeepsAllColours) {
  const Filter filter(kLut);
  for (int64_t node = 0; node < 16 * 16 * 16; ++node) {
    const int64_t r = node / 256, g = node / 16 % 16, b = node % 16;
    filter.setTable(r, g, b, 0, 17.0 * static_cast<double>(r));
    filter.setTable(r, g, b, 1, 17.0 * static_cast<double>(g));
    filter.setTable(r, g, b, 2, 17.0 * static_cast<double>(b));
  }
  constexpr uint32_t kSlice = 1 << 20;
  for (uint32_t first = 0; first < 1 << 24; first += kSlice) {
    Pixels source(1024, 1025, Rgb{0});  // one row more: on the GDK road the first stays black
    for (uint32_t i = 0; i < kSlice; ++i) source.colors[1024 + i] = first + i;
    ASSERT_TRUE(colorsOf(filter.run(makePicture(source))) == asWritten(source)) << std::hex << first;
  }
}

TEST_F(Lut3D, ArbitraryTables) {
  for (uint32_t round = 0; round < 12; ++round) {
    Random random(round);
    const std::vector<double> cube = round % 2 ? fractionalCube(random) : wholeCube(random);
    const Filter filter(kLut);
    filter.fill(cube);
    // Small and large pictures may be worked on in different ways.
    const bool isLarge = round % 4 < 2;
    const Pixels source = isLarge ? random.pixels(201, 131) : random.pixels(random.side(), 11);
    const auto picture = makePicture(source, random.chance(50));
    const auto result = filter.run(picture);
    EXPECT_EQ(colorsOf(result), mapped(source, [&](Rgb c) { return tetrahedral(cube, c); })) << round;
    if (road() != host::Road::gdk) {
      EXPECT_EQ(host::pictureHasAlpha(result.get()), host::pictureHasAlpha(picture.get()));
      EXPECT_EQ(wordsOf(result)[0] >> 24, opaqueTopByte());
    }
    EXPECT_EQ(colorsOf(picture), source);
  }
}

TEST_F(Lut3D, NodesGiveTheirEntriesTruncated) {
  const Filter filter(kLut);
  const Pixels source(2, 2, {0, 0, 0x112233, 0xFFFFFF});
  EXPECT_EQ(colorsOf(filter.run(makePicture(source))), Pixels(2, 2, Rgb{0})) << "a new table is black";
  for (int64_t x = 0; x < 3; ++x) {
    filter.setTable(1, 2, 3, x, 10.9 + static_cast<double>(x));
    filter.setTable(15, 15, 15, x, x == 0 ? 254.99 : x == 1 ? -1 : 1e9);
  }
  EXPECT_EQ(colorsOf(filter.run(makePicture(source))), Pixels(2, 2, {0, 0, 0x0A0B0C, 0xFE00FF}));
}

TEST_F(Lut3D, TableBounds) {
  const Filter filter(kLut);
  filter.setTable(17, 17, 17, 2, 4.5);
  EXPECT_EQ(filter.table(17, 17, 17, 2), 4.5);
  const int64_t far = 0xFFFFFFFF;
  const std::array<int64_t, 4> outside[] = {{18, 0, 0, 0},  {0, 18, 0, 0},       {0, 0, 18, 0},
                                            {0, 0, 0, 3},   {17, 17, 17, 3},     {far, 0, 0, 0},
                                            {0, 0, 0, far}, {far, far, far, far}};
  for (const auto& [r, g, b, x] : outside) {
    filter.setTable(r, g, b, x, 7);
    EXPECT_EQ(filter.table(r, g, b, x), 0) << r << ' ' << g << ' ' << b << ' ' << x;
  }
  double sum = 0;
  for (int64_t i = 0; i < 18 * 18 * 18 * 3; ++i) sum += filter.table(i / 972, i / 54 % 18, i / 3 % 18, i % 3);
  EXPECT_EQ(sum, 4.5) << "an assignment outside landed inside";
}

// ---- Sepia ----

class Sepia : public HostTest {};

Pixels withFirstRow(std::vector<Rgb> row) {  // on the GDK road the first row stays black
  const auto width = static_cast<int>(row.size());
  row.insert(row.begin(), row.size(), 0);
  return {width, 2, std::move(row)};
}

std::vector<Rgb> secondRow(const host::PictureRef& picture) {
  const Pixels all = colorsOf(picture);
  return {all.colors.begin() + all.width, all.colors.end()};
}

TEST_F(Sepia, KnownColours) {
  const Filter filter(kSepia);
  filter.set("SepiaRed", int64_t{40});
  filter.set("SepiaGreen", int64_t{20});
  const auto picture = makePicture(withFirstRow({0xFFFFFF, 0x000000, 0x00FF00, 0x0000FF}));
  EXPECT_EQ(secondRow(filter.run(picture)),
            (std::vector<Rgb>{0xFFFFFE, 0x281400, rgb(189, 169, 149), rgb(68, 48, 28)}));
  filter.set("SepiaRed", int64_t{-150});
  EXPECT_EQ(secondRow(filter.run(picture)),
            (std::vector<Rgb>{rgb(104, 255, 254), 0x001400, rgb(0, 169, 149), rgb(0, 48, 28)}));
  leaves.objects = 1;  // the destination of the first run is lost, on purpose
}

// The factors of blue and green are crossed, on purpose.
TEST_F(Sepia, FactorsOfBlueAndGreenAreCrossed) {
  const Filter filter(kSepia);
  EXPECT_EQ(std::get<double>(filter.get("FactorRed")), 0.299);
  EXPECT_EQ(std::get<double>(filter.get("FactorBlue")), 0.587);
  EXPECT_EQ(std::get<double>(filter.get("FactorGreen")), 0.114);
  filter.set("FactorBlue", 0.0);
  EXPECT_EQ(secondRow(filter.run(makePicture(withFirstRow({0x00FF00, 0x0000FF, 0xFF0000})))),
            (std::vector<Rgb>{0, 0x1C1C1C, 0x4C4C4C}));
}

TEST_F(Sepia, ArbitraryWeightsAndTones) {
  for (uint32_t round = 0; round < 40; ++round) {
    Random random(round);
    const double extremes[] = {1e300, -1e300, kInfinity, kNaN, 2097151.99, -2097152.0, 16000, -16000, 1e-9};
    const auto weight = [&] {
      return random.chance(30) ? extremes[random.between(0, 8)] : random.between(-2000, 2000) / 1000.0;
    };
    const auto tone = [&] { return random.chance(30) ? wrapped(random.word()) : random.between(-300, 300); };
    const Weights weights{weight(), weight(), weight()};
    const std::array<int32_t, 3> tones{tone(), tone(), tone()};
    const Filter filter(kSepia);
    filter.set("FactorRed", weights.red);
    filter.set("FactorBlue", weights.green);
    filter.set("FactorGreen", weights.blue);
    filter.set("SepiaRed", int64_t{tones[0]});
    filter.set("SepiaGreen", int64_t{tones[1]});
    filter.set("SepiaBlue", int64_t{tones[2]});
    const Pixels source = random.pixels(random.side(), 12);
    const auto result = filter.run(makePicture(source, random.chance(50)));
    ASSERT_EQ(colorsOf(result), mapped(source, [&](Rgb c) { return toned(c, weights, tones); })) << round;
    EXPECT_FALSE(host::pictureHasAlpha(result.get()));
  }
}

// ---- Both ----

class BothClasses : public HostTest, public ::testing::WithParamInterface<const char*> {
 protected:
  bool isLut() const { return GetParam() == std::string(kLut); }
  // A filter that makes everything white.
  Filter whitening() const {
    Filter filter(GetParam());
    if (isLut()) {
      filter.fill(std::vector<double>(kSide * kSide * kSide * 3, 255));
    } else {
      for (const char* tone : {"SepiaRed", "SepiaGreen", "SepiaBlue"}) filter.set(tone, int64_t{255});
    }
    return filter;
  }
};
INSTANTIATE_TEST_SUITE_P(Classes, BothClasses, ::testing::Values(kLut, kSepia),
                         [](const auto& parameter) { return std::string(parameter.param); });

// Limits of a 9 x 7 picture, and the columns and rows that are worked on, always from the top left on.
struct LimitCase {
  int64_t minX, minY, maxX, maxY;
  int columns, rows;
};
const LimitCase kLimits[] = {
    {0, 0, 0, 0, 9, 7},
    {2, 1, 5, 4, 3, 3},
    {2, 1, 0, 0, 7, 6},
    {3, 2, 1, 1, 6, 5},
    {5, 0, 5, 0, 4, 7},
    {0, 0, 9, 7, 9, 7},
    {0, 0, 8, 6, 8, 6},
    {0, 0, 100, 1, 9, 1},
    {8, 6, 0, 0, 1, 1},
    {9, 0, 0, 0, 0, 0},
    {0, 7, 0, 0, 0, 0},
    {-3, -3, 4, 4, 4, 4},
    {-5, -5, 0, 0, 9, 7},
    {-5, -5, -2, -2, 9, 7},
    {INT32_MAX, INT32_MAX, INT32_MAX, INT32_MAX, 0, 0},
    {INT32_MIN, INT32_MIN, INT32_MAX, INT32_MAX, 9, 7},
};

TEST_P(BothClasses, LimitsMakeTheAreaSmallerButNeverMoveIt) {
  const auto picture = makePicture({9, 7, Rgb{0x123456}});
  for (const LimitCase& c : kLimits) {
    const Filter filter = whitening();
    filter.set("MinX", c.minX);
    filter.set("MinY", c.minY);
    filter.set("MaxX", c.maxX);
    filter.set("MaxY", c.maxY);
    Pixels expected(9, 7, unwrittenColor());
    for (int y = 0; y < c.rows; ++y) {
      for (int x = 0; x < c.columns; ++x) expected.at(x, y) = 0xFFFFFF;
    }
    EXPECT_EQ(colorsOf(filter.run(picture)), asWritten(expected))
        << c.minX << ' ' << c.minY << ' ' << c.maxX << ' ' << c.maxY;
  }
}

TEST_P(BothClasses, ASecondRunMakesANewDestination) {
  const Filter filter = whitening();
  const auto first = filter.run(makePicture({3, 2, Rgb{1}}));
  const auto second = filter.run(makePicture({4, 2, Rgb{2}}));
  EXPECT_EQ(host::pictureWidth(second.get()), 4);
  EXPECT_EQ(host::references(second.get()), 2) << "the property's and ours";
  if (isLut()) {
    EXPECT_EQ(host::references(first.get()), 1);
  } else {
    EXPECT_EQ(host::references(first.get()), 2);
    leaves.objects = 1;
  }
}

// The 3D class lets the old destination go before it looks for a source; the sepia class keeps it.
TEST_P(BothClasses, RunAnswersFalseWithoutPixels) {
  const Filter filter = whitening();
  EXPECT_FALSE(filter.run()) << "no source";
  const auto old = filter.run(makePicture({3, 2, Rgb{1}}));
  ASSERT_TRUE(old);
  const auto locked = makePicture({3, 2, Rgb{1}});
  host::oddities(locked.get()).refusesLock = host::oddities(locked.get()).copiesRefuseToo = true;
  for (const host::PictureRef& source : {locked, host::PictureRef()}) {
    filter.set("DestinationPicture", old);
    filter.set("SourcePicture", source);
    EXPECT_FALSE(filter.run());
    EXPECT_EQ(filter.destination().get(), isLut() ? nullptr : old.get());
  }
  if (road() == host::Road::gdk) return;  // no such drawable
  EXPECT_FALSE(filter.run(host::newPicture(32768, 1))) << "too wide to be written";
}

TEST_P(BothClasses, CloseReleasesBothPicturesOnce) {
  const auto picture = makePicture({3, 2, Rgb{1}});
  const Filter filter = whitening();
  const auto result = filter.run(picture);
  EXPECT_EQ(host::references(picture.get()), 2);
  for (int time = 0; time < 2; ++time) {
    filter.close();
    EXPECT_EQ(host::references(picture.get()), 1);
    EXPECT_EQ(host::references(result.get()), 1);
    EXPECT_FALSE(filter.destination());
    EXPECT_FALSE(filter.run());
  }
}

}  // namespace
