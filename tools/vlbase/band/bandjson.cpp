#include "bandjson.h"

#include "plan.h"

#include <QJsonArray>

namespace vlbase::tool::band {

QJsonObject bandObject(unsigned index)
{
    const Band band = planBands()[index];
    QJsonArray ranges;
    for (const ChannelRange& range : channelRanges(band)) {
        ranges.append(QJsonObject{
            {QStringLiteral("firstChannel"), static_cast<qint64>(range.first)},
            {QStringLiteral("lastChannel"), static_cast<qint64>(range.last)},
            {QStringLiteral("firstHz"), range.firstHz},
            {QStringLiteral("lastHz"), range.lastHz},
        });
    }
    return {
        {QStringLiteral("number"), static_cast<int>(index)},
        {QStringLiteral("name"), band.GetName()},
        {QStringLiteral("spacingHz"), band.GetStepWidth()},
        {QStringLiteral("pairedWith"), static_cast<int>(pairedWith(index))},
        {QStringLiteral("channels"), ranges},
    };
}

} // namespace vlbase::tool::band
