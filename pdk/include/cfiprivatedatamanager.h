#ifndef CFIPRIVATEDATAMANAGER_H
#define CFIPRIVATEDATAMANAGER_H

#include "cfiexport.h"
#include "cfiprivatedatafactory.h"
#include "cfirefcount.h"
#include "cfitraceable.h"

namespace qorin_pdk_4_4 {

// Registry of what the provider knows about each node between calls: holds the factory
// that makes the provider's kind of private data. Until a provider registers its own, the
// kit's plain kind is made.
class QORIN_PDK_API CFiPrivateDataManager : public virtual CFiRefCount, public virtual CFiTraceable {
public:
    CFiPrivateDataManager();
    ~CFiPrivateDataManager() override;

    CFiPrivateDataFactoryPtr getFactory() const { return m_activeFactory; }
    // Makes factory the active one and gives it this manager's trace log; the default
    // factory stays held.
    void registerFactory(const CFiPrivateDataFactoryPtr &factory);
    // Passes the log on to the active factory as well.
    void setTraceLog(const CFiTraceLogPtr &log) override;

private:
    CFiPrivateDataFactoryPtr m_defaultFactory;
    CFiPrivateDataFactoryPtr m_activeFactory;
};

}  // namespace qorin_pdk_4_4

#endif
