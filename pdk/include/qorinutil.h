// The host framework's utility library: memory that crosses the entry table, object
// identifiers, result-list builders and the framework's settings. Every record and text
// a builder or qorin_get_objid returns is allocated with malloc and belongs to the host.
#ifndef QORINUTIL_H
#define QORINUTIL_H

#include "qrn_records.h"

#ifdef __cplusplus
extern "C" {
#endif

#if defined(__GNUC__)
#define QORINUTIL_API __attribute__((visibility("default")))
#else
#define QORINUTIL_API
#endif

QORINUTIL_API void *qorin_alloc_buf(size_t size);
QORINUTIL_API void qorin_free_buf(void *buffer, size_t size);

// A new identifier holding a copy of text; size is in bytes with the terminator.
// The identifier and its text are one malloc block: free(id) releases both.
QORINUTIL_API qorin_objid *qorin_get_objid(const wchar_t *text, uint32_t size, uint32_t flags);
// 0 when both identifiers have the same text; two nulls are equal.
QORINUTIL_API int32_t qorin_objidcmp(const qorin_objid *a, const qorin_objid *b);

// Each sets *out to a malloc'ed text, or to null when the setting is absent. They return 0.
QORINUTIL_API int32_t qorin_get_consumer_name(wchar_t **out);
QORINUTIL_API int32_t qorin_get_install_root(wchar_t **out);
QORINUTIL_API int32_t qorin_get_credential_blob(wchar_t **out);

QORINUTIL_API qrn_provider_list *qorin_build_providerlist_node(const wchar_t *provider, uint64_t word1, uint64_t word2,
                                                               const uint16_t *version, wchar_t *const *claimPatterns);
QORINUTIL_API qrn_fim_list *qorin_build_fim_list_node(const wchar_t *name, const qrn_fim_words *words,
                                                      const wchar_t *extra, const wchar_t *provider);
// Takes over the identifier in name->id: it becomes part of the record.
QORINUTIL_API qrn_node_list *qorin_build_nodelist_node(const qrn_node_name *name, const qrn_node_words *words,
                                                       const wchar_t *provider);
QORINUTIL_API qrn_enclosure_node_list *qorin_build_enclosure_list_node(const wchar_t *name, const wchar_t *provider,
                                                                       const wchar_t *enclosureId,
                                                                       const wchar_t *vendor, const wchar_t *product,
                                                                       uint64_t available, uint64_t total,
                                                                       uint32_t lastWord);
QORINUTIL_API qrn_host_node_list *qorin_build_host_list_node(const wchar_t *hostName, wchar_t *const *ports,
                                                             uint32_t portCount, const wchar_t *enclosureId);

#ifdef __cplusplus
}  // extern "C"
#endif

#endif  // QORINUTIL_H
