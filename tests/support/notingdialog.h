#pragma once

#include <VLBase/errorhandling/imessagedialog.h>
#include <VLBase/errorhandling/vlexception.h>

#include <QString>
#include <QStringList>

#include <functional>
#include <utility>

/// Notes every call as "Operation(text,level,flags,number)", an exception with all its fields but
/// the time, and answers 7.
class NotingDialog : public IMessageDialog
{
public:
    using Note = std::function<void(const QString&)>;

    explicit NotingDialog(Note note)
        : m_note(std::move(note))
    {
    }

    int ShowMessage(const QString& text, unsigned char level, bool b1, int n, bool b2,
                    bool b3) override
    {
        note(u"ShowMessage", text, level, {b1, b2, b3}, n);
        return 7;
    }
    int ShowException(const VLException& exception, unsigned char level, bool b1, int n, bool b2,
                      bool b3) override
    {
        note(u"ShowException", textOf(exception), level, {b1, b2, b3}, n);
        return 7;
    }
    void PostException(VLException& exception, unsigned char level, bool b1, int n,
                       bool b2) override
    {
        note(u"PostException", textOf(exception), level, {b1, b2}, n);
    }
    void PostMessage(const QString& text, unsigned char level, bool b1, int n, bool b2) override
    {
        note(u"PostMessage", text, level, {b1, b2}, n);
    }

private:
    static QString textOf(const VLException& e)
    {
        return QStringList{e.GetErrorReason(),
                           e.GetFileName(),
                           e.ClassName(),
                           e.GetMethodName(),
                           QString::number(e.GetLineNumber()),
                           QString::number(e.GetErrorId())}
            .join(u'@');
    }
    void note(QStringView operation, const QString& text, int level,
              std::initializer_list<bool> flags, int n)
    {
        QString digits;
        for (const bool flag : flags)
            digits += flag ? u'1' : u'0';
        m_note(
            QStringLiteral("%1(%2,%3,%4,%5)").arg(operation, text).arg(level).arg(digits).arg(n));
    }

    Note m_note;
};
