// The gallery's calls as lines to copy: for a shell and for a program.
#pragma once

#include <string>
#include <vector>

#include "host/zvr/chain.h"

namespace zvr::gallery {

// "zvr" and the words, quoted where a shell needs it.
std::string shellLine(const std::vector<std::string>& words);
// The steps as statements; the input is `photo`, files are variables of their names.
std::vector<std::string> basicLines(const Chain& chain);
// "ScrollZVR(deltaX, deltaY, wrap, scrollmask)"; of more arguments than four only how many.
std::string shortCall(const host::Declaration& declaration);

}  // namespace zvr::gallery
