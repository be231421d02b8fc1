// The manual declares every member as it is registered, its links lead somewhere and its zvr lines run.
// ZVR_SOURCE_DIR is the tree's root.

#include <png.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <optional>
#include <regex>
#include <set>
#include <tuple>

#include "tests/support.h"

namespace {

namespace fs = std::filesystem;
using Lines = std::vector<std::string>;

const fs::path kRoot = ZVR_SOURCE_DIR, kManual = kRoot / "docs/manual", kIndex = kManual / "README.md";

struct CodeBlock {
  std::string language;
  Lines lines;
};
// A heading with everything under it, up to the next.
struct Section {
  size_t level = 0;  // 1 for the page's title
  std::string heading;
  Lines text;
  std::vector<CodeBlock> blocks;
};

std::string readFile(const fs::path& path) {
  std::ifstream file(path);
  EXPECT_TRUE(file) << path;
  return {std::istreambuf_iterator<char>(file), {}};
}

std::vector<Section> parsePage(const fs::path& path) {
  std::istringstream page(readFile(path));
  std::vector<Section> sections(1);
  bool isCode = false;
  for (std::string line; std::getline(page, line);) {
    if (line.compare(0, 3, "```") == 0) {
      isCode = !isCode;
      if (isCode) sections.back().blocks.push_back({line.substr(3), {}});
    } else if (isCode) {
      sections.back().blocks.back().lines.push_back(line);
    } else if (const size_t level = line.find("# ") + 1; level > 0 && line.find_first_not_of('#') == level) {
      sections.push_back({level, line.substr(level + 1), {}, {}});
    } else {
      sections.back().text.push_back(line);
    }
  }
  EXPECT_FALSE(isCode) << path << ": a code block without an end";
  return sections;
}

Lines declarationsOf(const Section& section) {
  return section.blocks.empty() ? Lines() : section.blocks[0].lines;
}

std::vector<fs::path> manualPages() {
  std::vector<fs::path> pages;
  for (const auto& entry : fs::directory_iterator(kManual)) {
    if (entry.path().extension() == ".md") pages.push_back(entry.path());
  }
  std::sort(pages.begin(), pages.end());
  return pages;
}
std::vector<fs::path> allPages() {
  std::vector<fs::path> pages = manualPages();
  pages.push_back(kRoot / "README.md");
  return pages;
}

// As code-hosting sites make anchors from headings.
std::string anchorOf(const std::string& heading) {
  std::string anchor;
  for (const char c : heading) {
    if (c == ' ') anchor += '-';
    if (std::isalnum(static_cast<unsigned char>(c)) || c == '-' || c == '_') {
      anchor += static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    }
  }
  return anchor;
}

// Where a page's links and images lead to, as written.
std::vector<std::string> targetsIn(const fs::path& page) {
  static const std::regex kLink(R"(\]\(([^)\s]+)\))");
  std::vector<std::string> targets;
  for (const Section& section : parsePage(page)) {
    for (const std::string& line : section.text) {
      for (std::sregex_iterator match(line.begin(), line.end(), kLink), end; match != end; ++match) {
        targets.push_back((*match)[1]);
      }
    }
  }
  return targets;
}

// ---- Members ----

// A page's family of members: for each name the declarations as registered, and whether all are console-safe
// or none.
struct Member {
  Lines declarations;
  bool isConsoleSafe = false;
};
using Members = std::map<std::string, Member>;

Members membersOf(const std::vector<host::Method>& methods) {
  Members members;
  for (const host::Method& method : methods) {
    Member& member = members[method.declaration.name];
    EXPECT_TRUE(member.declarations.empty() || member.isConsoleSafe == method.consoleSafe()) << method.text;
    member.declarations.push_back(method.text);
    member.isConsoleSafe = method.consoleSafe();
  }
  return members;
}

// Without classes: extensions of `Picture`, and global methods.
Members methodsWithoutClass() {
  Members members = membersOf(host::members().pictureMethods);
  members.merge(membersOf(host::members().globals));
  return members;
}

const host::Class* classNamed(const std::string& name) {
  for (const host::Class& type : host::members().classes) {
    if (type.name == name) return &type;
  }
  return nullptr;
}

Member propertiesOf(const host::Class& type) {
  Member member;
  for (const host::Property& property : type.properties) {
    const bool isConsoleSafe = (property.flags & kFlagConsoleSafe) != 0;
    EXPECT_TRUE(member.declarations.empty() || member.isConsoleSafe == isConsoleSafe) << property.name;
    member.declarations.push_back(property.name + " as " + property.type);
    member.isConsoleSafe = isConsoleSafe;
  }
  return member;
}

// A section's claim, or the page's on all its members.
std::optional<bool> claimsConsoleSafety(const Section& section) {
  static const std::regex kYes(R"(\*\*Console-safe\.\*\* Yes|(^|\. |are )[Cc]onsole-safe\.)"),
      kNo(R"(\*\*Console-safe\.\*\* No|Not console-safe)");
  for (const std::string& line : section.text) {
    if (std::regex_search(line, kNo)) return false;
    if (std::regex_search(line, kYes)) return true;
  }
  return std::nullopt;
}

// Every section of the second level describes one member, which is then crossed off.
void checkSections(const fs::path& page, const std::vector<Section>& sections, Members& members) {
  for (const Section& section : sections) {
    if (section.level != 2) continue;
    const auto found = members.find(section.heading);
    if (found == members.end()) {
      ADD_FAILURE() << page << ": " << section.heading << " is not registered, or described a second time";
      continue;
    }
    EXPECT_EQ(declarationsOf(section), found->second.declarations) << page << ": " << section.heading;
    const std::optional<bool> own = claimsConsoleSafety(section);
    EXPECT_EQ(own ? own : claimsConsoleSafety(sections[1]), found->second.isConsoleSafe)
        << page << ": " << section.heading;
    members.erase(found);
  }
}

class Manual : public HostTest {};

TEST_F(Manual, describesEveryMemberAsRegistered) {
  Members methods = methodsWithoutClass();
  std::set<std::string> classes;
  for (const fs::path& page : manualPages()) {
    if (page == kIndex) continue;
    const std::vector<Section> sections = parsePage(page);
    ASSERT_GT(sections.size(), 1u) << page;
    const host::Class* type = classNamed(sections[1].heading);
    if (!type) {
      checkSections(page, sections, methods);
      continue;
    }
    classes.insert(type->name);
    Members members = membersOf(type->methods);
    members["Properties"] = propertiesOf(*type);
    checkSections(page, sections, members);
    for (const auto& [name, member] : members) ADD_FAILURE() << page << " has no section " << name;
  }
  for (const auto& [name, member] : methods) ADD_FAILURE() << "no page has a section " << name;
  for (const host::Class& type : host::members().classes) {
    EXPECT_EQ(classes.count(type.name), 1u) << "no page for " << type.name;
  }
}

// The purposes of methods by their sections: <!-- index PURPOSE -->
std::map<std::string, std::string> purposes() {
  static const std::regex kComment("<!-- index (.+) -->");
  std::map<std::string, std::string> purposes;
  for (const fs::path& page : manualPages()) {
    for (const Section& section : parsePage(page)) {
      std::smatch match;
      for (const std::string& line : section.text) {
        if (std::regex_match(line, match, kComment)) purposes[section.heading] = match[1];
      }
    }
  }
  return purposes;
}

// Name, forms, purpose and console safety in the index's rows: | [Name](page) | forms | on | purpose | ... |
// yes |
TEST_F(Manual, indexListsEveryMember) {
  using Row = std::tuple<size_t, bool, std::string>;
  std::map<std::string, Row> expected, listed;
  std::map<std::string, std::string> says = purposes();
  for (const auto& [name, member] : methodsWithoutClass()) {
    expected[name] = {member.declarations.size(), member.isConsoleSafe, says[name]};
  }
  for (const host::Class& type : host::members().classes) {
    expected[type.name] = {0, (type.flags & kFlagConsoleSafe) != 0, ""};
  }
  static const std::regex kRow(
      R"(\| \[(\w+)\]\(\S+\) \| (\d*|class) \|(?: \w+)? \| (.*) \| .* \| (yes|no) \|)");
  for (const Section& section : parsePage(kIndex)) {
    for (const std::string& line : section.text) {
      std::smatch match;
      if (!std::regex_match(line, match, kRow)) continue;
      const size_t forms = match[2] == "class" ? 0 : std::stoul(match[2]);
      const std::string purpose = forms > 0 ? match[3].str() : "";
      EXPECT_TRUE(listed.emplace(match[1], Row{forms, match[4] == "yes", purpose}).second) << line;
    }
  }
  for (const auto& [name, row] : expected) {
    ASSERT_EQ(listed.count(name), 1u) << name;
    EXPECT_TRUE(listed[name] == row) << name << ": run scripts/manual_images.sh";
  }
  EXPECT_EQ(listed.size(), expected.size());
}

// ---- Links ----

TEST(ManualLinks, leadSomewhere) {
  std::set<fs::path> used;
  for (const fs::path& page : allPages()) {
    for (const std::string& target : targetsIn(page)) {
      if (target.find("://") != std::string::npos) continue;
      const size_t sign = target.find('#');
      const std::string file = target.substr(0, sign);
      const fs::path path = file.empty() ? page : (page.parent_path() / file).lexically_normal();
      used.insert(path);
      ASSERT_TRUE(fs::exists(path)) << page << ": " << target;
      if (sign == std::string::npos) continue;
      const std::vector<Section> sections = parsePage(path);
      EXPECT_TRUE(std::any_of(
          sections.begin(), sections.end(),
          [&](const Section& section) { return anchorOf(section.heading) == target.substr(sign + 1); }))
          << page << ": " << target;
    }
  }
  for (const auto& entry : fs::directory_iterator(kManual / "images")) {
    EXPECT_EQ(used.count(entry.path()), 1u) << "no page shows " << entry.path();
  }
}

// ---- Lines for the shell ----

Lines zvrLinesIn(const fs::path& page) {
  Lines lines;
  for (const Section& section : parsePage(page)) {
    for (const CodeBlock& block : section.blocks) {
      if (block.language != "sh") continue;
      std::copy_if(block.lines.begin(), block.lines.end(), std::back_inserter(lines),
                   [](const std::string& line) { return line.compare(0, 4, "zvr ") == 0; });
    }
  }
  return lines;
}

void writePng(const fs::path& path, unsigned side, png_uint_32 format) {
  png_image image{};
  image.version = PNG_IMAGE_VERSION;
  image.width = image.height = side;
  image.format = format;
  std::vector<uint8_t> samples(PNG_IMAGE_SIZE(image));
  for (size_t i = 0; i < samples.size(); ++i) samples[i] = static_cast<uint8_t>(i * 7);
  ASSERT_TRUE(png_image_write_to_file(&image, path.c_str(), 0, samples.data(), 0, nullptr)) << image.message;
}

// A folder with small files under the names that the lines use.
class ManualLines : public testing::Test {
 protected:
  void TearDown() override { leave(); }

