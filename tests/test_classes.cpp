// The two filter classes: colours, limits, the table's bounds, old destinations. What an instance holds and
// releases otherwise is for test_faults, which calls every member.

#include <emmintrin.h>

#include "tests/calls.h"
#include "tests/filter_models.h"
#include "tests/support.h"

namespace {

constexpr const char *kLut = "PictureLut3DZVR", *kSepia = "PictureSepiaZVR";
constexpr const char* kTable = "Table(r as UInt32, g as UInt32, b as UInt32, x as UInt32) as double";
constexpr auto kEntries = static_cast<int>(kSide * kSide * kSide * 3);

// An instance of one of the classes.
class Filter {
 public:
  explicit Filter(const char* type) : type_(type), instance_(host::newInstance(type)) {}

  void set(const char* property, const host::Value& value) const {
    host::setProperty(instance_.get(), property, value);
  }
  host::Value get(const char* property) const { return host::getProperty(instance_.get(), property); }
  host::Value call(const char* declaration, const std::vector<host::Value>& arguments) const {
    return host::call(Member{type_, declaration}.method(), instance_.get(), arguments).result;
  }
  // The result for a picture, empty when Run answers false.
  host::PictureRef run(const host::PictureRef& source) const {
    set("SourcePicture", source);
    if (!std::get<bool>(call("Run as boolean", {}))) return {};
    return std::get<host::PictureRef>(get("DestinationPicture"));
  }
  // The table in the instance's data; and an element of it as a program sets it.
  double* table() const { return reinterpret_cast<double*>(host::instanceData(instance_.get()) + 24); }
  void setTable(const std::vector<host::Value>& place, double value) const {
    host::assign(Member{type_, kTable}.method(), instance_.get(), place, value);
  }

