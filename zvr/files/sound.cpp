#include "zvr/files/sound.h"

#include <sndfile.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <memory>

#include "zvr/files/files.h"
#include "zvr/terminal/failures.h"

namespace zvr {
namespace {

using File = std::unique_ptr<SNDFILE, int (*)(SNDFILE*)>;

constexpr size_t kLargest = INT32_MAX;  // bytes of a memory block

// Standard input can't be sought in, as the library has to: what was read of it becomes a file in memory.
File open(const std::string& path, SF_INFO& info) {
  const std::vector<uint8_t> bytes = readFile(path);
  if (bytes.empty()) throw Failure(path + ": the file is empty");
  const int memory = memfd_create("sound", MFD_CLOEXEC);
  if (memory < 0 || write(memory, bytes.data(), bytes.size()) != static_cast<ssize_t>(bytes.size()))
    throw Failure(path + ": no room for the sound in memory");
  lseek(memory, 0, SEEK_SET);
  File file(sf_open_fd(memory, SFM_READ, &info, SF_TRUE), sf_close);
  if (file) return file;
  if (sf_error(nullptr) == SF_ERR_UNRECOGNISED_FORMAT) throw Failure(path + ": not a sound file");
  throw Failure(path + ": " + sf_strerror(nullptr));
}

// `value` from -1 to 1.
void append(std::vector<uint8_t>& samples, float value) {
  constexpr float kScale = 32768;
  const auto bits = static_cast<uint16_t>(std::lrint(std::clamp(value * kScale, -kScale, kScale - 1)));
  samples.push_back(static_cast<uint8_t>(bits));
  samples.push_back(static_cast<uint8_t>(bits >> 8));
}

}  // namespace

std::vector<uint8_t> loadSound(const std::string& path) {
  constexpr sf_count_t kPiece = 4096;
  SF_INFO info = {};
  const File file = open(path, info);
  const auto channels = static_cast<size_t>(info.channels);
  std::vector<float> piece(static_cast<size_t>(kPiece) * channels);
  std::vector<uint8_t> samples;
  while (const auto frames = static_cast<size_t>(sf_readf_float(file.get(), piece.data(), kPiece))) {
    if (samples.size() > kLargest - frames * 2) throw Failure(path + ": too long");
    for (size_t i = 0; i < frames; ++i) {
      float sum = 0;
      for (size_t channel = 0; channel < channels; ++channel) sum += piece[i * channels + channel];
      append(samples, sum / static_cast<float>(channels));
    }
  }
  if (sf_error(file.get()) != SF_ERR_NO_ERROR) throw Failure(path + ": " + sf_strerror(file.get()));
  if (samples.empty()) throw Failure(path + ": holds no samples");
  return samples;
}

}  // namespace zvr
