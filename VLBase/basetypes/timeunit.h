#pragma once

#include <VLBase/vlbase_export.h>

#include <QList>
#include <QObject>
#include <QString>

/// Units in which durations are shown and typed.
struct VLBASE_EXPORT TimeUnit
{
    Q_GADGET

public:
    /// The value is the number of seconds from a minute on, and the power of ten below.
    enum Type {
        Seconds = 0,
        Minutes = 60,
        Hours = 3600,
        Days = 86400,
        MilliSeconds = -3,
        MicroSeconds = -6,
        NanoSeconds = -9,
    };
    Q_ENUM(Type)

    /// All units, from small to large.
    static const QList<Type>& values();

    /// Short name, never translated ("us"); a null text for a value that is no unit.
    static QString toString(Type value);

    /// Name in the user's language; a null text for a value that is no unit.
    static QString toDisplayString(Type value);

    /// The first of `values()` whose short name begins with the first word of `text`, in any case
    /// of letters. Thus "m" is `MilliSeconds`, and no text is `Minutes`.
    ///
    /// \param ok whether there is one, may be null
    /// \return `NanoSeconds` when there is none
    static Type fromString(const QString& text, bool* ok = nullptr);

    /// The next smaller unit of `allowed`, or `value` itself. The smallest unit of all is never
    /// reached: stepping down ends at `MicroSeconds`.
    static Type predecessor(Type value, const QList<Type>& allowed);

    /// The next larger unit of `allowed`, or `value` itself.
    static Type successor(Type value, const QList<Type>& allowed);
};
