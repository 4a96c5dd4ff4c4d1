#include "linerenderer.h"
#include "tools/jsontext.h"

#include <VLBase/logging/linetext.h>

#include <charconv>

namespace vlbase::logreading {
namespace {

class JsonRenderer : public LineRenderer
{
public:
    void appendLine(const logging::LogLine& line, std::string& out) override
    {
        out += "{\"index\":";
        out += line.index == 0 ? "null" : std::to_string(line.index);
        out += ",\"time\":";
        appendTime(line, out);
        out += ",\"zoneOffsetUs\":";
        appendZone(line.zone, out);
        out += ",\"station\":";
        appendString(line.station, out);
        out += ",\"module\":";
        appendString(line.module, out);
        out += ",\"level\":";
        appendString(line.level, out);
        out += ",\"fields\":[";
        for (std::size_t i = 0; i < line.fields.size(); ++i) {
            if (i > 0)
                out += ',';
            appendString(line.fields[i], out);
        }
        out += "]}\n";
    }

    void appendText(std::string_view text, std::string& out) override
    {
        out += "{\"text\":";
        appendString(text, out);
        out += "}\n";
    }

    void appendLost(const logging::OwnerNotice& lost, std::string& out) override
    {
        out += "{\"lost\":" + std::to_string(lost.count) +
               ",\"first\":" + std::to_string(lost.first) +
               ",\"last\":" + std::to_string(lost.last) + "}\n";
    }

private:
    static void appendString(std::string_view text, std::string& out)
    {
        std::string clean;
        logging::appendClean(text, logging::Cleaning::ForTerminal, clean);
        appendJsonString(clean, out);
    }

    static void appendTime(const logging::LogLine& line, std::string& out)
    {
        if (!line.seconds) {
            appendString(line.time, out);
            return;
        }
        out += '"';
        out += line.time.substr(0, 10);
        out += 'T';
        out += line.time.substr(11);
        out += "Z\"";
    }

    static void appendZone(std::string_view zone, std::string& out)
    {
        constexpr std::string_view prefix = "UTC: ";
        double offset = 0;
        const bool hasPrefix = zone.substr(0, prefix.size()) == prefix;
        if (hasPrefix)
            zone.remove_prefix(prefix.size());
        const char* const end = zone.data() + zone.size();
        const auto [rest, error] = std::from_chars(zone.data(), end, offset);
        const bool isWhole = offset > -1e15 && offset < 1e15;
        if (!hasPrefix || error != std::errc() || rest != end || !isWhole) {
            out += "null";
            return;
        }
        out += std::to_string(static_cast<std::int64_t>(offset));
    }
};

} // namespace

std::unique_ptr<LineRenderer> makeJsonRenderer()
{
    return std::make_unique<JsonRenderer>();
}

} // namespace vlbase::logreading
