// The gallery's calls as lines to copy: for a shell and for a program.
#pragma once

#include <string>
#include <vector>

#include "zvr/language/chain.h"

namespace zvr::gallery {

// "zvr apply WORD... -o OUTPUT", quoted where a shell needs it; no option for an empty output. Where a word
// reads as an option, words come last and after --.
std::string shellLine(const std::vector<std::string>& words, const std::string& output);
// The steps as statements, line by line; the input is `photo`, files are variables of their names.
std::string basicText(const Chain& chain);

}  // namespace zvr::gallery
