#include "hpeva_messages.h"

#include "cfierrormanager.h"
#include "cfiicumessage.h"

using namespace qorin_pdk_4_4;

void hpeva_msg::push(const CFiErrorManagerPtr &errors, const char *key, std::initializer_list<icu::Formattable> args,
                     qrn_eseverity severity, const char *file, int line)
{
    push(errors, key, args.begin(), static_cast<int>(args.size()), severity, file, line);
}

void hpeva_msg::push(const CFiErrorManagerPtr &errors, const char *key, const icu::Formattable *args, int count,
                     qrn_eseverity severity, const char *file, int line)
{
    if (errors.isNull()) {
        return;
    }
    try {
        CFiMessagePtr message(new CFiIcuMessage(key, args, count, severity, file, line));
        errors->pushError(message);
    } catch (...) {
    }
}
