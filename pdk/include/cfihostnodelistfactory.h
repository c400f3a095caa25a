#ifndef CFIHOSTNODELISTFACTORY_H
#define CFIHOSTNODELISTFACTORY_H

#include <cstdint>

#include "cfiexport.h"
#include "cfihostnode.h"
#include "cfilist.h"
#include "qrn_records.h"

namespace qorin_pdk_4_4 {

// The host list; count, if given, grows with each element.
class QORIN_PDK_API CFiHostNodeListFactory : public CFiList<qrn_host_node_list, CFiHostNode> {
public:
    CFiHostNodeListFactory(qrn_host_node_list **out, int32_t *count);
    ~CFiHostNodeListFactory() override;

    qrn_host_node_list *buildNode(CFiHostNode &item) override;
};

}  // namespace qorin_pdk_4_4

#endif
