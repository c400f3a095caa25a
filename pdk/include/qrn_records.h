// Records that cross the entry table between the host framework and the provider.
// The host owns their definition; the layouts below match it byte for byte on a 64-bit
// target, and the static_asserts at the end pin every offset the provider relies on.
// Fields the provider never touches are kept as reserved padding so that the known ones
// stay in place.
#ifndef QRN_RECORDS_H
#define QRN_RECORDS_H

#include <stddef.h>
#include <stdint.h>
#include <wchar.h>

#ifdef __cplusplus
extern "C" {
#endif

// Opaque object identifier made by qorin_get_objid; only its text is read here.
typedef struct qorin_objid {
    wchar_t *text;   // 0: identifier text
    uint32_t size;   // 8: size of the text in bytes, terminator included
    uint32_t flags;  // 12
} qorin_objid;

struct qrn_host_context;

// Message callback: context, text in the host's language, text in the default
// language, severity 1..4.
typedef int32_t (*qrn_msg_callback)(struct qrn_host_context *context, const wchar_t *hostText,
                                    const wchar_t *defaultText, int32_t severity);

// The record the host's language pointer leads to: its first field names the language.
typedef struct qrn_host_language {
    char *name;
} qrn_host_language;

typedef struct qrn_host_context {
    qrn_msg_callback callback;    // 0: may be null
    void *reserved8;              // 8
    void *reserved16;             // 16
    qrn_host_language *language;  // 24: may be null, and so may its name
} qrn_host_context;

struct qrn_domain;
struct qrn_method_entry;

typedef struct qrn_member_list {
    uint32_t count;  // 0
    uint32_t reserved4;
    struct qrn_domain **members;  // 8
} qrn_member_list;

// One node as the host holds it.
typedef struct qrn_domain {
    uint32_t type;                     // 0: node type word
    uint32_t flags;                    // 4: QRN_NODE_* bits
    qorin_objid *id;                   // 8: the node's identifier
    uint8_t reserved16[8];             // 16
    uint32_t *capability;              // 24: filled by supportsFiType
    uint8_t reserved32[48];            // 32
    uint64_t cleared80;                // 80: cleared on initialisation, not read
    struct qrn_method_entry *methods;  // 88: list of snapshot methods
    qrn_member_list *members;          // 96: may be null
    uint8_t reserved104[8];            // 104
    qorin_objid *importId;             // 112: identifier that importTreeNode hands back
    uint8_t reserved120[24];           // 120
    void *privateData;                 // 144: heap cell holding the node's private data
    wchar_t *name;                     // 152: copied from the identifier's text
} qrn_domain;

enum { QRN_NODE_MADE = 0x1, QRN_NODE_READY = 0x8, QRN_NODE_ACCESS_DISABLED = 0x40 };

typedef struct qrn_quiescenode {
    char *quiesceType;  // 0: such as "FI_QUIESCE_NONE"
    qrn_domain *node;   // 8
    qrn_domain *group;  // 16: may be null
} qrn_quiescenode;

typedef struct qrn_splitnode {
    char *method;       // 0: snapshot method name, such as "HPEVA_VSnap"
    qrn_domain *node;   // 8
    qrn_domain *group;  // 16: may be null
} qrn_splitnode;

typedef struct qrn_method_entry {
    struct qrn_method_entry *next;  // 0
    qrn_quiescenode *quiesce;       // 8
    qrn_splitnode *split;           // 16
} qrn_method_entry;

typedef struct qrn_confspec {
    int64_t selector1;  // 0: not 0 means mode 1
    int64_t selector2;  // 8: both 0 means nothing to do
    wchar_t *text;      // 16: parameter XML in, result XML out
} qrn_confspec;

// The operations of config.
enum {
    QRN_CONFIG_GET = 1,
    QRN_CONFIG_SET = 2,
    QRN_CONFIG_CLEAR = 3,
    QRN_CONFIG_GET_PARAMS = 4,
    // A second code the host uses for SET.
    QRN_CONFIG_SET_ALTERNATE = 5
};

typedef struct qrn_blob {
    uint64_t length;  // 0: bytes, terminator included
    void *data;       // 8
    uint32_t filled;  // 16: 1 when filled by getNodeState
} qrn_blob;

typedef struct qrn_msg_info {
    const char *text;  // 0: serialised message
    uint32_t length;   // 8: bytes, without terminator
} qrn_msg_info;

typedef struct qrn_host_infn {
    wchar_t *name;               // 0: null names are skipped
    struct qrn_host_infn *next;  // 8
} qrn_host_infn;

typedef struct qrn_node_subobj_list {
    qrn_domain *node;                   // 0: may be null
    uint8_t reserved8[16];              // 8
    struct qrn_node_subobj_list *next;  // 24
} qrn_node_subobj_list;

typedef struct qrn_ownergid {
    int32_t owner;
    int32_t group;
} qrn_ownergid;

// Passed through the table without being read.
typedef struct qrn_accessnode qrn_accessnode;
typedef struct qrn_pgn_node_list qrn_pgn_node_list;
typedef struct qrn_assoc qrn_assoc;
typedef struct qrn_assoc_list qrn_assoc_list;
typedef struct qrn_group_node_list qrn_group_node_list;
typedef struct qrn_node qrn_node;
typedef struct qrn_attributes qrn_attributes;
typedef struct qrn_resource qrn_resource;
typedef struct qrn_bkupset qrn_bkupset;

// Result lists, built by libqorinutil.
typedef struct qrn_provider_list {
    wchar_t *provider;               // 0
    uint64_t word1;                  // 8
    uint64_t word2;                  // 16
    uint16_t version[4];             // 24
    wchar_t **claimPatterns;         // 32: null-terminated
    struct qrn_provider_list *next;  // 40
} qrn_provider_list;

// The block a FIM item hands to its builder: six words and two text pointers.
typedef struct qrn_fim_words {
    uint32_t words[6];           // 0
    const wchar_t *description;  // 24
    const wchar_t *version;      // 32
} qrn_fim_words;

typedef struct qrn_fim_list {
    wchar_t *name;              // 0
    uint32_t words[6];          // 8
    wchar_t *description;       // 32
    wchar_t *version;           // 40
    wchar_t *extra;             // 48
    wchar_t *provider;          // 56
    struct qrn_fim_list *next;  // 64
} qrn_fim_list;

// The pair a node item hands to its builder: display name and identifier.
typedef struct qrn_node_name {
    const wchar_t *displayName;  // 0
    qorin_objid *id;             // 8
} qrn_node_name;

typedef struct qrn_node_words {
    uint32_t word1;  // 0
    uint32_t word2;  // 4
    uint64_t word3;  // 8
    uint64_t size;   // 16
} qrn_node_words;

typedef struct qrn_node_list {
    wchar_t *displayName;        // 0
    qorin_objid *id;             // 8
    uint32_t word1;              // 16
    uint32_t word2;              // 20
    uint64_t word3;              // 24
    uint64_t size;               // 32
    wchar_t *provider;           // 40
    struct qrn_node_list *next;  // 48
} qrn_node_list;

typedef struct qrn_enclosure_node_list {
    wchar_t *name;                         // 0
    wchar_t *provider;                     // 8
    wchar_t *enclosureId;                  // 16
    wchar_t *vendor;                       // 24
    wchar_t *product;                      // 32
    uint64_t available;                    // 40
    uint64_t total;                        // 48
    uint32_t lastWord;                     // 56
    struct qrn_enclosure_node_list *next;  // 64
} qrn_enclosure_node_list;

typedef struct qrn_host_node_list {
    wchar_t *hostName;                // 0
    wchar_t **ports;                  // 8: null-terminated
    uint32_t portCount;               // 16
    wchar_t *enclosureId;             // 24
    struct qrn_host_node_list *next;  // 32
} qrn_host_node_list;

// Enumerations are 32 bits wide at the boundary.
typedef int32_t qrn_claim;
typedef int32_t qrn_interpose;
typedef int32_t qrn_disposition;
typedef int32_t qrn_intent;
typedef int32_t qrn_op_providerstate;
typedef int32_t qrn_eseverity;

enum { QRN_CLAIM_NONE = 0, QRN_CLAIM_SECONDARY = 2 };

enum { QRN_NOT_INTERPOSED = 0, QRN_INTERPOSED = 1 };

// The forms of import_resource and deport_resource, as flags.
enum {
    QRN_IMPORT_ALL = 0x1,
    QRN_IMPORT_SINGLE_HOST = 0x2,
    QRN_IMPORT_NOT_PROVIDED = 0x4,
    QRN_DEPORT_SINGLE_HOST = 0x10,
    QRN_DEPORT_ALL = 0x20,
    QRN_DEPORT_NOT_PROVIDED = 0x40,
    QRN_DEPORT_NOTHING = 0x400
};

// The disposition of dispose that deletes the copy; every other one leaves it.
enum { QRN_DISPOSITION_DELETE = 1 };

enum { QRN_DISPOSITION_REMOVE = 1 };

enum { QRN_PROVIDERSTATE_READ = 1 };

#ifdef __cplusplus
}  // extern "C"
#endif

