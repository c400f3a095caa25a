// The provider's whole outward face: 70 plain entry points that the host resolves by name.
#ifndef TAMLIN_ENTRIES_H
#define TAMLIN_ENTRIES_H

#include <stdint.h>
#include <wchar.h>

#include "qrn_records.h"

#ifdef __cplusplus
extern "C" {
#endif

#define TAMLIN_ENTRY __attribute__((visibility("default")))

TAMLIN_ENTRY int32_t tamlin_fi_pgn_init(qrn_host_context *host, uint16_t *version);
TAMLIN_ENTRY void tamlin_fi_pgn_fini(void);
TAMLIN_ENTRY int32_t tamlin_fi_pgn_errmsg(int32_t code, const wchar_t **text);
TAMLIN_ENTRY int32_t tamlin_fi_pgn_claim(qorin_objid *id, qorin_objid ***subordinates, int32_t *count);
TAMLIN_ENTRY int32_t tamlin_fi_pgn_supports_fitype(qrn_domain *node, char *fiType);
TAMLIN_ENTRY int32_t tamlin_fi_pgn_init_node(qrn_domain *node, qrn_domain **parents, int32_t count, qorin_objid *id);
TAMLIN_ENTRY int32_t tamlin_fi_pgn_init_altnode(qrn_domain *a, qrn_domain *b, qrn_domain *target);
TAMLIN_ENTRY int32_t tamlin_fi_pgn_init_remnode(qrn_domain *a, qrn_domain *b, qrn_domain *target);
TAMLIN_ENTRY void tamlin_fi_pgn_deinit_node(qrn_domain *node);
TAMLIN_ENTRY int32_t tamlin_fi_pgn_deport_tree(qrn_domain *node, qrn_domain *other, qrn_accessnode *access);
TAMLIN_ENTRY int32_t tamlin_fi_pgn_import_tree(qrn_domain *node, qorin_objid **a, qorin_objid **b, int32_t count,
                                               qorin_objid **out);
TAMLIN_ENTRY int32_t tamlin_fi_pgn_pre_prepare(qrn_domain *node);
TAMLIN_ENTRY int32_t tamlin_fi_pgn_reaccess_tmpobj(qrn_domain *node, qorin_objid *id, char *splitType,
                                                   qrn_domain *other, char *sessionId, qrn_intent intent);
TAMLIN_ENTRY int32_t tamlin_fi_pgn_reaccess_altnode(qrn_domain *node, qorin_objid *id, qorin_objid *altId,
                                                    char *sessionId, qorin_objid **list, qorin_objid **list2,
                                                    int32_t count, qrn_intent intent);
TAMLIN_ENTRY int32_t tamlin_fi_pgn_config(qrn_domain *node, int32_t op, char *sessionId, qrn_confspec *spec);
TAMLIN_ENTRY int32_t tamlin_fi_pgn_dispose(qrn_domain *node, qrn_domain *other, qrn_splitnode *split,
                                           qrn_disposition disposition);
TAMLIN_ENTRY int32_t tamlin_fi_pgn_online(qrn_domain *node, qrn_domain *other, int32_t flag,
                                          qrn_disposition disposition);
TAMLIN_ENTRY int32_t tamlin_fi_pgn_subobj_list(qrn_domain *node, qorin_objid ***out, int32_t *count);
TAMLIN_ENTRY int32_t tamlin_fi_pgn_build_alttree(qrn_domain *node, char *type, qorin_objid **a, qorin_objid **b,
                                                 int32_t count, qorin_objid **out);
TAMLIN_ENTRY int32_t tamlin_fi_pgn_quiesce(qrn_quiescenode *one, qrn_quiescenode **list, int32_t count, char *type);
TAMLIN_ENTRY void tamlin_fi_pgn_unquiesce(qrn_quiescenode *one, qrn_quiescenode **list, int32_t count);
TAMLIN_ENTRY int32_t tamlin_fi_pgn_make(qrn_splitnode *one, char *sessionId, qrn_splitnode **list, int32_t count,
                                        qorin_objid ***out, int32_t *outCount);
TAMLIN_ENTRY int32_t tamlin_fi_pgn_prepare(qrn_splitnode *one, char *sessionId, qrn_splitnode **list, int32_t count,
                                           int32_t flag);
TAMLIN_ENTRY int32_t tamlin_fi_pgn_select(qrn_splitnode *one, char *sessionId, qrn_splitnode **list, int32_t count);
TAMLIN_ENTRY int32_t tamlin_fi_pgn_isready(qrn_splitnode *one, char *sessionId, qrn_splitnode **list, int32_t count);
TAMLIN_ENTRY int32_t tamlin_fi_pgn_cache_disable(qrn_domain *node);
TAMLIN_ENTRY void tamlin_fi_pgn_cache_enable(qrn_domain *node);
TAMLIN_ENTRY qrn_interpose tamlin_fi_pgn_interpose(qrn_domain *node, qorin_objid **outId, qorin_objid ***outGroups,
                                                   int32_t *outCount);
TAMLIN_ENTRY int32_t tamlin_fi_pgn_getattr(qrn_domain *node, qrn_domain *other, qrn_splitnode *split,
                                           qrn_attributes *attributes);
TAMLIN_ENTRY int32_t tamlin_fi_pgn_process_providerstate(qrn_domain *node, qrn_blob *blob, qrn_op_providerstate op);
TAMLIN_ENTRY int32_t tamlin_fi_pgn_get_provider_info(qrn_provider_list **out);
TAMLIN_ENTRY int32_t tamlin_fi_pgn_enumerate_nodes(qrn_node_list **out, int32_t *count, int32_t flags, wchar_t *filter);
TAMLIN_ENTRY int32_t tamlin_fi_pgn_enumerate_group_nodes(qrn_group_node_list **out);
TAMLIN_ENTRY int32_t tamlin_fi_pgn_enumerate_fims(qrn_fim_list **out);
TAMLIN_ENTRY int32_t tamlin_fi_pgn_enumerate_associations(qrn_assoc_list **out);
TAMLIN_ENTRY int32_t tamlin_fi_pgn_isvalid_node_association(qrn_assoc *association, int32_t *valid);
TAMLIN_ENTRY int32_t tamlin_fi_pgn_get_associated_nodes(qrn_node *node, qrn_node_list **out);
TAMLIN_ENTRY int32_t tamlin_fi_pgn_check_node_existence(qrn_domain *node, int32_t *exists);
TAMLIN_ENTRY int32_t tamlin_fi_pgn_get_last_error(qrn_msg_info **out);
TAMLIN_ENTRY int32_t tamlin_fi_pgn_del_last_error(qrn_msg_info **info);
TAMLIN_ENTRY int32_t tamlin_fi_pgn_get_locale_message(int32_t *unused, qrn_msg_info *info, const char *language,
                                                      wchar_t **out);
TAMLIN_ENTRY int32_t tamlin_fi_pgn_del_locale_message(wchar_t **text);
TAMLIN_ENTRY int32_t tamlin_fi_pgn_objctl(const wchar_t *name, const wchar_t *argsXml, wchar_t **outXml,
                                          int32_t *status);
TAMLIN_ENTRY int32_t tamlin_fi_pgn_enable_access(qrn_node_subobj_list *list, int32_t a, int32_t b, int32_t c);
TAMLIN_ENTRY int32_t tamlin_fi_pgn_disable_access(qrn_node_subobj_list *list, int32_t a);
TAMLIN_ENTRY int32_t tamlin_fi_pgn_restore(qorin_objid **sources, qorin_objid **targets, int32_t count, wchar_t *a,
                                           wchar_t *b, int32_t flags, int32_t *status);
TAMLIN_ENTRY int32_t tamlin_fi_pgn_resync(qorin_objid **sources, qorin_objid **targets, int32_t count, wchar_t *a,
                                          wchar_t *b, int32_t flags, int32_t *status);
TAMLIN_ENTRY int32_t tamlin_fi_pgn_get_status(qorin_objid **sources, qorin_objid **targets, int32_t count, wchar_t *a,
                                              int32_t flags, int32_t *status);
TAMLIN_ENTRY int32_t tamlin_fi_pgn_query_valid_secondaries(wchar_t *name, qorin_objid ***out, int32_t *count);
TAMLIN_ENTRY int32_t tamlin_fi_pgn_res_status(qorin_objid *id, int32_t a, int32_t *b, qrn_msg_info **info);
TAMLIN_ENTRY int32_t tamlin_fi_pgn_revisit_pgn_nodes(qrn_pgn_node_list *list);
TAMLIN_ENTRY int32_t tamlin_fi_pgn_verify_qscombos(qrn_splitnode *one, qrn_splitnode **list, int32_t count);
TAMLIN_ENTRY int32_t tamlin_fi_pgn_set_import_options(qrn_splitnode *one, qrn_splitnode **list, int32_t count,
                                                      qrn_host_infn *hosts, int32_t transportable, void *opaque);
TAMLIN_ENTRY int32_t tamlin_fi_pgn_start_build_alttree(qrn_domain *node, qorin_objid **id, void *opaque);
TAMLIN_ENTRY int32_t tamlin_fi_pgn_translate_resource_names(wchar_t **names, int32_t count, wchar_t **out);
TAMLIN_ENTRY int32_t tamlin_fi_pgn_enumerate_enclosures(qrn_enclosure_node_list **out, int32_t *count, wchar_t *filter);
TAMLIN_ENTRY int32_t tamlin_fi_pgn_import_resource(wchar_t **out, wchar_t *resource, wchar_t *host, wchar_t *other,
                                                   int32_t flags, wchar_t **out2, wchar_t *other2);
TAMLIN_ENTRY int32_t tamlin_fi_pgn_format(wchar_t **a, int32_t b, wchar_t *c, wchar_t *d, wchar_t *e, int32_t f,
                                          wchar_t ***g, int32_t *h);
TAMLIN_ENTRY int32_t tamlin_fi_pgn_enumerate_host_nodes(qrn_host_node_list **out, int32_t *count, wchar_t *filter);
TAMLIN_ENTRY int32_t tamlin_fi_pgn_online_resource(wchar_t **a, int32_t b, wchar_t *c, wchar_t *d, wchar_t *e,
                                                   wchar_t *f, int32_t g, wchar_t ***h, int32_t *i);
TAMLIN_ENTRY int32_t tamlin_fi_pgn_deport_resource(wchar_t *resource, wchar_t *host, wchar_t *other, wchar_t *other2,
                                                   int32_t flags);
TAMLIN_ENTRY int32_t tamlin_fi_pgn_is_parent_pgn(wchar_t *name, int32_t *isParent, int32_t flag);
TAMLIN_ENTRY int32_t tamlin_fi_pgn_unformat(wchar_t **a, int32_t b, int32_t c);
TAMLIN_ENTRY int32_t tamlin_fi_pgn_pre_deport_resource(wchar_t *resource, int32_t flags, wchar_t *host);
TAMLIN_ENTRY int32_t tamlin_fi_pgn_refresh_tree(qrn_domain *node, int32_t a, int32_t b, qrn_resource *resource,
                                                int32_t c, int32_t *d, void *e, int32_t f);
TAMLIN_ENTRY int32_t tamlin_fi_pgn_get_backupset(qrn_domain *node, int32_t a, wchar_t **b, int32_t c, qrn_bkupset *set);
TAMLIN_ENTRY int32_t tamlin_fi_pgn_get_app_status(qrn_domain *node, int32_t a, void *b);
TAMLIN_ENTRY int32_t tamlin_fi_pgn_set_op_status(qrn_domain *node, int32_t status);
TAMLIN_ENTRY int32_t tamlin_fi_pgn_set_comp_status(qrn_domain *node, int32_t a, wchar_t *b, int32_t c);
TAMLIN_ENTRY int32_t tamlin_fi_pgn_set_restorepaths(qrn_domain *node, wchar_t *paths, int32_t count);

#ifdef __cplusplus
}  // extern "C"
#endif

