#ifndef CFIERROR_H
#define CFIERROR_H

#include <cstdint>
#include <string>

#include "cfiexport.h"

namespace qorin_pdk_4_4 {

// The kit's exception: an error code, a text and the source position that raised it.
class QORIN_PDK_API CFiError {
public:
    CFiError(int32_t code, const std::wstring &text, const std::wstring &file, int32_t line,
             const std::wstring &function);
    virtual ~CFiError();

    // "MSG_ERROR_<PROVIDER>_<code as %04d>"; a code above indexOffset is first reduced by it.
    virtual std::string getMessageKey(std::string provider, int32_t indexOffset) const;
    virtual const wchar_t *getText() const;

    int32_t getCode() const { return m_code; }
    const std::wstring &getFile() const { return m_file; }
    int32_t getLine() const { return m_line; }
    const std::wstring &getFunction() const { return m_function; }

private:
    int32_t m_code;
    std::wstring m_text;
    std::wstring m_file;
    int32_t m_line;
    std::wstring m_function;
};

}  // namespace qorin_pdk_4_4

#endif
