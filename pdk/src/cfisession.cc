#include "cfisession.h"

#include "cfistringtool.h"
#include "qorinutil.h"
#include "qrn_results.h"

namespace qorin_pdk_4_4 {

CFiSession::CFiSession(const std::string &sessionId) : m_sessionId(sessionId) {}

CFiSession::~CFiSession() = default;

std::wstring CFiSession::nodeName(const qrn_domain *node)
{
    if (node == nullptr) {
        return std::wstring();
    }
    if (node->id != nullptr && node->id->text != nullptr) {
        return node->id->text;
    }
    return node->name != nullptr ? std::wstring(node->name) : std::wstring();
}

void CFiSession::addNodes(qrn_splitnode **list, int count)
{
    for (int i = 0; list != nullptr && i < count; ++i) {
        if (list[i] == nullptr) {
            continue;
        }
        SFiSessionEntry entry;
        entry.nodeName = nodeName(list[i]->node);
        entry.method = list[i]->method != nullptr ? list[i]->method : "";
        m_entries[CFiStringTool::wstr2str(entry.nodeName)] = entry;
    }
}

std::vector<SFiSessionEntry> CFiSession::getPendingEntries() const
{
    std::vector<SFiSessionEntry> pending;
    for (const auto &kv : m_entries) {
        if (kv.second.done == 0) {
            pending.push_back(kv.second);
        }
    }
    return pending;
}

int CFiSession::setTarget(const std::wstring &name, const std::wstring &target)
{
    auto it = m_entries.find(CFiStringTool::wstr2str(name));
    if (it == m_entries.end()) {
        return QRN_ERR_NOT_IN_SESSION;
    }
    it->second.target = target;
    it->second.done = 1;
    return 0;
}

int CFiSession::getTargets(qrn_splitnode **list, int count, qorin_objid ***out, int *outCount)
{
    std::vector<std::wstring> targets;
    for (int i = 0; list != nullptr && i < count; ++i) {
        if (list[i] == nullptr) {
            continue;
        }
        if (list[i]->node != nullptr) {
            list[i]->node->flags |= QRN_NODE_MADE;
        }
        // A node that select never listed is answered with an empty target.
        targets.push_back(m_entries[CFiStringTool::wstr2str(nodeName(list[i]->node))].target);
    }
    return makeIdArray(targets, 1, out, outCount);
}

int CFiSession::makeIdArray(const std::vector<std::wstring> &texts, uint32_t flags, qorin_objid ***out, int *outCount)
{
    if (out == nullptr || outCount == nullptr) {
        return QRN_ERR_INVALID_ARGUMENT;
    }
    *out = nullptr;
    *outCount = static_cast<int>(texts.size());
    if (texts.empty()) {
        return 0;
    }
    size_t bytes = texts.size() * sizeof(qorin_objid *);
    auto **array = static_cast<qorin_objid **>(qorin_alloc_buf(bytes));
    if (array == nullptr) {
        return QRN_ERR_NO_MEMORY;
    }
    for (size_t i = 0; i < texts.size(); ++i) {
        auto size = static_cast<uint32_t>((texts[i].size() + 1) * sizeof(wchar_t));
        array[i] = qorin_get_objid(texts[i].c_str(), size, flags);
        if (array[i] == nullptr) {
            qorin_free_buf(array, bytes);
            *out = nullptr;
            return QRN_ERR_NO_MEMORY;
        }
    }
    *out = array;
    return 0;
}

}  // namespace qorin_pdk_4_4