// Every entry name, in table order, for hosts that resolve them by name.
#define TAMLIN_ENTRY_NAMES(X)                                                                                          \
    X(init)                                                                                                            \
    X(fini) X(errmsg) X(claim) X(supports_fitype) X(init_node) X(init_altnode) X(init_remnode) X(deinit_node)          \
        X(deport_tree) X(import_tree) X(pre_prepare) X(reaccess_tmpobj) X(reaccess_altnode) X(config) X(dispose)       \
            X(online) X(subobj_list) X(build_alttree) X(quiesce) X(unquiesce) X(make) X(prepare) X(select) X(isready)  \
                X(cache_disable) X(cache_enable) X(interpose) X(getattr) X(process_providerstate) X(get_provider_info) \
                    X(enumerate_nodes) X(enumerate_group_nodes) X(enumerate_fims) X(enumerate_associations)            \
                        X(isvalid_node_association) X(get_associated_nodes) X(check_node_existence) X(get_last_error)  \
                            X(del_last_error) X(get_locale_message) X(del_locale_message) X(objctl) X(enable_access)   \
                                X(disable_access) X(restore) X(resync) X(get_status) X(query_valid_secondaries)        \
                                    X(res_status) X(revisit_pgn_nodes) X(verify_qscombos) X(set_import_options)        \
                                        X(start_build_alttree) X(translate_resource_names) X(enumerate_enclosures)     \
                                            X(import_resource) X(format) X(enumerate_host_nodes) X(online_resource)    \
                                                X(deport_resource) X(is_parent_pgn) X(unformat) X(pre_deport_resource) \
                                                    X(refresh_tree) X(get_backupset) X(get_app_status)                 \
                                                        X(set_op_status) X(set_comp_status) X(set_restorepaths)

#endif  // TAMLIN_ENTRIES_H
