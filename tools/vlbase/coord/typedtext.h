#pragma once

#include <string>
#include <string_view>

namespace vlbase::tool::coord {

/// What stands for a degree sign in a tidied text; letters in it are upper case.
constexpr char degreeMark = 'd';

/// Brings typed text (UTF-8) into one form: ASCII without blanks at its ends, letters in upper
/// case, the various degree, minute, second and minus signs and blanks as one of each.
/// \return false when it holds anything else that no position holds; `tidied` is then anything.
bool tidy(std::string_view typed, std::string& tidied);

} // namespace vlbase::tool::coord
