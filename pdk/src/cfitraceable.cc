#include "cfitraceable.h"

namespace qorin_pdk_4_4 {

CFiTraceable::CFiTraceable() = default;

CFiTraceable::~CFiTraceable() = default;

void CFiTraceable::setTraceLog(const CFiTraceLogPtr &log)
{
    m_traceLog = log;
}

void CFiTraceable::trace(int level, const char *format, ...) const
{
    if (m_traceLog.isNull()) {
        return;
    }
    va_list args;
    va_start(args, format);
    m_traceLog->vtrace(level, format, args);
    va_end(args);
}

}  // namespace qorin_pdk_4_4
