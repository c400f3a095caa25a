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
        pushMessage(m_errors, "MSG_ERROR_UNHANDLED_EXEC_PIPE_EXCEPTION",
                    {text(std::string(e.getCodeName())), text(e.getCommand()), file, line}, 3, m_file, m_line);
    } catch (const CHpEvaCliException &e) {
        return e.report(m_errors);
    } catch (const CFiError &e) {
        pushMessage(m_errors, "MSG_ERROR_UNHANDLED_FIERROR_EXCEPTION",
                    {text(std::wstring(e.getText())), text(e.getFunction()), file, line}, 3, m_file, m_line);
    } catch (const CFiUdidException &e) {
        pushMessage(m_errors, "MSG_ERROR_UDID_PARSING_EXCEPTION", {text(e.getText()), icu::Formattable(e.getNumber())},
                    3, m_file, m_line);
    } catch (const std::runtime_error &e) {
        pushMessage(m_errors, "MSG_ERROR_UNHANDLED_RUNTIME_EXCEPTION",
                    {text(std::string("std::runtime_error")), text(std::string(e.what())), file, line}, 3, m_file,
                    m_line);
    } catch (int value) {
        pushMessage(m_errors, "MSG_ERROR_UNHANDLED_INT_EXCEPTION",
                    {icu::Formattable(static_cast<int32_t>(value)), file, line}, 3, m_file, m_line);
    }
    return unhandled();
}

int CHpEvaGuard::unhandled() const
{
    if (m_initialisation) {
        pushMessage(m_errors, "MSG_ERROR_INITIALIZATION_FAILED", {}, 2, m_file, m_line);
        return 30;
    }
    if (!m_log.isNull()) {
        try {
            m_log->trace(1, "%s(): Unhandled execption encountered, exiting the function", m_operation);
        } catch (...) {
            // As with messages: tracing never changes the result.
        }
    }
    return 6;
}
