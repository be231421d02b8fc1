#include "zvr/files/files.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <utility>

#include "zvr/terminal/failures.h"
#include "zvr/terminal/terminal.h"

namespace zvr {
namespace {

namespace fs = std::filesystem;

bool isStandard(const std::string& path) { return path == kStandardStream; }

[[noreturn]] void fail(const std::string& path, int error) {
  std::vector<std::string> names;
  std::error_code none;
  const fs::path folder = fs::absolute(path, none).parent_path();
  for (fs::directory_iterator file(folder, none), end; error == ENOENT && file != end; file.increment(none))
    names.push_back(file->path().filename());
  throw Failure(path + ": " + std::strerror(error) + terminal::didYouMean(fs::path(path).filename(), names));
}

// A file descriptor that closes itself.
class Descriptor {
 public:
  explicit Descriptor(int number) : number_(number) {}
  ~Descriptor() {
    if (number_ >= 0) close(number_);
  }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  int number() const { return number_; }
  // Answers false with errno set.
  bool write(const std::vector<uint8_t>& bytes) const {
    for (size_t written = 0; written < bytes.size();) {
      const ssize_t count = ::write(number_, bytes.data() + written, bytes.size() - written);
      if (count < 0 && errno != EINTR) return false;
      if (count > 0) written += static_cast<size_t>(count);
    }
    return true;
  }
  bool closes() { return close(std::exchange(number_, -1)) == 0; }

 private:
  int number_;
};

// A new file beside the one that it becomes; removed unless it was kept.
class TemporaryFile {
 public:
  explicit TemporaryFile(const fs::path& target)
      : path_(target.parent_path() / (".zvr-" + std::to_string(getpid()) + "-XXXXXX")),
        descriptor_(mkostemp(path_.data(), O_CLOEXEC)) {
    if (descriptor_.number() < 0) fail(target, errno);
  }
  ~TemporaryFile() {
    if (!path_.empty()) unlink(path_.c_str());
  }
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;

  // Both answer false with errno set.
  bool write(const std::vector<uint8_t>& bytes) const { return descriptor_.write(bytes); }
  // `old` describes the file that is replaced; null when there is none.
  bool becomes(const fs::path& target, const struct stat64* old) {
    if (!takesModeOf(old) || !descriptor_.closes()) return false;
    if (rename(path_.c_str(), target.c_str()) != 0) return false;
    path_.clear();
    return true;
  }

 private:
  bool takesModeOf(const struct stat64* old) const {
    if (!old) {
      const mode_t mask = umask(0);
      umask(mask);
      return fchmod(descriptor_.number(), 0666 & ~mask) == 0;
    }
    // Few may give files away; without the mode nobody gets more rights than before.
    static_cast<void>(fchown(descriptor_.number(), old->st_uid, old->st_gid) == 0);
    return fchmod(descriptor_.number(), old->st_mode & 0777) == 0;
  }

  std::string path_;
  Descriptor descriptor_;
};

// The file that a path leads to, there or not: the last of a chain of links may name one that is missing.
fs::path followed(const fs::path& path) {
  constexpr int kMostLinks = 40;
  std::error_code error;
  fs::path target = fs::absolute(path, error);
  for (int i = 0; i < kMostLinks; ++i) {
    const fs::path canonical = fs::weakly_canonical(target, error);
    if (error) break;
    target = canonical;
    if (!fs::is_symlink(target, error)) break;
    target = target.parent_path() / fs::read_symlink(target, error);
  }
  return target;
}

void writeToOutput(const std::vector<uint8_t>& bytes) {
  if (isatty(STDOUT_FILENO))
    throw UsageError("a terminal shows no pictures or bytes; name a file with -o, or redirect");
  std::fflush(stdout);
  if (!Descriptor(dup(STDOUT_FILENO)).write(bytes)) fail("standard output", errno);
}

}  // namespace

std::vector<uint8_t> readFile(const std::string& path) {
  constexpr size_t kLargest = size_t{512} << 20, kPiece = size_t{1} << 18;
  const Descriptor file(isStandard(path) ? dup(STDIN_FILENO) : open(path.c_str(), O_RDONLY | O_CLOEXEC));
  // Past 2 GB a 32-bit program can't open a file at all.
  if (file.number() < 0) fail(path, errno == EOVERFLOW ? EFBIG : errno);
  struct stat about;
  if (fstat(file.number(), &about) == 0 && S_ISREG(about.st_mode) && about.st_size > off_t{kLargest}) {
    fail(path, EFBIG);
  }
  std::vector<uint8_t> bytes;
  for (;;) {
    const size_t size = bytes.size();
    if (size > kLargest) fail(path, EFBIG);
    bytes.resize(size + kPiece);
    const ssize_t count = read(file.number(), bytes.data() + size, kPiece);
    if (count < 0 && errno != EINTR) fail(path, errno);
    bytes.resize(size + (count > 0 ? static_cast<size_t>(count) : 0));
    if (count == 0) return bytes;
  }
}

void writeFile(const std::string& path, const std::vector<uint8_t>& bytes) {
  if (isStandard(path)) return writeToOutput(bytes);
  const fs::path target = followed(path);
  struct stat64 old = {};
  const bool exists = stat64(target.c_str(), &old) == 0;
  if (!exists && errno != ENOENT) fail(path, errno);
  if (exists && !S_ISREG(old.st_mode)) throw Failure(path + ": exists and is not a regular file");
  std::error_code error;
  fs::create_directories(target.parent_path(), error);
  if (error) fail(path, error.value());
  TemporaryFile file(target);
  if (!file.write(bytes) || !file.becomes(target, exists ? &old : nullptr)) fail(path, errno);
}

std::string fileIdentity(const std::string& path) {
  const fs::path target = followed(path);
  struct stat64 file = {};
  if (stat64(target.c_str(), &file) != 0) return target;
  return std::to_string(file.st_dev) + ":" + std::to_string(file.st_ino);
}

}  // namespace zvr
