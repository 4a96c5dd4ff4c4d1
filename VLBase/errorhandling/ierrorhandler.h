#pragma once

#include <VLBase/vlbase_export.h>

#include <QString>

class VLException;

/// Where failures, warnings and traces are reported: `ErrorHandler::Interface()`.
///
/// A level of 1 is an error, 255 an information, any other value a warning of that level.
class VLBASE_EXPORT IErrorHandler
{
public:
    virtual ~IErrorHandler();

    /// Reports a text; it is recorded later, in the thread of the handler. From any thread.
    virtual void ProtocolMessage(QString text, QString fileName, QString className,
                                 QString methodName, unsigned short line, unsigned char level) = 0;

    /// Closes the text log file.
    virtual void TurnLogFileOff() = 0;
    /// Opens the text log file, "Logger.txt" in the temporary directory, unless it is open. On
    /// Linux, where that is a link or somebody else's, it is "Logger.<uid>.txt" beside it.
    virtual void TurnLogFileOn() = 0;

    /// Shows an error and waits for the user's answer.
    /// \return the answer of the installed dialog, or -2 when none is installed
    virtual int ShowErrorDialog(const VLException& exception, bool b1, int n, bool b2, bool b3) = 0;
    virtual int ShowErrorDialog(const QString& text, bool b1, int n, bool b2, bool b3) = 0;

    /// Shows an error without waiting; nothing happens when no dialog is installed.
    virtual void PostErrorDialog(VLException& exception, bool b1, int n, bool b2) = 0;
    virtual void PostErrorDialog(const QString& text, bool b1, int n, bool b2) = 0;

    /// Records an exception as an error, at once and in the calling thread. From any thread.
    virtual void ProtocolException(const VLException& exception) = 0;

    /// Starts reading the recorded messages, newest first.
    /// \param[out] atEnd whether there is nothing to read
    /// \param level 0 reads all; any other value reads messages of at most that level
    virtual void InitGetNextMessage(bool& atEnd, unsigned char level) = 0;
    /// The next message, or an empty text with `atEnd` set.
    virtual QString GetNextMessage(bool& atEnd) = 0;

    /// Replaces the message mask. The handler itself filters nothing with it; bit 32 enables
    /// traces and is tested by those who write them.
    virtual void SetMessageMask(unsigned int mask) = 0;
    virtual unsigned int GetMessageMask() const = 0;

    /// Shows a warning and waits until the user has seen it.
    virtual void ShowWarningDialog(QString text) = 0;

protected:
    /// While set, reports are dropped.
    virtual void SetbBlockException(bool block) = 0;
};

/// The two services of the error handler for clients that know nothing else of it.
class VLBASE_EXPORT IErrorHandlerBase
{
public:
    virtual ~IErrorHandlerBase();

    /// The same as `IErrorHandler::ProtocolMessage`.
    virtual void trace(QString text, QString fileName, QString className, QString methodName,
                       unsigned short line, unsigned char level) = 0;
    /// The same as `IErrorHandler::PostErrorDialog`.
    virtual void errorDialog(QString text, bool b1, int n, bool b2) = 0;
};
