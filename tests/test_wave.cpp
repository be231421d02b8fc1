// Sound files to samples, and `zvr wave` from a sound file to a picture file.

#include "host/zvr/program.h"
#include "host/zvr/sound.h"
#include "tests/zvr_program.h"

namespace {

using zvr_test::Bytes;

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

class Wave : public zvr_test::Zvr {
 protected:
  std::string write(const Bytes& bytes) const {
    zvr_test::writeBytes(folder_ / "sound.wav", bytes);
    return folder_ / "sound.wav";
  }
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
    {"16 bits", 1, 1, 16, {0x00, 0x80, 0xFF, 0xFF, 0x34, 0x12}, 15, {0x00, 0x80, 0xFF, 0xFF, 0x34, 0x12}},
    {"24 bits", 1, 1, 24, {0x00, 0x34, 0x12}, 15, {0x34, 0x12}},
    {"two channels", 1, 2, 16, {0x00, 0x10, 0x00, 0x20, 0x00, 0x10, 0x00, 0xF0}, 15, {0x00, 0x18, 0, 0}},
    // 0.5, and 2, which no sample can say.
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
  const std::string file = folder_ / "sound.wav";
  EXPECT_EQ(complaint(folder_), folder_.string() + ": is a directory");
  EXPECT_EQ(complaint(file), file + ": No such file or directory");
  EXPECT_EQ(complaint(write({})), file + ": the file is empty");
  EXPECT_EQ(complaint(write(Bytes(500, 'x'))), file + ": not a sound file");
  EXPECT_EQ(complaint(write(wav(1, 1, 16, {}))), file + ": holds no samples");
}

// Each option reaches its argument: the file is the picture that the method itself answers.
TEST_F(Wave, WritesWhatTheMethodAnswers) {
  Bytes samples(4000);
  for (size_t i = 0; i < samples.size(); ++i)
    samples[i] = static_cast<uint8_t>(128 + i % 97 * (i / 100) / 80);
  write(wav(1, 1, 8, samples));
  zvr_test::writeBytes(folder_ / "raw.bin", samples);
  const std::pair<const char*, const char*> cases[] = {
      {"--width 200 --height 90", "1 200 90 0"},
      {"--width 300 --height 80 --smooth 4 --outline 1 --auto-scale --back-color '#102030' "
       "--fore-color '&c405060' --outline-color '#708090'",
       "4 300 80 1 '#102030' '#405060' '#708090' 8 true"},
  };
  for (const auto& [options, arguments] : cases) {
    EXPECT_EQ(runLine(std::string("wave sound.wav -o wave.png ") + options).status, 0);
    EXPECT_EQ(runLine(std::string("apply photo.png -o method.png RenderSamplesZVR raw.bin 4000 ") + arguments)
                  .status,
              0);
    const zvr_test::Pixels wave = zvr_test::readPng(folder_ / "wave.png");
    EXPECT_TRUE(wave.width > 0 && wave == zvr_test::readPng(folder_ / "method.png")) << options;
  }
  EXPECT_NE(runLine("wave sound.wav --width 2001").status, 0) << "too short";
  EXPECT_EQ(runLine("wave sound.wav --smooth -1").status, 2) << "would be no waveform";
  EXPECT_FALSE(std::filesystem::exists(folder_ / "sound-wave.png"));
}

// The pen covers much of the picture, and steep lines have many points.
TEST_F(Wave, DrawsWideOutlinesInSeconds) {
  Bytes samples;
  for (size_t i = 0; i < 48000; ++i) samples.push_back(i / 20 % 2 == 0 ? 0 : 128);
  write(wav(1, 1, 8, samples));
  const std::string words =
      "wave sound.wav -o wave.png --auto-scale --width 1200 --height 1000 --outline 1000";
  EXPECT_EQ(runLine(words, "ulimit -t 60 &&").status, 0);
}

}  // namespace
