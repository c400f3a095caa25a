#include "cfisessionmanager.h"

#include <ace/Guard_T.h>

namespace qorin_pdk_4_4 {

CFiSessionManager::CFiSessionManager() = default;

CFiSessionManager::~CFiSessionManager() = default;

CFiSessionPtr CFiSessionManager::getSession(const char *sessionId)
{
    if (sessionId == nullptr) {
        return CFiSessionPtr();
    }
    ACE_Guard<ACE_Thread_Mutex> guard(m_lock);
    CFiSessionPtr &slot = m_sessions[sessionId];
    if (slot.isNull()) {
        slot = new CFiSession(sessionId);
    }
    return slot;
}

}  // namespace qorin_pdk_4_4
