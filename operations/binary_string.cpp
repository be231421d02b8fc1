// Pictures as strings: a header of ten big-endian words, then RGB24 pixels without padding.

#include <string.h>

#include "frame/text.h"
#include "operations/operations.h"
#include "picture/rows.h"

namespace {

constexpr char kMagic[4] = {'P', 'P', 'I', 'C'};

struct Header {
  uint32_t magic, size, width, height, bitsPerPixel, dataOffset, reserved[4];
};
constexpr uint32_t kHeaderSize = 40;
static_assert(sizeof(Header) == kHeaderSize, "the header has no padding");

constexpr int64_t kPixelSize = 3;
// The reader uses only the fields within this many bytes.
constexpr int32_t kShortest = 24;

uint32_t bigEndian(int64_t value) { return __builtin_bswap32(static_cast<uint32_t>(value)); }

Header headerFor(int64_t size, const PictureReader& source) {
  Header header = {};
  memcpy(&header.magic, kMagic, sizeof kMagic);
  header.size = bigEndian(size);
  header.width = bigEndian(source.width);
  header.height = bigEndian(source.height);
  header.bitsPerPixel = bigEndian(32);  // always 32, although pixels have 24
  header.dataOffset = bigEndian(kHeaderSize);
  return header;
}

// The parsed picture of a string.
struct Contents {
  int32_t width, height;
  const uint8_t* pixels;
};

// False for a string in another format, or one whose header claims more data than it holds.
bool parse(const rbData& data, Contents* contents) {
  const uint8_t* bytes = data.data();
  const int32_t length = data.length();
  if (!bytes || length < kShortest || memcmp(bytes, kMagic, sizeof kMagic) != 0) return false;
  Header header = {};
  memcpy(&header, bytes,
         static_cast<size_t>(length) < kHeaderSize ? static_cast<size_t>(length) : kHeaderSize);
  if (bigEndian(header.size) != static_cast<uint32_t>(length)) return false;
  const uint64_t width = bigEndian(header.width), height = bigEndian(header.height);
  // Any offset is honoured, even one inside the header.
  const int64_t offset = bigEndian(header.dataOffset);
  if (offset > length || width * height > static_cast<uint64_t>((length - offset) / kPixelSize)) return false;
  *contents = {static_cast<int32_t>(width), static_cast<int32_t>(height), bytes + offset};
  return true;
}

}  // namespace

REALstringStruct* PicturetoBinaryString(REALpictureStruct* picture) {
  PictureReader source;
  if (!source.GetPictureReader(picture)) return nullptr;
  const int64_t size = int64_t{source.width} * source.height * kPixelSize + kHeaderSize;
  Scratch buffer(size);
  if (!buffer) return nullptr;
  const Header header = headerFor(size, source);
  memcpy(buffer.get(), &header, sizeof header);
  uint8_t* out = buffer.get() + kHeaderSize;
  scanRegion(source, Region::whole(source), [&](const kernels::Pixel* in, size_t count) {
    kernels::best().packRGB24(out, in, count, false);
    out += count * kPixelSize;
    return true;
  });
  return REALBuildUnicodeString(buffer.get(), size, kEncodingNone);
}

REALpictureStruct* BinaryStringtoPicture(REALstringStruct* string) {
  rbData data(string);
  Contents contents;
  if (!parse(data, &contents)) return nullptr;
  PictureWriter result;
  if (!result.NewPictureWriter(contents.width, contents.height)) return nullptr;
  const uint8_t* in = contents.pixels;
  writeRegion(result, Region::whole(result),
              [&](kernels::Output out, size_t count, uint32_t top, int32_t, int32_t) {
                kernels::best().unpackRGB24(out, in, count, top);
                in += count * kPixelSize;
              });
  return result.RenderPictureWriter();
}
