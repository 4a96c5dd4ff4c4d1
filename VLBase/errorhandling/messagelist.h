#pragma once

#include <VLBase/vlbase_export.h>

#include <memory>
#include <vector>

class Message;

/// What became of a message that was handed to a `MessageList`.
enum VLMsgListReturnType : int { MsgAdded = 1 };

/// The most recent messages, newest first, with a cursor for reading them.
///
/// Not locked. The list of the error handler is guarded by its quality mutex.
class VLBASE_EXPORT MessageList
{
public:
    /// An empty list for 100 messages.
    MessageList();
    /// \param maxNumber the number of messages that are kept; with 0 the list has no bound
    explicit MessageList(unsigned int maxNumber);
    virtual ~MessageList();

    /// Puts a message in front. A full list drops its oldest entry.
    VLMsgListReturnType AddMessage(std::shared_ptr<Message> message);

    /// Removes all messages and leaves the cursor where it is.
    /// \return true
    bool DeleteMessageList();

    /// The message under the cursor, or an empty pointer past the end.
    std::shared_ptr<Message> GetCurrentMessage() const;

    /// The cursor counts from the newest message. It has 8 bits: 0 comes after 255.
    unsigned char GetCurrentPosition() const { return m_nCurrentPosition; }
    void SetCurrentPosition(unsigned char position) { m_nCurrentPosition = position; }

    const std::vector<std::shared_ptr<Message>>& GetList() const { return m_List; }

    unsigned int GetMaxNumber() const { return m_nMaxNumber; }
    /// Sets the maximum and makes the list exactly that long: the oldest entries go, or empty
    /// pointers are appended.
    void SetMaxNumber(unsigned int maxNumber);

private:
    unsigned int m_nMaxNumber;
    std::vector<std::shared_ptr<Message>> m_List;
    unsigned char m_nCurrentPosition = 0;
};
