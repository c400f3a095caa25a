// A node record as a host keeps it, with an identifier of its own; freed with the object.
#ifndef HOST_NODE_H
#define HOST_NODE_H

#include <cstdlib>
#include <cstring>
#include <string>

#include "qorinutil.h"
#include "qrn_records.h"

struct HostNode {
    explicit HostNode(const std::wstring &name, uint32_t type = 0) :
        id(qorin_get_objid(name.c_str(), static_cast<uint32_t>((name.size() + 1) * sizeof(wchar_t)), 3))
    {
        memset(&domain, 0, sizeof domain);
        domain.id = id;
        domain.type = type;
        domain.capability = &capability;
    }
    ~HostNode() { free(id); }
    HostNode(const HostNode &) = delete;
    HostNode &operator=(const HostNode &) = delete;

    qorin_objid *id;
    qrn_domain domain;
    uint32_t capability = 0;
};

#endif
