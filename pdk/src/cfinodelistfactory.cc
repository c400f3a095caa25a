#include "cfinodelistfactory.h"

#include <cstdlib>

#include "qorinutil.h"

namespace qorin_pdk_4_4 {

CFiNodeListFactory::CFiNodeListFactory(qrn_node_list **out, int32_t *count) : CFiList(out, count) {}

CFiNodeListFactory::~CFiNodeListFactory() = default;

qrn_node_list *CFiNodeListFactory::buildNode(CFiNode &item)
{
    const qrn_node_name *name = item.nameBlock();
    qrn_node_list *record = qorin_build_nodelist_node(name, item.words(), item.getProvider().c_str());
    if (record == nullptr) {
        // The builder takes the identifier over only when it makes a record.
        free(name->id);
    }
    return record;
}

}  // namespace qorin_pdk_4_4
