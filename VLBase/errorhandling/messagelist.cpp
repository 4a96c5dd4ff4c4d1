#include "messagelist.h"

#include <VLBase/errorhandling/message.h>

#include <utility>

MessageList::MessageList()
    : MessageList(100)
{
}

MessageList::MessageList(unsigned int maxNumber)
    : m_nMaxNumber(maxNumber)
{
}

MessageList::~MessageList() = default;

VLMsgListReturnType MessageList::AddMessage(std::shared_ptr<Message> message)
{
    if (!m_List.empty() && m_List.size() == m_nMaxNumber)
        m_List.pop_back();
    m_List.insert(m_List.begin(), std::move(message));
    return MsgAdded;
}

bool MessageList::DeleteMessageList()
{
    m_List.clear();
    return true;
}

std::shared_ptr<Message> MessageList::GetCurrentMessage() const
{
    return m_nCurrentPosition < m_List.size() ? m_List[m_nCurrentPosition] : nullptr;
}

void MessageList::SetMaxNumber(unsigned int maxNumber)
{
    m_nMaxNumber = maxNumber;
    m_List.resize(maxNumber);
}
