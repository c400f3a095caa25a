#include "cfiprivatedatamanager.h"

namespace qorin_pdk_4_4 {

CFiPrivateDataManager::CFiPrivateDataManager() = default;

CFiPrivateDataManager::~CFiPrivateDataManager() = default;

}  // namespace qorin_pdk_4_4