 private:
  const char* type_;
  const host::ObjectRef instance_;
};

using Filters = HostTest;

// ---- Colours ----

template <auto kernel, typename Parameters>
void expectMapped(const Filter& filter, const Pixels& source, bool keepsAlpha, const Parameters& how) {
  Pixels expected = source;
  kernel(expected.colors.data(), source.colors.data(), source.colors.size(), opaqueTopByte() << 24, how);
  expected.alpha = source.alpha && keepsAlpha;
  EXPECT_EQ(pixelsOf(filter.run(pictureOf(source)).get()), asHeld(asWritten(expected)));
}

// For red, green and blue: those for green and blue are crossed, on purpose.
constexpr std::pair<const char*, double> kWeights[] = {
    {"FactorRed", 0.299}, {"FactorBlue", 0.587}, {"FactorGreen", 0.114}};
constexpr const char* kTones[] = {"SepiaRed", "SepiaGreen", "SepiaBlue"};

TEST_F(Filters, AnySettingsOnAnyPicture) {
  constexpr double kFar[] = {1e300, -1e300, kInfinity, kNaN, 2097151.99, -2097152.0, 16000, -16000, 1e-9};
  for (uint32_t round = 0; round < 64; ++round) {
    SCOPED_TRACE(round);
    Random random(round);
    const Filter lut(kLut), sepia(kSepia);
    // Large pictures may be worked on in another way.
    Pixels source = round & 1 ? random.words(201, 131) : random.words(random.side(), 11);
    source.alpha = round & 2;
    // Whole numbers or 64ths, within the range of colours or just beyond.
    const int parts = round & 4 ? 64 : 1, low = round & 8 ? -1 : 0, high = round & 16 ? 256 : 255;
    const std::vector<double> cube = makeCube([&](const auto&, size_t) {
      return random.between(parts * low, parts * high) / static_cast<double>(parts);
    });
    std::copy(cube.begin(), cube.end(), lut.table());
    expectMapped<plain::mapThroughCube>(lut, source, true, cube.data());

    uint32_t weights[3], tones[3];
    for (size_t i = 0; i < 3; ++i) {
      EXPECT_EQ(std::get<double>(sepia.get(kWeights[i].first)), kWeights[i].second);
      const double weight = random.chance(30) ? random.among(kFar) : random.between(-2000, 2000) / 1000.0;
      sepia.set(kWeights[i].first, weight);
      // As the processor converts it.
      weights[i] = static_cast<uint32_t>(_mm_cvttsd_si32(_mm_set_sd(1024 * weight)));
      tones[i] = random.chance(30) ? random.word() : static_cast<uint32_t>(random.between(-300, 300));
      sepia.set(kTones[i], int64_t{static_cast<int32_t>(tones[i])});
    }
    const kernels::Sepia how{weights[0], weights[1], weights[2], tones[0], tones[1], tones[2]};
    expectMapped<plain::sepia>(sepia, source, false, how);
  }
}

TEST_F(Filters, ATableIsZeroAtFirstAndHasBounds) {
  const Filter lut(kLut);
  EXPECT_EQ(std::count(lut.table(), lut.table() + kEntries, 0.0), kEntries);
  lut.setTable(numbers({1, 2, 17, 2}), 4.5);
  EXPECT_EQ(lut.table()[((1 * kSide + 2) * kSide + 17) * 3 + 2], 4.5);
  for (const auto& place : {numbers({18, 0, 0, 0}), numbers({0, 18, 0, 0}), numbers({0, 0, 18, 0}),
                            numbers({0, 0, 0, 3}), numbers({0xFFFFFFFF, 0, 0, 0})}) {
    lut.setTable(place, 7);
    EXPECT_EQ(std::get<double>(lut.call(kTable, place)), 0);
  }
  EXPECT_EQ(std::count(lut.table(), lut.table() + kEntries, 0.0), kEntries - 1);
}

// ---- Limits and old destinations ----

// Least, most, and how many of nine columns or rows are worked on: always from the first on, on purpose.
constexpr std::tuple<int64_t, int64_t, int> kLimits[] = {{0, 0, 9},
                                                         {2, 5, 3},
                                                         {5, 5, 4},
                                                         {0, 8, 8},
                                                         {2, 100, 7},
                                                         {-5, -2, 3},
                                                         {-3, -9, 9},
                                                         {INT32_MAX, INT32_MAX, 0},
                                                         {INT32_MIN, INT32_MAX, 9}};

TEST_F(Filters, Limits) {
  const auto picture = makePicture({9, 9, Rgb{0xFFFFFF}});
  for (const char* type : {kLut, kSepia}) {
    for (const auto& [minX, maxX, columns] : kLimits) {
      for (const auto& [minY, maxY, rows] : kLimits) {
        const Filter filter(type);
        // So that both classes turn white to 254: new weights add up to a little less than 1.
        if (type == kLut) std::fill_n(filter.table(), kEntries, 254.0);
        filter.set("MinX", minX);
        filter.set("MaxX", maxX);
        filter.set("MinY", minY);
        filter.set("MaxY", maxY);
        Pixels expected(9, 9, unwrittenColor());
        for (int i = 0; i < columns * rows; ++i) expected.at(i % columns, i / columns) = 0xFEFEFE;
        EXPECT_EQ(colorsOf(filter.run(picture)), asWritten(expected))
            << type << ' ' << minX << ' ' << maxX << ' ' << minY << ' ' << maxY;
      }
    }
  }
}

// The table's class lets the old destination go before it looks for a source. The sepia class keeps it, and
// loses it to a new one.
TEST_F(Filters, OldDestinations) {
  for (const char* type : {kLut, kSepia}) {
    const auto old = makePicture({3, 2, Rgb{1}});
    const Filter filter(type);
    filter.set("DestinationPicture", old);
    EXPECT_FALSE(std::get<bool>(filter.call("Run as boolean", {})));
    EXPECT_EQ(host::references(old.get()), type == kLut ? 1 : 2);
    filter.set("DestinationPicture", old);
    EXPECT_TRUE(filter.run(makePicture({3, 2, Rgb{2}})));
    EXPECT_EQ(host::references(old.get()), type == kLut ? 1 : 2);
  }
  leaves.objects = 1;
}

}  // namespace
