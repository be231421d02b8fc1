// The two filter classes: colours, limits, the table's bounds, old destinations. What an instance holds and
// releases otherwise is for test_disturbances, which calls every member.

#include <emmintrin.h>

#include <array>
#include <cmath>

#include "tests/calls.h"
#include "tests/support.h"

namespace {

constexpr const char *kLut = "PictureLut3DZVR", *kSepia = "PictureSepiaZVR";
constexpr const char* kTable = "Table(r as UInt32, g as UInt32, b as UInt32, x as UInt32) as double";
constexpr size_t kSide = 18, kUsed = 16;
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

using Filters = EverySetTest;

// ---- Colours ----

using Corner = std::array<size_t, 3>;
size_t placeOf(const Corner& corner) { return ((corner[0] * kSide + corner[1]) * kSide + corner[2]) * 3; }

// Entries of three kinds: numbers in `parts` of one within or just beyond the range of colours; numbers that
// are hard to calculate with among others; and sums at and just below whole results. Entries that may not be
// read are no numbers.
std::vector<double> drawTable(Random& random, uint32_t kind) {
  constexpr double kHard[] = {NAN, INFINITY, -INFINITY, 1e308, -1e308, 5e-324, 255.5, 256, -1e-9, -4e9};
  const int parts = kind & 1 ? 64 : 1, low = kind & 2 ? -1 : 0, high = kind & 4 ? 256 : 255;
  const int hard = kind & 8 ? random.among({5, 50}) : 0, first = random.between(1, 241);
  std::vector<double> table(static_cast<size_t>(kEntries), NAN);
  for (size_t i = 0; i < kUsed * kUsed * kUsed; ++i) {
    const Corner corner = {i / kUsed / kUsed, i / kUsed % kUsed, i % kUsed};
    const auto whole = static_cast<double>(static_cast<size_t>(first) + corner[2]);
    const double below[] = {whole, std::nextafter(whole, 0), std::nextafter(std::nextafter(whole, 0), 0)};
    for (size_t x = 0; x < 3; ++x) {
      double& entry = table[placeOf(corner) + x];
      entry = random.between(parts * low, parts * high) / static_cast<double>(parts);
      if (random.chance(hard)) entry = random.among(kHard);
      if (kind % 5 == 4) entry = below[x];
    }
  }
  return table;
}

// From the lower corner the way leads along the axis of the largest share first. Of equal shares the smallest
// step in the table goes first, beginning with those that are none; that shows only where entries are
// infinite or no numbers.
Rgb tetrahedral(Rgb pixel, const std::vector<double>& table) {
  const int values[] = {red(pixel), green(pixel), blue(pixel)};
  const auto share = [&](size_t axis) { return values[axis] % 17; };
  const auto step = [&](size_t axis) { return values[axis] == 255 ? 0 : 3 - axis; };
  std::array<size_t, 3> axes = {0, 1, 2};
  std::sort(axes.begin(), axes.end(), [&](size_t a, size_t b) {
    return share(a) != share(b) ? share(a) > share(b) : step(a) < step(b);
  });
  Corner corner;
  for (const size_t axis : axes) corner[axis] = static_cast<size_t>(values[axis] / 17);
  double sums[3] = {};
  for (size_t i = 0; i < 4; ++i) {
    if (i > 0) corner[axes[i - 1]] = std::min<size_t>(corner[axes[i - 1]] + 1, 15);
    const double weight = (i > 0 ? share(axes[i - 1]) : 17) - (i < 3 ? share(axes[i]) : 0);
    for (size_t x = 0; x < 3; ++x) sums[x] += weight * table[placeOf(corner) + x];
  }
  const auto limited = [](double sum) {
    return sum >= 17 * 255 ? 255 : sum > 0 ? static_cast<int>(sum / 17) : 0;
  };
  return rgb(limited(sums[0]), limited(sums[1]), limited(sums[2]));
}

void expectMapped(const Filter& filter, const Pixels& source, bool keepsAlpha,
                  const std::function<Rgb(Rgb)>& map) {
  Pixels expected = source;
  for (uint32_t& word : expected.colors) word = map(word & 0xFFFFFF) | opaqueTopByte() << 24;
  expected.alpha = source.alpha && keepsAlpha;
  const Pixels got = pixelsOf(filter.run(pictureOf(source)).get());
  EXPECT_EQ(got, asHeld(asWritten(expected)));
}

// For red, green and blue: those for green and blue are crossed, on purpose.
constexpr std::pair<const char*, double> kWeights[] = {
    {"FactorRed", 0.299}, {"FactorBlue", 0.587}, {"FactorGreen", 0.114}};
constexpr const char* kTones[] = {"SepiaRed", "SepiaGreen", "SepiaBlue"};

TEST_F(Filters, AnySettingsOnAnyPicture) {
  constexpr double kFar[] = {1e300, -1e300, INFINITY, NAN, 2097151.99, -2097152.0,
                             16000, -16000, 1e-9,     32,  -32};
  for (uint32_t round = 0; round < 64; ++round) {
    SCOPED_TRACE(round);
    Random random(round);
    // Large pictures may be worked on in another way.
    Pixels source = round % 3 ? random.words(random.side(), 11) : random.words(201, 131);
    source.alpha = random.chance(50);
    const std::vector<double> table = drawTable(random, round);
    uint32_t weights[3], tones[3];
    double factors[3];
    for (size_t i = 0; i < 3; ++i) {
      factors[i] = random.chance(30) ? random.among(kFar) : random.between(-2000, 2000) / 1000.0;
      // As the processor converts it.
      weights[i] = static_cast<uint32_t>(_mm_cvttsd_si32(_mm_set_sd(1024 * factors[i])));
      tones[i] = random.chance(30) ? random.word() : static_cast<uint32_t>(random.between(-300, 300));
    }
    // Sums wrap.
    const auto toned = [&](Rgb p) {
      const uint32_t sum = static_cast<uint32_t>(red(p)) * weights[0] +
                           static_cast<uint32_t>(green(p)) * weights[1] +
                           static_cast<uint32_t>(blue(p)) * weights[2];
      const auto brightness = static_cast<uint32_t>(static_cast<int32_t>(sum) / 1024);
      const auto limited = [&](uint32_t tone) {
        return std::clamp(static_cast<int32_t>(tone + brightness), 0, 255);
      };
      return rgb(limited(tones[0]), limited(tones[1]), limited(tones[2]));
    };
    onEverySet([&] {
      const Filter lut(kLut), sepia(kSepia);
      std::copy(table.begin(), table.end(), lut.table());
      for (size_t i = 0; i < 3; ++i) {
        EXPECT_EQ(std::get<double>(sepia.get(kWeights[i].first)), kWeights[i].second);
        sepia.set(kWeights[i].first, factors[i]);
        sepia.set(kTones[i], int64_t{static_cast<int32_t>(tones[i])});
      }
      expectMapped(lut, source, true, [&](Rgb p) { return tetrahedral(p, table); });
      expectMapped(sepia, source, false, toned);
    });
  }
}

using Places = std::vector<host::Value>;

TEST_F(Filters, ATableIsZeroAtFirstAndHasBounds) {
  const Filter lut(kLut);
  EXPECT_EQ(std::count(lut.table(), lut.table() + kEntries, 0.0), kEntries);
  lut.setTable(Places({1, 2, 17, 2}), 4.5);
  EXPECT_EQ(lut.table()[((1 * kSide + 2) * kSide + 17) * 3 + 2], 4.5);
  for (const Places& place : {Places({18, 0, 0, 0}), Places({0, 18, 0, 0}), Places({0, 0, 18, 0}),
                              Places({0, 0, 0, 3}), Places({0xFFFFFFFF, 0, 0, 0})}) {
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
