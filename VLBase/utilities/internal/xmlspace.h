#pragma once

#include <QChar>
#include <QStringView>

#include <algorithm>

namespace vlbase::utilities {

/// White space as XML knows it, which is less than Unicode's.
inline bool isXmlSpace(QChar c)
{
    return c == u' ' || c == u'\n' || c == u'\t' || c == u'\r';
}

inline bool isAllXmlSpace(QStringView text)
{
    return std::all_of(text.begin(), text.end(), isXmlSpace);
}

} // namespace vlbase::utilities
