#include "zvr/gallery/examples.h"

#include <algorithm>
#include <regex>
#include <sstream>

#include "zvr/terminal/manual.h"

namespace zvr::gallery {

std::vector<Example> examples() {
  static const std::regex form(R"((\d+) ([^:(]+?)(?: \(([^)]*)\))?: (.*?) \| (.*))");
  std::vector<Example> all;
  for (const std::string& note : manualNotes("gallery")) {
    std::smatch parts;
    if (std::regex_match(note, parts, form))
      all.push_back({std::stoi(parts[1]), parts[2], parts[3], parts[4], parts[5]});
  }
  std::stable_sort(all.begin(), all.end(),
                   [](const Example& a, const Example& b) { return a.place < b.place; });
  return all;
}

std::vector<std::string> filledWords(const std::string& words,
                                     const std::map<std::string, std::string>& fields, int width,
                                     int height) {
  const auto filled = [&](const std::string& word) {
    if (word.size() < 2 || word[0] != '{') return word;
    const std::string name = word.substr(1, word.size() - 2);
    const auto field = fields.find(name);
    if (field != fields.end()) return field->second;
    const auto percent = static_cast<int64_t>(std::stoi(name.substr(1)));
    return std::to_string((name[0] == 'x' ? width : height) * percent / 100);
  };
  std::vector<std::string> result;
  std::istringstream stream(words);
  for (std::string word; stream >> word;) result.push_back(filled(word));
  return result;
}

}  // namespace zvr::gallery
