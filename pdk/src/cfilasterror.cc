#include "cfilasterror.h"

namespace qorin_pdk_4_4 {

CFiLastError::CFiLastError() : m_lastError(0, std::wstring(), std::wstring(), 0, std::wstring()) {}

CFiLastError::~CFiLastError() = default;

}  // namespace qorin_pdk_4_4
