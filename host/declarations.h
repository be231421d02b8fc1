// Declarations of the BASIC dialect, as the plug-in registers them:
// "FindPictureZVR(pic as picture, byref x as integer, byref y as integer) as boolean".
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace host {

enum class Type { none, integer, uint32, real, boolean, color, string, picture, memoryBlock, object };

// The dialect's name of a type, as a person would write it ("Integer", "MemoryBlock").
std::string typeName(Type type);

struct Parameter {
  std::string name;
  Type type = Type::none;
  bool byRef = false;
  bool hasDefault = false;
  std::string defaultText;  // as written: "10", "&c88B5C4", "false", "nil"
};

struct Declaration {
  std::string name;
  std::vector<Parameter> parameters;
  Type result = Type::none;
  // Parameters that a caller must give: those before the first default.
  size_t required() const;
};

// Parses one declaration; type names in any case. Throws std::invalid_argument that says what was found
// where, and what was expected.
Declaration parseDeclaration(std::string_view text);

// Names of the dialect are the same in any case.
bool equalNames(std::string_view a, std::string_view b);
// How far a typed name is from a member's: the letters to add, drop or replace, in any case, with or without
// the three letters of the members' suffix, capitals; 1 when it is a part of the name.
size_t nameDistance(std::string_view typed, std::string_view name);
// The names closest to a mistyped one, each once, nearest first: at most three, none when all are far.
std::vector<std::string> nearestNames(const std::string& typed, const std::vector<std::string>& names);

}  // namespace host
