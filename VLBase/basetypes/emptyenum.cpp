#include "emptyenum.h"

namespace EnumHelpers {

const QList<EmptyEnum::Type>& EmptyEnum::values()
{
    static const QList<Type> theValues{Constant};
    return theValues;
}

QString EmptyEnum::toString(Type)
{
    return QLatin1String("");
}

QString EmptyEnum::toDisplayString(Type)
{
    return QLatin1String("");
}

EmptyEnum::Type EmptyEnum::fromString(const QString& text, bool* ok)
{
    if (ok)
        *ok = text.isEmpty();
    return Constant;
}

} // namespace EnumHelpers