#ifdef __cplusplus
#define QRN_CHECK_OFFSET(rec, field, off)                                                                              \
    static_assert(offsetof(rec, field) == (off), #rec "." #field " must be at offset " #off)
#else
#define QRN_CHECK_OFFSET(rec, field, off)                                                                              \
    _Static_assert(offsetof(rec, field) == (off), #rec "." #field " must be at offset " #off)
#endif

QRN_CHECK_OFFSET(qorin_objid, text, 0);
QRN_CHECK_OFFSET(qorin_objid, size, 8);
QRN_CHECK_OFFSET(qorin_objid, flags, 12);
QRN_CHECK_OFFSET(qrn_host_context, callback, 0);
QRN_CHECK_OFFSET(qrn_host_context, language, 24);
QRN_CHECK_OFFSET(qrn_host_language, name, 0);
QRN_CHECK_OFFSET(qrn_domain, type, 0);
QRN_CHECK_OFFSET(qrn_domain, flags, 4);
QRN_CHECK_OFFSET(qrn_domain, id, 8);
QRN_CHECK_OFFSET(qrn_domain, capability, 24);
QRN_CHECK_OFFSET(qrn_domain, cleared80, 80);
QRN_CHECK_OFFSET(qrn_domain, methods, 88);
QRN_CHECK_OFFSET(qrn_domain, members, 96);
QRN_CHECK_OFFSET(qrn_domain, importId, 112);
QRN_CHECK_OFFSET(qrn_domain, privateData, 144);
QRN_CHECK_OFFSET(qrn_domain, name, 152);
QRN_CHECK_OFFSET(qrn_member_list, count, 0);
QRN_CHECK_OFFSET(qrn_member_list, members, 8);
QRN_CHECK_OFFSET(qrn_method_entry, next, 0);
QRN_CHECK_OFFSET(qrn_method_entry, quiesce, 8);
QRN_CHECK_OFFSET(qrn_method_entry, split, 16);
QRN_CHECK_OFFSET(qrn_quiescenode, quiesceType, 0);
QRN_CHECK_OFFSET(qrn_quiescenode, node, 8);
QRN_CHECK_OFFSET(qrn_quiescenode, group, 16);
QRN_CHECK_OFFSET(qrn_splitnode, method, 0);
QRN_CHECK_OFFSET(qrn_splitnode, node, 8);
QRN_CHECK_OFFSET(qrn_splitnode, group, 16);
QRN_CHECK_OFFSET(qrn_confspec, selector1, 0);
QRN_CHECK_OFFSET(qrn_confspec, selector2, 8);
QRN_CHECK_OFFSET(qrn_confspec, text, 16);
QRN_CHECK_OFFSET(qrn_blob, length, 0);
QRN_CHECK_OFFSET(qrn_blob, data, 8);
QRN_CHECK_OFFSET(qrn_blob, filled, 16);
QRN_CHECK_OFFSET(qrn_msg_info, text, 0);
QRN_CHECK_OFFSET(qrn_msg_info, length, 8);
QRN_CHECK_OFFSET(qrn_host_infn, name, 0);
QRN_CHECK_OFFSET(qrn_host_infn, next, 8);
QRN_CHECK_OFFSET(qrn_node_subobj_list, node, 0);
QRN_CHECK_OFFSET(qrn_node_subobj_list, next, 24);
QRN_CHECK_OFFSET(qrn_ownergid, owner, 0);
QRN_CHECK_OFFSET(qrn_ownergid, group, 4);
QRN_CHECK_OFFSET(qrn_provider_list, provider, 0);
QRN_CHECK_OFFSET(qrn_provider_list, word1, 8);
QRN_CHECK_OFFSET(qrn_provider_list, word2, 16);
QRN_CHECK_OFFSET(qrn_provider_list, version, 24);
QRN_CHECK_OFFSET(qrn_provider_list, claimPatterns, 32);
QRN_CHECK_OFFSET(qrn_provider_list, next, 40);
QRN_CHECK_OFFSET(qrn_fim_words, words, 0);
QRN_CHECK_OFFSET(qrn_fim_words, description, 24);
QRN_CHECK_OFFSET(qrn_fim_words, version, 32);
QRN_CHECK_OFFSET(qrn_fim_list, name, 0);
QRN_CHECK_OFFSET(qrn_fim_list, words, 8);
QRN_CHECK_OFFSET(qrn_fim_list, description, 32);
QRN_CHECK_OFFSET(qrn_fim_list, version, 40);
QRN_CHECK_OFFSET(qrn_fim_list, extra, 48);
QRN_CHECK_OFFSET(qrn_fim_list, provider, 56);
QRN_CHECK_OFFSET(qrn_fim_list, next, 64);
QRN_CHECK_OFFSET(qrn_node_name, displayName, 0);
QRN_CHECK_OFFSET(qrn_node_name, id, 8);
QRN_CHECK_OFFSET(qrn_node_words, word1, 0);
QRN_CHECK_OFFSET(qrn_node_words, word2, 4);
QRN_CHECK_OFFSET(qrn_node_words, word3, 8);
QRN_CHECK_OFFSET(qrn_node_words, size, 16);
QRN_CHECK_OFFSET(qrn_node_list, displayName, 0);
QRN_CHECK_OFFSET(qrn_node_list, id, 8);
QRN_CHECK_OFFSET(qrn_node_list, word1, 16);
QRN_CHECK_OFFSET(qrn_node_list, word2, 20);
QRN_CHECK_OFFSET(qrn_node_list, word3, 24);
QRN_CHECK_OFFSET(qrn_node_list, size, 32);
QRN_CHECK_OFFSET(qrn_node_list, provider, 40);
QRN_CHECK_OFFSET(qrn_node_list, next, 48);
QRN_CHECK_OFFSET(qrn_enclosure_node_list, name, 0);
QRN_CHECK_OFFSET(qrn_enclosure_node_list, provider, 8);
QRN_CHECK_OFFSET(qrn_enclosure_node_list, enclosureId, 16);
QRN_CHECK_OFFSET(qrn_enclosure_node_list, vendor, 24);
QRN_CHECK_OFFSET(qrn_enclosure_node_list, product, 32);
QRN_CHECK_OFFSET(qrn_enclosure_node_list, available, 40);
QRN_CHECK_OFFSET(qrn_enclosure_node_list, total, 48);
QRN_CHECK_OFFSET(qrn_enclosure_node_list, lastWord, 56);
QRN_CHECK_OFFSET(qrn_enclosure_node_list, next, 64);
QRN_CHECK_OFFSET(qrn_host_node_list, hostName, 0);
QRN_CHECK_OFFSET(qrn_host_node_list, ports, 8);
QRN_CHECK_OFFSET(qrn_host_node_list, portCount, 16);
QRN_CHECK_OFFSET(qrn_host_node_list, enclosureId, 24);
QRN_CHECK_OFFSET(qrn_host_node_list, next, 32);

#ifdef __cplusplus
static_assert(sizeof(qorin_objid) == 16, "qorin_objid is 16 bytes");
static_assert(sizeof(qrn_domain) == 160, "qrn_domain is 160 bytes");
static_assert(sizeof(qrn_node_subobj_list) == 32, "qrn_node_subobj_list is 32 bytes");
static_assert(sizeof(qrn_host_context) == 32, "qrn_host_context is 32 bytes");
static_assert(sizeof(qrn_provider_list) == 48, "qrn_provider_list is 48 bytes");
static_assert(sizeof(qrn_fim_list) == 72, "qrn_fim_list is 72 bytes");
static_assert(sizeof(qrn_node_list) == 56, "qrn_node_list is 56 bytes");
static_assert(sizeof(qrn_enclosure_node_list) == 72, "qrn_enclosure_node_list is 72 bytes");
static_assert(sizeof(qrn_host_node_list) == 40, "qrn_host_node_list is 40 bytes");
static_assert(sizeof(wchar_t) == 4, "wide text is UTF-32 on this platform");
#endif

#endif  // QRN_RECORDS_H
