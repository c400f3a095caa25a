#ifndef CFILASTERROR_H
#define CFILASTERROR_H

#include "cfierror.h"
#include "cfiexport.h"

namespace qorin_pdk_4_4 {

// Mix-in for classes that record an error instead of throwing it; callers read the result
// of the operation and then the recorded error.
class QORIN_PDK_API CFiLastError {
public:
    CFiLastError();
    virtual ~CFiLastError();

    void setLastError(const CFiError &error) { m_lastError = error; }
    const CFiError &getLastError() const { return m_lastError; }

protected:
    CFiError m_lastError;
};

}  // namespace qorin_pdk_4_4

#endif
