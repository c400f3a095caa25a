#ifndef CFIENCLOSURENODELISTFACTORY_H
#define CFIENCLOSURENODELISTFACTORY_H

#include <cstdint>

#include "cfienclosurenode.h"
#include "cfiexport.h"
#include "cfilist.h"
#include "qrn_records.h"

namespace qorin_pdk_4_4 {

// The enclosure list; count, if given, grows with each element.
class QORIN_PDK_API CFiEnclosureNodeListFactory : public CFiList<qrn_enclosure_node_list, CFiEnclosureNode> {
public:
    CFiEnclosureNodeListFactory(qrn_enclosure_node_list **out, int32_t *count);
    ~CFiEnclosureNodeListFactory() override;

    qrn_enclosure_node_list *buildNode(CFiEnclosureNode &item) override;
};

}  // namespace qorin_pdk_4_4

#endif
