#pragma once

#include <QCollator>
#include <QString>

#include <optional>
#include <vector>

namespace vlbase::qthelpers {

/// The order of texts in a locale, regardless of case and with digits by their number.
///
/// Qt's collator does it all where it is ICU's. That of Windows stumbles over long numbers, and its
/// quick forms do not hold everywhere; the one of the locale "C" compares code points and nothing
/// else.
class TextOrder
{
public:
    /// That of the default locale.
    TextOrder();

    /// A text in the form in which it is compared quickly.
    class Key
    {
        friend class TextOrder;
        struct Part
        {
            std::optional<QCollatorSortKey> whole;
            QString letters;
            QString number; ///< digits behind how many they are
        };
        std::vector<Part> m_parts;
    };

    Key key(const QString& text) const;

    /// Below 0, 0 or above 0.
    int compare(const Key& first, const Key& second) const;

private:
    enum class Way { Whole, Segments, CodePoints };

    bool doesNumbers() const;

    QCollator m_collator;
    Way m_way = Way::Whole;
};

} // namespace vlbase::qthelpers
