#pragma once

#include "textorder.h"

#include <QVariant>

namespace vlbase::qthelpers {

/// A value in the form in which it is compared quickly.
class SortValue
{
public:
    SortValue() = default;
    SortValue(const QVariant& value, const TextOrder& texts);

    /// Comes last, whatever the direction.
    bool isEmpty() const { return m_kind == Kind::Empty; }

    /// Below 0, 0 or above 0.
    int compare(const SortValue& other, const TextOrder& texts) const;

private:
    enum class Kind : quint8 { Integer, Real, Moment, Time, Text, Empty };

    void takeNumber(const QVariant& value);
    void takeReal(double number);

    Kind m_kind = Kind::Empty;
    qint64 m_integer = 0; ///< milliseconds of a moment or a time
    double m_real = 0.0;  ///< of an integer as well
    TextOrder::Key m_text;
};

} // namespace vlbase::qthelpers
