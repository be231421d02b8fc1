// Where the results of `zvr apply` go.
#pragma once

#include <string>
#include <vector>

namespace zvr {

// The output file for each input. `pattern` may hold {name} (the input's name without its extension), {ext}
// (its extension, png when it has none that can be written) and {n} (1 for the first input), or be a folder:
// one that exists or that ends in /. Empty: beside the input. Without a file name of its own an output is
// called NAME-LABEL.png. Throws UsageError for patterns that make no sense, formats that can't be written,
// and outputs that coincide.
std::vector<std::string> planOutputs(const std::vector<std::string>& inputs, const std::string& pattern,
                                     const std::string& label);

}  // namespace zvr
