// Declarations and values as people read them.
#pragma once

#include <string>
#include <vector>

#include "host/calls.h"
#include "host/host.h"

namespace zvr {

// "byref x as Integer", "threshold as Integer = 10".
std::string parameterText(const host::Parameter& parameter);
// "(left as Integer, top as Integer) as Picture" in lines of at most `width` characters; in one line for 0.
std::vector<std::string> signatureLines(const host::Declaration& declaration, size_t width);
std::string signatureText(const host::Declaration& declaration);
// Numbers in the shortest form that reads back the same; long or binary strings and blocks by their size.
std::string valueText(const host::Value& value);
// "; did you mean InvertZVR or InvertGrayZVR?", or "; `zvr list` shows every method" when none is near.
std::string nearestText(const std::string& name);

// The listing of one registered class, line by line.
std::vector<std::string> classLines(const host::Class& type);
// The listing of methods, overloads under the name that comes first.
std::vector<std::string> methodLines(const std::vector<const host::Method*>& methods);

}  // namespace zvr
