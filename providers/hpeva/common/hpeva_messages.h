#ifndef HPEVA_MESSAGES_H
#define HPEVA_MESSAGES_H

#include <initializer_list>
#include <type_traits>

#include <unicode/fmtable.h>

#include "cfitracelog.h"
#include "qrn_records.h"
#include "qrn_results.h"

// Every catalog message the provider raises, with the number of arguments its texts take
// (messages/root.txt and de.txt). A key is raised only through its constant below, so the
// compiler checks each raise site's argument count, and the catalog tests read this list.
// clang-format off
#define HPEVA_MESSAGE_KEYS(X)                                               \
    X(MSG_ERROR_CLI_COMMAND_FAILED, 5)                                      \
    X(MSG_ERROR_CLI_NOT_FOUND, 2)                                           \
    X(MSG_ERROR_CLI_NOT_INSTALLED, 2)                                       \
    X(MSG_ERROR_CONFIG_DOCUMENT_INVALID, 4)                                 \
    X(MSG_ERROR_CONFIG_FILE_INVALID, 3)                                     \
    X(MSG_ERROR_CONFIG_FILE_UNREADABLE, 2)                                  \
    X(MSG_ERROR_DEPORT_HOST_INVALID, 3)                                     \
    X(MSG_ERROR_DISPOSE_LEFT_UNPRESENTED, 2)                                \
    X(MSG_ERROR_DR_GROUP_IS_NOT_SOURCED_ON_THIS_CELL_ERROR, 3)              \
    X(MSG_ERROR_DR_GROUP_MEMBER_CONDITION_ERROR, 2)                         \
    X(MSG_ERROR_DR_GROUP_NAMES_DONT_MATCH, 3)                               \
    X(MSG_ERROR_DR_GROUP_NOT_SELECTED, 1)                                   \
    X(MSG_ERROR_DR_GROUP_NO_REMOTE_CELL_LINKS_DETECTED, 2)                  \
    X(MSG_ERROR_DR_GROUP_NO_REMOTE_CELL_LINKS_FOUND, 2)                     \
    X(MSG_ERROR_DR_GROUP_OPERATIONAL_STATE_ERROR, 2)                        \
    X(MSG_ERROR_DR_GROUP_RESUME_FAILED, 2)                                  \
    X(MSG_ERROR_DR_GROUP_SNAPCLONE_CREATION_FAILED, 1)                      \
    X(MSG_ERROR_ENTRY_EXCEPTION, 3)                                         \
    X(MSG_ERROR_IMPORT_HOST_INVALID, 3)                                     \
    X(MSG_ERROR_IMPORT_LOCAL_HOST_INVALID, 3)                               \
    X(MSG_ERROR_INITIALIZATION_FAILED, 0)                                   \
    X(MSG_ERROR_INVALID_SPLIT_TYPE, 1)                                      \
    X(MSG_ERROR_NO_ARRAYS_DISCOVERED, 0)                                    \
    X(MSG_ERROR_NO_CREDENTIALS, 1)                                          \
    X(MSG_ERROR_NO_DR_GROUP_PRESENT_FOR_VDISK, 1)                           \
    X(MSG_ERROR_RESTORE_FROM_VSNAP_NOT_SUPPORTED, 2)                        \
    X(MSG_ERROR_RESTORE_TO_VSNAP_NOT_SUPPORTED, 2)                          \
    X(MSG_ERROR_SNAPCLONE_CREATION_FAILED, 1)                               \
    X(MSG_ERROR_SNAPCLONE_OF_VSNAP_NOT_SUPPORTED, 1)                        \
    X(MSG_ERROR_SNAPSHOTS_LEFT_AFTER_FAILURE, 3)                            \
    X(MSG_ERROR_UDID_PARSING_EXCEPTION, 2)                                  \
    X(MSG_ERROR_UNHANDLED_EXEC_PIPE_EXCEPTION, 4)                           \
    X(MSG_ERROR_UNHANDLED_FIERROR_EXCEPTION, 4)                             \
    X(MSG_ERROR_UNHANDLED_INT_EXCEPTION, 3)                                 \
    X(MSG_ERROR_UNHANDLED_RUNTIME_EXCEPTION, 4)                             \
    X(MSG_ERROR_VERIFY_FAILED_CREATE_CLONE_WITH_VSNAP_PRESENT_NOT_SUPPORTED, 3) \
    X(MSG_ERROR_VERIFY_FAILED_OPERATIONS_ON_VSNAP_NOT_SUPPORTED, 3)         \
    X(MSG_ERROR_VERSION_CHECK, 3)                                           \
    X(MSG_ERROR_VSNAP_CREATION_FAILED, 1)                                   \
    X(MSG_ERROR_VSNAP_OF_VSNAP_NOT_SUPPORTED, 1)
// clang-format on

// A catalog key whose texts take Arguments arguments.
template <int Arguments>
struct SHpEvaMessageKey {
    const char *key;
};

// One constant per key, named as the key: hpeva_msg::MSG_ERROR_NO_CREDENTIALS.
namespace hpeva_msg {
#define HPEVA_MESSAGE_KEY(name, arguments) inline constexpr SHpEvaMessageKey<arguments> name{#name};
HPEVA_MESSAGE_KEYS(HPEVA_MESSAGE_KEY)
#undef HPEVA_MESSAGE_KEY
}  // namespace hpeva_msg

// The whole list, for the catalog tests.
struct SHpEvaMessageInfo {
    const char *key;
    int arguments;
};
inline constexpr SHpEvaMessageInfo HPEVA_MESSAGES[] = {
#define HPEVA_MESSAGE_INFO(name, arguments) {#name, arguments},
    HPEVA_MESSAGE_KEYS(HPEVA_MESSAGE_INFO)
#undef HPEVA_MESSAGE_INFO
};

namespace hpeva_msg {
// The untyped push behind pushMessage; raise sites use pushMessage.
void push(const qorin_pdk_4_4::CFiErrorManagerPtr &errors, const char *key,
          std::initializer_list<icu::Formattable> args, qrn_eseverity severity, const char *file, int line);
// The same with count arguments at args, for a message whose key and arguments a rule chose.
void push(const qorin_pdk_4_4::CFiErrorManagerPtr &errors, const char *key, const icu::Formattable *args, int count,
          qrn_eseverity severity, const char *file, int line);
}  // namespace hpeva_msg

// Pushes one catalog message into the calling thread's slot and so to the host's callback:
//
//     pushMessage(m_errorManager, hpeva_msg::MSG_ERROR_NO_CREDENTIALS, QRN_SEVERITY_WARNING,
//                 kSourceFile, __LINE__, text(path));
//
// Arguments are icu::Formattable holding a UnicodeString, an int32_t or a double, the types
// that cross the entry table intact. A null manager drops the message, and pushing never
// throws: reporting never changes the result of the operation that reports.
template <int N, class... Args>
void pushMessage(const qorin_pdk_4_4::CFiErrorManagerPtr &errors, const SHpEvaMessageKey<N> &key,
                 qrn_eseverity severity, const char *file, int line, const Args &...args)
{
    static_assert(sizeof...(Args) == N, "the catalog's texts of this key take another number of arguments");
    static_assert((std::is_same_v<Args, icu::Formattable> && ...), "message arguments are icu::Formattable");
    hpeva_msg::push(errors, key.key, {args...}, severity, file, line);
}

#endif
