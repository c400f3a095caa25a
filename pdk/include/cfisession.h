#ifndef CFISESSION_H
#define CFISESSION_H

#include <map>
#include <string>
#include <vector>

#include "cfiexport.h"
#include "cfirefcount.h"
#include "qrn_records.h"
#include "sfisessionentry.h"

namespace qorin_pdk_4_4 {

// The nodes and targets of one group operation, keyed by node name. The host serialises
// calls on one session, so it holds no lock.
class QORIN_PDK_API CFiSession : public virtual CFiRefCount {
public:
    explicit CFiSession(const std::string &sessionId);
    ~CFiSession() override;

    const std::string &getSessionId() const { return m_sessionId; }
    void addNodes(qrn_splitnode **list, int count);
    std::vector<SFiSessionEntry> getPendingEntries() const;
    // 0, or 19 when the session has no entry of that name.
    int setTarget(const std::wstring &name, const std::wstring &target);
    // Marks each node made and hands the targets to the host: 0, or 5 when memory failed.
    int getTargets(qrn_splitnode **list, int count, qorin_objid ***out, int *outCount);

    // The name a node is known by in a session.
    static std::wstring nodeName(const qrn_domain *node);
    // An array of identifiers from qorin_alloc_buf, each from qorin_get_objid: 0, or 5.
    static int makeIdArray(const std::vector<std::wstring> &texts, uint32_t flags, qorin_objid ***out, int *outCount);

private:
    std::string m_sessionId;
    std::map<std::string, SFiSessionEntry> m_entries;
};

}  // namespace qorin_pdk_4_4

#endif
