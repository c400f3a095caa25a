#include "cfiicumessage.h"

#include <cstring>
#include <vector>

#include <unicode/msgfmt.h>

#include "cfistringtool.h"
#include "vstring.h"

namespace qorin_pdk_4_4 {

namespace {

const char kHeader[] = "<SERIALIZED_MESSAGE";
const char kArgument[] = "<ARGVALUE";
const size_t kTagBuffer = 1024;
// Length of "</ARGVALUE>", skipped from the '<' that ends a value.
const size_t kClosingTag = 11;

std::string valueText(const icu::Formattable &arg)
{
    switch (arg.getType()) {
    case icu::Formattable::kDate:
        return CFiStringTool::double2str(arg.getDate());
    case icu::Formattable::kDouble:
        return CFiStringTool::double2str(arg.getDouble());
    case icu::Formattable::kLong:
        return CFiStringTool::int2str(static_cast<int32_t>(arg.getLong()));
    case icu::Formattable::kString:
        return CFiStringTool::ustr2str(arg.getString());
    default:
        return std::string();
    }
}

// False for a TYPE that the reader drops.
bool readValue(int type, const std::string &text, icu::Formattable &out)
{
    switch (type) {
    case icu::Formattable::kDate:
    case icu::Formattable::kDouble:
        out = icu::Formattable(CFiStringTool::str2double(text));
        return true;
    case icu::Formattable::kLong:
        out = icu::Formattable(static_cast<int32_t>(CFiStringTool::str2int(text)));
        return true;
    case icu::Formattable::kString:
        out = icu::Formattable(CFiStringTool::str2ustr(text));
        return true;
    default:
        return false;
    }
}

}  // namespace

CFiIcuMessage::CFiIcuMessage(const char *key, const icu::Formattable *args, int count, qrn_eseverity severity,
                             const char *file, int line) :
    CFiMessage(key, severity, file, line),
    m_args(args, args != nullptr && count > 0 ? count : 0),
    m_info{nullptr, 0}
{
}

CFiIcuMessage::CFiIcuMessage(const qrn_msg_info *info) :
    CFiMessage(nullptr, 0, nullptr, 0),
    m_args(static_cast<const icu::Formattable *>(nullptr), 0),
    m_info{nullptr, 0}
{
    if (info != nullptr && info->text != nullptr) {
        // The length bounds the read: the host's text needn't be terminated.
        std::string text(info->text, info->length);
        deserialize(text.c_str());
    }
}

CFiIcuMessage::~CFiIcuMessage() = default;

const icu::Formattable *CFiIcuMessage::arguments(int32_t &count) const
{
    UErrorCode status = U_ZERO_ERROR;
    const icu::Formattable *args = m_args.getArray(count, status);
    if (U_FAILURE(status) || args == nullptr) {
        count = 0;
        return nullptr;
    }
    return args;
}

const qrn_msg_info *CFiIcuMessage::serialize()
{
    char tag[kTagBuffer];
    V_snprintf(tag, sizeof tag, "<SERIALIZED_MESSAGE MSGID=%s SEVERITY=%d>\n", m_key.c_str(),
               static_cast<int>(m_severity));
    std::string text = tag;
    int32_t count = 0;
    const icu::Formattable *args = arguments(count);
    for (int32_t i = 0; args != nullptr && i < count; ++i) {
        V_snprintf(tag, sizeof tag, "\t<ARGVALUE INDEX=%d TYPE=%d>", static_cast<int>(i),
                   static_cast<int>(args[i].getType()));
        text += tag;
        text += valueText(args[i]);
        text += "</ARGVALUE>\n";
    }
    text += "</SERIALIZED_MESSAGE>\n";
    m_serialized.swap(text);
    m_info.text = m_serialized.c_str();
    m_info.length = static_cast<uint32_t>(m_serialized.size());
    return &m_info;
}

void CFiIcuMessage::deserialize(const char *text)
{
    m_key.clear();
    m_severity = 0;
    m_args.adoptArray(nullptr, 0);
    const char *header = text != nullptr ? strstr(text, kHeader) : nullptr;
    if (header == nullptr) {
        return;
    }

    char key[kTagBuffer] = "";
    int severity = 0;
    int read = V_sscanf(header, "<SERIALIZED_MESSAGE MSGID=%s SEVERITY=%d>", key, static_cast<int>(sizeof key),
                        &severity, static_cast<int>(sizeof severity));
    if (read >= 1) {
        m_key = key;
    }
    if (read >= 2) {
        m_severity = severity;
    }

    const char *at = strchr(header, '>');
    at = at != nullptr ? strstr(at, kArgument) : nullptr;
    std::vector<icu::Formattable> args;
    while (at != nullptr) {
        int index = 0;
        int type = -1;
        V_sscanf(at, "<ARGVALUE INDEX=%d TYPE=%d>", &index, static_cast<int>(sizeof index), &type,
                 static_cast<int>(sizeof type));
        const char *valueStart = strchr(at, '>');
        if (valueStart == nullptr) {
            break;
        }
        ++valueStart;
        const char *valueEnd = strchr(valueStart, '<');
        std::string value = valueEnd != nullptr ? std::string(valueStart, valueEnd) : std::string(valueStart);
        icu::Formattable arg;
        if (readValue(type, value, arg)) {
            args.push_back(arg);
        }
        if (valueEnd == nullptr) {
            break;
        }
        // The skip must not run past the terminator of a text that ends inside the closing tag.
        at = valueEnd + strnlen(valueEnd, kClosingTag);
        at = strstr(at, kArgument);
    }
    if (!args.empty()) {
        m_args = icu::Formattable(args.data(), static_cast<int32_t>(args.size()));
    }
}

std::wstring CFiIcuMessage::formatMessage(const std::wstring &pattern)
{
    int32_t count = 0;
    const icu::Formattable *args = arguments(count);
    icu::UnicodeString result;
    UErrorCode status = U_ZERO_ERROR;
    icu::MessageFormat::format(CFiStringTool::tstr2ustr(pattern), args, count, result, status);
    if (U_FAILURE(status) && result.isEmpty()) {
        return pattern;
    }
    return CFiStringTool::tstr2wstr(CFiStringTool::ustr2tstr(result));
}

}  // namespace qorin_pdk_4_4
