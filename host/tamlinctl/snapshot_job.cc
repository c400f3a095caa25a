#include "snapshot_job.h"

#include <cstdlib>
#include <cstring>

#include "qorinutil.h"

namespace {

qorin_objid *objid(const std::wstring &text)
{
    return qorin_get_objid(text.c_str(), static_cast<uint32_t>((text.size() + 1) * sizeof(wchar_t)), 3);
}

void freeIds(qorin_objid **ids, int32_t count)
{
    for (int32_t i = 0; ids != nullptr && i < count; ++i) {
        free(ids[i]);
    }
    if (ids != nullptr) {
        qorin_free_buf(ids, static_cast<size_t>(count) * sizeof(qorin_objid *));
    }
}

}  // namespace

SnapshotJob::Node::Node()
{
    memset(&domain, 0, sizeof domain);
}

SnapshotJob::Node::~Node()
{
    free(domain.id);
}

SnapshotJob::SnapshotJob(const ProviderLibrary &library, const std::string &method, const std::string &sessionId) :
    m_library(library),
    m_method(method),
    m_sessionId(sessionId),
    m_methodText(method.begin(), method.end())
{
    m_methodText.push_back('\0');
}

SnapshotJob::~SnapshotJob()
{
    for (auto &disk : m_nodes) {
        if (disk->interposer.initialised) {
            m_library->deinit_node(&disk->interposer.domain);
        }
    }
    if (m_group && m_group->initialised) {
        m_library->deinit_node(&m_group->domain);
    }
}

int SnapshotJob::add(const std::wstring &udid)
{
    std::unique_ptr<Disk> disk(new Disk);
    disk->real.domain.id = objid(udid);
    qorin_objid *interposerId = nullptr;
    qorin_objid **groups = nullptr;
    int32_t groupCount = 0;
    if (disk->real.domain.id == nullptr ||
        m_library->interpose(&disk->real.domain, &interposerId, &groups, &groupCount) != QRN_INTERPOSED ||
        interposerId == nullptr) {
        free(interposerId);
        freeIds(groups, groupCount);
        return -1;
    }
    disk->interposer.domain.id = interposerId;
    const std::wstring groupName = std::wstring(m_method.begin(), m_method.end()) + L"_FIM_GROUP";
    for (int32_t i = 0; !m_group && i < groupCount; ++i) {
        if (groups[i] != nullptr && groups[i]->text != nullptr && groupName == groups[i]->text) {
            m_group.reset(new Node);
            m_group->domain.id = groups[i];
            groups[i] = nullptr;
        }
    }
    freeIds(groups, groupCount);
    // A group node comes before the nodes that refer to it.
    if (m_group && !m_group->initialised) {
        const int result = m_library->init_node(&m_group->domain, nullptr, 0, nullptr);
        if (result != 0) {
            return result;
        }
        m_group->initialised = true;
    }
    const int result = m_library->init_node(&disk->interposer.domain, nullptr, 0, nullptr);
    if (result != 0) {
        return result;
    }
    disk->interposer.initialised = true;
    // The split record the provider offers for the method, as a host takes it; a method the
    // provider doesn't offer gets one of the host's own.
    disk->split = {m_methodText.data(), &disk->interposer.domain, m_group ? &m_group->domain : nullptr};
    for (qrn_method_entry *entry = disk->interposer.domain.methods; entry != nullptr; entry = entry->next) {
        if (entry->split != nullptr && entry->split->method != nullptr && m_method == entry->split->method) {
            disk->split = *entry->split;
        }
    }
    m_nodes.push_back(std::move(disk));
    return 0;
}

std::vector<qrn_splitnode *> SnapshotJob::list()
{
    std::vector<qrn_splitnode *> nodes;
    for (auto &disk : m_nodes) {
        nodes.push_back(&disk->split);
    }
    return nodes;
}

int SnapshotJob::select()
{
    std::vector<qrn_splitnode *> nodes = list();
    return m_library->select(nullptr, &m_sessionId[0], nodes.data(), static_cast<int32_t>(nodes.size()));
}

int SnapshotJob::make(std::vector<std::wstring> &targets)
{
    targets.clear();
    std::vector<qrn_splitnode *> nodes = list();
    qorin_objid **out = nullptr;
    int32_t count = 0;
    const int result =
        m_library->make(nullptr, &m_sessionId[0], nodes.data(), static_cast<int32_t>(nodes.size()), &out, &count);
    if (result == 0) {
        for (int32_t i = 0; out != nullptr && i < count; ++i) {
            targets.push_back(out[i] != nullptr && out[i]->text != nullptr ? out[i]->text : L"");
        }
    }
    freeIds(out, count);
    return result;
}
