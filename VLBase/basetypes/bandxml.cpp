#include "band.h"

#include <VLBase/basetypes/internal/channelmath.h>
#include <VLBase/errorhandling/errorhandler.h>
#include <VLBase/errorhandling/quality.h>

#include <QDomDocument>
#include <QDomElement>
#include <QDomText>

#include <algorithm>

namespace {

constexpr unsigned traceMask = 0x20;

// What is known of this place in the logs of the family.
constexpr unsigned short traceLine = 321;

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

/// Whether a reader gets the text as it is: a carriage return is kept only as a reference, and
/// blanks with nothing but them only where references are not possible.
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

/// All text below an element. `QDomElement::text` calls itself for each level of nesting, which a
/// damaged file can make too many for the stack.
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

void trace(const QString& text, unsigned short line)
{
    if (ErrorHandler::Instance().GetMessageMask() & traceMask)
        _Q_Trace(text, QStringLiteral("basetypes/band"), line);
}

} // namespace

void Band::Save(QDomDocument& doc, QDomElement& parent) const
{
    if (!comesBack(m_name)) {
        trace(QStringLiteral("a band's name cannot be written as XML."), __LINE__);
        return;
    }
    const auto append = [&](const char* tag, const QString& text) {
        appendText(doc, parent, QLatin1String(tag), text);
    };
    append("Name", m_name);
    if (m_system)
        return;
    append("Channelspacing", QStringLiteral("%1").arg(m_stepWidth, 0, 'g', 20, QLatin1Char(' ')));
    if (GetGSM()) {
        append("Type", QStringLiteral("GSM"));
        append("StartChannel", QString::number(m_startChannel));
        append("StopChannel", QString::number(m_stopChannel));
        append("StartFrequency", QStringLiteral("%1").arg(m_startFreq, 0, 'f', -1));
    } else {
        append("Type", QStringLiteral("Simple"));
        append("Offset", QStringLiteral("%1").arg(m_offset, 0, 'g', -1));
        append("UseRaster", m_useRaster ? QStringLiteral("1") : QStringLiteral("0"));
    }
}

void Band::Read(QDomDocument&, QDomElement& element)
{
    for (QDomNode node = element.firstChild(); !node.isNull(); node = node.nextSibling()) {
        const QDomElement child = node.toElement();
        if (child.isNull()) {
            trace(QStringLiteral("error loading job."), traceLine);
            return;
        }
        readField(child.tagName(), textOf(child));
    }
}

void Band::readField(const QString& tag, const QString& text)
{
    if (tag == QLatin1String("Name")) {
        m_name = text;
    } else if (tag == QLatin1String("Channelspacing")) {
        m_stepWidth = text.toDouble();
        ensureStepWidth();
    } else if (tag == QLatin1String("Type")) {
        m_type = text == QLatin1String("Simple") ? BandTypeSimple : BandTypeGSM;
    } else if (tag == QLatin1String("StartChannel")) {
        m_startChannel = text.toUInt();
        m_factor = m_startChannel;
    } else if (tag == QLatin1String("StopChannel")) {
        m_stopChannel = text.toUInt();
    } else if (tag == QLatin1String("StartFrequency")) {
        m_startFreq = text.toDouble();
    } else if (tag == QLatin1String("Offset")) {
        m_offset = text.toDouble();
    } else if (tag == QLatin1String("UseRaster")) {
        m_useRaster = text == QLatin1String("1");
    }
}
