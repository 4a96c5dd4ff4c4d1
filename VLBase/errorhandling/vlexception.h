#pragma once

#include <VLBase/vlbase_export.h>

#include <QString>
#include <QTime>

#include <exception>
#include <string>
#include <vector>

/// The three renderings of a `VLException`.
enum VLExceptionTextFormat : int {
    ExceptionTextReason = 1, ///< the reason alone
    ExceptionTextRecord = 2, ///< one record with "@" between its fields, nothing escaped
    ExceptionTextFull = 3,   ///< one line for people, ends in a line feed
};

/// The exception of the library: what went wrong, where in the source, and at what time of day.
///
/// A plain value without locking. Thrown by value and caught by reference; what was caught is
/// reported with `IErrorHandler::ProtocolException`.
class VLBASE_EXPORT VLException : public std::exception
{
public:
    /// The error id of reports that come from the error handler itself, from the contract
    /// functions and from the library's files.
    static constexpr unsigned int NoErrorId = 0xFFFFFFFFU;

    /// Made now, with the texts "NO REASON", "NO FILENAME", "NO CLASSNAME" and "NO METHODNAME",
    /// line 0 and id 0.
    VLException();
    VLException(const QString& reason, const QString& fileName, const QString& className,
                const QString& methodName, unsigned int lineNumber, unsigned int errorId);
    /// The same from 8-bit texts, which are read as UTF-8. A null pointer is an empty text.
    VLException(const std::string& reason, const char* fileName, const char* className,
                const char* methodName, unsigned int lineNumber, unsigned int errorId);
    VLException(const VLException& other);
    ~VLException() override;

    VLException& operator=(const VLException& other);

    bool operator==(const VLException& other) const;
    bool operator!=(const VLException& other) const;

    /// Always "Unknown exception", with every compiler. The text is in `GetExceptionWideText`.
    const char* what() const noexcept override;

    /// `GetExceptionWideText` in UTF-8.
    virtual std::string GetExceptionAsciiText(VLExceptionTextFormat format,
                                              unsigned char level) const;
    /// Renders the exception.
    /// \param level 1 is an error, 255 an information, any other value a warning of that level
    /// \return the text; "Unknown FormatMode Selected" for any other format
    virtual QString GetExceptionWideText(VLExceptionTextFormat format, unsigned char level) const;

    const QTime& GetErrorTime() const { return m_ErrorTime; }
    const QString& GetErrorReason() const { return m_strErrorReason; }
    const QString& GetFileName() const { return m_strFileName; }
    const QString& ClassName() const { return m_strClassName; }
    const QString& GetMethodName() const { return m_strMethodName; }
    unsigned int GetLineNumber() const { return m_nLineNumber; }
    unsigned int GetErrorId() const { return m_nErrorId; }

    void SetErrorTime(const QTime& time) { m_ErrorTime = time; }
    void SetErrorReason(const QString& reason) { m_strErrorReason = reason; }
    void SetFileName(const QString& fileName) { m_strFileName = fileName; }
    void SetClassName(const QString& className) { m_strClassName = className; }
    void SetMethodName(const QString& methodName) { m_strMethodName = methodName; }
    void SetLineNumber(unsigned int lineNumber) { m_nLineNumber = lineNumber; }
    void SetErrorId(unsigned int errorId) { m_nErrorId = errorId; }

private:
    QTime m_ErrorTime; // null until a constructor or an assignment sets it
    QString m_strErrorReason;
    QString m_strFileName;
    QString m_strClassName;
    QString m_strMethodName;
    unsigned int m_nLineNumber = 0;
    unsigned int m_nErrorId = 0;
};

/// An exception that exists for its type only: it ignores every argument of its constructors,
/// equals nothing (not even itself) and renders as an empty text.
class VLBASE_EXPORT VLArgumentListException : public VLException
{
public:
    VLArgumentListException();
    VLArgumentListException(const QString& reason, const QString& fileName,
                            const QString& className, const QString& methodName,
                            unsigned int lineNumber, const std::vector<QString>& arguments,
                            unsigned long errorId, const QString& text);
    VLArgumentListException(const VLArgumentListException& other);
    ~VLArgumentListException() override;

    /// Assigns what belongs to `VLException`.
    VLArgumentListException& operator=(const VLArgumentListException& other);

    bool operator==(const VLArgumentListException& other) const;
    bool operator!=(const VLArgumentListException& other) const;

    QString GetExceptionWideText(VLExceptionTextFormat format, unsigned char level) const override;

private:
    std::vector<QString> m_Arguments;
    QString m_strText;
};
