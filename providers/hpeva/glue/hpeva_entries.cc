// The exported entry table: each entry opens its function trace, takes the plug-in from its
// accessor, applies its guards and forwards to one virtual operation. No logic lives here.
#include <memory>
#include <mutex>
#include <vector>

#include "cfierrorhandler.h"
#include "cfimutexwrapper.h"
#include "cfiobjctlargs.h"
#include "cfitracelogfunction.h"
#include "hpeva_single_node.h"
#include "hpeva_singletons.h"
#include "qrn_results.h"
#include "tamlin_entries.h"

using namespace qorin_pdk_4_4;

namespace {

const wchar_t kProviderName[] = L"tamlin";
const int32_t kMessageIndexOffset = 6000;

// The error manager does not own its handlers; they live until the library is unloaded.
// Not a static object: its end must come after every process-wide object that might still
// call a handler, which only the unload teardown can order.
std::vector<std::unique_ptr<CFiErrorHandlerBase>> *g_handlers = nullptr;
std::mutex g_handlersLock;

std::vector<std::unique_ptr<CFiErrorHandlerBase>> &handlers()
{
    if (g_handlers == nullptr) {
        g_handlers = new std::vector<std::unique_ptr<CFiErrorHandlerBase>>;
    }
    return *g_handlers;
}

}  // namespace

void releaseErrorHandlers()
{
    std::lock_guard<std::mutex> guard(g_handlersLock);
    delete g_handlers;
    g_handlers = nullptr;
}

namespace {

CFiPluginPtr plugin()
{
    CFiPluginPtr p;
    getPluginSingleton(p, false);
    return p;
}

CFiSessionPtr sessionFor(const char *sessionId)
{
    CFiSessionManagerPtr sessions;
    getSessionManagerSingleton(sessions, false);
    return sessions.isNull() ? CFiSessionPtr() : sessions->getSession(sessionId);
}

}  // namespace

#define ENTRY(name)                                                                                                    \
    CFiTraceLogFunction entryTrace(processTraceLog(), "tamlin_fi_pgn_" name);                                          \
    CFiPluginPtr p = plugin()

#define DELAYED()                                                                                                      \
    do {                                                                                                               \
        if (p->invokeDelayedInit() != QRN_OK)                                                                          \
            return QRN_ERR_DELAYED_INIT;                                                                               \
    } while (0)

