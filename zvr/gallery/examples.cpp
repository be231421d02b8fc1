#include "zvr/gallery/examples.h"

#include <algorithm>
#include <cstdlib>
#include <sstream>

#include "zvr/terminal/manual.h"

namespace zvr::gallery {

std::vector<Example> examples() {
  std::vector<Example> all;
  // "PLACE FAMILY: WORDS | SENTENCE"
  for (const std::string& note : manualNotes("gallery")) {
    const size_t family = note.find(' ') + 1, words = note.find(": ", family),
                 sentence = note.find(" | ", words);
    if (family == 0 || words == std::string::npos || sentence == std::string::npos) continue;
    all.push_back({std::atoi(note.c_str()), note.substr(family, words - family),
                   note.substr(words + 2, sentence - words - 2), note.substr(sentence + 3)});
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
