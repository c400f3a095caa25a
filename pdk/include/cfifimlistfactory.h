#ifndef CFIFIMLISTFACTORY_H
#define CFIFIMLISTFACTORY_H

#include <string>

#include "cfiexport.h"
#include "cfifim.h"
#include "cfilist.h"
#include "qrn_records.h"

namespace qorin_pdk_4_4 {

// The list of snapshot methods, each stamped with the provider's name.
class QORIN_PDK_API CFiFimListFactory : public CFiList<qrn_fim_list, CFiFim> {
public:
    CFiFimListFactory(const std::wstring &providerName, qrn_fim_list **out);
    ~CFiFimListFactory() override;

    qrn_fim_list *buildNode(CFiFim &item) override;

private:
    std::wstring m_providerName;
};

}  // namespace qorin_pdk_4_4

#endif
