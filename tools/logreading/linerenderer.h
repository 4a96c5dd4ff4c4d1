#pragma once

#include <VLBase/logging/logline.h>
#include <VLBase/logging/ownernotice.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace vlbase::logreading {

/// Appends lines to a text in the form in which a viewer shows them.
class LineRenderer
{
public:
    virtual ~LineRenderer() = default;

    virtual void appendLine(const logging::LogLine& line, std::string& out) = 0;
    /// A line without a header.
    virtual void appendText(std::string_view text, std::string& out) = 0;
    virtual void appendLost(const logging::OwnerNotice& lost, std::string& out) = 0;
};

/// One JSON object for each line:
///
///     {"index":100000,"time":"2024-05-17T11:42:07Z","zoneOffsetUs":7200000000,"station":"s",
///      "module":"m","level":"Error","fields":["a","b","c"]}
///     {"text":"a line without a header"}
///     {"lost":3,"first":100006,"last":100008}
std::unique_ptr<LineRenderer> makeJsonRenderer();

} // namespace vlbase::logreading
