// Command lines as Windows has them: one text for all words.
#pragma once

#include <string>

namespace vantorelix::cli {

// A word as programs take command lines apart there: backslashes are plain, except before a quotation mark.
std::wstring quoted(const std::wstring& word);

}  // namespace vantorelix::cli
