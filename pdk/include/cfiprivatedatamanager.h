#ifndef CFIPRIVATEDATAMANAGER_H
#define CFIPRIVATEDATAMANAGER_H

#include "cfiexport.h"
#include "cfirefcount.h"
#include "cfitraceable.h"

namespace qorin_pdk_4_4 {

// Registry of what the provider knows about each node between calls.
class QORIN_PDK_API CFiPrivateDataManager : public virtual CFiRefCount, public virtual CFiTraceable {
public:
    CFiPrivateDataManager();
    ~CFiPrivateDataManager() override;
};

}  // namespace qorin_pdk_4_4

#endif
