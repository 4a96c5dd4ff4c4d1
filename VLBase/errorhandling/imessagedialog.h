#pragma once

#include <VLBase/vlbase_export.h>

#include <QString>

class VLException;

// A macro of the Windows headers would rename the operation below for some of its users. Include
// those headers before this one, and call the Windows function by its full name.
#ifdef PostMessage
#undef PostMessage
#endif

/// How failures are shown to the user; implemented by a user interface and handed over to
/// `ErrorHandler::SetMessageDlg`.
///
/// "Show" operations are modal and return the user's choice, "Post" operations queue a dialog and
/// return at once. Both may be called from any thread. The meaning of the flags and of the number
/// is the implementation's own.
class VLBASE_EXPORT IMessageDialog
{
public:
    virtual ~IMessageDialog();

    virtual int ShowMessage(const QString& text, unsigned char level, bool b1, int n, bool b2,
                            bool b3) = 0;
    virtual int ShowException(const VLException& exception, unsigned char level, bool b1, int n,
                              bool b2, bool b3) = 0;
    /// Ends posted dialogs that are still open. Does nothing unless it is overridden.
    virtual void CloseAll();
    virtual void PostException(VLException& exception, unsigned char level, bool b1, int n,
                               bool b2) = 0;
    virtual void PostMessage(const QString& text, unsigned char level, bool b1, int n, bool b2) = 0;
};
