#include "zvr/language/named_files.h"

#include <algorithm>

#include "zvr/terminal/failures.h"

namespace zvr {
namespace {

// Adds a name once.
void addName(std::string& list, const std::string& name) {
  if ((", " + list + ",").find(", " + name + ",") != std::string::npos) return;
  list += (list.empty() ? "" : ", ") + name;
}

NamedFile parseNamedFile(const std::string& option, const std::string& word) {
  const size_t sign = word.find('=');
  const std::string name = word.substr(0, sign);
  if (name.empty() || sign == std::string::npos || sign + 1 == word.size()) {
    throw UsageError(option + ": '" + word + "' is not of the form NAME=PATH");
  }
  const size_t dot = name.find('.');
  if (dot == std::string::npos) return {option, "", name, word.substr(sign + 1)};
  return {option, name.substr(0, dot), name.substr(dot + 1), word.substr(sign + 1)};
}

bool isSame(const NamedFile& a, const NamedFile& b) {
  return host::equalNames(a.name, b.name) && host::equalNames(a.method, b.method);
}

}  // namespace

std::vector<NamedFile> parseNamedFiles(const std::string& option, const std::vector<std::string>& words) {
  std::vector<NamedFile> files;
  for (const std::string& word : words) {
    const NamedFile file = parseNamedFile(option, word);
    if (std::any_of(files.begin(), files.end(), [&](const NamedFile& f) { return isSame(f, file); })) {
      throw UsageError(option + ": " + file.name + " is given twice");
    }
    files.push_back(file);
  }
  return files;
}

size_t stepOf(const NamedFile& file, const std::vector<Overloads>& steps,
              const std::function<bool(const host::Parameter&)>& takes) {
  std::vector<size_t> owners;
  std::string names, ownerNames;
  for (size_t i = 0; i < steps.size(); ++i) {
    for (const host::Method* method : steps[i]) {
      for (const host::Parameter& parameter : method->declaration.parameters) {
        if (!takes(parameter)) continue;
        const std::string& methodName = method->declaration.name;
        addName(names, steps.size() == 1 ? parameter.name : methodName + "." + parameter.name);
        if (!host::equalNames(parameter.name, file.name)) continue;
        if (!file.method.empty() && !host::equalNames(methodName, file.method)) continue;
        if (!owners.empty() && owners.back() == i) continue;
        owners.push_back(i);
        addName(ownerNames, methodName);
      }
    }
  }
  if (owners.size() == 1) return owners[0];
  const std::string given = file.option + ": " + (file.method.empty() ? "" : file.method + ".") + file.name;
  if (owners.empty()) {
    throw UsageError(given + " is unknown; " +
                     (names.empty() ? "no argument takes a file" : "there are " + names));
  }
  const bool isOneMethod = ownerNames.find(',') == std::string::npos;
  throw UsageError(given + " is an argument of more than one step (" + ownerNames + "); " +
                   (isOneMethod ? "" : "write METHOD." + file.name + ", or ") + "run the steps one by one");
}

}  // namespace zvr
