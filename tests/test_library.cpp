// The built library: needs and exports of its file, calls with any stack, loading and unloading.

#include <dlfcn.h>

#include <cstdio>
#include <cstring>
#include <fstream>
#include <set>
#include <sstream>

#include "tests/support.h"

namespace {

// ---- The file ----

// Lines that one of the binary tools prints about the library.
std::vector<std::string> linesFrom(const std::string& tool) {
  std::vector<std::string> lines;
  FILE* pipe = popen(("LC_ALL=C " + tool + " '" ZVR_PLUGIN "'").c_str(), "r");
  if (!pipe) return lines;
  char line[1024];
  while (fgets(line, sizeof line, pipe)) lines.emplace_back(line);
  if (pclose(pipe) != 0) lines.clear();
  return lines;
}

bool contains(const std::string& line, const char* part) { return line.find(part) != std::string::npos; }

TEST(LibraryFile, ExportsOnlyItsEntry) {
  std::vector<std::string> symbols;
  for (const std::string& line : linesFrom("nm -D --defined-only")) {
    std::istringstream words(line);
    std::string address, kind, name;
    words >> address >> kind >> name;
    symbols.push_back(kind + " " + name);
  }
  EXPECT_EQ(symbols, std::vector<std::string>{"T REALPluginMain"});
}

TEST(LibraryFile, NeedsOnlyTheCRuntime) {
#ifdef ZVR_SANITIZED
  GTEST_SKIP() << "sanitizers bring libraries of their own";
#endif
  std::set<std::string> needed;
  bool isDynamicSection = false;
  for (const std::string& line : linesFrom("readelf -dW")) {
    isDynamicSection |= contains(line, "(SYMTAB)");
    EXPECT_FALSE(contains(line, "TEXTREL")) << line;
    EXPECT_FALSE(contains(line, "RPATH") || contains(line, "RUNPATH")) << line;
    if (contains(line, "(NEEDED)")) {
      const size_t start = line.find('[') + 1;
      needed.insert(line.substr(start, line.find(']') - start));
    }
  }
  EXPECT_TRUE(isDynamicSection);
  EXPECT_EQ(needed.count("libc.so.6"), 1u);
  for (const char* allowed : {"libc.so.6", "libdl.so.2", "libm.so.6", "ld-linux.so.2"}) needed.erase(allowed);
  EXPECT_EQ(needed, std::set<std::string>());
}

TEST(LibraryFile, AsksForNothingThatOldCLibrariesLack) {
#ifdef ZVR_SANITIZED
  GTEST_SKIP() << "sanitizers ask for more";
#endif
  int count = 0;
  for (const std::string& line : linesFrom("readelf -VW")) {
    const size_t name = line.find("Name: GLIBC_");
    if (name == std::string::npos) continue;
    int major = 0, minor = 0;
    ASSERT_EQ(sscanf(line.c_str() + name, "Name: GLIBC_%d.%d", &major, &minor), 2) << line;
    EXPECT_LE(major * 100 + minor, 203) << line;
    ++count;
  }
  EXPECT_GT(count, 0);
}

TEST(LibraryFile, HasNoExecutableStackNorWritableCode) {
  bool stackSeen = false;
  for (const std::string& line : linesFrom("readelf -lW")) {
    if (contains(line, "GNU_STACK")) stackSeen = true;
    if (contains(line, "GNU_STACK") || contains(line, "LOAD")) {
      EXPECT_FALSE(contains(line, "RWE")) << line;
    }
  }
  EXPECT_TRUE(stackSeen);
}

// For whoever asks a file what it is.
TEST(LibraryFile, CarriesItsNameAndVersion) {
  std::ifstream file(ZVR_PLUGIN, std::ios::binary);
  const std::string bytes((std::istreambuf_iterator<char>(file)), {});
  EXPECT_NE(bytes.find(std::string("$$ Plugin version: 13.4 (2013) $$\0", 34)), std::string::npos);
}

// ---- Calls with any stack ----

// Calls a function with the given argument words, which lie `offset` bytes below a multiple of 16.
extern "C" uint32_t zvrCallAt(void* function, const uint32_t* arguments, uint32_t count, uint32_t offset);
asm(R"(
.pushsection .text
.type zvrCallAt, @function
zvrCallAt:
  pushl %ebp
  movl %esp, %ebp
  pushl %esi
  pushl %edi
  andl $-16, %esp
  movl 16(%ebp), %ecx
  leal 15(,%ecx,4), %eax
  andl $-16, %eax
  addl 20(%ebp), %eax
  subl %eax, %esp
  movl 12(%ebp), %esi
  movl %esp, %edi
  rep movsl
  call *8(%ebp)
  leal -8(%ebp), %esp
  popl %edi
  popl %esi
  popl %ebp
  ret
.size zvrCallAt, . - zvrCallAt
.popsection
)");

class Library : public HostTest {};

uint32_t wordOf(const void* pointer) { return static_cast<uint32_t>(reinterpret_cast<uintptr_t>(pointer)); }

// Argument words behind the receiver, and the same arguments for a call by way of this host.
struct StackCase {
  const char* method;
  std::vector<host::Value> values;
  bool isGlobal = false;
};

std::vector<uint32_t> wordsOf(const std::vector<host::Value>& values) {
  std::vector<uint32_t> words;
  for (const host::Value& value : values) {
    if (const auto* integer = std::get_if<int64_t>(&value)) {
      words.push_back(static_cast<uint32_t>(*integer));
    } else if (const auto* real = std::get_if<double>(&value)) {
      uint32_t halves[2];
      std::memcpy(halves, real, sizeof halves);
      words.insert(words.end(), halves, halves + 2);
    } else if (const auto* color = std::get_if<host::Color>(&value)) {
      words.push_back(color->rgb);
    } else {
      words.push_back(wordOf(std::get<host::PictureRef>(value).get()));
    }
  }
  return words;
}

TEST_F(Library, MayBeCalledWithAStackOfAnyAlignment) {
#ifdef ZVR_SANITIZED
  GTEST_SKIP() << "the address sanitizer only keeps track of stacks aligned to 8 bytes";
#endif
  const int width = 203, height = 3;  // whole vectors of every width, and a tail
  const Pixels pixels = Random(7).pixels(width, height);
  const auto picture = makePicture(pixels);
  const auto other = makePicture(Random(8).pixels(width, height));
  const int64_t zero = 0, minus = -1;
  const StackCase cases[] = {
      {"InvertZVR", {zero, zero, minus, minus}},
      {"InvertGrayZVR", {zero, zero, minus, minus}},
      {"ChangeSaturationZVR", {int64_t{60}}},
      {"ChangeContrastZVR", {0.2}},
      {"ChangeCustomZVR", {0.7, 20.0}},
      {"ChangeContrastBrightnessAbsoluteZVR", {0.2, 30.0}},
      {"ChangeContrastBrightnessLinearZVR", {0.2, 0.1, 0.3, 30.0, 20.0, 10.0}},
      {"ExtractColorZVR", {host::Color{0}, host::Color{1}, host::Color{2}}},
      {"ReplaceGreenChannelZVR", {other}},
      {"MergePictureZVR", {picture, other}, true},
      {"TintPictureZVR", {picture, host::Color{0x555555}, host::Color{0x704214}}, true},
  };
  for (const StackCase& c : cases) {
    const auto receiver = c.isGlobal ? host::PictureRef() : picture;
    const Pixels expected = colorsOf(callPicture(c.method, receiver, c.values));
    ASSERT_EQ(expected.width, width) << c.method;
    std::vector<uint32_t> words = wordsOf(c.values);
    if (!c.isGlobal) words.insert(words.begin(), wordOf(picture.get()));
    const host::Method* method = nullptr;
    for (const host::Method* overload : host::findMethods(c.method)) {
      if (overload->declaration.parameters.size() == c.values.size()) method = overload;
    }
    ASSERT_TRUE(method) << c.method;
    for (uint32_t offset : {0u, 4u, 8u, 12u}) {
      const uint32_t result =
          zvrCallAt(method->function, words.data(), static_cast<uint32_t>(words.size()), offset);
      const auto made =
          host::PictureRef::adopt(reinterpret_cast<REALpictureStruct*>(static_cast<uintptr_t>(result)));
      EXPECT_EQ(colorsOf(made), expected) << c.method << " at " << offset;
    }
  }
  Pixels inverted = pixels;
  for (Rgb& color : inverted.colors) color ^= 0xFFFFFF;
  EXPECT_EQ(colorsOf(callPicture("InvertZVR", picture)), asWritten(inverted));
}

// ---- Loading and leaving ----

TEST_F(Library, CanBeLoadedAndLeftAgainAndAgain) {
  for (int round = 0; round < 50; ++round) {
    begin(settingsForRoad());
    ASSERT_EQ(host::members().journal.size(), 9u) << "round " << round;
    ASSERT_EQ(colorsOf(callPicture("InvertZVR", makePicture({5, 2, Rgb{0x010203}}))),
              asWritten({5, 2, Rgb{0xFEFDFC}}))
        << "round " << round;
    unloadPlugin();
    void* still = dlopen(ZVR_PLUGIN, RTLD_NOW | RTLD_NOLOAD);
    ASSERT_FALSE(still) << "the library stays loaded";
  }
}

}  // namespace
