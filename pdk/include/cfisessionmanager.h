#ifndef CFISESSIONMANAGER_H
#define CFISESSIONMANAGER_H

#include <map>
#include <string>

#include <ace/Thread_Mutex.h>

#include "cfiexport.h"
#include "cfirefcount.h"
#include "cfisession.h"
#include "cfismartptr.h"
#include "cfitraceable.h"

namespace qorin_pdk_4_4 {

using CFiSessionPtr = CFiSmartPtr<CFiSession, CFiNullAllocator<CFiSession>>;

// The sessions of group operations, by session id. Sessions are never closed, and the
// manager outlives fini: it stays until the library is unloaded.
class QORIN_PDK_API CFiSessionManager : public virtual CFiRefCount, public virtual CFiTraceable {
public:
    CFiSessionManager();
    ~CFiSessionManager() override;

    // Empty for a null id; the first request for an id makes its session.
    virtual CFiSessionPtr getSession(const char *sessionId);

private:
    std::map<std::string, CFiSessionPtr> m_sessions;
    // Different sessions may be opened from different host threads at once.
    ACE_Thread_Mutex m_lock;
};

}  // namespace qorin_pdk_4_4

#endif
