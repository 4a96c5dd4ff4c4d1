#pragma once

#include <QString>

#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace vlbase::logreading {

/// A regular expression that is matched against UTF-8 as it is: by the 8-bit PCRE2 library and
/// its just-in-time compiler where the program was built with it, else by QRegularExpression. What
/// is no UTF-8 never matches and does no harm. Any thread may match.
class BytePattern
{
public:
    struct Fault
    {
        qsizetype place = 0; ///< in the pattern, from 0
        QString reason;
    };

    /// \return null when it is no pattern of QRegularExpression; \a fault tells why.
    static std::shared_ptr<const BytePattern> make(const QString& pattern, bool ignoreCase,
                                                   Fault& fault);
    virtual ~BytePattern() = default;

    virtual bool isIn(std::string_view text) const = 0;
};

/// A text that is in everything that the pattern matches, the longest that is easily seen; empty
/// when none is. Of ASCII, and where case is ignored without letters that Unicode counts as
/// another case of characters beyond.
std::string literalOf(const QString& pattern, bool ignoreCase);

} // namespace vlbase::logreading
