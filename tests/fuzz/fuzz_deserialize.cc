// libFuzzer target for the reader of serialised messages.
//
// The input is the host's message text as it stands behind a qrn_msg_info: any bytes, not
// terminated, bounded by the length alone. Whatever is read is written and read again and
// filled into a pattern, so that the writer and the formatter see odd arguments too.
#include <cstddef>
#include <cstdint>
#include <string>

#include "cfiicumessage.h"

using qorin_pdk_4_4::CFiIcuMessage;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    if (size > UINT32_MAX) {
        return 0;
    }
    // A copy of exactly the input's size, so that a read past the length is caught.
    std::string bytes(reinterpret_cast<const char *>(data), size);
    qrn_msg_info info{size != 0 ? bytes.data() : nullptr, static_cast<uint32_t>(size)};
    CFiIcuMessage message(&info);
    const qrn_msg_info *out = message.serialize();
    CFiIcuMessage again(out);
    again.formatMessage(L"{0} {1,number} {2} {3,date} '{4}'");
    message.deserialize(bytes.c_str());
    return 0;
}
