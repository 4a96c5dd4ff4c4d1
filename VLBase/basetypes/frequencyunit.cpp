#include "frequencyunit.h"

#include <VLBase/basetypes/internal/unitfamily.h>

namespace {

const auto& family()
{
    static constexpr vlbase::Unit<FrequencyUnit::Type> units[] = {
        {FrequencyUnit::Hz, "Hz", QT_TRANSLATE_NOOP("FrequencyUnit", "Hz")},
        {FrequencyUnit::KHz, "kHz", QT_TRANSLATE_NOOP("FrequencyUnit", "kHz")},
        {FrequencyUnit::MHz, "MHz", QT_TRANSLATE_NOOP("FrequencyUnit", "MHz")},
        {FrequencyUnit::GHz, "GHz", QT_TRANSLATE_NOOP("FrequencyUnit", "GHz")},
        {FrequencyUnit::THz, "THz", QT_TRANSLATE_NOOP("FrequencyUnit", "THz")},
    };
    static const vlbase::UnitFamily theFamily("FrequencyUnit", units);
    return theFamily;
}

} // namespace

const QList<FrequencyUnit::Type>& FrequencyUnit::values()
{
    return family().values();
}

QString FrequencyUnit::toString(Type value)
{
    return family().toString(value);
}

QString FrequencyUnit::toDisplayString(Type value)
{
    return family().toDisplayString(value);
}

FrequencyUnit::Type FrequencyUnit::fromString(const QString& text, bool* ok)
{
    return family().fromString(text, ok);
}

FrequencyUnit::Type FrequencyUnit::predecessor(Type value, const QList<Type>& allowed)
{
    return family().predecessor(value, allowed);
}

FrequencyUnit::Type FrequencyUnit::successor(Type value, const QList<Type>& allowed)
{
    return family().successor(value, allowed);
}
