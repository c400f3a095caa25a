#ifndef CFITRACEABLE_H
#define CFITRACEABLE_H

#include <cstdarg>

#include "cfiexport.h"
#include "cfitracelog.h"

namespace qorin_pdk_4_4 {

// Base through which objects reach the trace log. Nothing is traced until a log is set.
class QORIN_PDK_API CFiTraceable {
public:
    CFiTraceable();
    virtual ~CFiTraceable();

    virtual void setTraceLog(const CFiTraceLogPtr &log);
    const CFiTraceLogPtr &getTraceLog() const { return m_traceLog; }

protected:
    // Traces through the log if one is set.
    void trace(int level, const char *format, ...) const __attribute__((format(printf, 3, 4)));

    CFiTraceLogPtr m_traceLog;
};

}  // namespace qorin_pdk_4_4

#endif
