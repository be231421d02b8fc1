// Runs sessions at a shell, files as tests/sessions/README.md describes them.
//
// test_sessions FILE[:LINE]…: all sessions of the files, or the one that has that line.

#include <sys/stat.h>
#include <sys/wait.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;

struct Step {
  int line = 0;
  std::string command, output, errors;
  int status = 0;
};
using Session = std::vector<Step>;

bool beginsWith(const std::string& text, const std::string& start) {
  return text.compare(0, start.size(), start) == 0;
}

void add(const std::string& line, int number, Session& session) {
  if (beginsWith(line, "#")) return;
  if (beginsWith(line, "$ ")) {
    session.push_back({number, line.substr(2) + "\n", "", "", 0});
    return;
  }
  if (session.empty()) throw std::runtime_error(std::to_string(number) + ": no command before this line");
  Step& step = session.back();
  if (beginsWith(line, "> ")) {
    step.command += line.substr(2) + "\n";
  } else if (beginsWith(line, "2> ")) {
    step.errors += line.substr(3) + "\n";
  } else if (beginsWith(line, "exit ")) {
    step.status = std::stoi(line.substr(5));
    if (const size_t colon = line.find(": "); colon != std::string::npos)
      step.errors += "…" + line.substr(colon + 2) + "…";
  } else {
    step.output += line + "\n";
  }
}

// The sessions of a file; with a line only the one that has it.
std::vector<Session> readSessions(const std::string& path, int wantedLine) {
  std::ifstream file(path);
  if (!file) throw std::runtime_error(" can't be read");
  std::vector<Session> sessions;
  Session session;
  int first = 1, number = 1;
  const auto end = [&] {
    const bool isWanted = wantedLine == 0 || (first <= wantedLine && wantedLine < number);
    if (isWanted && !session.empty()) sessions.push_back(session);
    session.clear();
    first = number;
  };
  for (std::string line; std::getline(file, line); ++number) {
    if (line.empty()) {
      end();
    } else {
      add(line, number, session);
    }
  }
  end();
  if (sessions.empty()) throw std::runtime_error(" has no session there");
  return sessions;
}

// Whether all of the text is as wanted, where … stands for any text.
bool matches(const std::string& text, const std::string& wanted) {
  static const std::string kAny = "…";
  size_t mark = wanted.find(kAny);
  if (mark == std::string::npos) return text == wanted;
  if (!beginsWith(text, wanted.substr(0, mark))) return false;
  for (size_t at = mark;;) {
    const size_t begin = mark + kAny.size();
    mark = wanted.find(kAny, begin);
    const std::string part = wanted.substr(begin, mark - begin);
    if (mark == std::string::npos)
      return text.size() >= at + part.size() && text.substr(text.size() - part.size()) == part;
    at = text.find(part, at);
    if (at == std::string::npos) return false;
    at += part.size();
  }
}

std::string textOf(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

void print(const char* title, const Step& step) {
  std::printf("---- %s: exit %d, standard output:\n%s---- standard error:\n%s\n", title, step.status,
              step.output.c_str(), step.errors.c_str());
}

// Runs a step in the folder; says what was not as wanted.
bool passes(const Step& step, const std::string& file, const std::string& folder) {
  const std::string output = folder + ".out", errors = folder + ".err";
  const std::string shell =
      "cd '" + folder + "' && {\n" + step.command + "} </dev/null >'" + output + "' 2>'" + errors + "'";
  const int ended = std::system(shell.c_str());
  Step got = {step.line, step.command, textOf(output), textOf(errors), -1};
  if (WIFEXITED(ended)) got.status = WEXITSTATUS(ended);
  fs::remove(output);
  fs::remove(errors);
  if (got.status == step.status && matches(got.output, step.output) && matches(got.errors, step.errors))
    return true;
  std::printf("%s:%d: $ %s", file.c_str(), step.line, step.command.c_str());
  print("wanted", step);
  print("got", got);
  return false;
}

// The steps of a session in a fresh folder, up to the first that fails.
bool passes(const Session& session, const std::string& file) {
  std::string folder = (fs::temp_directory_path() / "zvr-session-XXXXXX").string();
  if (!mkdtemp(folder.data())) throw std::runtime_error(": no folder for it in " + folder);
  const Step photo = {session[0].line, "picture make photo.png 23 9 rgb\n", "", "", 0};
  bool isGood = passes(photo, file, folder);
  for (size_t i = 0; isGood && i < session.size(); ++i) isGood = passes(session[i], file, folder);
  fs::remove_all(folder);
  return isGood;
}

// Answers whether every session passed.
bool runFile(const std::string& word) {
  const size_t colon = word.rfind(':');
  const std::string file = word.substr(0, colon);
  try {
    const int line = colon == std::string::npos ? 0 : std::stoi(word.substr(colon + 1));
    const std::vector<Session> sessions = readSessions(file, line);
    const auto failed = std::count_if(sessions.begin(), sessions.end(),
                                      [&](const Session& session) { return !passes(session, file); });
    std::printf("%s: %d of %zu sessions failed\n", file.c_str(), static_cast<int>(failed), sessions.size());
    return failed == 0;
  } catch (const std::exception& error) {
    std::printf("%s:%s\n", word.c_str(), error.what());
    return false;
  }
}

}  // namespace

int main(int count, char** words) {
  setenv("PATH", (ZVR_PROGRAMS ":" + std::string(getenv("PATH"))).c_str(), 1);
  setenv("photographs", ZVR_PHOTOGRAPHS, 1);
  setenv("LC_ALL", "C", 1);
  unsetenv("NO_COLOR");
  umask(022);
  bool isGood = count > 1;
  for (int i = 1; i < count; ++i) isGood = runFile(words[i]) && isGood;
  return isGood ? 0 : 1;
}
