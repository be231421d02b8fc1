// Calls of registered members through libffi: words of a command line or typed values in, typed values out.
#pragma once

#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "host/host.h"
#include "host/objects.h"
#include "host/strings.h"

namespace host {

struct Color {
  RBColor rgb = 0;
};
// A value of the dialect. Integers of every width are int64_t; nil is an empty Ref.
using Value = std::variant<std::monostate, int64_t, double, bool, Color, StringRef, PictureRef,
                           MemoryBlockRef, ObjectRef>;

struct Outcome {
  Value result;                  // monostate for a method without one; pictures and strings are owned here
  std::vector<Value> arguments;  // as they are after the call: byref values are the callee's
  std::optional<RaisedException> exception;
};

// Calls a method. `receiver` is the host object for an extension or a plug-in class (null is passed on as
// nil) and ignored for a global method. Missing trailing arguments take their defaults. Throws
// std::invalid_argument when the number or type of the arguments does not fit the declaration; Unwound passes
// through.
Outcome call(const Method& method, REALobjectStruct* receiver, std::vector<Value> arguments);
// Calls the setter of a method with a value on its right: receiver.Name(arguments) = value.
Outcome assign(const Method& method, REALobjectStruct* receiver, std::vector<Value> arguments, Value value);

// Converts a word of a command line to a value: integers (also &hFF), doubles ("0.2", "inf", "nan"; never by
// locale), booleans (true/false/yes/no/1/0), colours (&cRRGGBB, #rrggbb, #rgb, CSS names), nil. Throws
// std::invalid_argument that names the parameter, what was given and what is expected.
Value parseValue(const Parameter& parameter, const std::string& word);

// Properties of an instance of a registered class, stored and computed alike. Throws std::invalid_argument
// for a name that the class lacks (names in any case).
Value getProperty(REALobjectStruct* instance, const std::string& name);
void setProperty(REALobjectStruct* instance, const std::string& name, const Value& value);

// Registered methods by name (any case): globals and Picture methods, overloads in registered order.
std::vector<const Method*> findMethods(const std::string& name);
// Whether the first argument of a registered function is a host object.
bool takesReceiver(const Method& method);

}  // namespace host