  void enterNewFolder() {
    leave();
    std::string name = (fs::temp_directory_path() / "zvr-manual-XXXXXX").string();
    ASSERT_NE(mkdtemp(name.data()), nullptr);
    folder_ = name;
    for (const char* picture : {"photo", "other", "red", "green", "blue", "shot", "mask"}) {
      writePng(folder_ / (picture + std::string(".png")), 24, PNG_FORMAT_RGB);
    }
    writePng(folder_ / "icon.png", 5, PNG_FORMAT_RGB);
    writePng(folder_ / "logo.png", 24, PNG_FORMAT_RGBA);
    run("zvr apply photo.png InvertZVR -o photo.jpg");
    const std::string samples(4000, '\x55');
    write("samples.raw", samples);
    write("curve.bin", samples.substr(0, 256));
    // 8000 unsigned bytes a second, one channel.
    write("speech.wav",
          std::string("RIFF\xC4\x0F\0\0WAVEfmt \x10\0\0\0\1\0\1\0\x40\x1F\0\0\x40\x1F\0\0\1\0\b\0"
                      "data\xA0\x0F\0\0",
                      44) +
              samples);
    write("film.cube", "LUT_3D_SIZE 2\n0 0 0\n1 0 0\n0 1 0\n1 1 0\n0 0 1\n1 0 1\n0 1 1\n1 1 1\n");
  }

