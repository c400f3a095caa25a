#include "cficonfigparamdatalisthandler.h"

namespace qorin_pdk_4_4 {

CFiConfigParamDataListHandler::CFiConfigParamDataListHandler() = default;

CFiConfigParamDataListHandler::~CFiConfigParamDataListHandler() = default;

}  // namespace qorin_pdk_4_4
