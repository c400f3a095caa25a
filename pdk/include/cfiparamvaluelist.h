#ifndef CFIPARAMVALUELIST_H
#define CFIPARAMVALUELIST_H

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "cfiexport.h"
#include "cfirefcount.h"
#include "sfixmlparseerror.h"

namespace qorin_pdk_4_4 {

// Parameter values by key, sorted, with the document that describes them: the common part
// of CFiConfigParamDataList and CFiFormatOptionList. Every change rewrites the document text;
// a parse that fails changes no value but leaves the refused text as the document until
// updateXML.
template <class List>
class CFiParamValueListHandler;

template <class Element, class Handler>
class QORIN_PDK_API CFiParamValueList : public virtual CFiRefCount {
public:
    using ElementType = Element;

    // No document text until the first change or parse.
    CFiParamValueList();
    CFiParamValueList(const CFiParamValueList &other);
    // Parses xml; a document that can't be read leaves the list empty.
    explicit CFiParamValueList(const wchar_t *xml);
    CFiParamValueList &operator=(const CFiParamValueList &other);
    ~CFiParamValueList() override;

    // 0, or 3 when the text can't be read (getParseError() says why). The document text
    // becomes xml in both cases; on success it is at once rewritten in the canonical form.
    int parse(const wchar_t *xml);
    const wchar_t *getXML() const { return m_xml.c_str(); }
    void updateXML();
    size_t size() const { return m_elements.size(); }
    // The failure of the last parse; empty after a success.
    const SFiXmlParseError &getParseError() const { return m_parseError; }

    // Stored under its key; an element of that key is replaced.
    void addParamData(const Element &element);
    // The element, or an empty one.
    const Element &getParamData(const char *key) const;
    // A new element of that key and value, so a value list stored there is gone.
    void setValue(const char *key, const char *value);
    // The value, or empty.
    std::string getValue(const char *key) const;
    // 0, or 3 for a missing key.
    int getValue(const char *key, std::string &value) const;
    // The value list. 0, or 3 for a missing key.
    int getValue(const char *key, std::vector<std::string> &values) const;
    // 0, or 3 for a missing key or a value that CFiStringTool::str2int refuses.
    int getValue(const char *key, int32_t &value) const;
    // In key order.
    std::vector<std::string> getKeys() const;
    // Empties the map and the document text.
    void clear();

private:
    // The reader fills the map without rewriting the text at each element.
    template <class List>
    friend class CFiParamValueListHandler;

    const Element *find(const char *key) const;

    std::map<std::string, Element> m_elements;
    Element m_missing;
    std::wstring m_xml;
    SFiXmlParseError m_parseError;
};

}  // namespace qorin_pdk_4_4

#endif
