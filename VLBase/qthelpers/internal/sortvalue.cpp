#include "sortvalue.h"

#include <QDateTime>

#include <cmath>
#include <limits>

namespace vlbase::qthelpers {

namespace {

template <typename Number> int order(Number a, Number b)
{
    return a < b ? -1 : b < a ? 1 : 0;
}

QDateTime momentOf(const QVariant& value)
{
    return value.typeId() == QMetaType::QDate ? value.toDate().startOfDay() : value.toDateTime();
}

} // namespace

SortValue::SortValue(const QVariant& value, const TextOrder& texts)
{
    switch (value.typeId()) {
    case QMetaType::Bool:
    case QMetaType::Char:
    case QMetaType::SChar:
    case QMetaType::UChar:
    case QMetaType::Short:
    case QMetaType::UShort:
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::Long:
    case QMetaType::ULong:
    case QMetaType::LongLong:
    case QMetaType::ULongLong:
        takeNumber(value);
        break;
    case QMetaType::Float:
    case QMetaType::Double:
        takeReal(value.toDouble());
        break;
    case QMetaType::QDate:
    case QMetaType::QDateTime:
        if (const QDateTime moment = momentOf(value); moment.isValid()) {
            m_kind = Kind::Moment;
            m_integer = moment.toMSecsSinceEpoch();
        }
        break;
    case QMetaType::QTime:
        if (const QTime time = value.toTime(); time.isValid()) {
            m_kind = Kind::Time;
            m_integer = time.msecsSinceStartOfDay();
        }
        break;
    default:
        if (const QString text = value.toString(); !text.isEmpty()) {
            m_kind = Kind::Text;
            m_text = texts.key(text);
        }
        break;
    }
}

void SortValue::takeNumber(const QVariant& value)
{
    bool isSigned = true;
    m_integer = value.toLongLong();
    if (value.typeId() == QMetaType::ULongLong || value.typeId() == QMetaType::ULong)
        isSigned = value.toULongLong() <= static_cast<quint64>(std::numeric_limits<qint64>::max());
    if (isSigned) {
        m_kind = Kind::Integer;
        m_real = static_cast<double>(m_integer);
    } else {
        takeReal(static_cast<double>(value.toULongLong()));
    }
}

void SortValue::takeReal(double number)
{
    m_real = number;
    m_kind = std::isnan(number) ? Kind::Empty : Kind::Real;
}

int SortValue::compare(const SortValue& other, const TextOrder& texts) const
{
    const auto isNumber = [](Kind kind) { return kind == Kind::Integer || kind == Kind::Real; };
    if (m_kind != other.m_kind) {
        return isNumber(m_kind) && isNumber(other.m_kind) ? order(m_real, other.m_real)
                                                          : order(m_kind, other.m_kind);
    }
    switch (m_kind) {
    case Kind::Integer:
    case Kind::Moment:
    case Kind::Time:
        return order(m_integer, other.m_integer);
    case Kind::Real:
        return order(m_real, other.m_real);
    case Kind::Text:
        return texts.compare(m_text, other.m_text);
    case Kind::Empty:
        break;
    }
    return 0;
}

} // namespace vlbase::qthelpers
