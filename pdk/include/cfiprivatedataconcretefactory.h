#ifndef CFIPRIVATEDATACONCRETEFACTORY_H
#define CFIPRIVATEDATACONCRETEFACTORY_H

#include "cfiprivatedata.h"
#include "cfiprivatedatafactory.h"

namespace qorin_pdk_4_4 {

// The factory for one kind of private data: T is made with (identifier, isAltNode). Exported,
// so that the instantiation for the kit's own kind serves providers outside libtamlin.so.
template <class T>
class QORIN_PDK_API CFiPrivateDataConcreteFactory : public CFiPrivateDataFactory {
public:
    using CFiPrivateDataFactory::find;

    CFiPrivateDataPtr find(qrn_domain *node) override { return findInHandle(node); }
    CFiPrivateDataPtr create(qrn_domain *node, bool isAltNode) override
    {
        return createWith(node, isAltNode,
                          [](qorin_objid *id, bool alt) -> CFiPrivateData * { return new T(id, alt); });
    }
    int destroy(qrn_domain *node) override { return destroyNode(node); }
};

// The kit's own kind; a provider instantiates the template for its kind in its own sources.
extern template class QORIN_PDK_API CFiPrivateDataConcreteFactory<CFiPrivateData>;

}  // namespace qorin_pdk_4_4

#endif
