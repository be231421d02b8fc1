#include "bench/operations.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>

namespace bench {
namespace {

using host::MemoryBlockRef;
using host::ObjectRef;
using host::PictureRef;
using host::StringRef;
using Picture = REALpictureStruct*;
using Block = REALmemoryBlockStruct*;

void require(bool holds, const char* what) {
  if (!holds) throw std::runtime_error(what);
}

// The part that all operations on a picture share.
Prepared on(const Size& size) {
  return {nullptr, [] {}, size.pixels(), size.pixels() * 4};
}

// `make` returns a new picture.
template <typename Make>
Prepared making(Prepared prepared, const Make& make) {
  const auto result = std::make_shared<PictureRef>();
  prepared.call = [=] { *result = PictureRef::adopt(make()); };
  prepared.after = [=] {
    require(static_cast<bool>(*result), "no picture was made");
    *result = {};
  };
  return prepared;
}

// `ask` returns a value.
template <typename Value, typename Ask>
Prepared asking(Prepared prepared, const Ask& ask, const std::function<bool(Value)>& isRight) {
  const auto answer = std::make_shared<Value>();
  prepared.call = [=] { *answer = ask(); };
  prepared.after = [=] { require(isRight(*answer), "a wrong answer"); };
  return prepared;
}

std::string labelled(const char* method, const char* label) {
  return *label ? std::string(method) + "-" + label : method;
}

// A picture from a picture and numbers.
template <typename... Arguments>
Operation map(const char* method, const char* label, Content content, Arguments... arguments) {
  return {labelled(method, label), [=](Stage& stage, const Size& size) {
            const auto function =
                stage.function<Picture(Picture, Arguments...)>(method, sizeof...(Arguments));
            const auto source = stage.picture(content, size);
            return making(on(size), [=] { return function(source.get(), arguments...); });
          }};
}

// A value from a picture and numbers.
template <typename Value, typename... Arguments>
Operation question(const char* method, const char* label, Content content, bool (*isRight)(Value),
                   Arguments... arguments) {
  return {labelled(method, label), [=](Stage& stage, const Size& size) {
            const auto function = stage.function<Value(Picture, Arguments...)>(method, sizeof...(Arguments));
            const auto source = stage.picture(content, size);
            return asking<Value>(
                on(size), [=] { return function(source.get(), arguments...); }, isRight);
          }};
}

bool isTrue(RBBoolean answer) { return answer != 0; }

// A picture from two.
Operation mapOfTwo(const char* method, size_t parameters) {
  return {method, [=](Stage& stage, const Size& size) {
            const auto function = stage.function<Picture(Picture, Picture)>(method, parameters);
            const auto first = stage.picture(Content::photo, size),
                       second = stage.picture(Content::otherPhoto, size);
            return making(on(size), [=] { return function(first.get(), second.get()); });
          }};
}

Operation combine() {
  return {"CombinePicturesZVR", [](Stage& stage, const Size& size) {
            const auto function = stage.function<Picture(Picture, Picture, Picture)>("CombinePicturesZVR", 3);
            const auto r = stage.picture(Content::photo, size), b = stage.picture(Content::otherPhoto, size),
                       g = stage.picture(Content::grays, size);
            return making(on(size), [=] { return function(r.get(), b.get(), g.get()); });
          }};
}

// In place: RGB24 pictures are refused, since only a copy of their pixels is accessible.
Operation scroll(const char* label, int32_t x, int32_t y, RBBoolean wrap) {
  Operation operation{labelled("ScrollZVR", label), [=](Stage& stage, const Size& size) {
                        const auto function =
                            stage.function<RBBoolean(Picture, int32_t, int32_t, RBBoolean, RBBoolean)>(
                                "ScrollZVR", 4);
                        const auto picture = stage.newPicture(size, nullptr);
                        return asking<RBBoolean>(
                            on(size), [=] { return function(picture.get(), x, y, wrap, 0); }, isTrue);
                      }};
  operation.wordsOnly = true;
  return operation;
}

Operation setMask() {
  Operation operation{"EmbeddedMaskZVR-set", [](Stage& stage, const Size& size) {
                        const auto setter = reinterpret_cast<void (*)(Picture, RBBoolean, Picture)>(
                            stage.method("EmbeddedMaskZVR", 1).setter);
                        const auto picture = stage.newPicture(size, nullptr);
                        const auto mask = stage.picture(Content::grays, size);
                        Prepared prepared = on(size);
                        prepared.call = [=] { setter(picture.get(), 0, mask.get()); };
                        return prepared;
                      }};
  operation.wordsOnly = true;
  return operation;
}

Operation histograms(const char* label, Content content) {
  return {labelled("CountColorsZVR", label), [=](Stage& stage, const Size& size) {
            const auto function =
                stage.function<void(Picture, Block*, Block*, Block*, int32_t*)>("CountColorsZVR", 4);
            const auto source = stage.picture(content, size);
            std::vector<MemoryBlockRef> blocks;
            while (blocks.size() < 3) blocks.push_back(host::newMemoryBlock(nullptr, 1024));
            const auto expected = static_cast<int32_t>(size.pixels());
            return asking<int32_t>(
                on(size),
                [=] {
                  Block r = blocks[0].get(), g = blocks[1].get(), b = blocks[2].get();
                  int32_t count = 0;
                  function(source.get(), &r, &g, &b, &count);
                  return count;
                },
                [=](int32_t count) { return count == expected; });
          }};
}

MemoryBlockRef gammaTable(double gamma) {
  uint8_t table[256];
  for (int i = 0; i < 256; ++i) table[i] = static_cast<uint8_t>(255 * std::pow(i / 255.0, gamma));
  return host::newMemoryBlock(table, sizeof table);
}

Operation transformColors(const char* label, bool intoPicture) {
  return {labelled("TransformColorsZVR", label), [=](Stage& stage, const Size& size) {
            const auto function =
                stage.function<Picture(Picture, Block, Block, Block, Picture)>("TransformColorsZVR", 4);
            const auto source = stage.picture(Content::photo, size);
            const auto r = gammaTable(0.6), b = gammaTable(1.0), g = gammaTable(1.7);
            const PictureRef target = intoPicture ? stage.newPicture(size, nullptr) : PictureRef();
            return making(on(size),
                          [=] { return function(source.get(), r.get(), b.get(), g.get(), target.get()); });
          }};
}

Operation tint() {
  return {"TintPictureZVR", [](Stage& stage, const Size& size) {
            const auto function = stage.function<Picture(Picture, RBColor, RBColor)>("TintPictureZVR", 3);
            const auto source = stage.picture(Content::photo, size);
            return making(on(size), [=] { return function(source.get(), 0x555555, 0x704214); });
          }};
}

Operation search(const char* label, Content content) {
  return {labelled("FindPictureZVR", label), [=](Stage& stage, const Size& size) {
            const auto function =
                stage.function<RBBoolean(Picture, Picture, int32_t*, int32_t*)>("FindPictureZVR", 3);
            const auto picture = stage.picture(content, size);
            const auto part = stage.newPicture(needleSize(size), needle(content, size).data());
            const Place place = needlePlace(size);
            return asking<bool>(
                on(size),
                [=] {
                  int32_t x = -1, y = -1;
                  return function(picture.get(), part.get(), &x, &y) != 0 && x == place.x && y == place.y;
                },
                [](bool found) { return found; });
          }};
}

Operation toString() {
  return {"PicturetoBinaryStringZVR", [](Stage& stage, const Size& size) {
            const auto function = stage.function<REALstringStruct*(Picture)>("PicturetoBinaryStringZVR", 1);
            const auto source = stage.picture(Content::photo, size);
            const auto result = std::make_shared<StringRef>();
            Prepared prepared = on(size);
            prepared.call = [=] { *result = StringRef::adopt(function(source.get())); };
            prepared.after = [=] {
              require(static_cast<bool>(*result), "no string was made");
              *result = {};
            };
            return prepared;
          }};
}

Operation fromString() {
  return {"BinaryStringtoPictureZVR", [](Stage& stage, const Size& size) {
            const auto write = stage.function<REALstringStruct*(Picture)>("PicturetoBinaryStringZVR", 1);
            const auto read = stage.function<Picture(REALstringStruct*)>("BinaryStringtoPictureZVR", 1);
            const auto source = stage.picture(Content::photo, size);
            const auto string = StringRef::adopt(write(source.get()));
            return making(on(size), [=] { return read(string.get()); });
          }};
}

constexpr int kSampleCount = 10'000'000;
constexpr Size kWaveSize{1500, 300};

std::vector<int16_t> speech() {
  std::vector<int16_t> samples;
  uint32_t noise = 1;
  for (int i = 0; i < kSampleCount; ++i) {
    noise = noise * 1664525 + 1013904223;
    const double loudness = 0.5 + 0.5 * std::sin(i * 3e-6);
    samples.push_back(
        static_cast<int16_t>(loudness * (20000 * std::sin(i * 0.02) + static_cast<double>(noise >> 19))));
  }
  return samples;
}

Operation wave() {
  const auto prepare = [](Stage& stage, const Size& size) {
    const auto function =
        stage.function<Picture(Block, int32_t, int32_t, int32_t, int32_t, int32_t, RBColor, RBColor, RBColor,
                               int32_t, RBBoolean)>("RenderSamplesZVR", 11);
    // At most one sample per pixel, so that small pictures get few.
    const size_t count = size == kWaveSize ? kSampleCount : std::min<size_t>(size.pixels(), kSampleCount);
    static const std::vector<int16_t> samples = speech();
    const auto block = host::newMemoryBlock(samples.data(), count * sizeof samples[0]);
    Prepared prepared = making(Prepared{}, [=] {
      return function(block.get(), static_cast<int32_t>(count), 1, size.width, size.height, 1, 0x88B5C4,
                      0x274C5A, 0x203F4E, 15, 0);
    });
    prepared.items = count;
    prepared.bytes = count * sizeof samples[0];
    return prepared;
  };
  Operation operation{"RenderSamplesZVR", prepare};
  operation.only = kWaveSize;
  return operation;
}

// ---- Filter classes ----

// `Run` of a new instance prepared by `setUp`. It is closed and set up again after each call.
template <typename SetUp>
Operation filter(const char* className, const char* label, const SetUp& setUp) {
  return {labelled(className, label), [=](Stage& stage, const Size& size) {
            const auto run = stage.function<RBBoolean(REALobjectStruct*)>(className, "Run");
            const auto close = stage.function<void(REALobjectStruct*)>(className, "Close");
            const auto source = stage.picture(Content::photo, size);
            const ObjectRef instance = host::newInstance(className);
            setUp(stage, instance);
            host::setProperty(instance.get(), "SourcePicture", source);
            Prepared prepared = asking<RBBoolean>(
                on(size), [=] { return run(instance.get()); }, isTrue);
            prepared.after = [=, isRight = prepared.after] {
              isRight();
              close(instance.get());
              host::setProperty(instance.get(), "SourcePicture", source);
            };
            return prepared;
          }};
}

constexpr uint32_t kLutSide = 18;

// Fills the table with an asymmetric look, of integers or not.
void fillTable(Stage& stage, const ObjectRef& instance, bool whole) {
  using Setter = void (*)(REALobjectStruct*, uint32_t, uint32_t, uint32_t, uint32_t, double);
  const auto set = reinterpret_cast<Setter>(stage.method("PictureLut3DZVR", "Table").setter);
  for (uint32_t i = 0; i < kLutSide * kLutSide * kLutSide; ++i) {
    const uint32_t at[] = {i / kLutSide / kLutSide, i / kLutSide % kLutSide, i % kLutSide};
    for (uint32_t x = 0; x < 3; ++x) {
      const double value =
          std::min(255.0, 255 * std::pow(at[x] / 15.0, 0.7 + 0.3 * x) * 0.9 + at[(x + 1) % 3] * 1.3);
      set(instance.get(), at[0], at[1], at[2], x, whole ? std::floor(value) : value);
    }
  }
}

Operation lut(const char* label, bool whole) {
  return filter("PictureLut3DZVR", label,
                [=](Stage& stage, const ObjectRef& instance) { fillTable(stage, instance, whole); });
}

Operation sepia() {
  return filter("PictureSepiaZVR", "", [](Stage&, const ObjectRef& instance) {
    host::setProperty(instance.get(), "SepiaRed", int64_t{30});
    host::setProperty(instance.get(), "SepiaGreen", int64_t{10});
    host::setProperty(instance.get(), "SepiaBlue", int64_t{-20});
  });
}

// For those that only read a picture, that write one from one, two or three, and that turn words into three
// bytes or back.
constexpr double kRead = 0.5, kMap = 1, kMapOfTwo = 1.5, kMapOfThree = 2, kRepack = 0.875;
Operation bounded(Operation operation, double limit) {
  operation.limit = limit;
  const bool readsPictures = operation.only.width == 0;  // others read samples
  operation.rgb24Limit = limit == kRepack ? 0.75 : readsPictures ? limit * 0.75 : limit;
  return operation;
}

Operation growing(Operation operation) {
  operation.grows = true;
  return operation;
}

std::vector<Operation> list() {
  constexpr Content photo = Content::photo;
  return {
      bounded(growing(map("InvertZVR", "", photo)), kMap),
      bounded(map("InvertZVR", "part", photo, 1, 1, 1 << 20, 1 << 20), kMap),
      bounded(map("InvertGrayZVR", "", photo), kMap),
      bounded(map("InvertGrayZVR", "part", photo, 1, 1, 1 << 20, 1 << 20), kMap),
      bounded(map("ChangeBrightnessLinearZVR", "", photo, 40.0), kMap),
      bounded(map("ChangeBrightnessLinearZVR", "channels", photo, 40.0, -30.0, 12.5), kMap),
      bounded(map("ChangeBrightnessAbsoluteZVR", "", photo, 40.0), kMap),
      bounded(map("ChangeBrightnessAbsoluteZVR", "channels", photo, 40.0, -30.0, 12.5), kMap),
      bounded(growing(map("ChangeContrastZVR", "", photo, 0.3)), kMap),
      bounded(map("ChangeContrastZVR", "channels", photo, 0.3, -0.2, 0.71), kMap),
      bounded(map("ChangeContrastBrightnessLinearZVR", "", photo, 0.3, 20.0), kMap),
      bounded(map("ChangeContrastBrightnessLinearZVR", "channels", photo, 0.3, -0.2, 0.71, 20.0, -10.0, 5.0),
              kMap),
      bounded(map("ChangeContrastBrightnessAbsoluteZVR", "", photo, 0.3, 20.0), kMap),
      bounded(
          map("ChangeContrastBrightnessAbsoluteZVR", "channels", photo, 0.3, -0.2, 0.71, 20.0, -10.0, 5.0),
          kMap),
      bounded(map("ChangeCustomZVR", "", photo, 1.37, -11.3), kMap),
      bounded(growing(transformColors("", false)), kMap),
      bounded(transformColors("into", true), kMap),
      bounded(growing(map("ChangeSaturationZVR", "", photo, 60)), kMap),
      bounded(growing(tint()), kMap),
      bounded(growing(sepia()), kMap),
      growing(lut("doubles", false)),
      growing(lut("whole", true)),
      bounded(map("ReplaceColorZVR", "", Content::page, RBColor{0xFFFFFF}, RBColor{0x123456}), kMap),
      bounded(
          map("ExtractColorZVR", "", Content::page, RBColor{0xFFFFFF}, RBColor{0x123456}, RBColor{0x654321}),
          kMap),
      bounded(growing(mapOfTwo("MergePictureZVR", 2)), kMapOfTwo),
      bounded(combine(), kMapOfThree),
      bounded(growing(mapOfTwo("ReplaceRedChannelZVR", 1)), kMapOfTwo),
      bounded(mapOfTwo("ReplaceGreenChannelZVR", 1), kMapOfTwo),
      bounded(mapOfTwo("ReplaceBlueChannelZVR", 1), kMapOfTwo),
      bounded(growing(question<int32_t>(
                  "CountColorZVR", "", Content::page, [](int32_t n) { return n > 0; }, RBColor{0xFFFFFF})),
              kRead),
      growing(histograms("photo", photo)),
      bounded(histograms("flat", Content::flat), kRead),
      bounded(growing(question<RBBoolean>("isWhiteZVR", "", Content::white, isTrue)), kRead),
      bounded(question<RBBoolean>("isBlackZVR", "", Content::black, isTrue), kRead),
      bounded(question<RBBoolean>("isGrayZVR", "", Content::grays, isTrue, 0), kRead),
      bounded(question<RBBoolean>("isGrayZVR", "tolerance", Content::grays, isTrue, 5), kRead),
      bounded(growing(question<double>(
                  "ColornessZVR", "", photo, [](double share) { return share > 0 && share <= 1; }, 0)),
              kRead),
      bounded(growing(search("photo", Content::place)), kRead),
      bounded(growing(search("page", Content::page)), kRead),
      bounded(growing(scroll("right", 5, 0, 1)), kMap),
      bounded(scroll("right-fill", 5, 0, 0), kMap),
      bounded(scroll("left", -5, 0, 1), kMap),
      bounded(scroll("left-fill", -5, 0, 0), kMap),
      bounded(growing(scroll("down", 0, 5, 1)), kMap),
      bounded(scroll("down-fill", 0, 5, 0), kMap),
      bounded(growing(scroll("up", 0, -5, 1)), kMap),
      bounded(scroll("up-fill", 0, -5, 0), kMap),
      bounded(growing(map("ExtractColorRectangleMaskZVR", "", Content::blobs)), kMap),
      bounded(map("EmbeddedMaskZVR", "", photo, RBBoolean{0}), kMap),
      bounded(setMask(), kMapOfTwo),
      bounded(growing(toString()), kRepack),
      bounded(growing(fromString()), kRepack),
      bounded(wave(), kRead),
  };
}

}  // namespace

const std::vector<Operation>& operations() {
  static const std::vector<Operation> all = list();
  return all;
}

}  // namespace bench
