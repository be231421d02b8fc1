#include "zvr/files/images.h"

#include <magick/api.h>

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <new>
#include <string_view>

#include "host/declarations.h"
#include "zvr/files/files.h"
#include "zvr/terminal/failures.h"
#include "zvr/terminal/terminal.h"

namespace zvr {
namespace {

using std::string_view_literals::operator""sv;
using Bytes = std::vector<uint8_t>;

// ---- GraphicsMagick ----

// The problem that a call of the library reports, if any.
class Report {
 public:
  Report() {
    static const bool isReady = [] {
      ExceptionInfo info;
      GetExceptionInfo(&info);
      InitializeMagickEx(nullptr, MAGICK_OPT_NO_SIGNAL_HANDER, &info);
      DestroyExceptionInfo(&info);
      // Larger pictures lie in a file meanwhile: eight bytes a pixel would take the memory of the host's
      // pictures.
      SetMagickResourceLimit(MemoryResource, 256 << 20);
      SetMagickResourceLimit(MapResource, 0);
      // Sizes are judged here.
      for (const ResourceType size : {PixelsResource, WidthResource, HeightResource})
        SetMagickResourceLimit(size, INT64_MAX);
      SetErrorHandler(nullptr);
      SetWarningHandler(nullptr);
      return true;
    }();
    (void)isReady;
    GetExceptionInfo(&info_);
  }
  ~Report() { DestroyExceptionInfo(&info_); }
  Report(const Report&) = delete;
  Report& operator=(const Report&) = delete;

  ExceptionInfo* info() { return &info_; }
  // Both its texts; empty when nothing was wrong.
  std::string text() const {
    std::string text = info_.reason ? GetLocaleExceptionMessage(info_.severity, info_.reason) : "";
    const std::string more = info_.description ? info_.description : "";
    if (!more.empty()) text += (text.empty() ? "" : ": ") + more;
    return text;
  }
  [[noreturn]] void fail(const std::string& prefix = "") const {
    if (info_.severity == ResourceLimitError || info_.severity == ResourceLimitFatalError)
      throw std::bad_alloc();
    throw Failure(prefix + (text().empty() ? "the library doesn't say why" : text()));
  }