  void run(const std::string& line) {
    const fs::path log = folder_.string() + ".log";
    const std::string programs = fs::path(ZVR_PROGRAM).parent_path();
    const std::string command = "cd '" + folder_.string() + "' && PATH='" + programs + "':$PATH && {\n" +
                                line + "\n} >'" + log.string() + "' 2>&1";
    const int status = std::system(command.c_str());
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << line << '\n' << readFile(log);
    fs::remove(log);
  }

 private:
  void write(const char* name, const std::string& bytes) {
    std::ofstream(folder_ / name, std::ios::binary) << bytes;
  }
  void leave() {
    if (!folder_.empty()) fs::remove_all(folder_);
  }

  fs::path folder_;
};

TEST_F(ManualLines, run) {
  for (const fs::path& page : allPages()) {
    const Lines lines = zvrLinesIn(page);
    EXPECT_FALSE(lines.empty()) << page;
    enterNewFolder();
    ASSERT_FALSE(HasFatalFailure());
    for (const std::string& line : lines) {
      SCOPED_TRACE(page);
      run(line);
    }
  }
}

// A section without a line to try would go unnoticed otherwise.
TEST(ManualSections, haveSnippetAndLine) {
  for (const fs::path& page : manualPages()) {
    if (page == kIndex) continue;
    for (const Section& section : parsePage(page)) {
      if (section.level != 2 || section.heading == "Properties") continue;
      std::multiset<std::string> languages;
      for (const CodeBlock& block : section.blocks) languages.insert(block.language);
      EXPECT_GE(languages.count("basic"), 2u) << page << ": " << section.heading;
      EXPECT_EQ(languages.count("sh"), 1u) << page << ": " << section.heading;
    }
  }
}

}  // namespace
