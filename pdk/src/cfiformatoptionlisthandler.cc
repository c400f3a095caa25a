#include "cfiformatoptionlisthandler.h"

namespace qorin_pdk_4_4 {

CFiFormatOptionListHandler::CFiFormatOptionListHandler() = default;

CFiFormatOptionListHandler::~CFiFormatOptionListHandler() = default;

}  // namespace qorin_pdk_4_4
