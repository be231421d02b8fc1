// Sound files to samples, and `zvr wave` from a sound file to a picture file.

#include <png.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "host/zvr/program.h"
#include "host/zvr/sound.h"
#include "tests/support.h"

namespace {

namespace fs = std::filesystem;
using Bytes = std::vector<uint8_t>;

// A WAV file of PCM samples (coding 1) or floats (coding 3).
Bytes wav(int coding, int channels, int sampleBits, const Bytes& samples) {
  Bytes file;
  const auto text = [&file](const char* letters) { file.insert(file.end(), letters, letters + 4); };
  const auto number = [&file](size_t value, int bytes) {
    for (int i = 0; i < bytes; ++i) file.push_back(static_cast<uint8_t>(value >> (8 * i)));
  };
  const auto frame = static_cast<size_t>(channels * sampleBits / 8);
  text("RIFF"), number(36 + samples.size(), 4), text("WAVE"), text("fmt "), number(16, 4);
  number(static_cast<size_t>(coding), 2), number(static_cast<size_t>(channels), 2), number(8000, 4);
  number(8000 * frame, 4), number(frame, 2), number(static_cast<size_t>(sampleBits), 2);
  text("data"), number(samples.size(), 4);
  file.insert(file.end(), samples.begin(), samples.end());
  return file;
}

class Wave : public HostTest {
 protected:
  void SetUp() override {
    HostTest::SetUp();
    std::string name = (fs::temp_directory_path() / "zvr-wave-XXXXXX").string();
    ASSERT_NE(mkdtemp(name.data()), nullptr);
    folder_ = name;
  }
  void TearDown() override {
    fs::remove_all(folder_);
    HostTest::TearDown();
  }
  std::string path(const std::string& name) const { return folder_ / name; }
  std::string write(const Bytes& bytes) const {
    std::ofstream(path("sound.wav"), std::ios::binary)
        .write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    return path("sound.wav");
  }

  fs::path folder_;
};

struct SoundCase {
  const char* what;
  int coding, channels, sampleBits;
  Bytes samples;
  int bits;
  Bytes bytes;
};

const SoundCase kSounds[] = {
    {"unsigned bytes", 1, 1, 8, {0, 127, 128, 255}, 8, {0, 127, 128, 255}},
    {"16 bits",
     1,
     1,
     16,
     {0x00, 0x80, 0xFF, 0xFF, 0x34, 0x12, 0xFF, 0x7F},
     15,
     {0x00, 0x80, 0xFF, 0xFF, 0x34, 0x12, 0xFF, 0x7F}},
    {"24 bits", 1, 1, 24, {0x00, 0x34, 0x12}, 15, {0x34, 0x12}},
    {"two channels", 1, 2, 16, {0x00, 0x10, 0x00, 0x20, 0x00, 0x10, 0x00, 0xF0}, 15, {0x00, 0x18, 0, 0}},
    // 0.5, and 2 beyond what a sample can say.
    {"floats", 3, 1, 32, {0, 0, 0, 0x3F, 0, 0, 0, 0x40}, 15, {0x00, 0x40, 0xFF, 0x7F}},
};

TEST_F(Wave, ReadsSamples) {
  for (const SoundCase& c : kSounds) {
    const zvr::Sound sound = zvr::loadSound(write(wav(c.coding, c.channels, c.sampleBits, c.samples)));
    EXPECT_EQ(sound.bits, c.bits) << c.what;
    EXPECT_EQ(sound.bytes, c.bytes) << c.what;
  }
}

TEST_F(Wave, SaysWhatIsWrongWithAFile) {
  const auto complaint = [](const std::string& file) -> std::string {
    try {
      zvr::loadSound(file);
    } catch (const zvr::Failure& failure) {
      return failure.what();
    }
    return "";
  };
  EXPECT_EQ(complaint(folder_), folder_.string() + ": is a directory");
  EXPECT_EQ(complaint(path("none.wav")), path("none.wav") + ": No such file or directory");
  EXPECT_EQ(complaint(write({})), path("sound.wav") + ": the file is empty");
  EXPECT_EQ(complaint(write(Bytes(500, 'x'))), path("sound.wav") + ": not a sound file");
  EXPECT_EQ(complaint(write(wav(1, 1, 16, {}))), path("sound.wav") + ": holds no samples");
}

Pixels readPng(const std::string& file) {
  png_image image{};
  image.version = PNG_IMAGE_VERSION;
  if (!png_image_begin_read_from_file(&image, file.c_str())) return {};
  image.format = PNG_FORMAT_RGB;
  Bytes bytes(PNG_IMAGE_SIZE(image));
  png_image_finish_read(&image, nullptr, bytes.data(), 0, nullptr);
  Pixels pixels(static_cast<int>(image.width), static_cast<int>(image.height), Rgb{0});
  for (size_t i = 0; i < pixels.colors.size(); ++i) {
    pixels.colors[i] = rgb(bytes[3 * i], bytes[3 * i + 1], bytes[3 * i + 2]);
  }
  return pixels;
}

// Each option reaches its argument: the file is the picture that the method itself answers.
TEST_F(Wave, WritesWhatTheMethodAnswers) {
  Bytes samples(4000);
  for (size_t i = 0; i < samples.size(); ++i)
    samples[i] = static_cast<uint8_t>(128 + i % 97 * (i / 100) / 80);
  const std::string file = write(wav(1, 1, 8, samples));
  const auto zvr = [&](const std::string& words) {
    return std::system(("'" ZVR_PROGRAM "' wave '" + file + "' " + words + " >/dev/null 2>&1").c_str());
  };
  const auto method = [&](std::vector<host::Value> arguments) {
    arguments.insert(arguments.begin(), host::newMemoryBlock(samples.data(), samples.size()));
    return colorsOf(callPicture("RenderSamplesZVR", {}, std::move(arguments)));
  };
  using host::Color;
  ASSERT_EQ(zvr("--width 200 --height 90 -o '" + path("plain.png") + "'"), 0);
  EXPECT_EQ(readPng(path("plain.png")),
            method({int64_t{4000}, int64_t{1}, int64_t{200}, int64_t{90}, int64_t{0}}));
  ASSERT_EQ(zvr("--width 300 --height 80 --smooth 4 --outline 1 --auto-scale --back-color '#102030' "
                "--fore-color '&c405060' --outline-color '#708090' -o '" +
                path("full.png") + "'"),
            0);
  EXPECT_EQ(readPng(path("full.png")),
            method({int64_t{4000}, int64_t{4}, int64_t{300}, int64_t{80}, int64_t{1}, Color{0x102030},
                    Color{0x405060}, Color{0x708090}, int64_t{8}, true}));
  EXPECT_NE(zvr("--width 2001"), 0) << "too short";
  EXPECT_FALSE(fs::exists(path("sound-wave.png")));
}

}  // namespace
