// One step of a chain: a method, a filter class or a film look, with its arguments.
#pragma once

#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "host/calls.h"

namespace zvr {

// The result of the step before, or the input; written @.
struct Current {};
// A file that becomes what the parameter is: a picture, or the bytes of a memory block or string.
struct ArgumentFile {
  std::string path;
};
using Argument = std::variant<host::Value, Current, ArgumentFile>;

// A look is a step of the method or class that applies it.
struct Step {
  std::string name;                      // of the method or class, or of a look's file without its extension
  host::Declaration declaration;         // of a class: its properties as parameters, a picture as its result
  const host::Method* method = nullptr;  // null for a class
  const host::Class* type = nullptr;     // a filter class; null for a method
  std::vector<Argument> arguments;       // one for each parameter
  std::optional<Argument> assigned;      // the value of METHOD ... = VALUE
  std::string look;                      // the file of a film look; empty for other steps
  host::ObjectRef filled;                // of a look: an instance whose Table it has filled

  // Whether it works on @ without naming it.
  bool takesReceiver() const { return type || host::takesReceiver(*method); }
  // Whether it is a class whose Table must be filled.
  bool hasTable() const;
  bool isConsoleSafe() const;
  // Whether it is about transparency or masks: then the picture goes through the library as a host has it.
  bool concernsTransparency() const;
  // Whether its result becomes @; other answers are for people.
  bool makesCurrent() const;
};

// Whether a word is the file name of a film look: .cube, in any case.
bool isLook(const std::string& word);
// The steps that a first word, in any case, may mean, without arguments: overloads of a method, in
// registered order, or a class that filters pictures. A class has all properties that can be set as
// parameters, each with a default. Empty for other words.
std::vector<Step> stepsNamed(const std::string& word);
// The step of a .cube file, which is read. Throws Failure.
Step lookStep(const std::string& path);

// Calls it with a value for each parameter. `receiver` is @, if it takes it; `assigned` the value to assign,
// if it does so. A class answers its DestinationPicture. Throws Failure for an exception, and for nil where
// the result becomes @.
host::Outcome callStep(const Step& step, const host::PictureRef& receiver, std::vector<host::Value> arguments,
                       const host::Value& assigned = {});

}  // namespace zvr
