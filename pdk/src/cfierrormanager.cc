#include "cfierrormanager.h"

#include <algorithm>

#include <ace/Guard_T.h>

namespace qorin_pdk_4_4 {

CFiErrorManager::CFiErrorManager() = default;

CFiErrorManager::~CFiErrorManager() = default;

void CFiErrorManager::registerHandler(CFiErrorHandlerBase *handler)
{
    ACE_Guard<ACE_Thread_Mutex> guard(m_lock);
    m_handlers.push_back(handler);
}

void CFiErrorManager::unregisterHandler(CFiErrorHandlerBase *handler)
{
    ACE_Guard<ACE_Thread_Mutex> guard(m_lock);
    m_handlers.erase(std::remove(m_handlers.begin(), m_handlers.end(), handler), m_handlers.end());
}

std::vector<CFiErrorHandlerBase *> CFiErrorManager::handlersCopy()
{
    ACE_Guard<ACE_Thread_Mutex> guard(m_lock);
    return m_handlers;
}

void CFiErrorManager::pushError(CFiMessagePtr message)
{
    {
        ACE_Guard<ACE_Thread_Mutex> guard(m_lock);
        m_slots[ACE_OS::thr_self()] = message;
    }
    for (CFiErrorHandlerBase *handler : handlersCopy()) {
        if (handler != nullptr) {
            handler->handleMessage(message);
        }
    }
}

void CFiErrorManager::pushError(char *text, qrn_eseverity severity)
{
    for (CFiErrorHandlerBase *handler : handlersCopy()) {
        if (handler != nullptr) {
            handler->handleText(text, severity);
        }
    }
}

CFiMessagePtr CFiErrorManager::slotOfThisThread()
{
    ACE_Guard<ACE_Thread_Mutex> guard(m_lock);
    auto it = m_slots.find(ACE_OS::thr_self());
    return it != m_slots.end() ? it->second : CFiMessagePtr();
}

const qrn_msg_info *CFiErrorManager::getLastError()
{
    // Only the owning thread reads or replaces its slot, so the message stays alive while
    // the caller reads the text.
    CFiMessagePtr message = slotOfThisThread();
    return message.isNull() ? nullptr : message->serialize();
}

void CFiErrorManager::deleteLastError(qrn_msg_info **)
{
    CFiMessagePtr old;
    {
        ACE_Guard<ACE_Thread_Mutex> guard(m_lock);
        auto it = m_slots.find(ACE_OS::thr_self());
        if (it == m_slots.end()) {
            return;
        }
        old = it->second;
        it->second = CFiMessagePtr();
    }
}

}  // namespace qorin_pdk_4_4
