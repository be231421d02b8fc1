// Why calls failed that report nothing.
#pragma once

#include <string>
#include <vector>

#include "host/calls.h"

namespace zvr {

// "MergePictureZVR answered nil: source2 is nil": what the call was given that
// explains its answer; where nothing does, all of it, and when the manual says that the call fails.
// `receiver` is nil for a global method, `arguments` are those of the declaration.
std::string nilText(const host::Declaration& declaration, const host::PictureRef& receiver,
                    const std::vector<host::Value>& arguments);
// " Memory ran out, or as the manual says: False when ...": the manual's words on the failure of a method, or
// of a class's Run; empty when it has none.
std::string manualOnFailure(const std::string& name);

}  // namespace zvr
