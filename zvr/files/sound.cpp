#include "zvr/files/sound.h"

#include <sndfile.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstring>
#include <filesystem>
#include <memory>

#include "zvr/terminal/failures.h"

namespace zvr {
namespace {

using File = std::unique_ptr<SNDFILE, int (*)(SNDFILE*)>;

constexpr size_t kLargest = INT32_MAX;  // bytes of a memory block

File open(const std::string& path, SF_INFO& info) {
  std::error_code error;
  if (std::filesystem::is_directory(path, error)) throw Failure(path + ": is a directory");
  if (access(path.c_str(), R_OK) != 0) throw Failure(path + ": " + std::strerror(errno));
  File file(sf_open(path.c_str(), SFM_READ, &info), sf_close);
  if (file) return file;
  if (std::filesystem::is_empty(path, error) && !error) throw Failure(path + ": the file is empty");
  if (sf_error(nullptr) == SF_ERR_UNRECOGNISED_FORMAT) throw Failure(path + ": not a sound file");
  throw Failure(path + ": " + sf_strerror(nullptr));
}

bool hasBytes(const SF_INFO& info) {
  const int coding = info.format & SF_FORMAT_SUBMASK;
  return coding == SF_FORMAT_PCM_U8 || coding == SF_FORMAT_PCM_S8;
}

// `value` from -1 to 1.
void append(Sound& sound, float value) {
  const float scale = sound.bits == 8 ? 128 : 32768;
  const long whole = std::lrint(std::clamp(value * scale, -scale, scale - 1));
  if (sound.bits == 8) {
    sound.bytes.push_back(static_cast<uint8_t>(whole + 128));
  } else {
    const auto bits = static_cast<uint16_t>(whole);
    sound.bytes.push_back(static_cast<uint8_t>(bits));
    sound.bytes.push_back(static_cast<uint8_t>(bits >> 8));
  }
}

}  // namespace

Sound loadSound(const std::string& path) {
  constexpr sf_count_t kPiece = 4096;
  SF_INFO info = {};
  const File file = open(path, info);
  Sound sound;
  sound.bits = hasBytes(info) ? 8 : 15;
  const auto channels = static_cast<size_t>(info.channels);
  std::vector<float> piece(static_cast<size_t>(kPiece) * channels);
  while (const auto frames = static_cast<size_t>(sf_readf_float(file.get(), piece.data(), kPiece))) {
    if (sound.bytes.size() > kLargest - frames * 2) throw Failure(path + ": too long");
    for (size_t i = 0; i < frames; ++i) {
      float sum = 0;
      for (size_t channel = 0; channel < channels; ++channel) sum += piece[i * channels + channel];
      append(sound, sum / static_cast<float>(channels));
    }
  }
  if (sf_error(file.get()) != SF_ERR_NO_ERROR) throw Failure(path + ": " + sf_strerror(file.get()));
  if (sound.bytes.empty()) throw Failure(path + ": holds no samples");
  return sound;
}

}  // namespace zvr
