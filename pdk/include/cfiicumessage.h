#ifndef CFIICUMESSAGE_H
#define CFIICUMESSAGE_H

#include <string>

#include <unicode/fmtable.h>

#include "cfiexport.h"
#include "cfimessage.h"
#include "qrn_records.h"

namespace qorin_pdk_4_4 {

// A catalog message whose arguments are ICU Formattables, filled into the catalog's
// MessageFormat pattern. Its serialised form is the only form that crosses the entry table:
//
//   <SERIALIZED_MESSAGE MSGID=key SEVERITY=n>\n
//   \t<ARGVALUE INDEX=i TYPE=t>value</ARGVALUE>\n      one per argument
//   </SERIALIZED_MESSAGE>\n
//
// Arguments that survive the round trip: strings (UTF-8, cut at a '<'), int32 longs and
// doubles ("%g", six significant digits; a date comes back as a double). Int64s, arrays and
// objects are written with an empty value and dropped on reading, so pass int32_t.
class QORIN_PDK_API CFiIcuMessage : public CFiMessage {
public:
    // args may be null with count 0. file is the raise site's source path, such as
    // "providers/hpeva/hpeva_plugin".
    CFiIcuMessage(const char *key, const icu::Formattable *args, int count, qrn_eseverity severity, const char *file,
                  int line);
    // Reads the serialised text of info (length bytes); file and line stay empty.
    explicit CFiIcuMessage(const qrn_msg_info *info);
    ~CFiIcuMessage() override;

    // The header and end are written also when there are no arguments, so that the key
    // reaches the host.
    const qrn_msg_info *serialize() override;
    // Replaces key, severity and arguments by what text holds; text without a header leaves
    // the message empty. Never fails visibly.
    void deserialize(const char *text) override;
    // The pattern itself if ICU can't format it.
    std::wstring formatMessage(const std::wstring &pattern) override;

    const icu::Formattable &getArguments() const { return m_args; }

private:
    // The argument array, or null with count 0.
    const icu::Formattable *arguments(int32_t &count) const;

    icu::Formattable m_args;
    qrn_msg_info m_info;
    std::string m_serialized;
};

}  // namespace qorin_pdk_4_4

#endif
