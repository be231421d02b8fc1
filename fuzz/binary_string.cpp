// Fuzzes the parser of pictures as strings. A parsed picture must survive the round trip through a new
// string.

#include <cstring>
#include <string>

#include "fuzz/played_host.h"
#include "host/strings.h"
#include "operations/operations.h"

namespace {

std::vector<uint32_t> colorsOf(const host::PictureRef& picture) {
  std::vector<uint32_t> colors;
  for (int y = 0; y < host::pictureHeight(picture.get()); ++y) {
    const uint32_t* row = host::pictureRow(picture.get(), y);
    for (int x = 0; x < host::pictureWidth(picture.get()); ++x) colors.push_back(row[x] & 0xFFFFFF);
  }
  return colors;
}

host::PictureRef decoded(const host::StringRef& string) {
  return host::PictureRef::adopt(BinaryStringtoPicture(string.get()));
}

// Corrects magic and length, which the parser checks first.
void claimSize(std::string& bytes) {
  if (bytes.size() < 8) return;
  const uint32_t size = __builtin_bswap32(static_cast<uint32_t>(bytes.size()));
  std::memcpy(bytes.data(), "PPIC", 4);
  std::memcpy(bytes.data() + 4, &size, 4);
}

void decode(const std::string& bytes) {
  const host::PictureRef picture = decoded(host::newString(bytes, kEncodingNone, false));
  if (!picture) return;
  const auto encoded = host::StringRef::adopt(PicturetoBinaryString(picture.get()));
  const host::PictureRef again = decoded(encoded);
  if (!again || colorsOf(again) != colorsOf(picture))
    fuzz::fail("a picture changed on its way through a string");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
  FuzzedDataProvider data(bytes, size);
  fuzz::play(fuzz::takeHostKind(data));
  const bool isHonest = data.ConsumeBool();
  std::string string = data.ConsumeRemainingBytesAsString();
  if (isHonest) claimSize(string);
  decode(string);
  fuzz::expectNothingHeld();
  return 0;
}
