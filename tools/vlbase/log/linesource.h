#pragma once

#include <QString>

#include <cstdint>
#include <string>

namespace vlbase::tool::log {

/// Where a viewer gets its lines.
class LineSource
{
public:
    virtual ~LineSource() = default;

    /// Appends the whole lines that came since the last call, each with a zero byte at its end.
    /// \return whether more is likely to be there already.
    virtual bool poll(std::string& lines) = 0;

    /// "live", or "from FILE": for the viewer's messages.
    virtual QString description() const = 0;
};

} // namespace vlbase::tool::log
