#ifndef CFITRACELOGFUNCTION_H
#define CFITRACELOGFUNCTION_H

#include <string>

#include "cfiexport.h"
#include "cfitracelog.h"

namespace qorin_pdk_4_4 {

// Writes the entry and exit lines of a function at level 6. The name must have static
// lifetime: it is not copied.
class QORIN_PDK_API CFiTraceLogFunction {
public:
    CFiTraceLogFunction(const CFiTraceLogPtr &log, const char *name);
    virtual ~CFiTraceLogFunction();

    // A non-zero code makes the exit line carry code and text.
    void setResult(int code, const char *text);

    CFiTraceLogFunction(const CFiTraceLogFunction &) = delete;
    CFiTraceLogFunction &operator=(const CFiTraceLogFunction &) = delete;

private:
    CFiTraceLogPtr m_log;
    const char *m_name;
    int m_code;
    std::string m_text;
};

}  // namespace qorin_pdk_4_4

#endif
