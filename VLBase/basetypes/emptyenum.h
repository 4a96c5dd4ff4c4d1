#pragma once

#include <VLBase/vlbase_export.h>

#include <QList>
#include <QObject>
#include <QString>

namespace EnumHelpers {

/// A unit family with one nameless unit, for generic code where no unit applies.
struct VLBASE_EXPORT EmptyEnum
{
    Q_GADGET

public:
    enum Type {
        Constant = 0,
    };
    Q_ENUM(Type)

    /// `Constant` alone.
    static const QList<Type>& values();

    /// An empty text.
    static QString toString(Type value);

    /// An empty text.
    static QString toDisplayString(Type value);

    /// `Constant`.
    /// \param ok whether `text` is empty, may be null
    static Type fromString(const QString& text, bool* ok = nullptr);
};

} // namespace EnumHelpers
