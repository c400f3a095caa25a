#ifndef CFIPARAMVALUELISTHANDLER_H
#define CFIPARAMVALUELISTHANDLER_H

#include <string>

#include "cfiexport.h"
#include "cfiparamdocumenthandler.h"

namespace qorin_pdk_4_4 {

// Reader of a value document ("ConfigValueList", "FormatOptionValueList"): each item
// element becomes an element of the list under its "key"; a "value" inside "valueList"
// adds to the value list, one outside sets the value, and the last of those wins. Other
// elements are ignored.
template <class List>
class QORIN_PDK_API CFiParamValueListHandler : public CFiParamDocumentHandler {
public:
    ~CFiParamValueListHandler() override;

    void startElement(const XMLCh *const uri, const XMLCh *const localname, const XMLCh *const qname,
                      const xercesc::Attributes &attrs) override;
    void endElement(const XMLCh *const uri, const XMLCh *const localname, const XMLCh *const qname) override;

    // The list read so far; throws the parser's message first if there is one.
    List &getList();

protected:
    CFiParamValueListHandler();

private:
    List m_list;
    typename List::ElementType m_current;
    const std::u16string m_listName;
    const std::u16string m_itemName;
    bool m_inValueList;
    bool m_finished;
};

}  // namespace qorin_pdk_4_4

#endif