extern "C" {

int32_t tamlin_fi_pgn_init(qrn_host_context *host, uint16_t *version)
{
    if (version == nullptr) {
        return QRN_ERR_NO_VERSION_BLOCK;
    }
    // Written first, so that the host learns the interface level whatever fails next.
    version[0] = 7;
    version[1] = 0;
    version[2] = 0;
    version[3] = 0;

    CFiPluginPtr p = plugin();
    p->setProviderName(kProviderName);
    p->setMessageIndexOffset(kMessageIndexOffset);

    CFiCatalogManagerPtr catalogs;
    CFiTraceLogPtr log;
    CFiErrorManagerPtr errors;
    CFiPrivateDataManagerPtr privateData;
    CFiSessionManagerPtr sessions;
    getCatalogManagerSingleton(catalogs, false);
    getTraceLogSingleton(log, false);
    getErrorManagerSingleton(errors, false);
    getPrivateDataManagerSingleton(privateData, false);
    getSessionManagerSingleton(sessions, false);

    log->registerErrorManager(errors);
    privateData->setTraceLog(log);
    if (!log->isInitialized()) {
        log->initialize(kProviderName, ACE_WString(), ACE_WString(), 1, false);
    }
    if (host != nullptr && host->language != nullptr && host->language->name != nullptr) {
        catalogs->setNativeLanguage(host->language->name);
    }
    {
        std::lock_guard<std::mutex> guard(g_handlersLock);
        handlers().emplace_back(new CFiErrorHandler(host, catalogs));
        errors->registerHandler(handlers().back().get());
    }

    p->setTraceLog(log);
    p->registerErrorManager(errors);
    p->registerCatalogManager(catalogs);
    p->registerPrivateDataManager(privateData);
    p->registerSessionManager(sessions);
    return p->init();
}

void tamlin_fi_pgn_fini(void)
{
    CFiTraceLogFunction entryTrace(processTraceLog(), "tamlin_fi_pgn_fini");
    {
        CFiPluginPtr p = plugin();
        CFiPluginBase::isShuttingDown(true);
        p->fini();
    }
    // The session manager is left alone: sessions outlive fini.
    CFiPluginPtr deadPlugin;
    getPluginSingleton(deadPlugin, true);
    CFiCatalogManagerPtr deadCatalogs;
    getCatalogManagerSingleton(deadCatalogs, true);
    CFiTraceLogPtr deadLog;
    getTraceLogSingleton(deadLog, true);
    CFiErrorManagerPtr deadErrors;
    getErrorManagerSingleton(deadErrors, true);
    CFiPrivateDataManagerPtr deadPrivateData;
    getPrivateDataManagerSingleton(deadPrivateData, true);
}

int32_t tamlin_fi_pgn_errmsg(int32_t code, const wchar_t **text)
{
    ENTRY("errmsg");
    return p->errMsg(code, text);
}

int32_t tamlin_fi_pgn_claim(qorin_objid *id, qorin_objid ***subordinates, int32_t *count)
{
    ENTRY("claim");
    if (id == nullptr || subordinates == nullptr || count == nullptr) {
        return QRN_CLAIM_NONE;
    }
    return p->claim(id, subordinates, count);
}

int32_t tamlin_fi_pgn_supports_fitype(qrn_domain *node, char *fiType)
{
    ENTRY("supports_fitype");
    return p->supportsFiType(node, fiType);
}

int32_t tamlin_fi_pgn_init_node(qrn_domain *node, qrn_domain **parents, int32_t count, qorin_objid *id)
{
    ENTRY("init_node");
    DELAYED();
    return p->initNode(node, parents, count, id);
}

int32_t tamlin_fi_pgn_init_altnode(qrn_domain *a, qrn_domain *b, qrn_domain *target)
{
    ENTRY("init_altnode");
    DELAYED();
    return p->initAltNode(a, b, target, false);
}

int32_t tamlin_fi_pgn_init_remnode(qrn_domain *a, qrn_domain *b, qrn_domain *target)
{
    ENTRY("init_remnode");
    DELAYED();
    return p->initAltNode(a, b, target, true);
}

void tamlin_fi_pgn_deinit_node(qrn_domain *node)
{
    ENTRY("deinit_node");
    p->deInitNode(node);
}

int32_t tamlin_fi_pgn_deport_tree(qrn_domain *node, qrn_domain *other, qrn_accessnode *access)
{
    ENTRY("deport_tree");
    DELAYED();
    return p->deportTree(node, other, access);
}

int32_t tamlin_fi_pgn_import_tree(qrn_domain *node, qorin_objid **a, qorin_objid **b, int32_t count, qorin_objid **out)
{
    ENTRY("import_tree");
    DELAYED();
    return p->importTreeNode(node, a, b, count, out);
}

int32_t tamlin_fi_pgn_pre_prepare(qrn_domain *node)
{
    ENTRY("pre_prepare");
    DELAYED();
    return p->prePrepare(node);
}

int32_t tamlin_fi_pgn_reaccess_tmpobj(qrn_domain *node, qorin_objid *id, char *splitType, qrn_domain *other,
                                      char *sessionId, qrn_intent intent)
{
    ENTRY("reaccess_tmpobj");
    return p->reAccessTmpObj(node, id, splitType, other, sessionId, intent);
}

int32_t tamlin_fi_pgn_reaccess_altnode(qrn_domain *node, qorin_objid *id, qorin_objid *altId, char *sessionId,
                                       qorin_objid **list, qorin_objid **list2, int32_t count, qrn_intent intent)
{
    ENTRY("reaccess_altnode");
    DELAYED();
    return p->reAccessAltNode(node, id, altId, sessionId, list, list2, count, intent);
}

int32_t tamlin_fi_pgn_config(qrn_domain *node, int32_t op, char *sessionId, qrn_confspec *spec)
{
    ENTRY("config");
    DELAYED();
    if (node == nullptr || spec == nullptr) {
        return QRN_ERR_INVALID_ARGUMENT;
    }
    return p->config(node, op, sessionId, spec);
}

int32_t tamlin_fi_pgn_dispose(qrn_domain *node, qrn_domain *other, qrn_splitnode *split, qrn_disposition disposition)
{
    ENTRY("dispose");
    DELAYED();
    return p->dispose(node, other, split, disposition);
}

int32_t tamlin_fi_pgn_online(qrn_domain *node, qrn_domain *other, int32_t flag, qrn_disposition disposition)
{
    ENTRY("online");
    DELAYED();
    return p->online(node, other, flag, disposition);
}

int32_t tamlin_fi_pgn_subobj_list(qrn_domain *node, qorin_objid ***out, int32_t *count)
{
    ENTRY("subobj_list");
    DELAYED();
    if (node == nullptr || out == nullptr || count == nullptr) {
        return QRN_ERR_INVALID_ARGUMENT;
    }
    return p->subobjList(node, out, count);
}

int32_t tamlin_fi_pgn_build_alttree(qrn_domain *node, char *type, qorin_objid **a, qorin_objid **b, int32_t count,
                                    qorin_objid **out)
{
    ENTRY("build_alttree");
    DELAYED();
    return p->buildAltTree(node, type, a, b, count, out);
}

int32_t tamlin_fi_pgn_quiesce(qrn_quiescenode *one, qrn_quiescenode **list, int32_t count, char *type)
{
    ENTRY("quiesce");
    DELAYED();
    singleNodeForm(one, list, count);
    return p->quiesce(list, count, type);
}

void tamlin_fi_pgn_unquiesce(qrn_quiescenode *one, qrn_quiescenode **list, int32_t count)
{
    ENTRY("unquiesce");
    singleNodeForm(one, list, count);
    p->unquiesce(list, count);
}

int32_t tamlin_fi_pgn_make(qrn_splitnode *one, char *sessionId, qrn_splitnode **list, int32_t count, qorin_objid ***out,
                           int32_t *outCount)
{
    ENTRY("make");
    DELAYED();
    singleNodeForm(one, list, count);
    int32_t result = p->make(sessionId, list, count, out, outCount);
    if (result != QRN_ERR_NOT_PROVIDED) {
        return result;
    }
    CFiSessionPtr session = sessionFor(sessionId);
    if (session.isNull()) {
        return QRN_ERR_INVALID_ARGUMENT;
    }
    result = p->makeSnapshots(session);
    if (result == QRN_OK) {
        result = session->getTargets(list, count, out, outCount);
    }
    return result;
}

int32_t tamlin_fi_pgn_prepare(qrn_splitnode *one, char *sessionId, qrn_splitnode **list, int32_t count, int32_t flag)
{
    ENTRY("prepare");
    DELAYED();
    singleNodeForm(one, list, count);
    int32_t result = p->prepare(sessionId, list, count, flag);
    if (result != QRN_ERR_NOT_PROVIDED) {
        return result;
    }
    CFiSessionPtr session = sessionFor(sessionId);
    if (session.isNull()) {
        return QRN_ERR_INVALID_ARGUMENT;
    }
    return p->prepareSnapshots(session);
}

int32_t tamlin_fi_pgn_select(qrn_splitnode *one, char *sessionId, qrn_splitnode **list, int32_t count)
{
    ENTRY("select");
    DELAYED();
    singleNodeForm(one, list, count);
    int32_t result = p->select(sessionId, list, count);
    if (result != QRN_OK && result != QRN_ERR_NOT_PROVIDED) {
        return result;
    }
    CFiSessionPtr session = sessionFor(sessionId);
    if (session.isNull()) {
        return QRN_ERR_INVALID_ARGUMENT;
    }
    session->addNodes(list, count);
    if (result == QRN_ERR_NOT_PROVIDED) {
        result = p->selectSnapshots(session);
    }
    return result;
}

int32_t tamlin_fi_pgn_isready(qrn_splitnode *one, char *sessionId, qrn_splitnode **list, int32_t count)
{
    ENTRY("isready");
    DELAYED();
    singleNodeForm(one, list, count);
    return p->isReady(sessionId, list, count);
}

int32_t tamlin_fi_pgn_cache_disable(qrn_domain *node)
{
    ENTRY("cache_disable");
    DELAYED();
    return p->cacheDisable(node, 0);
}

void tamlin_fi_pgn_cache_enable(qrn_domain *node)
{
    ENTRY("cache_enable");
    p->cacheEnable(node, 0);
}

qrn_interpose tamlin_fi_pgn_interpose(qrn_domain *node, qorin_objid **outId, qorin_objid ***outGroups,
                                      int32_t *outCount)
{
    ENTRY("interpose");
    // The only entry that holds the plug-in's mutex across its forward.
    CFiMutexWrapper lock(p->getMutex(), true);
    p->invokeDelayedInit();
    return p->interpose(node, outId, outGroups, outCount);
}

int32_t tamlin_fi_pgn_getattr(qrn_domain *node, qrn_domain *other, qrn_splitnode *split, qrn_attributes *attributes)
{
    ENTRY("getattr");
    DELAYED();
    return p->getAttr(node, other, split, attributes);
}

int32_t tamlin_fi_pgn_process_providerstate(qrn_domain *node, qrn_blob *blob, qrn_op_providerstate op)
{
    ENTRY("process_providerstate");
    DELAYED();
    return p->processProviderState(node, blob, op);
}

int32_t tamlin_fi_pgn_get_provider_info(qrn_provider_list **out)
{
    ENTRY("get_provider_info");
    if (out == nullptr) {
        return QRN_ERR_INVALID_ARGUMENT;
    }
    *out = nullptr;
    return p->getProviderInfo(out);
}

int32_t tamlin_fi_pgn_enumerate_nodes(qrn_node_list **out, int32_t *count, int32_t flags, wchar_t *filter)
{
    ENTRY("enumerate_nodes");
    if (out == nullptr) {
        return QRN_ERR_INVALID_ARGUMENT;
    }
    return p->enumerateNodes(out, count, flags, filter);
}

int32_t tamlin_fi_pgn_enumerate_group_nodes(qrn_group_node_list **out)
{
    ENTRY("enumerate_group_nodes");
    DELAYED();
    return p->enumerateGroupNodes(out);
}

int32_t tamlin_fi_pgn_enumerate_fims(qrn_fim_list **out)
{
    ENTRY("enumerate_fims");
    return p->enumerateFims(out);
}

int32_t tamlin_fi_pgn_enumerate_associations(qrn_assoc_list **out)
{
    ENTRY("enumerate_associations");
    DELAYED();
    return p->enumerateAssociations(out);
}

int32_t tamlin_fi_pgn_isvalid_node_association(qrn_assoc *association, int32_t *valid)
{
    ENTRY("isvalid_node_association");
    DELAYED();
    return p->isValidNodeAssociation(association, valid);
}

int32_t tamlin_fi_pgn_get_associated_nodes(qrn_node *node, qrn_node_list **out)
{
    ENTRY("get_associated_nodes");
    DELAYED();
    return p->getAssociatedNodes(node, out);
}

int32_t tamlin_fi_pgn_check_node_existence(qrn_domain *node, int32_t *exists)
{
    ENTRY("check_node_existence");
    DELAYED();
    return p->checkNodeExistence(node, exists);
}

int32_t tamlin_fi_pgn_get_last_error(qrn_msg_info **out)
{
    ENTRY("get_last_error");
    return p->getLastError(out);
}

int32_t tamlin_fi_pgn_del_last_error(qrn_msg_info **info)
{
    ENTRY("del_last_error");
    return p->delLastError(info);
}

int32_t tamlin_fi_pgn_get_locale_message(int32_t *unused, qrn_msg_info *info, const char *language, wchar_t **out)
{
    ENTRY("get_locale_message");
    return p->getLocaleMessage(unused, info, language, out);
}

int32_t tamlin_fi_pgn_del_locale_message(wchar_t **text)
{
    ENTRY("del_locale_message");
    return p->delLocaleMessage(text);
}

int32_t tamlin_fi_pgn_objctl(const wchar_t *name, const wchar_t *argsXml, wchar_t **outXml, int32_t *status)
{
    ENTRY("objctl");
    DELAYED();
    CFiObjctlArgs args(argsXml);
    int32_t result = p->objctl(name != nullptr ? std::wstring(name) : std::wstring(), args);
    if (status != nullptr) {
        *status = result;
    }
    if (outXml != nullptr) {
        *outXml = wcsdup(args.toXml().c_str());
    }
    return QRN_OK;
}

int32_t tamlin_fi_pgn_enable_access(qrn_node_subobj_list *list, int32_t a, int32_t b, int32_t c)
{
    ENTRY("enable_access");
    DELAYED();
    return p->enableAccess(list, a, b, c);
}

int32_t tamlin_fi_pgn_disable_access(qrn_node_subobj_list *list, int32_t a)
{
    ENTRY("disable_access");
    DELAYED();
    return p->disableAccess(list, a);
}

int32_t tamlin_fi_pgn_restore(qorin_objid **sources, qorin_objid **targets, int32_t count, wchar_t *a, wchar_t *b,
                              int32_t flags, int32_t *status)
{
    ENTRY("restore");
    DELAYED();
    return p->restore(sources, targets, count, a, b, flags, status);
}

int32_t tamlin_fi_pgn_resync(qorin_objid **sources, qorin_objid **targets, int32_t count, wchar_t *a, wchar_t *b,
                             int32_t flags, int32_t *status)
{
    ENTRY("resync");
    DELAYED();
    return p->resync(sources, targets, count, a, b, flags, status);
}

int32_t tamlin_fi_pgn_get_status(qorin_objid **sources, qorin_objid **targets, int32_t count, wchar_t *a, int32_t flags,
                                 int32_t *status)
{
    ENTRY("get_status");
    DELAYED();
    return p->getStatus(sources, targets, count, a, flags, status);
}

int32_t tamlin_fi_pgn_query_valid_secondaries(wchar_t *name, qorin_objid ***out, int32_t *count)
{
    ENTRY("query_valid_secondaries");
    DELAYED();
    return p->queryValidSecondaries(name, out, count);
}

int32_t tamlin_fi_pgn_res_status(qorin_objid *id, int32_t a, int32_t *b, qrn_msg_info **info)
{
    ENTRY("res_status");
    DELAYED();
    return p->resourceStatus(id, a, b, info);
}

int32_t tamlin_fi_pgn_revisit_pgn_nodes(qrn_pgn_node_list *list)
{
    ENTRY("revisit_pgn_nodes");
    return p->revisitPluginNodes(list);
}

int32_t tamlin_fi_pgn_verify_qscombos(qrn_splitnode *one, qrn_splitnode **list, int32_t count)
{
    ENTRY("verify_qscombos");
    DELAYED();
    singleNodeForm(one, list, count);
    return p->verifyQSCombos(list, count);
}

int32_t tamlin_fi_pgn_set_import_options(qrn_splitnode *one, qrn_splitnode **list, int32_t count, qrn_host_infn *hosts,
                                         int32_t transportable, void *opaque)
{
    ENTRY("set_import_options");
    DELAYED();
    singleNodeForm(one, list, count);
    return p->setImportOptions(list, count, hosts, transportable, opaque);
}

int32_t tamlin_fi_pgn_start_build_alttree(qrn_domain *node, qorin_objid **id, void *opaque)
{
    ENTRY("start_build_alttree");
    DELAYED();
    return p->startBuildAltTree(node, id, opaque);
}

int32_t tamlin_fi_pgn_translate_resource_names(wchar_t **names, int32_t count, wchar_t **out)
{
    ENTRY("translate_resource_names");
    DELAYED();
    // Only a count of 0 is forwarded: the operation behind it gives nothing for a list.
    if (names == nullptr || out == nullptr || count != 0) {
        return QRN_ERR_INVALID_ARGUMENT;
    }
    return p->translateResourceNames(names, count, out);
}

int32_t tamlin_fi_pgn_enumerate_enclosures(qrn_enclosure_node_list **out, int32_t *count, wchar_t *filter)
{
    ENTRY("enumerate_enclosures");
    return p->enumerateEnclosures(out, count, filter);
}

int32_t tamlin_fi_pgn_import_resource(wchar_t **out, wchar_t *resource, wchar_t *host, wchar_t *other, int32_t flags,
                                      wchar_t **out2, wchar_t *other2)
{
    ENTRY("import_resource");
    DELAYED();
    return p->importResource(out, resource, host, other, flags, out2, other2);
}

int32_t tamlin_fi_pgn_format(wchar_t **a, int32_t b, wchar_t *c, wchar_t *d, wchar_t *e, int32_t f, wchar_t ***g,
                             int32_t *h)
{
    ENTRY("format");
    DELAYED();
    return p->format(a, b, c, d, e, f, g, h);
}

int32_t tamlin_fi_pgn_enumerate_host_nodes(qrn_host_node_list **out, int32_t *count, wchar_t *filter)
{
    ENTRY("enumerate_host_nodes");
    return p->enumerateHostNodes(out, count, filter);
}

int32_t tamlin_fi_pgn_online_resource(wchar_t **a, int32_t b, wchar_t *c, wchar_t *d, wchar_t *e, wchar_t *f, int32_t g,
                                      wchar_t ***h, int32_t *i)
{
    ENTRY("online_resource");
    DELAYED();
    return p->onlineResource(a, b, c, d, e, f, g, h, i);
}

int32_t tamlin_fi_pgn_deport_resource(wchar_t *resource, wchar_t *host, wchar_t *other, wchar_t *other2, int32_t flags)
{
    ENTRY("deport_resource");
    DELAYED();
    return p->deportResource(resource, host, other, other2, flags);
}

int32_t tamlin_fi_pgn_is_parent_pgn(wchar_t *name, int32_t *isParent, int32_t flag)
{
    ENTRY("is_parent_pgn");
    DELAYED();
    return p->isParentPgn(name, isParent, flag);
}

int32_t tamlin_fi_pgn_unformat(wchar_t **a, int32_t b, int32_t c)
{
    ENTRY("unformat");
    DELAYED();
    return p->unformat(a, b, c);
}

int32_t tamlin_fi_pgn_pre_deport_resource(wchar_t *resource, int32_t flags, wchar_t *host)
{
    ENTRY("pre_deport_resource");
    DELAYED();
    return p->preDeportResource(resource, flags, host);
}

int32_t tamlin_fi_pgn_refresh_tree(qrn_domain *node, int32_t a, int32_t b, qrn_resource *resource, int32_t c,
                                   int32_t *d, void *e, int32_t f)
{
    ENTRY("refresh_tree");
    DELAYED();
    return p->refreshTree(node, a, b, resource, c, d, e, f);
}

int32_t tamlin_fi_pgn_get_backupset(qrn_domain *node, int32_t a, wchar_t **b, int32_t c, qrn_bkupset *set)
{
    ENTRY("get_backupset");
    DELAYED();
    return p->getBackupset(node, a, b, c, set);
}

int32_t tamlin_fi_pgn_get_app_status(qrn_domain *node, int32_t a, void *b)
{
    ENTRY("get_app_status");
    DELAYED();
    return p->getAppStatus(node, a, b);
}

int32_t tamlin_fi_pgn_set_op_status(qrn_domain *node, int32_t status)
{
    ENTRY("set_op_status");
    DELAYED();
    return p->setOpStatus(node, status);
}

int32_t tamlin_fi_pgn_set_comp_status(qrn_domain *node, int32_t a, wchar_t *b, int32_t c)
{
    ENTRY("set_comp_status");
    DELAYED();
    return p->setCompStatus(node, a, b, c);
}

int32_t tamlin_fi_pgn_set_restorepaths(qrn_domain *node, wchar_t *paths, int32_t count)
{
    ENTRY("set_restorepaths");
    DELAYED();
    return p->setRestorepaths(node, paths, count);
}

}  // extern "C"
