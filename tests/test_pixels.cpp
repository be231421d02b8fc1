// Every per-pixel method against its plain definition: random and adversarial pictures and arguments, many
// sizes, pictures with and without alpha.

#include "tests/pixel_models.h"

namespace {

#ifdef ZVR_SANITIZED
constexpr int kRounds = 40;
#else
constexpr int kRounds = 120;
#endif

class EveryPixel : public HostTest, public ::testing::WithParamInterface<PixelModel> {};

TEST_P(EveryPixel, IsAsDefined) {
  const PixelModel& model = GetParam();
  for (int round = 0; round < kRounds; ++round) {
    Random random(static_cast<uint32_t>(round));
    const int width = random.side(), height = random.side() % 40 + 1;
    std::vector<Pixels> sources;
    std::vector<host::PictureRef> pictures;
    for (int i = 0; i < model.sources; ++i) {
      sources.push_back(random.pixels(width, height));
      pictures.push_back(makePicture(sources.back(), random.chance(50)));
    }
    const std::vector<host::Value> arguments = model.arguments(random, sources[0].at(0, 0));

    Pixels expected(width, height, Rgb{0});
    for (size_t i = 0; i < expected.colors.size(); ++i) {
      Rgb pixels[4] = {};
      for (size_t s = 0; s < sources.size(); ++s) pixels[s] = sources[s].colors[i];
      expected.colors[i] = model.pixel(pixels, arguments);
    }

    std::vector<host::Value> all(pictures.begin() + (model.isGlobal ? 0 : 1), pictures.end());
    all.insert(all.end(), arguments.begin(), arguments.end());
    const host::PictureRef result =
        callPicture(model.method, model.isGlobal ? host::PictureRef() : pictures[0], all);
    ASSERT_TRUE(result) << "round " << round;
    ASSERT_EQ(colorsOf(result), asWritten(expected)) << "round " << round;
    if (road() != host::Road::gdk) {
      EXPECT_EQ(host::pictureHasAlpha(result.get()),
                model.keepsAlpha && host::pictureHasAlpha(pictures[0].get()));
      for (uint32_t word : wordsOf(result)) ASSERT_EQ(word >> 24, opaqueTopByte()) << "round " << round;
    }
    for (size_t s = 0; s < sources.size(); ++s) {
      ASSERT_EQ(colorsOf(pictures[s]), sources[s]) << "a source changed in round " << round;
    }
  }
}

TEST_P(EveryPixel, NilGivesNil) {
  const PixelModel& model = GetParam();
  Random random(1);
  std::vector<host::Value> arguments(static_cast<size_t>(model.sources - !model.isGlobal),
                                     host::PictureRef());
  for (const host::Value& value : model.arguments(random, 0)) arguments.push_back(value);
  EXPECT_FALSE(std::get<host::PictureRef>(call(model.method, nullptr, arguments).result));
}

INSTANTIATE_TEST_SUITE_P(Methods, EveryPixel, ::testing::ValuesIn(pixelModels()), [](const auto& tested) {
  return std::string(tested.param.method) + "_" + std::to_string(tested.index);
});

}  // namespace
