#include "maskconv.h"

#include <VLBase/coord/internal/mask.h>
#include <VLBase/errorhandling/errorhandler.h>
#include <VLBase/errorhandling/quality.h>

using vlbase::coord::isInputCharacter;

namespace {

constexpr unsigned int assertionBit = 2;

/// The quality assertion, where the error handler wants it. The expression is the text that
/// those who search the logs know.
void reportPastMask()
{
    if (ErrorHandler::Instance().GetMessageMask() & assertionBit)
        _Q_assert(L"(nPos < unsigned int(m_strMaskText.length()))", L"coord/maskconv",
                  static_cast<unsigned short>(__LINE__));
}

bool isDigit(char character)
{
    return character >= '0' && character <= '9';
}

bool isLetter(char character)
{
    return (character >= 'A' && character <= 'Z') || (character >= 'a' && character <= 'z');
}

} // namespace

MaskConverter::MaskConverter() = default;
MaskConverter::MaskConverter(const MaskConverter& other) = default;
MaskConverter& MaskConverter::operator=(const MaskConverter& other) = default;
MaskConverter::~MaskConverter() = default;

void MaskConverter::SetMask(const QString& mask, char)
{
    m_strMaskText = mask;
    SetText(QString());
}

const QString& MaskConverter::GetMask() const
{
    return m_strMaskText;
}

QString& MaskConverter::GetMaskText()
{
    return m_strMaskText;
}

QString& MaskConverter::GetFormattedText()
{
    return m_strFormattedText;
}

void MaskConverter::SetFormattedText(const QString& text)
{
    m_strFormattedText = text;
}

void MaskConverter::SetText(const QString& plain)
{
    m_strFormattedText.clear();
    m_strFormattedText.reserve(m_strMaskText.size());
    qsizetype next = 0;
    for (qsizetype position = 0; position < m_strMaskText.size(); ++position) {
        if (IsMaskChar(static_cast<unsigned int>(position)))
            m_strFormattedText += m_strMaskText[position];
        else if (next < plain.size())
            m_strFormattedText += plain[next++];
        else
            m_strFormattedText += QLatin1Char(m_cPlaceHolder);
    }
}

QString MaskConverter::GetText()
{
    m_strPlainText.clear();
    for (qsizetype position = 0; position < m_strFormattedText.size(); ++position) {
        if (position == m_strMaskText.size()) {
            // One report for all that is too long.
            reportPastMask();
            break;
        }
        if (!IsMaskChar(static_cast<unsigned int>(position)))
            m_strPlainText += m_strFormattedText[position];
    }
    return m_strPlainText;
}

bool MaskConverter::IsMaskChar(unsigned int position) const
{
    if (position >= static_cast<unsigned int>(m_strMaskText.size())) {
        reportPastMask();
        return true;
    }
    return !isInputCharacter(m_strMaskText[static_cast<qsizetype>(position)].unicode());
}

bool MaskConverter::GetReplacementChar(unsigned int position, char typed, char& result) const
{
    if (position >= static_cast<unsigned int>(m_strMaskText.size()))
        return false;
    const QChar maskCharacter = m_strMaskText[static_cast<qsizetype>(position)];
    bool isAccepted = true;
    char stored = typed;
    switch (maskCharacter.unicode()) {
    case u'#':
        isAccepted = isDigit(typed);
        break;
    case u'?':
        isAccepted = isLetter(typed);
        break;
    case u'E':
        isAccepted = typed == 'E' || typed == 'W' || typed == 'e' || typed == 'w';
        break;
    case u'N':
        isAccepted = typed == 'N' || typed == 'S' || typed == 'n' || typed == 's';
        break;
    default:
        stored = maskCharacter.toLatin1();
    }
    if (isAccepted)
        result = stored;
    return isAccepted;
}

QString MaskConverter::GetPlaceHolder() const
{
    return QString(QLatin1Char(m_cPlaceHolder));
}
