#ifndef CFIPRIVATEDATAFACTORY_H
#define CFIPRIVATEDATAFACTORY_H

#include <map>
#include <string>
#include <vector>

#include "cfiexport.h"
#include "cfiprivatedata.h"
#include "cfirefcount.h"
#include "cfismartptr.h"
#include "cfitraceable.h"
#include "qrn_records.h"

namespace qorin_pdk_4_4 {

// Finds, makes and drops the private data of nodes. A node holds a heap cell with a smart
// pointer in its handle field; the maps hold one more reference per identifier text, so two
// nodes with the same identifier share one object. Ordinary and alternate nodes have maps
// of their own. No lock: the host serialises calls for one node.
class QORIN_PDK_API CFiPrivateDataFactory : public virtual CFiRefCount, public virtual CFiTraceable {
public:
    CFiPrivateDataFactory();
    ~CFiPrivateDataFactory() override;

    // The object in the node's handle; empty if it has none.
    virtual CFiPrivateDataPtr find(qrn_domain *node) = 0;
    // The node's object, made and registered if the identifier isn't known yet.
    virtual CFiPrivateDataPtr create(qrn_domain *node, bool isAltNode) = 0;
    // Drops the node's handle, and the map's entry when no one else holds the object.
    // -1 for a null node or one without a handle, else 0.
    virtual int destroy(qrn_domain *node) = 0;
    virtual CFiPrivateDataPtr find(const std::wstring &name, bool isAltNode);
    virtual std::vector<CFiPrivateDataPtr> getAll(bool isAltNode);

protected:
    using Map = std::map<std::string, CFiPrivateDataPtr>;

    Map &map(bool isAltNode) { return isAltNode ? m_altNodes : m_nodes; }
    static std::string keyOf(const qrn_domain *node);
    static CFiPrivateDataPtr *handleOf(const qrn_domain *node);

    CFiPrivateDataPtr findInHandle(qrn_domain *node);
    // make builds a new object for an identifier not seen before.
    template <class Make>
    CFiPrivateDataPtr createWith(qrn_domain *node, bool isAltNode, Make make)
    {
        if (node == nullptr) {
            return CFiPrivateDataPtr();
        }
        if (handleOf(node) == nullptr) {
            Map &objects = map(isAltNode);
            std::string key = keyOf(node);
            auto found = objects.find(key);
            if (found != objects.end()) {
                node->privateData = new CFiPrivateDataPtr(found->second);
            } else {
                CFiPrivateDataPtr object(make(node->id, isAltNode));
                object->setTraceLog(m_traceLog);
                node->privateData = new CFiPrivateDataPtr(object);
                objects[key] = object;
            }
        }
        return *handleOf(node);
    }
    int destroyNode(qrn_domain *node);

private:
    Map m_nodes;
    Map m_altNodes;
};

using CFiPrivateDataFactoryPtr = CFiSmartPtr<CFiPrivateDataFactory, CFiNullAllocator<CFiPrivateDataFactory>>;

}  // namespace qorin_pdk_4_4

#endif
