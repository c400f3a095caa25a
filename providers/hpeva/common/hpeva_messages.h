#ifndef HPEVA_MESSAGES_H
#define HPEVA_MESSAGES_H

#include <initializer_list>

#include <unicode/fmtable.h>

#include "cfitracelog.h"
#include "qrn_records.h"

// Pushes one catalog message into the calling thread's slot and so to the host's callback.
// Arguments that cross the entry table intact: UnicodeString, int32_t and double. A null
// manager drops the message, and pushing never throws.
void pushMessage(const qorin_pdk_4_4::CFiErrorManagerPtr &errors, const char *key,
                 std::initializer_list<icu::Formattable> args, qrn_eseverity severity, const char *file, int line);

#endif
