#ifndef CFIERRORHANDLERBASE_H
#define CFIERRORHANDLERBASE_H

#include "cfiexport.h"
#include "cfimessage.h"

namespace qorin_pdk_4_4 {

// Receives every pushed message and every trace line that the error manager forwards.
class QORIN_PDK_API CFiErrorHandlerBase {
public:
    virtual ~CFiErrorHandlerBase();
    virtual int handleText(char *text, qrn_eseverity severity);
    virtual int handleMessage(CFiMessagePtr message) = 0;
};

}  // namespace qorin_pdk_4_4

#endif
