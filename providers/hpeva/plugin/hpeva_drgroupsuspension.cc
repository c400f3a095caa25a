#include "hpeva_drgroupsuspension.h"

#include "cfistringtool.h"
#include "cfitracelogfunction.h"
#include "hpeva_cliexception.h"
#include "hpeva_messages.h"
#include "hpeva_process.h"

using namespace qorin_pdk_4_4;

namespace {

const char kSourceFile[] = "providers/hpeva/hpeva_drgroupsuspension";

}  // namespace

CHpEvaDrGroupSuspension::CHpEvaDrGroupSuspension(const CHpEvaCliTool *tool, const CFiErrorManagerPtr &errors) :
    m_tool(tool),
    m_errors(errors)
{
}

CHpEvaDrGroupSuspension::~CHpEvaDrGroupSuspension()
{
    // This may run while another exception unwinds the operation; a second one escaping here
    // would end the host's process. A group left suspended is told to the administrator, and
    // the exception in flight still reaches the operation's ladder.
    std::string reason;
    try {
        resume();
        return;
    } catch (const CHpEvaCliException &e) {
        reason = e.getErrorText();
    } catch (const std::exception &e) {
        reason = e.what();
    } catch (...) {
        reason = "unknown exception";
    }
    processTraceLog()->trace(1, "DR group [%s] could not be resumed: %s", m_group.c_str(), reason.c_str());
    pushMessage(m_errors, hpeva_msg::MSG_ERROR_DR_GROUP_RESUME_FAILED, QRN_SEVERITY_ERROR, kSourceFile, __LINE__,
                icu::Formattable(CFiStringTool::str2ustr(m_group)),
                icu::Formattable(CFiStringTool::tstr2ustr(m_cell.cellname)));
}

void CHpEvaDrGroupSuspension::suspend(const SHpEvaVdisk &disk, const std::string &group)
{
    CFiTraceLogFunction function(processTraceLog(), "CHpEvaDrGroupSuspension::suspend");
    m_group = group;
    m_cell = disk.cellPart();
    m_tool->suspendDrGroup(m_cell, m_group);
}

void CHpEvaDrGroupSuspension::resume()
{
    if (m_group.empty()) {
        return;
    }
    CFiTraceLogFunction function(processTraceLog(), "CHpEvaDrGroupSuspension::resume");
    m_tool->resumeDrGroup(m_cell, m_group);
    m_group.clear();
}
