#ifndef CFIOBJCTLARGS_H
#define CFIOBJCTLARGS_H

#include <string>
#include <vector>

#include "cfiexport.h"

namespace qorin_pdk_4_4 {

struct SFiObjctlArg {
    std::wstring name;
    std::wstring value;
    std::wstring type;
};

// The argument text of an object control call: inputs parsed from the host's text,
// outputs written back. The text is cut at blanks, so values can hold none.
class QORIN_PDK_API CFiObjctlArgs {
public:
    explicit CFiObjctlArgs(const wchar_t *xml);

    std::wstring toXml() const;

    const std::vector<SFiObjctlArg> &inputs() const { return m_inputs; }
    const std::vector<SFiObjctlArg> &outputs() const { return m_outputs; }
    void addOutput(const SFiObjctlArg &arg) { m_outputs.push_back(arg); }

private:
    std::vector<SFiObjctlArg> m_inputs;
    std::vector<SFiObjctlArg> m_outputs;
};

}  // namespace qorin_pdk_4_4

#endif
