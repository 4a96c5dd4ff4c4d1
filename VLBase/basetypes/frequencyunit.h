#pragma once

#include <VLBase/vlbase_export.h>

#include <QList>
#include <QObject>
#include <QString>

/// Units in which frequencies are shown and typed.
struct VLBASE_EXPORT FrequencyUnit
{
    Q_GADGET

public:
    /// The value is the power of ten of the unit in hertz.
    enum Type {
        Hz = 0,
        KHz = 3,
        MHz = 6,
        GHz = 9,
        THz = 12,
    };
    Q_ENUM(Type)

    /// All units, from small to large.
    static const QList<Type>& values();

    /// Short name, never translated ("kHz"); a null text for a value that is no unit.
    static QString toString(Type value);

    /// Name in the user's language; a null text for a value that is no unit.
    static QString toDisplayString(Type value);

    /// The first of `values()` whose short name begins with the first word of `text`, in any case
    /// of letters: "m" and "MHZ wide" are `MHz`.
    ///
    /// \param ok whether there is one, may be null
    /// \return `Hz` when there is none
    static Type fromString(const QString& text, bool* ok = nullptr);

    /// The next smaller unit of `allowed`, or `value` itself. The smallest unit of all is never
    /// reached: stepping down ends at `KHz`.
    static Type predecessor(Type value, const QList<Type>& allowed);

    /// The next larger unit of `allowed`, or `value` itself.
    static Type successor(Type value, const QList<Type>& allowed);
};
