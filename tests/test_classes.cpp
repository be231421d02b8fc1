// The two filter classes: arithmetic, limits, references, properties.

#include <cstring>

#include "tests/filter_models.h"
#include "tests/support.h"

namespace {

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
  uint8_t* data() const { return host::instanceData(instance_.get()); }
  // Fills the whole table in the instance's data.
  void fill(const std::vector<double>& cube) const {
    std::memcpy(data() + 24, cube.data(), cube.size() * sizeof(double));
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

template <typename Pixel>
Pixels mapped(const Pixels& source, Pixel pixel) {
  Pixels result = source;
  for (Rgb& color : result.colors) color = pixel(color);
  return asWritten(result);
}

// ---- The 3D table ----

using Lut3D = HostTest;

TEST_F(Lut3D, AnIdentityTableKeepsAllColours) {
  const Filter filter(kLut);
  filter.fill(identityCube());
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
    const std::vector<double> cube =
        round % 2 ? fractionalCube(random, round % 8 < 4 ? 0 : 40) : wholeCube(random);
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

TEST_F(Lut3D, ANewTableIsBlack) {
  EXPECT_EQ(colorsOf(Filter(kLut).run(makePicture({2, 2, Rgb{0x112233}}))), Pixels(2, 2, Rgb{0}));
}

TEST_F(Lut3D, TableBounds) {
  const Filter filter(kLut);
  filter.setTable(17, 17, 17, 2, 4.5);
  EXPECT_EQ(filter.table(17, 17, 17, 2), 4.5);
  const int64_t far = 0xFFFFFFFF;
  for (const auto& [r, g, b, x] : std::vector<std::array<int64_t, 4>>{
           {18, 0, 0, 0}, {0, 18, 0, 0}, {0, 0, 18, 0}, {0, 0, 0, 3}, {far, 0, 0, 0}, {0, 0, 0, far}}) {
    filter.setTable(r, g, b, x, 7);
    EXPECT_EQ(filter.table(r, g, b, x), 0) << r << ' ' << g << ' ' << b << ' ' << x;
  }
  double sum = 0;
  for (int64_t i = 0; i < 18 * 18 * 18 * 3; ++i) sum += filter.table(i / 972, i / 54 % 18, i / 3 % 18, i % 3);
  EXPECT_EQ(sum, 4.5) << "an assignment outside landed inside";
}

// ---- Sepia ----

using Sepia = HostTest;

// The factors of blue and green are crossed, on purpose.
TEST_F(Sepia, FactorsOfBlueAndGreenAreCrossed) {
  const Filter filter(kSepia);
  EXPECT_EQ(std::get<double>(filter.get("FactorRed")), 0.299);
  EXPECT_EQ(std::get<double>(filter.get("FactorBlue")), 0.587);
  EXPECT_EQ(std::get<double>(filter.get("FactorGreen")), 0.114);
  filter.set("FactorBlue", 0.0);
  const auto result = filter.run(makePicture({1, 2, Rgb{0x00FF00}}));
  EXPECT_EQ(colorsOf(result).at(0, 1), 0u) << "of green";
  filter.set("FactorGreen", 0.5);
  const auto* weights = reinterpret_cast<const double*>(filter.data());
  EXPECT_EQ(std::vector<double>(weights, weights + 3), (std::vector<double>{0.299, 0, 0.5}));
}

TEST_F(Sepia, ArbitraryWeightsAndTones) {
  for (uint32_t round = 0; round < 40; ++round) {
    Random random(round);
    const Filter filter(kSepia);
    const double extremes[] = {1e300, -1e300, kInfinity, kNaN, 2097151.99, -2097152.0, 16000, -16000, 1e-9};
    const auto weight = [&](const char* name) {
      const double value =
          random.chance(30) ? extremes[random.between(0, 8)] : random.between(-2000, 2000) / 1000.0;
      filter.set(name, value);
      return value;
    };
    const auto tone = [&](const char* name) {
      const int32_t value =
          random.chance(30) ? static_cast<int32_t>(random.word()) : random.between(-300, 300);
      filter.set(name, int64_t{value});
      return value;
    };
    const Weights weights{weight("FactorRed"), weight("FactorBlue"), weight("FactorGreen")};
    const std::array<int32_t, 3> tones{tone("SepiaRed"), tone("SepiaGreen"), tone("SepiaBlue")};
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
const struct {
  int64_t minX, minY, maxX, maxY;
  int columns, rows;
} kLimits[] = {{0, 0, 0, 0, 9, 7},
               {2, 1, 5, 4, 3, 3},
               {2, 1, 0, 0, 7, 6},
               {3, 2, 1, 1, 6, 5},
               {5, 0, 5, 0, 4, 7},
               {0, 0, 8, 6, 8, 6},
               {0, 0, 100, 1, 9, 1},
               {0, 0, 10, 8, 9, 7},
               {8, 6, 0, 0, 1, 1},
               {9, 0, 0, 0, 0, 0},
               {0, 7, 0, 0, 0, 0},
               {-3, -2, 4, 4, 7, 6},
               {-5, -4, -2, 0, 3, 4},
               {-5, -7, 0, -1, 5, 6},
               {INT32_MAX, INT32_MAX, INT32_MAX, INT32_MAX, 0, 0},
               {INT32_MIN, INT32_MIN, INT32_MAX, INT32_MAX, 9, 7}};

TEST_P(BothClasses, LimitsMakeTheAreaSmallerButNeverMoveIt) {
  const auto picture = makePicture({9, 7, Rgb{0x123456}});
  for (const auto& c : kLimits) {
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
