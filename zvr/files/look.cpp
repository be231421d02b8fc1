#include "zvr/files/look.h"

#include <OpenColorIO/OpenColorIO.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <set>
#include <sstream>

#include "zvr/files/files.h"
#include "zvr/terminal/failures.h"
#include "zvr/terminal/terminal.h"

namespace zvr {
namespace {

namespace ocio = OCIO_NAMESPACE;

// A file of its own for the library, which reads only files by names; deleted with this.
class Copy {
 public:
  explicit Copy(const std::string& text) {
    const int file = mkstemps(path_.data(), static_cast<int>(kExtension.size()));
    if (file < 0) throw Failure(path_ + ": no temporary file can be made");
    close(file);
    writeFile(path_, {text.begin(), text.end()});
  }
  ~Copy() { std::remove(path_.c_str()); }
  Copy(const Copy&) = delete;
  Copy& operator=(const Copy&) = delete;
  const char* path() const { return path_.c_str(); }

 private:
  const std::string kExtension = ".cube";
  std::string path_ = std::filesystem::temp_directory_path() / ("zvr-XXXXXX" + kExtension);
};

// Without what the library stops at: a byte order mark, and keywords of some programs that add nothing.
std::string readableText(const std::string& path, std::string text) {
  static const std::set<std::string> kKnown = {
      "TITLE",      "LUT_1D_SIZE",        "LUT_3D_SIZE",       "DOMAIN_MIN",
      "DOMAIN_MAX", "LUT_1D_INPUT_RANGE", "LUT_3D_INPUT_RANGE"};
  if (text.compare(0, 3, "\xEF\xBB\xBF") == 0) text.erase(0, 3);
  std::istringstream lines(text);
  std::string readable, line, word;
  for (int number = 1; std::getline(lines, line); ++number) {
    std::istringstream(line) >> (word = "", word);
    const bool isKeyword = std::all_of(word.begin(), word.end(), [](char c) {
      return c == '_' || (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z');
    });
    if (isKeyword && word > "A" && kKnown.count(word) == 0) {
      terminal::note(path + ": line " + std::to_string(number) + ": the unknown keyword '" + word +
                     "' is ignored");
      word.clear();
    }
    readable += (word.empty() ? "#" : line) + '\n';  // it doesn't count empty lines
  }
  return readable;
}

// The library tells how each of two dialects fails: "… failed with: … (PATH).  At line (3): …    '…".
std::string problemIn(const std::string& message, bool hasRanges) {
  const std::string mark = "failed with: ", file = ").";
  const size_t begin = hasRanges ? message.rfind(mark) : message.find(mark);
  const size_t at = begin == std::string::npos ? begin : message.find(file, begin);
  if (at == std::string::npos) return "no film look that zvr reads";
  std::istringstream words(message.substr(at + file.size(), message.find("    '", at) - at - file.size()));
  std::string problem;
  for (std::string word; words >> word;) problem += (problem.empty() ? "" : " ") + word;
  return problem;
}

}  // namespace

Look loadLook(const std::string& path) {
  const std::vector<uint8_t> file = readFile(path);
  const std::string text = readableText(path, {file.begin(), file.end()});
  try {
    ocio::SetLoggingLevel(ocio::LOGGING_LEVEL_NONE);
    const Copy copy(text);
    const ocio::FileTransformRcPtr transform = ocio::FileTransform::Create();
    transform->setSrc(copy.path());
    transform->setInterpolation(ocio::INTERP_TETRAHEDRAL);
    const ocio::ConstProcessorRcPtr processor = ocio::Config::CreateRaw()->getProcessor(transform);
    const ocio::GroupTransformRcPtr parts = processor->createGroupTransform();
    Look look{true, {}};
    for (int i = 0; i < parts->getNumTransforms(); ++i)
      look.isCurves &= parts->getTransform(i)->getTransformType() != ocio::TRANSFORM_TYPE_LUT3D;
    const ocio::ConstCPUProcessorRcPtr cpu = processor->getOptimizedCPUProcessor(
        ocio::BIT_DEPTH_F32, ocio::BIT_DEPTH_F32, ocio::OPTIMIZATION_NONE);
    look.map = [cpu](const Look::Color& color) {
      float rgb[3];
      for (size_t i = 0; i < 3; ++i) rgb[i] = static_cast<float>(color[i]);
      cpu->applyRGB(rgb);
      return Look::Color{rgb[0], rgb[1], rgb[2]};
    };
    return look;
  } catch (const ocio::Exception& error) {
    throw Failure(path + ": " + problemIn(error.what(), text.find("_INPUT_RANGE") != std::string::npos));
  }
}

}  // namespace zvr
