#ifndef CFINODELISTFACTORY_H
#define CFINODELISTFACTORY_H

#include <cstdint>

#include "cfiexport.h"
#include "cfilist.h"
#include "cfinode.h"
#include "qrn_records.h"

namespace qorin_pdk_4_4 {

// The node list; count, if given, grows with each element.
class QORIN_PDK_API CFiNodeListFactory : public CFiList<qrn_node_list, CFiNode> {
public:
    CFiNodeListFactory(qrn_node_list **out, int32_t *count);
    ~CFiNodeListFactory() override;

    qrn_node_list *buildNode(CFiNode &item) override;
};

}  // namespace qorin_pdk_4_4

#endif
