#include "cfiprivatedataconcretefactory.h"

namespace qorin_pdk_4_4 {

template class CFiPrivateDataConcreteFactory<CFiPrivateData>;

}  // namespace qorin_pdk_4_4
