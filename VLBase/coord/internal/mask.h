#pragma once

#include <QChar>

namespace vlbase::coord {

/// Whether a character of a display mask stands for a typed one.
constexpr bool isInputCharacter(char16_t maskCharacter)
{
    switch (maskCharacter) {
    case u'#':
    case u'?':
    case u'E':
    case u'N':
    case u'X':
    case u'Y':
        return true;
    default:
        return false;
    }
}

} // namespace vlbase::coord
