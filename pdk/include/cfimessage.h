#ifndef CFIMESSAGE_H
#define CFIMESSAGE_H

#include <string>

#include "cfiexport.h"
#include "cfirefcount.h"
#include "cfismartptr.h"
#include "qrn_records.h"

namespace qorin_pdk_4_4 {

// A catalog message: key, severity and the source position of the site that raised it.
// Its arguments and serialised form belong to the concrete class.
class QORIN_PDK_API CFiMessage : public virtual CFiRefCount {
public:
    CFiMessage(const char *key, qrn_eseverity severity, const char *file, int line);
    ~CFiMessage() override;

    // The message's own record of its serialised text; valid while the message lives.
    virtual const qrn_msg_info *serialize() = 0;
    virtual void deserialize(const char *text) = 0;
    virtual qrn_eseverity getSeverity() const;
    virtual int getLine() const;
    virtual std::string getFile() const;
    virtual std::string getMessageKey() const;
    // Fills the message's arguments into a catalog pattern.
    virtual std::wstring formatMessage(const std::wstring &pattern) = 0;

protected:
    std::string m_key;
    qrn_eseverity m_severity;
    std::string m_file;
    int m_line;
};

using CFiMessagePtr = CFiSmartPtr<CFiMessage, CFiNullAllocator<CFiMessage>>;

}  // namespace qorin_pdk_4_4

#endif
