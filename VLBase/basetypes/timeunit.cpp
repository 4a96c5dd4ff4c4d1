#include "timeunit.h"

#include <VLBase/basetypes/internal/unitfamily.h>

namespace {

const auto& family()
{
    static constexpr vlbase::Unit<TimeUnit::Type> units[] = {
        {TimeUnit::NanoSeconds, "ns", QT_TRANSLATE_NOOP("TimeUnit", "ns")},
        {TimeUnit::MicroSeconds, "us", QT_TRANSLATE_NOOP("TimeUnit", "µs")},
        {TimeUnit::MilliSeconds, "ms", QT_TRANSLATE_NOOP("TimeUnit", "ms")},
        {TimeUnit::Seconds, "s", QT_TRANSLATE_NOOP("TimeUnit", "s")},
        {TimeUnit::Minutes, "m", QT_TRANSLATE_NOOP("TimeUnit", "m")},
        {TimeUnit::Hours, "h", QT_TRANSLATE_NOOP("TimeUnit", "h")},
        {TimeUnit::Days, "d", QT_TRANSLATE_NOOP("TimeUnit", "d")},
    };
    static const vlbase::UnitFamily theFamily("TimeUnit", units);
    return theFamily;
}

} // namespace

const QList<TimeUnit::Type>& TimeUnit::values()
{
    return family().values();
}

QString TimeUnit::toString(Type value)
{
    return family().toString(value);
}

QString TimeUnit::toDisplayString(Type value)
{
    return family().toDisplayString(value);
}

TimeUnit::Type TimeUnit::fromString(const QString& text, bool* ok)
{
    return family().fromString(text, ok);
}

TimeUnit::Type TimeUnit::predecessor(Type value, const QList<Type>& allowed)
{
    return family().predecessor(value, allowed);
}

TimeUnit::Type TimeUnit::successor(Type value, const QList<Type>& allowed)
{
    return family().successor(value, allowed);
}
