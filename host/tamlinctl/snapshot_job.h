// A snapshot group as a backup host runs it against the provider: each disk's node interposed
// and initialised with its method's group node, select and make on one session, the targets
// read out, every node taken away again at the end.
#ifndef SNAPSHOT_JOB_H
#define SNAPSHOT_JOB_H

#include <memory>
#include <string>
#include <vector>

#include "provider_library.h"
#include "qrn_records.h"

class SnapshotJob {
public:
    // The library must be initialised and outlive the job.
    SnapshotJob(const ProviderLibrary &library, const std::string &method, const std::string &sessionId);
    ~SnapshotJob();

    // Introduces the disk of udid: interpose, then init_node of the method's group node (once)
    // and of the interposer node. 0, the provider's result of a failed init_node, or -1 when
    // the provider doesn't interpose the disk.
    int add(const std::wstring &udid);
    // select on the list of every disk added, in order: the entry's result.
    int select();
    // make on the same session and list: the entry's result; on 0, targets holds one UDID per
    // disk added, in order (empty for a node the session doesn't know).
    int make(std::vector<std::wstring> &targets);

    const std::string &method() const { return m_method; }
    const std::string &sessionId() const { return m_sessionId; }
    size_t size() const { return m_nodes.size(); }

    SnapshotJob(const SnapshotJob &) = delete;
    SnapshotJob &operator=(const SnapshotJob &) = delete;

private:
    // One node record as the host keeps it, freed with the job.
    struct Node {
        qrn_domain domain;
        bool initialised = false;
        Node();
        ~Node();
    };
    struct Disk {
        Node real;
        Node interposer;
        qrn_splitnode split{};
    };

    std::vector<qrn_splitnode *> list();

    const ProviderLibrary &m_library;
    std::string m_method;
    std::string m_sessionId;
    std::vector<char> m_methodText;
    std::unique_ptr<Node> m_group;
    std::vector<std::unique_ptr<Disk>> m_nodes;
};

#endif
