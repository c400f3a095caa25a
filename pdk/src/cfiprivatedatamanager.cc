#include "cfiprivatedatamanager.h"

#include "cfiprivatedataconcretefactory.h"

namespace qorin_pdk_4_4 {

CFiPrivateDataManager::CFiPrivateDataManager() :
    m_defaultFactory(new CFiPrivateDataConcreteFactory<CFiPrivateData>),
    m_activeFactory(m_defaultFactory)
{
}

CFiPrivateDataManager::~CFiPrivateDataManager() = default;

void CFiPrivateDataManager::registerFactory(const CFiPrivateDataFactoryPtr &factory)
{
    if (factory.isNull()) {
        return;
    }
    m_activeFactory = factory;
    m_activeFactory->setTraceLog(m_traceLog);
}

void CFiPrivateDataManager::setTraceLog(const CFiTraceLogPtr &log)
{
    CFiTraceable::setTraceLog(log);
    if (!m_activeFactory.isNull()) {
        m_activeFactory->setTraceLog(log);
    }
}

}  // namespace qorin_pdk_4_4
