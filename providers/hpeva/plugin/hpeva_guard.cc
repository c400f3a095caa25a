#include "hpeva_guard.h"

#include <stdexcept>

#include "cfierror.h"
#include "cfistringtool.h"
#include "cfiudidexception.h"
#include "efiexecpipe.h"
#include "hpeva_cliexception.h"
#include "hpeva_messages.h"

using namespace qorin_pdk_4_4;

namespace {

icu::Formattable text(const std::string &utf8)
{
    return icu::Formattable(CFiStringTool::str2ustr(utf8));
}

icu::Formattable text(const std::wstring &wide)
{
    return icu::Formattable(CFiStringTool::tstr2ustr(wide));
}

}  // namespace

CHpEvaGuard::CHpEvaGuard(const CFiErrorManagerPtr &errors, const CFiTraceLogPtr &log, const char *operation,
                         const char *file, int line, bool initialisation) :
    m_errors(errors),
    m_log(log),
    m_operation(operation != nullptr ? operation : ""),
    m_file(file != nullptr ? file : ""),
    m_line(line),
    m_initialisation(initialisation)
{
}

int CHpEvaGuard::ladder() const
{
    const icu::Formattable file = text(std::string(m_file));
    const icu::Formattable line(static_cast<int32_t>(m_line));
    // Rows in this order: exec pipe, SSSU layer (answers with its report's result and
    // nothing else), CFiError, UDID parsing, runtime_error, int. A more derived type must
    // stay above its base.
    try {
        throw;
    } catch (const EFiExecPipe &e) {
        pushMessage(m_errors, hpeva_msg::MSG_ERROR_UNHANDLED_EXEC_PIPE_EXCEPTION, QRN_SEVERITY_ERROR, m_file, m_line,
                    text(std::string(e.getCodeName())), text(e.getCommand()), file, line);
    } catch (const CHpEvaCliException &e) {
        return e.report(m_errors);
    } catch (const CFiError &e) {
        pushMessage(m_errors, hpeva_msg::MSG_ERROR_UNHANDLED_FIERROR_EXCEPTION, QRN_SEVERITY_ERROR, m_file, m_line,
                    text(std::wstring(e.getText())), text(e.getFunction()), file, line);
    } catch (const CFiUdidException &e) {
        pushMessage(m_errors, hpeva_msg::MSG_ERROR_UDID_PARSING_EXCEPTION, QRN_SEVERITY_ERROR, m_file, m_line,
                    text(e.getText()), icu::Formattable(e.getNumber()));
    } catch (const std::runtime_error &e) {
        pushMessage(m_errors, hpeva_msg::MSG_ERROR_UNHANDLED_RUNTIME_EXCEPTION, QRN_SEVERITY_ERROR, m_file, m_line,
                    text(std::string("std::runtime_error")), text(std::string(e.what())), file, line);
    } catch (int value) {
        pushMessage(m_errors, hpeva_msg::MSG_ERROR_UNHANDLED_INT_EXCEPTION, QRN_SEVERITY_ERROR, m_file, m_line,
                    icu::Formattable(static_cast<int32_t>(value)), file, line);
    }
    return unhandled();
}

int CHpEvaGuard::unhandled() const
{
    if (m_initialisation) {
        pushMessage(m_errors, hpeva_msg::MSG_ERROR_INITIALIZATION_FAILED, QRN_SEVERITY_WARNING, m_file, m_line);
        return QRN_ERR_INIT_FAILED;
    }
    if (!m_log.isNull()) {
        try {
            m_log->trace(1, "%s(): Unhandled execption encountered, exiting the function", m_operation);
        } catch (...) {
            // As with messages: tracing never changes the result.
        }
    }
    return QRN_ERR_FAILED;
}
