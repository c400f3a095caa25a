#include "cfihostnodelistfactory.h"

#include "qorinutil.h"

namespace qorin_pdk_4_4 {

CFiHostNodeListFactory::CFiHostNodeListFactory(qrn_host_node_list **out, int32_t *count) : CFiList(out, count) {}

CFiHostNodeListFactory::~CFiHostNodeListFactory() = default;

qrn_host_node_list *CFiHostNodeListFactory::buildNode(CFiHostNode &item)
{
    return qorin_build_host_list_node(item.getHostName().c_str(), item.getPorts(), item.getPortCount(),
                                      item.getEnclosureId().c_str());
}

}  // namespace qorin_pdk_4_4