 private:
  ExceptionInfo info_;
};

struct Freeing {
  void operator()(::Image* images) const { DestroyImageList(images); }
  void operator()(ImageInfo* info) const { DestroyImageInfo(info); }
  void operator()(void* memory) const { MagickFree(memory); }
};
using Magick = std::unique_ptr<::Image, Freeing>;
using Info = std::unique_ptr<ImageInfo, Freeing>;

Info infoFor(const std::string& format) {
  Info info(CloneImageInfo(nullptr));
  // The prefix, not the content, says which of the library's many decoders may see the file.
  std::snprintf(info->filename, sizeof(info->filename), "%s:", format.c_str());
  std::snprintf(info->magick, sizeof(info->magick), "%s", format.c_str());
  return info;
}

// ---- Reading ----

struct Signature {
  size_t at;
  std::string_view bytes;
  const char* format;            // the library's name; null: not read
  const char* name = nullptr;    // for people, of those that aren't read
  const char* reader = nullptr;  // a program that reads it
};
constexpr Signature kSignatures[] = {
    {0, "\x89PNG\r\n\x1A\n"sv, "PNG"},
    {0, "\xFF\xD8\xFF"sv, "JPEG"},
    {8, "CR\2"sv, nullptr, "a camera's raw picture", "darktable or dcraw"},
    {0, "II*\0"sv, "TIFF"},
    {0, "MM\0*"sv, "TIFF"},
    {0, "BM"sv, "BMP"},
    {0, "GIF8"sv, "GIF"},
    {0, "\0\0\1\0"sv, "ICO"},
    {8, "WEBP"sv, "WEBP"},
    {4, "ftypavi"sv, "AVIF"},
    {4, "ftyphei"sv, "HEIF"},
    {4, "ftyphev"sv, "HEIF"},
    {4, "ftypmif1"sv, "HEIF"},
    {4, "ftypcrx"sv, nullptr, "a camera's raw picture", "darktable"},
    {4, "ftyp"sv, nullptr, "a video", "ffmpeg"},
    {0, "\xFF\x0A"sv, "JXL"},
    {4, "JXL "sv, "JXL"},
    {4, "jP  "sv, nullptr, "a JPEG 2000 picture", "opj_decompress"},
    {0, "8BPS"sv, nullptr, "a layered PSD picture", "GIMP"},
    {0, "gimp xcf"sv, nullptr, "a layered XCF picture", "GIMP"},
    {0, "v/1\1"sv, nullptr, "an OpenEXR picture", "exrtools"},
    {0, "%PDF"sv, nullptr, "a PDF document", "pdftoppm"},
    {0, "<svg"sv, nullptr, "an SVG drawing", "rsvg-convert"},
    {0, "<?xml"sv, nullptr, "an XML file, perhaps an SVG drawing", "rsvg-convert"},
};

bool hasExtension(const std::string& path, const char* extension) {
  return host::equalNames(std::filesystem::path(path).extension().string(), extension);
}

std::string formatOf(const std::string& path, const Bytes& file) {
  if (file.empty()) throw Failure("the file is empty");
  const std::string_view content(reinterpret_cast<const char*>(file.data()), file.size());
  for (const Signature& signature : kSignatures) {
    if (content.size() <= signature.at ||
        content.substr(signature.at, signature.bytes.size()) != signature.bytes)
      continue;
    if (signature.format) return signature.format;
    throw Failure(std::string("this is ") + signature.name + ", which zvr doesn't read; " + signature.reader +
                  " can make a PNG of it");
  }
  if (file[0] == 'P' && file.size() > 1 && file[1] >= '1' && file[1] <= '7') return "PNM";
  if (hasExtension(path, ".tga")) return "TGA";  // says nothing of itself
  throw Failure(
      "no picture that zvr reads (PNG, JPEG, TIFF, BMP, GIF, PNM, TGA, ICO, WebP, HEIF, AVIF, JPEG XL)");
}

void checkSize(uint64_t width, uint64_t height) {
  const std::string measures =
      "the picture measures " + std::to_string(width) + " x " + std::to_string(height);
  if (width < 1 || height < 1) throw Failure("the picture has no pixels");
  if (width > kLongestSide || height > kLongestSide) {
    throw Failure(measures + ", more than the " + std::to_string(kLongestSide) +
                  " pixels a side that a host allows");
  }
  if (width * height > kLargestPicture) {
    throw Failure(measures + ", more than the " + std::to_string(kLargestPicture / 1'000'000) +
                  " million pixels that fit into a 32-bit program");
  }
}

Bytes profileIn(::Image* image, const char* name) {
  size_t size = 0;
  const unsigned char* bytes = GetImageProfile(image, name, &size);
  return bytes ? Bytes(bytes, bytes + size) : Bytes();
}

// The colour space that an ICC profile is for: "RGB ", "GRAY", "CMYK" …
std::string_view spaceOf(const Bytes& profile) {
  constexpr size_t kAt = 16, kSize = 4;
  if (profile.size() < kAt + kSize) return {};
  return {reinterpret_cast<const char*>(profile.data()) + kAt, kSize};
}

// The library writes the EXIF data of PNG files but doesn't read them.
void addExifOfPng(const Bytes& file, ::Image* image) {
  constexpr size_t kSignature = 8, kHead = 8, kCrc = 4;
  for (size_t at = kSignature; file.size() - at >= kHead;) {
    const size_t size =
        size_t{file[at]} << 24 | size_t{file[at + 1]} << 16 | size_t{file[at + 2]} << 8 | file[at + 3];
    if (file.size() - at - kHead < size) return;
    if (std::memcmp(&file[at + 4], "eXIf", 4) == 0) {
      Bytes exif = {'E', 'x', 'i', 'f', 0, 0};
      exif.insert(exif.end(), &file[at + kHead], &file[at + kHead] + size);
      SetImageProfile(image, "EXIF", exif.data(), exif.size());
      return;
    }
    if (file.size() - at - kHead - size < kCrc) return;
    at += kHead + size + kCrc;
  }
}

Metadata metadataOf(::Image* image) {
  Metadata metadata;
  metadata.profile = profileIn(image, "ICM");
  metadata.exif = profileIn(image, "EXIF");
  constexpr double kCentimetres = 2.54;
  if (image->units != UndefinedResolution) {
    const double scale = image->units == PixelsPerCentimeterResolution ? kCentimetres : 1;
    metadata.xResolution = image->x_resolution * scale;
    metadata.yResolution = image->y_resolution * scale;
  }
  return metadata;
}

OrientationType orientationOf(::Image* image) {
  if (image->orientation != UndefinedOrientation) return image->orientation;
  const ImageAttribute* tag = GetImageAttribute(image, "EXIF:Orientation");
  const bool isKnown = tag && tag->value && tag->value[0] >= '1' && tag->value[0] <= '8' && !tag->value[1];
  return isKnown ? static_cast<OrientationType>(tag->value[0] - '0') : UndefinedOrientation;
}

void turnUpright(Magick& image, bool isTurnedWhenRead) {
  const OrientationType orientation = orientationOf(image.get());
  if (orientation <= TopLeftOrientation) return;
  if (!isTurnedWhenRead) {
    Report report;
    Magick turned(AutoOrientImage(image.get(), orientation, report.info()));
    if (!turned) report.fail();
    image = std::move(turned);
  }
  SetImageAttribute(image.get(), "EXIF:Orientation", nullptr);
  SetImageAttribute(image.get(), "EXIF:Orientation", "1");
}

// Of several pictures the largest; others go.
void chooseLargest(Magick& images) {
  ::Image* largest = images.get();
  for (::Image* other = largest; other; other = other->next) {
    if (other->columns * other->rows > largest->columns * largest->rows) largest = other;
  }
  if (!images->next) return;
  Report report;
  Magick chosen(CloneImage(largest, 0, 0, MagickTrue, report.info()));
  if (!chosen) report.fail();
  images = std::move(chosen);
}

// The library reads no opacity from icons. Where one of the icon's size has 32 bits a pixel, each fourth byte
// is it.
bool addOpacityOfIcon(const Bytes& file, Image& icon) {
  constexpr size_t kHead = 6, kEntry = 16, kPixelsAt = 40;
  const auto number = [&](size_t at, size_t bytes) {
    size_t value = 0;
    for (size_t i = 0; i < bytes && at + i < file.size(); ++i) value |= size_t{file[at + i]} << 8 * i;
    return value;
  };
  for (size_t i = 0; i < number(4, 2); ++i) {
    const size_t at = number(kHead + i * kEntry + 12, 4);
    if (at > file.size() || file.size() - at < kPixelsAt + icon.byteCount()) continue;
    if (number(at, 4) != kPixelsAt || number(at + 14, 2) != 32 ||
        number(at + 4, 4) != static_cast<size_t>(icon.width) ||
        number(at + 8, 4) != static_cast<size_t>(icon.height) * 2)
      continue;
    const uint8_t* source = &file[at + kPixelsAt];  // the lowest row first
    for (int y = icon.height - 1; y >= 0; --y) {
      for (size_t x = 3; x < icon.rowBytes(); x += 4) icon.row(y)[x] = source[x];
      source += icon.rowBytes();
    }
    return icon.hasAlpha = true;
  }
  return false;
}

Image decode(const std::string& path, const Bytes& file, bool upright) {
  const std::string format = formatOf(path, file);
  const Info info = infoFor(format);
  const bool isIcon = format == "ICO";
  if (!isIcon) info->subrange = 1;
  Report report;
  const Magick header(PingBlob(info.get(), file.data(), file.size(), report.info()));
  if (!header) report.fail("damaged " + format + ": ");
  checkSize(header->columns, header->rows);
  Report reading;
  Magick image(BlobToImage(info.get(), file.data(), file.size(), reading.info()));
  if (!image) reading.fail("damaged " + format + ": ");
  // All other oddities leave every pixel as its file has it.
  if (reading.text().find("Premature end") != std::string::npos)
    throw Failure("damaged " + format + ": " + reading.text());
  if (!reading.text().empty()) terminal::note(path + ": " + reading.text());
  if (isIcon) chooseLargest(image);
  if (image->depth > 8)
    terminal::note(path + ": " + std::to_string(image->depth) + " bits, read as 8 bits a channel");
  if (image->colorspace == CMYKColorspace) {
    terminal::note(path + ": CMYK colours become RGB without their colour profile");
    DeleteImageProfile(image.get(), "ICM");
    TransformColorspace(image.get(), RGBColorspace);
  }
  if (format == "PNG") addExifOfPng(file, image.get());
  const bool isTurnedWhenRead = format != "JPEG" && format != "PNG" && format != "TIFF" && format != "WEBP";
  if (upright || isTurnedWhenRead) turnUpright(image, isTurnedWhenRead);
  Image pixels;
  pixels.allocate(static_cast<unsigned>(image->columns), static_cast<unsigned>(image->rows));
  pixels.hasAlpha = image->matte != MagickFalse;
  for (int y = 0; y < pixels.height; ++y) {
    if (!DispatchImage(image.get(), 0, y, image->columns, 1, "RGBA", CharPixel, pixels.row(y),
                       reading.info()))
      reading.fail();
  }
  if (isIcon && !addOpacityOfIcon(file, pixels) && !pixels.hasAlpha)
    terminal::note(path + ": the transparency of icons of this kind isn't read");
  pixels.metadata = metadataOf(image.get());
  return pixels;
}

// ---- Writing ----

bool keepsAlpha(const std::string& format) { return format != "jpeg" && format != "bmp"; }

// On white where the format has no alpha.
Magick magickOf(const Image& image, const std::string& format) {
  const bool hasAlpha = image.hasAlpha && keepsAlpha(format);
  Bytes mixed;
  if (image.hasAlpha && !hasAlpha) {
    mixed.assign(image.pixels.get(), image.pixels.get() + image.byteCount());
    for (size_t i = 0; i < mixed.size(); ++i) {
      const int opacity = mixed[i | 3];
      mixed[i] = static_cast<uint8_t>((mixed[i] * opacity + 255 * (255 - opacity) + 127) / 255);
    }
  }
  Report report;
  Magick made(ConstituteImage(static_cast<unsigned long>(image.width),
                              static_cast<unsigned long>(image.height), "RGBA", CharPixel,
                              mixed.empty() ? image.pixels.get() : mixed.data(), report.info()));
  if (!made) report.fail();
  made->depth = 8;
  made->matte = hasAlpha ? MagickTrue : MagickFalse;
  return made;
}

void add(const Metadata& metadata, bool resultIsGray, ::Image* image) {
  if (metadata.xResolution > 0 && metadata.yResolution > 0) {
    image->units = PixelsPerInchResolution;
    image->x_resolution = metadata.xResolution;
    image->y_resolution = metadata.yResolution;
  }
  const auto put = [&](const char* name, const Bytes& bytes) {
    if (!bytes.empty()) SetImageProfile(image, name, bytes.data(), bytes.size());
  };
  // Colours would have no meaning by a profile for grays.
  if (resultIsGray || spaceOf(metadata.profile) != "GRAY") put("ICM", metadata.profile);
  put("EXIF", metadata.exif);
}

// `copied` runs when the library has a copy of the pixels.
template <typename Copied>
Bytes encode(const Image& image, const Writing& writing, const Copied& copied) {
  const Info info = infoFor(writing.format);
  Report report;
  const Magick made = magickOf(image, writing.format);
  const bool resultIsGray = IsGrayImage(made.get(), report.info()) != MagickFalse;
  add(image.metadata, resultIsGray, made.get());
  copied();
  std::snprintf(made->magick, sizeof(made->magick), "%s", writing.format.c_str());
  info->quality = static_cast<unsigned long>(writing.quality);
  if (writing.format == "png") {
    // The library's number for both: adaptive filters take as long as quick compression itself.
    constexpr int kUpFilter = 2, kAdaptiveFilters = 5, kQuick = 3;
    info->quality = static_cast<unsigned long>(writing.compression * 10 +
                                               (writing.compression > kQuick ? kAdaptiveFilters : kUpFilter));
    // A profile for colours makes no sense in a file of grays.
    const bool savesGray = resultIsGray && spaceOf(image.metadata.profile) != "RGB ";
    info->type = savesGray ? (image.hasAlpha ? GrayscaleMatteType : GrayscaleType)
                           : (image.hasAlpha ? TrueColorMatteType : TrueColorType);
  }
  if (writing.format == "tiff") info->compression = ZipCompression;
  const std::string subsampling = !writing.subsampling.empty() ? writing.subsampling
                                  : writing.quality >= 90      ? "4:4:4"
                                                               : "4:2:0";
  const char* factors = subsampling == "4:4:4" ? "1x1" : subsampling == "4:2:2" ? "2x1" : "2x2";
  CloneString(&info->sampling_factor, factors);
  AddDefinitions(info.get(), "jpeg:optimize-coding=true", report.info());
  size_t size = 0;
  const std::unique_ptr<void, Freeing> blob(ImageToBlob(info.get(), made.get(), &size, report.info()));
  if (!blob || size == 0) report.fail();
  const auto* bytes = static_cast<const uint8_t*>(blob.get());
  return {bytes, bytes + size};
}

std::string formatFor(const std::string& path, const std::string& format) {
  if (path == kStandardStream && format.empty()) return "png";
  const std::string extension = std::filesystem::path(path).extension();
  return writtenFormat(!format.empty() ? format : extension.empty() ? "" : extension.substr(1));
}

}  // namespace

void Image::allocate(unsigned newWidth, unsigned newHeight) {
  checkSize(newWidth, newHeight);
  pixels.reset(new uint8_t[size_t{newWidth} * newHeight * 4]);
  width = static_cast<int>(newWidth);
  height = static_cast<int>(newHeight);
}

bool operator==(const Image& a, const Image& b) {
  return a.width == b.width && a.height == b.height && a.hasAlpha == b.hasAlpha &&
         std::memcmp(a.pixels.get(), b.pixels.get(), a.byteCount()) == 0;
}

Image loadImage(const std::string& path, bool upright) { return decodeImage(path, readFile(path), upright); }

Image decodeImage(const std::string& path, const Bytes& file, bool upright) {
  try {
    return decode(path, file, upright);
  } catch (const Failure& failure) {
    throw Failure(path + ": " + failure.what());
  } catch (const std::bad_alloc&) {
    throw Failure(path + ": not enough memory for the picture");
  }
}

std::string writtenFormat(const std::string& word) {
  static constexpr std::pair<const char*, const char*> kWords[] = {
      {"png", "png"},   {"jpg", "jpeg"}, {"jpeg", "jpeg"}, {"tif", "tiff"},
      {"tiff", "tiff"}, {"bmp", "bmp"},  {"webp", "webp"}};
  for (const auto& [known, format] : kWords) {
    if (host::equalNames(word, known)) return format;
  }
  return "";
}

void checkExtension(const std::string& path, const std::string& format) {
  if (!formatFor(path, format).empty()) return;
  throw UsageError(path + ": pictures are written as .png, .jpg, .tif, .bmp or .webp, or name a --format");
}

Bytes encodeImage(const Image& image, const Writing& writing) {
  return encode(image, writing, [] {});
}

void saveImage(Image image, const std::string& path, const Writing& writing) {
  Writing chosen = writing;
  chosen.format = formatFor(path, writing.format);
  if (image.hasAlpha && !keepsAlpha(chosen.format))
    terminal::note(path + ": " + chosen.format + " has no transparency: it becomes white");
  if (!image.metadata.exif.empty() && (chosen.format == "tiff" || chosen.format == "bmp"))
    terminal::note(path + ": EXIF data aren't written into " + chosen.format);
  Bytes file;
  try {
    file = encode(image, chosen, [&] { image.pixels.reset(); });
  } catch (const Failure& failure) {
    throw Failure(path + ": " + failure.what());
  } catch (const std::bad_alloc&) {
    throw Failure(path + ": not enough memory to write the picture");
  }
  writeFile(path, file);
}

}  // namespace zvr
