#ifndef CFICONFIGPARAMINFOLIST_H
#define CFICONFIGPARAMINFOLIST_H

#include <map>
#include <string>

#include "cficonfigparamdatalist.h"
#include "cficonfigparaminfo.h"
#include "cfiexport.h"
#include "cfirefcount.h"
#include "sfixmlparseerror.h"

namespace qorin_pdk_4_4 {

// The parameters a provider describes to the host, sorted by key, with their
// "ConfigParamList" document. Every change rewrites the document text; a parse that fails
// changes no parameter but leaves the refused text as the document until updateXML.
class QORIN_PDK_API CFiConfigParamInfoList : public virtual CFiRefCount {
public:
    static constexpr const char *LIST_ELEMENT = "ConfigParamList";

    // No document text until the first change or parse.
    CFiConfigParamInfoList();
    CFiConfigParamInfoList(const CFiConfigParamInfoList &other);
    explicit CFiConfigParamInfoList(const wchar_t *xml);
    CFiConfigParamInfoList &operator=(const CFiConfigParamInfoList &other);
    ~CFiConfigParamInfoList() override;

    // 0, or 3 when the text can't be read (getParseError() says why). The document text
    // becomes xml in both cases; on success it is at once rewritten in the canonical form.
    int parse(const wchar_t *xml);
    const wchar_t *getXML() const { return m_xml.c_str(); }
    void updateXML();
    size_t size() const { return m_params.size(); }
    bool isEmpty() const { return m_params.empty(); }
    const SFiXmlParseError &getParseError() const { return m_parseError; }

    // Stored under its key; a parameter of that key is replaced.
    void addParamInfo(const CFiConfigParamInfo &info);
    // The parameter, or an empty one.
    const CFiConfigParamInfo &getParamInfo(const char *key) const;
    const std::map<std::string, CFiConfigParamInfo> &params() const { return m_params; }
    // Each parameter's default as a value, in key order.
    CFiConfigParamDataList getDefaultDataList() const;
    void clear();

private:
    friend class CFiGetConfigParamListHandler;

    std::map<std::string, CFiConfigParamInfo> m_params;
    CFiConfigParamInfo m_missing;
    std::wstring m_xml;
    SFiXmlParseError m_parseError;
};

}  // namespace qorin_pdk_4_4

#endif
