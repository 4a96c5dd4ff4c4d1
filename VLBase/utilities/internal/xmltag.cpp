#include "xmltag.h"

#include "xmlspace.h"

namespace vlbase::utilities {

XmlTag::XmlTag(QStringView text)
{
    const auto endsName = [](QChar c) {
        return isXmlSpace(c) || c == u'=' || c == u'/' || c == u'>';
    };
    qsizetype at = 1;
    const auto takeName = [&] {
        const qsizetype begin = at;
        while (at < text.size() && !endsName(text[at]))
            ++at;
        return text.sliced(begin, at - begin);
    };
    const auto skip = [&](auto&& isSkipped) {
        while (at < text.size() && isSkipped(text[at]))
            ++at;
    };

    takeName();
    opening = text.first(at);
    for (skip(isXmlSpace); at < text.size() && text[at] != u'/' && text[at] != u'>';
         skip(isXmlSpace)) {
        const QStringView name = takeName();
        skip([](QChar c) { return isXmlSpace(c) || c == u'='; });
        if (at >= text.size())
            break;
        const qsizetype end = text.indexOf(text[at], at + 1);
        if (name.isEmpty() || end < 0)
            break;
        attributes.append({name, text.sliced(at, end + 1 - at)});
        at = end + 1;
    }
    closing = text.endsWith(u"/>") ? text.last(2) : text.last(1);
}

} // namespace vlbase::utilities
