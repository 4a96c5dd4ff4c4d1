#include "vlexception.h"

#include <QStringBuilder>

namespace {

constexpr unsigned char ErrorLevel = 1;
constexpr unsigned char InformationLevel = 255;

// Compile-time constants, so that static objects can report before and after everything else.
constexpr QLatin1String InFile{" in file "};
constexpr QLatin1String InClass{" in class "};
constexpr QLatin1String InMethod{" in method "};
constexpr QLatin1String InLine{" in line "};

QString headerOf(unsigned char level)
{
    switch (level) {
    case ErrorLevel:
        return QStringLiteral("Error:");
    case InformationLevel:
        return QStringLiteral("Info:");
    default:
        return QLatin1String("Warning (Level ") + QString::number(level) + u')';
    }
}

QString markOf(unsigned char level)
{
    switch (level) {
    case ErrorLevel:
        return QStringLiteral("!");
    case InformationLevel:
        return {};
    default:
        return QString::number(level);
    }
}

} // namespace

VLException::VLException()
    : VLException(QStringLiteral("NO REASON"), QStringLiteral("NO FILENAME"),
                  QStringLiteral("NO CLASSNAME"), QStringLiteral("NO METHODNAME"), 0, 0)
{
}

VLException::VLException(const QString& reason, const QString& fileName, const QString& className,
                         const QString& methodName, unsigned int lineNumber, unsigned int errorId)
    : m_ErrorTime(QTime::currentTime())
    , m_strErrorReason(reason)
    , m_strFileName(fileName)
    , m_strClassName(className)
    , m_strMethodName(methodName)
    , m_nLineNumber(lineNumber)
    , m_nErrorId(errorId)
{
}

VLException::VLException(const std::string& reason, const char* fileName, const char* className,
                         const char* methodName, unsigned int lineNumber, unsigned int errorId)
    : VLException(QString::fromStdString(reason), QString::fromUtf8(fileName),
                  QString::fromUtf8(className), QString::fromUtf8(methodName), lineNumber, errorId)
{
}

VLException::VLException(const VLException& other) = default;

VLException::~VLException() = default;

VLException& VLException::operator=(const VLException& other)
{
    if (*this != other) {
        m_ErrorTime = other.m_ErrorTime;
        m_strErrorReason = other.m_strErrorReason;
        m_strFileName = other.m_strFileName;
        m_strClassName = other.m_strClassName;
        m_strMethodName = other.m_strMethodName;
        m_nLineNumber = other.m_nLineNumber;
        m_nErrorId = other.m_nErrorId;
    }
    return *this;
}

bool VLException::operator==(const VLException& other) const
{
    return m_ErrorTime == other.m_ErrorTime && m_strErrorReason == other.m_strErrorReason &&
           m_strFileName == other.m_strFileName && m_strClassName == other.m_strClassName &&
           m_strMethodName == other.m_strMethodName && m_nLineNumber == other.m_nLineNumber &&
           m_nErrorId == other.m_nErrorId;
}

bool VLException::operator!=(const VLException& other) const
{
    return !(*this == other);
}

const char* VLException::what() const noexcept
{
    return "Unknown exception";
}

std::string VLException::GetExceptionAsciiText(VLExceptionTextFormat format,
                                               unsigned char level) const
{
    return GetExceptionWideText(format, level).toStdString();
}

QString VLException::GetExceptionWideText(VLExceptionTextFormat format, unsigned char level) const
{
    const auto time = [this] { return m_ErrorTime.toString(Qt::TextDate); };
    const auto line = [this] { return QString::number(m_nLineNumber); };

    switch (format) {
    case ExceptionTextReason:
        return m_strErrorReason;
    case ExceptionTextRecord:
        return QString(markOf(level) % u'@' % m_strErrorReason % u'@' % m_strFileName % u'@' %
                       line() % u'@' % m_strClassName % u'@' % m_strMethodName % u'@' % time());
    case ExceptionTextFull:
        return QString(headerOf(level) % QLatin1String(":\t") % time() % QLatin1String(":\t") %
                       m_strErrorReason % InFile % m_strFileName % InClass % m_strClassName %
                       InMethod % m_strMethodName % InLine % line() % u'\n');
    }
    return QStringLiteral("Unknown FormatMode Selected");
}

VLArgumentListException::VLArgumentListException() = default;

VLArgumentListException::VLArgumentListException(const QString&, const QString&, const QString&,
                                                 const QString&, unsigned int,
                                                 const std::vector<QString>&, unsigned long,
                                                 const QString&)
    : VLArgumentListException()
{
}

VLArgumentListException::VLArgumentListException(const VLArgumentListException&)
    : VLArgumentListException()
{
}

VLArgumentListException::~VLArgumentListException() = default;

VLArgumentListException& VLArgumentListException::operator=(const VLArgumentListException& other)
{
    VLException::operator=(other);
    return *this;
}

bool VLArgumentListException::operator==(const VLArgumentListException&) const
{
    return false;
}

bool VLArgumentListException::operator!=(const VLArgumentListException&) const
{
    return false;
}

QString VLArgumentListException::GetExceptionWideText(VLExceptionTextFormat, unsigned char) const
{
    return {};
}
