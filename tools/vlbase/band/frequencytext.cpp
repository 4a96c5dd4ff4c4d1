#include "frequencytext.h"

#include <VLBase/basetypes/frequencyunit.h>

#include <QRegularExpression>

#include <cmath>

namespace vlbase::tool::band {

std::optional<double> parseFrequency(const QString& text)
{
    static const QRegularExpression form(
        QStringLiteral("^\\s*([0-9]*\\.?[0-9]+|[0-9]+\\.)(?:e([+-]?[0-9]{1,3}))?\\s*([a-z]*)\\s*$"),
        QRegularExpression::CaseInsensitiveOption);
    const QRegularExpressionMatch match = form.match(text);
    if (!match.hasMatch())
        return std::nullopt;
    int exponent = match.captured(2).toInt();
    const QString unit = match.captured(3);
    if (!unit.isEmpty()) {
        bool isUnit = false;
        exponent += FrequencyUnit::fromString(unit, &isUnit);
        if (!isUnit)
            return std::nullopt;
    }
    // One conversion of the decimal number: 935.2 times a million would be rounded twice.
    const double hertz = QStringLiteral("%1e%2").arg(match.captured(1)).arg(exponent).toDouble();
    return std::isfinite(hertz) ? std::optional(hertz) : std::nullopt;
}

QString megahertzText(double hertz)
{
    QString text = QString::number(hertz / 1e6, 'f', 6);
    while (text.endsWith(u'0') && text[text.size() - 2] != u'.')
        text.chop(1);
    return text + QStringLiteral(" MHz");
}

} // namespace vlbase::tool::band
