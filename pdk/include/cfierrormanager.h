#ifndef CFIERRORMANAGER_H
#define CFIERRORMANAGER_H

#include <map>
#include <vector>

#include <ace/OS_NS_Thread.h>
#include <ace/Thread_Mutex.h>

#include "cfierrorhandlerbase.h"
#include "cfiexport.h"
#include "cfimessage.h"
#include "cfirefcount.h"

namespace qorin_pdk_4_4 {

// One error slot per thread (a new error replaces the old one) and the ordered list of
// handlers that every pushed message and trace line is handed to. Handlers are not owned.
class QORIN_PDK_API CFiErrorManager : public virtual CFiRefCount {
public:
    CFiErrorManager();
    ~CFiErrorManager() override;

    void registerHandler(CFiErrorHandlerBase *handler);
    // Forgets handler, which its owner may then destroy once no push is under way.
    void unregisterHandler(CFiErrorHandlerBase *handler);
    void pushError(CFiMessagePtr message);
    void pushError(char *text, qrn_eseverity severity);
    // Null if the calling thread has no message.
    const qrn_msg_info *getLastError();
    void deleteLastError(qrn_msg_info **ignored);

private:
    CFiMessagePtr slotOfThisThread();
    std::vector<CFiErrorHandlerBase *> handlersCopy();

    std::map<ACE_thread_t, CFiMessagePtr> m_slots;
    std::vector<CFiErrorHandlerBase *> m_handlers;
    // Host threads insert slots concurrently; the lock covers the containers only, never a
    // handler call.
    ACE_Thread_Mutex m_lock;
};

}  // namespace qorin_pdk_4_4

#endif
