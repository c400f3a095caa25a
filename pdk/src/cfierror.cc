#include "cfierror.h"

#include "cfistringtool.h"
#include "vstring.h"

namespace qorin_pdk_4_4 {

CFiError::CFiError(int32_t code, const std::wstring &text, const std::wstring &file, int32_t line,
                   const std::wstring &function) :
    m_code(code),
    m_text(text),
    m_file(file),
    m_line(line),
    m_function(function)
{
}

CFiError::~CFiError() = default;

std::string CFiError::getMessageKey(std::string provider, int32_t indexOffset) const
{
    // Codes at or below the offset are the kit's own numbers and stay as they are.
    int64_t number = m_code > indexOffset ? static_cast<int64_t>(m_code) - indexOffset : m_code;
    char suffix[32];
    V_snprintf(suffix, sizeof suffix, "%04lld", static_cast<long long>(number));
    return "MSG_ERROR_" + CFiStringTool::tostrupper(provider) + "_" + suffix;
}

const wchar_t *CFiError::getText() const
{
    return m_text.c_str();
}

}  // namespace qorin_pdk_4_4
