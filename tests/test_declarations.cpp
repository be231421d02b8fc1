// Declarations of the dialect, and a person's words as values.

#include <fstream>
#include <sstream>

#include "tests/support.h"
#include "zvr/language/signatures.h"

namespace {

using namespace host;

// An attempt's answer, or its complaint.
template <typename Attempt>
std::string answerOf(const Attempt& attempt) {
  try {
    return attempt();
  } catch (const std::invalid_argument& error) {
    return error.what();
  }
}

void expectDeclaration(const std::string& text, const std::string& wanted) {
  const std::string answer = answerOf([&] { return zvr::signatureText(parseDeclaration(text)); });
  EXPECT_TRUE(answer == wanted || answer == "declaration \"" + text + "\": " + wanted) << answer;
}

void expectValues(const std::string& type, std::istringstream words, const std::string& description) {
  const Parameter amount = parseDeclaration("X(amount as " + type + ")").parameters.at(0);
  for (std::string word; words >> word;) {
    const size_t sign = word.rfind('=');
    const std::string given = word.substr(0, sign), value = word.substr(sign + 1);
    EXPECT_EQ(answerOf([&] { return zvr::valueText(parseValue(amount, given)); }),
              value == "?" ? "amount: '" + given + "' is not " + description : value);
  }
}

TEST(Declarations, AndWordsAreReadOrRefused) {
  std::ifstream file(ZVR_SOURCE_DIR "/tests/declarations.txt");
  ASSERT_TRUE(file);
  for (std::string line; std::getline(file, line);) {
    if (line[0] == '#') continue;
    SCOPED_TRACE(line);
    const size_t arrow = line.find(" => "), colon = line.find(": "), bar = line.find(" | ");
    if (arrow != std::string::npos) {
      expectDeclaration(line.substr(0, arrow), line.substr(arrow + 4));
    } else {
      expectValues(line.substr(0, colon), std::istringstream(line.substr(colon + 2, bar - colon - 2)),
                   line.substr(bar + 3));
    }
  }
}

}  // namespace
