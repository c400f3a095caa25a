#include "cfitracelogfunction.h"

namespace qorin_pdk_4_4 {

CFiTraceLogFunction::CFiTraceLogFunction(const CFiTraceLogPtr &log, const char *name) :
    m_log(log),
    m_name(name != nullptr ? name : ""),
    m_code(0)
{
    if (!m_log.isNull()) {
        m_log->trace(6, "Entering Function %s", m_name);
    }
}

CFiTraceLogFunction::~CFiTraceLogFunction()
{
    if (m_log.isNull()) {
        return;
    }
    if (m_code != 0) {
        m_log->trace(6, "Exiting Function %s [%d, %s]", m_name, m_code, m_text.c_str());
    } else {
        m_log->trace(6, "Exiting Function %s", m_name);
    }
}

void CFiTraceLogFunction::setResult(int code, const char *text)
{
    m_code = code;
    m_text = text != nullptr ? text : "";
}

}  // namespace qorin_pdk_4_4
