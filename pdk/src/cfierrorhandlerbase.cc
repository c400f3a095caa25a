#include "cfierrorhandlerbase.h"

namespace qorin_pdk_4_4 {

CFiErrorHandlerBase::~CFiErrorHandlerBase() = default;

int CFiErrorHandlerBase::handleText(char *, qrn_eseverity)
{
    return 0;
}

}  // namespace qorin_pdk_4_4
