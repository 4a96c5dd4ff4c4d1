#include "xmltext.h"

#include <QDomDocument>
#include <QDomText>

#include <algorithm>

namespace vlbase::basetypes {

namespace {

bool isBlank(const QString& text)
{
    return !text.isEmpty() && text.trimmed().isEmpty();
}

/// Whether XML 1.0 has the characters. One that it lacks costs the reader the whole document.
bool isXmlText(const QString& text)
{
    return text.isValidUtf16() && std::none_of(text.cbegin(), text.cend(), [](QChar c) {
               const bool isControl = c < u' ' && c != u'\t' && c != u'\n' && c != u'\r';
               return isControl || c >= u'\uFFFE';
           });
}

} // namespace

bool comesBack(const QString& text)
{
    return isXmlText(text) && !(isBlank(text) && text.contains(u'\r'));
}

void appendText(QDomDocument& doc, QDomElement& parent, const QString& tag, const QString& text)
{
    QDomElement element = doc.createElement(tag);
    // A reader drops plain text of nothing but blanks.
    element.appendChild(isBlank(text) ? doc.createCDATASection(text) : doc.createTextNode(text));
    parent.appendChild(element);
}

QString textOf(const QDomElement& element)
{
    QString text;
    QDomNode node = element.firstChild();
    while (!node.isNull()) {
        if (node.isText())
            text += node.nodeValue();
        QDomNode next = node.isElement() ? node.firstChild() : QDomNode();
        while (next.isNull() && node != element) {
            next = node.nextSibling();
            if (next.isNull())
                node = node.parentNode();
        }
        node = next;
    }
    return text;
}

} // namespace vlbase::basetypes
