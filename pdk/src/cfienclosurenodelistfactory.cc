#include "cfienclosurenodelistfactory.h"

#include "qorinutil.h"

namespace qorin_pdk_4_4 {

CFiEnclosureNodeListFactory::CFiEnclosureNodeListFactory(qrn_enclosure_node_list **out, int32_t *count) :
    CFiList(out, count)
{
}

CFiEnclosureNodeListFactory::~CFiEnclosureNodeListFactory() = default;

qrn_enclosure_node_list *CFiEnclosureNodeListFactory::buildNode(CFiEnclosureNode &item)
{
    return qorin_build_enclosure_list_node(
        item.getName().c_str(), item.getProvider().c_str(), item.getEnclosureId().c_str(), item.getVendor().c_str(),
        item.getProduct().c_str(), item.getAvailable(), item.getTotal(), item.getLastWord());
}

}  // namespace qorin_pdk_4_4
