// A table of text in aligned columns.
#pragma once

#include <string>
#include <vector>

namespace vantorelix::cli {

// Rows of equal length, the first the heading. A column of numbers is given as right-aligned by `right`. Two blanks
// between columns, none at the end of a line.
std::string columns(const std::vector<std::vector<std::string>>& rows, const std::vector<bool>& right);

}  // namespace vantorelix::cli
