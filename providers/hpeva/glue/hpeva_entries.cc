// The exported entry table: each entry opens its function trace, takes the plug-in from its
// accessor, applies its guards and forwards to one virtual operation. No logic lives here.
#include <cxxabi.h>

#include <cstdlib>
#include <exception>
#include <memory>
#include <mutex>
#include <new>
#include <typeinfo>
#include <vector>

#include "cfierrorhandler.h"
#include "cfimutexwrapper.h"
#include "cfiobjctlargs.h"
#include "cfitracelogfunction.h"
#include "hpeva_messages.h"
#include "hpeva_single_node.h"
#include "hpeva_singletons.h"
#include "qrn_results.h"
#include "tamlin_entries.h"

using namespace qorin_pdk_4_4;

namespace {

const wchar_t kProviderName[] = L"tamlin";
const char kSourceFile[] = "providers/hpeva/glue/hpeva_entries";
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

// Called only inside a handler: says what ended the entry. Nothing here may throw, and under
// std::bad_alloc any allocation may fail, so each step stands alone.
void entryFailed(const char *entry) noexcept
{
    const char *kind = "exception of an unknown type";
    const char *what = "";
    char *demangled = nullptr;
    try {
        throw;
    } catch (const std::bad_alloc &) {
        kind = "std::bad_alloc";
        what = "the process is out of memory";
    } catch (const std::exception &e) {
        int status = 0;
        demangled = abi::__cxa_demangle(typeid(e).name(), nullptr, nullptr, &status);
        kind = demangled != nullptr ? demangled : typeid(e).name();
        what = e.what();
    } catch (...) {
    }
    try {
        processTraceLog()->trace(1, "tamlin_fi_pgn_%s: ended by an unexpected %s: %s", entry, kind, what);
    } catch (...) {
    }
    try {
        pushMessage(processErrorManager(), hpeva_msg::MSG_ERROR_ENTRY_EXCEPTION, QRN_SEVERITY_ERROR, kSourceFile,
                    __LINE__, icu::Formattable(icu::UnicodeString::fromUTF8(entry)),
                    icu::Formattable(icu::UnicodeString::fromUTF8(kind)),
                    icu::Formattable(icu::UnicodeString::fromUTF8(what)));
    } catch (...) {
    }
    free(demangled);
}

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

// Every entry is a function-try-block ending in this: whatever its operation lets through
// (std::bad_alloc, any std::exception, anything at all) becomes a message, a trace line and
// the entry's failure result, and never reaches the host, for which it would be the end.
#define ENTRY_FAILS_WITH(name, result)                                                                                 \
    catch (...)                                                                                                        \
    {                                                                                                                  \
        entryFailed(name);                                                                                             \
        return result;                                                                                                 \
    }

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
try {
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
        // A host may call init again without fini (after a failed init, say) with a new
        // context, and the one it gave before may be gone: only the latest hears messages.
        // An earlier handler stays alive until fini, as a message pushed on another thread
        // may still be passing through it.
        std::lock_guard<std::mutex> guard(g_handlersLock);
        for (const std::unique_ptr<CFiErrorHandlerBase> &earlier : handlers()) {
            errors->unregisterHandler(earlier.get());
        }
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
ENTRY_FAILS_WITH("init", QRN_ERR_INIT_FAILED)

void tamlin_fi_pgn_fini(void)
try {
    CFiTraceLogFunction entryTrace(processTraceLog(), "tamlin_fi_pgn_fini");
    {
        CFiPluginPtr p = plugin();
        CFiPluginBase::isShuttingDown(true);
        p->fini();
    }
    {
        // The handlers init connected go with the error manager they serve: kept, each would
        // keep its catalog manager alive for as long as the library stays loaded.
        CFiErrorManagerPtr errors;
        getErrorManagerSingleton(errors, false);
        std::lock_guard<std::mutex> guard(g_handlersLock);
        for (const std::unique_ptr<CFiErrorHandlerBase> &handler : handlers()) {
            errors->unregisterHandler(handler.get());
        }
        handlers().clear();
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
} catch (...) {
    entryFailed("fini");
}

int32_t tamlin_fi_pgn_errmsg(int32_t code, const wchar_t **text)
try {
    ENTRY("errmsg");
    return p->errMsg(code, text);
}
ENTRY_FAILS_WITH("errmsg", QRN_ERR_FAILED)

int32_t tamlin_fi_pgn_claim(qorin_objid *id, qorin_objid ***subordinates, int32_t *count)
try {
    ENTRY("claim");
    if (id == nullptr || subordinates == nullptr || count == nullptr) {
        return QRN_CLAIM_NONE;
    }
    return p->claim(id, subordinates, count);
}
ENTRY_FAILS_WITH("claim", QRN_CLAIM_NONE)

int32_t tamlin_fi_pgn_supports_fitype(qrn_domain *node, char *fiType)
try {
    ENTRY("supports_fitype");
    return p->supportsFiType(node, fiType);
}
ENTRY_FAILS_WITH("supports_fitype", QRN_ERR_FAILED)

int32_t tamlin_fi_pgn_init_node(qrn_domain *node, qrn_domain **parents, int32_t count, qorin_objid *id)
try {
    ENTRY("init_node");
    DELAYED();
    return p->initNode(node, parents, count, id);
}
ENTRY_FAILS_WITH("init_node", QRN_ERR_FAILED)

int32_t tamlin_fi_pgn_init_altnode(qrn_domain *a, qrn_domain *b, qrn_domain *target)
try {
    ENTRY("init_altnode");
    DELAYED();
    return p->initAltNode(a, b, target, false);
}
ENTRY_FAILS_WITH("init_altnode", QRN_ERR_FAILED)

int32_t tamlin_fi_pgn_init_remnode(qrn_domain *a, qrn_domain *b, qrn_domain *target)
try {
    ENTRY("init_remnode");
    DELAYED();
    return p->initAltNode(a, b, target, true);
}
ENTRY_FAILS_WITH("init_remnode", QRN_ERR_FAILED)

void tamlin_fi_pgn_deinit_node(qrn_domain *node)
try {
    ENTRY("deinit_node");
    p->deInitNode(node);
} catch (...) {
    entryFailed("deinit_node");
}

int32_t tamlin_fi_pgn_deport_tree(qrn_domain *node, qrn_domain *other, qrn_accessnode *access)
try {
    ENTRY("deport_tree");
    DELAYED();
    return p->deportTree(node, other, access);
}
ENTRY_FAILS_WITH("deport_tree", QRN_ERR_FAILED)

int32_t tamlin_fi_pgn_import_tree(qrn_domain *node, qorin_objid **a, qorin_objid **b, int32_t count, qorin_objid **out)
try {
    ENTRY("import_tree");
    DELAYED();
    return p->importTreeNode(node, a, b, count, out);
}
ENTRY_FAILS_WITH("import_tree", QRN_ERR_FAILED)

int32_t tamlin_fi_pgn_pre_prepare(qrn_domain *node)
try {
    ENTRY("pre_prepare");
    DELAYED();
    return p->prePrepare(node);
}
ENTRY_FAILS_WITH("pre_prepare", QRN_ERR_FAILED)

int32_t tamlin_fi_pgn_reaccess_tmpobj(qrn_domain *node, qorin_objid *id, char *splitType, qrn_domain *other,
                                      char *sessionId, qrn_intent intent)
try {
    ENTRY("reaccess_tmpobj");
    return p->reAccessTmpObj(node, id, splitType, other, sessionId, intent);
}
ENTRY_FAILS_WITH("reaccess_tmpobj", QRN_ERR_FAILED)

int32_t tamlin_fi_pgn_reaccess_altnode(qrn_domain *node, qorin_objid *id, qorin_objid *altId, char *sessionId,
                                       qorin_objid **list, qorin_objid **list2, int32_t count, qrn_intent intent)
try {
    ENTRY("reaccess_altnode");
    DELAYED();
    return p->reAccessAltNode(node, id, altId, sessionId, list, list2, count, intent);
}
ENTRY_FAILS_WITH("reaccess_altnode", QRN_ERR_FAILED)

int32_t tamlin_fi_pgn_config(qrn_domain *node, int32_t op, char *sessionId, qrn_confspec *spec)
try {
    ENTRY("config");
    DELAYED();
    if (node == nullptr || spec == nullptr) {
        return QRN_ERR_INVALID_ARGUMENT;
    }
    return p->config(node, op, sessionId, spec);
}
ENTRY_FAILS_WITH("config", QRN_ERR_FAILED)

int32_t tamlin_fi_pgn_dispose(qrn_domain *node, qrn_domain *other, qrn_splitnode *split, qrn_disposition disposition)
try {
    ENTRY("dispose");
    DELAYED();
    return p->dispose(node, other, split, disposition);
}
ENTRY_FAILS_WITH("dispose", QRN_ERR_FAILED)

int32_t tamlin_fi_pgn_online(qrn_domain *node, qrn_domain *other, int32_t flag, qrn_disposition disposition)
try {
    ENTRY("online");
    DELAYED();
    return p->online(node, other, flag, disposition);
}
ENTRY_FAILS_WITH("online", QRN_ERR_FAILED)

int32_t tamlin_fi_pgn_subobj_list(qrn_domain *node, qorin_objid ***out, int32_t *count)
try {
    ENTRY("subobj_list");
    DELAYED();
    if (node == nullptr || out == nullptr || count == nullptr) {
        return QRN_ERR_INVALID_ARGUMENT;
    }
    return p->subobjList(node, out, count);
}
ENTRY_FAILS_WITH("subobj_list", QRN_ERR_FAILED)

int32_t tamlin_fi_pgn_build_alttree(qrn_domain *node, char *type, qorin_objid **a, qorin_objid **b, int32_t count,
                                    qorin_objid **out)
try {
    ENTRY("build_alttree");
    DELAYED();
    return p->buildAltTree(node, type, a, b, count, out);
}
ENTRY_FAILS_WITH("build_alttree", QRN_ERR_FAILED)

int32_t tamlin_fi_pgn_quiesce(qrn_quiescenode *one, qrn_quiescenode **list, int32_t count, char *type)
try {
    ENTRY("quiesce");
    DELAYED();
    singleNodeForm(one, list, count);
    return p->quiesce(list, count, type);
}
ENTRY_FAILS_WITH("quiesce", QRN_ERR_FAILED)

void tamlin_fi_pgn_unquiesce(qrn_quiescenode *one, qrn_quiescenode **list, int32_t count)
try {
    ENTRY("unquiesce");
    singleNodeForm(one, list, count);
    p->unquiesce(list, count);
} catch (...) {
    entryFailed("unquiesce");
}

int32_t tamlin_fi_pgn_make(qrn_splitnode *one, char *sessionId, qrn_splitnode **list, int32_t count, qorin_objid ***out,
                           int32_t *outCount)
try {
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
ENTRY_FAILS_WITH("make", QRN_ERR_FAILED)

int32_t tamlin_fi_pgn_prepare(qrn_splitnode *one, char *sessionId, qrn_splitnode **list, int32_t count, int32_t flag)
try {
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
ENTRY_FAILS_WITH("prepare", QRN_ERR_FAILED)

int32_t tamlin_fi_pgn_select(qrn_splitnode *one, char *sessionId, qrn_splitnode **list, int32_t count)
try {
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
ENTRY_FAILS_WITH("select", QRN_ERR_FAILED)

int32_t tamlin_fi_pgn_isready(qrn_splitnode *one, char *sessionId, qrn_splitnode **list, int32_t count)
try {
    ENTRY("isready");
    DELAYED();
    singleNodeForm(one, list, count);
    return p->isReady(sessionId, list, count);
}
ENTRY_FAILS_WITH("isready", QRN_ERR_FAILED)

int32_t tamlin_fi_pgn_cache_disable(qrn_domain *node)
try {
    ENTRY("cache_disable");
    DELAYED();
    return p->cacheDisable(node, 0);
}
ENTRY_FAILS_WITH("cache_disable", QRN_ERR_FAILED)

void tamlin_fi_pgn_cache_enable(qrn_domain *node)
try {
    ENTRY("cache_enable");
    p->cacheEnable(node, 0);
} catch (...) {
    entryFailed("cache_enable");
}

qrn_interpose tamlin_fi_pgn_interpose(qrn_domain *node, qorin_objid **outId, qorin_objid ***outGroups,
                                      int32_t *outCount)
try {
    ENTRY("interpose");
    // The only entry that holds the plug-in's mutex across its forward.
    CFiMutexWrapper lock(p->getMutex(), true);
    p->invokeDelayedInit();
    return p->interpose(node, outId, outGroups, outCount);
}
ENTRY_FAILS_WITH("interpose", QRN_NOT_INTERPOSED)

int32_t tamlin_fi_pgn_getattr(qrn_domain *node, qrn_domain *other, qrn_splitnode *split, qrn_attributes *attributes)
try {
    ENTRY("getattr");
    DELAYED();
    return p->getAttr(node, other, split, attributes);
}
ENTRY_FAILS_WITH("getattr", QRN_ERR_FAILED)

int32_t tamlin_fi_pgn_process_providerstate(qrn_domain *node, qrn_blob *blob, qrn_op_providerstate op)
try {
    ENTRY("process_providerstate");
    DELAYED();
    return p->processProviderState(node, blob, op);
}
ENTRY_FAILS_WITH("process_providerstate", QRN_ERR_FAILED)

int32_t tamlin_fi_pgn_get_provider_info(qrn_provider_list **out)
try {
    ENTRY("get_provider_info");
    if (out == nullptr) {
        return QRN_ERR_INVALID_ARGUMENT;
    }
    *out = nullptr;
    return p->getProviderInfo(out);
}
ENTRY_FAILS_WITH("get_provider_info", QRN_ERR_FAILED)

int32_t tamlin_fi_pgn_enumerate_nodes(qrn_node_list **out, int32_t *count, int32_t flags, wchar_t *filter)
try {
    ENTRY("enumerate_nodes");
    if (out == nullptr) {
        return QRN_ERR_INVALID_ARGUMENT;
    }
    return p->enumerateNodes(out, count, flags, filter);
}
ENTRY_FAILS_WITH("enumerate_nodes", QRN_ERR_FAILED)

int32_t tamlin_fi_pgn_enumerate_group_nodes(qrn_group_node_list **out)
try {
    ENTRY("enumerate_group_nodes");
    DELAYED();
    return p->enumerateGroupNodes(out);
}
ENTRY_FAILS_WITH("enumerate_group_nodes", QRN_ERR_FAILED)

int32_t tamlin_fi_pgn_enumerate_fims(qrn_fim_list **out)
try {
    ENTRY("enumerate_fims");
    return p->enumerateFims(out);
}
ENTRY_FAILS_WITH("enumerate_fims", QRN_ERR_FAILED)

int32_t tamlin_fi_pgn_enumerate_associations(qrn_assoc_list **out)
try {
    ENTRY("enumerate_associations");
    DELAYED();
    return p->enumerateAssociations(out);
}
ENTRY_FAILS_WITH("enumerate_associations", QRN_ERR_FAILED)

int32_t tamlin_fi_pgn_isvalid_node_association(qrn_assoc *association, int32_t *valid)
try {
    ENTRY("isvalid_node_association");
    DELAYED();
    return p->isValidNodeAssociation(association, valid);
}
ENTRY_FAILS_WITH("isvalid_node_association", QRN_ERR_FAILED)

int32_t tamlin_fi_pgn_get_associated_nodes(qrn_node *node, qrn_node_list **out)
try {
    ENTRY("get_associated_nodes");
    DELAYED();
    return p->getAssociatedNodes(node, out);
}
ENTRY_FAILS_WITH("get_associated_nodes", QRN_ERR_FAILED)

int32_t tamlin_fi_pgn_check_node_existence(qrn_domain *node, int32_t *exists)
try {
    ENTRY("check_node_existence");
    DELAYED();
    return p->checkNodeExistence(node, exists);
}
ENTRY_FAILS_WITH("check_node_existence", QRN_ERR_FAILED)

int32_t tamlin_fi_pgn_get_last_error(qrn_msg_info **out)
try {
    ENTRY("get_last_error");
    return p->getLastError(out);
}
ENTRY_FAILS_WITH("get_last_error", QRN_ERR_FAILED)

int32_t tamlin_fi_pgn_del_last_error(qrn_msg_info **info)
try {
    ENTRY("del_last_error");
    return p->delLastError(info);
}
ENTRY_FAILS_WITH("del_last_error", QRN_ERR_FAILED)

int32_t tamlin_fi_pgn_get_locale_message(int32_t *unused, qrn_msg_info *info, const char *language, wchar_t **out)
try {
    ENTRY("get_locale_message");
    return p->getLocaleMessage(unused, info, language, out);
}
ENTRY_FAILS_WITH("get_locale_message", QRN_ERR_FAILED)

int32_t tamlin_fi_pgn_del_locale_message(wchar_t **text)
try {
    ENTRY("del_locale_message");
    return p->delLocaleMessage(text);
}
ENTRY_FAILS_WITH("del_locale_message", QRN_ERR_FAILED)

int32_t tamlin_fi_pgn_objctl(const wchar_t *name, const wchar_t *argsXml, wchar_t **outXml, int32_t *status)
try {
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
} catch (...) {
    entryFailed("objctl");
    // The operation's result travels in status; the entry itself went through.
    if (status != nullptr) {
        *status = QRN_ERR_FAILED;
    }
    return QRN_OK;
}

int32_t tamlin_fi_pgn_enable_access(qrn_node_subobj_list *list, int32_t a, int32_t b, int32_t c)
try {
    ENTRY("enable_access");
    DELAYED();
    return p->enableAccess(list, a, b, c);
}
ENTRY_FAILS_WITH("enable_access", QRN_ERR_FAILED)

int32_t tamlin_fi_pgn_disable_access(qrn_node_subobj_list *list, int32_t a)
try {
    ENTRY("disable_access");
    DELAYED();
    return p->disableAccess(list, a);
}
ENTRY_FAILS_WITH("disable_access", QRN_ERR_FAILED)

int32_t tamlin_fi_pgn_restore(qorin_objid **sources, qorin_objid **targets, int32_t count, wchar_t *a, wchar_t *b,
                              int32_t flags, int32_t *status)
try {
    ENTRY("restore");
    DELAYED();
    return p->restore(sources, targets, count, a, b, flags, status);
}
ENTRY_FAILS_WITH("restore", QRN_ERR_FAILED)

int32_t tamlin_fi_pgn_resync(qorin_objid **sources, qorin_objid **targets, int32_t count, wchar_t *a, wchar_t *b,
                             int32_t flags, int32_t *status)
try {
    ENTRY("resync");
    DELAYED();
    return p->resync(sources, targets, count, a, b, flags, status);
}
ENTRY_FAILS_WITH("resync", QRN_ERR_FAILED)

int32_t tamlin_fi_pgn_get_status(qorin_objid **sources, qorin_objid **targets, int32_t count, wchar_t *a, int32_t flags,
                                 int32_t *status)
try {
    ENTRY("get_status");
    DELAYED();
    return p->getStatus(sources, targets, count, a, flags, status);
}
ENTRY_FAILS_WITH("get_status", QRN_ERR_FAILED)

int32_t tamlin_fi_pgn_query_valid_secondaries(wchar_t *name, qorin_objid ***out, int32_t *count)
try {
    ENTRY("query_valid_secondaries");
    DELAYED();
    return p->queryValidSecondaries(name, out, count);
}
ENTRY_FAILS_WITH("query_valid_secondaries", QRN_ERR_FAILED)

int32_t tamlin_fi_pgn_res_status(qorin_objid *id, int32_t a, int32_t *b, qrn_msg_info **info)
try {
    ENTRY("res_status");
    DELAYED();
    return p->resourceStatus(id, a, b, info);
}
ENTRY_FAILS_WITH("res_status", QRN_ERR_FAILED)

int32_t tamlin_fi_pgn_revisit_pgn_nodes(qrn_pgn_node_list *list)
try {
    ENTRY("revisit_pgn_nodes");
    return p->revisitPluginNodes(list);
}
ENTRY_FAILS_WITH("revisit_pgn_nodes", QRN_ERR_FAILED)

int32_t tamlin_fi_pgn_verify_qscombos(qrn_splitnode *one, qrn_splitnode **list, int32_t count)
try {
    ENTRY("verify_qscombos");
    DELAYED();
    singleNodeForm(one, list, count);
    return p->verifyQSCombos(list, count);
}
ENTRY_FAILS_WITH("verify_qscombos", QRN_ERR_FAILED)

int32_t tamlin_fi_pgn_set_import_options(qrn_splitnode *one, qrn_splitnode **list, int32_t count, qrn_host_infn *hosts,
                                         int32_t transportable, void *opaque)
try {
    ENTRY("set_import_options");
    DELAYED();
    singleNodeForm(one, list, count);
    return p->setImportOptions(list, count, hosts, transportable, opaque);
}
ENTRY_FAILS_WITH("set_import_options", QRN_ERR_FAILED)

int32_t tamlin_fi_pgn_start_build_alttree(qrn_domain *node, qorin_objid **id, void *opaque)
try {
    ENTRY("start_build_alttree");
    DELAYED();
    return p->startBuildAltTree(node, id, opaque);
}
ENTRY_FAILS_WITH("start_build_alttree", QRN_ERR_FAILED)

int32_t tamlin_fi_pgn_translate_resource_names(wchar_t **names, int32_t count, wchar_t **out)
try {
    ENTRY("translate_resource_names");
    DELAYED();
    // Only a count of 0 is forwarded: the operation behind it gives nothing for a list.
    if (names == nullptr || out == nullptr || count != 0) {
        return QRN_ERR_INVALID_ARGUMENT;
    }
    return p->translateResourceNames(names, count, out);
}
ENTRY_FAILS_WITH("translate_resource_names", QRN_ERR_FAILED)

int32_t tamlin_fi_pgn_enumerate_enclosures(qrn_enclosure_node_list **out, int32_t *count, wchar_t *filter)
try {
    ENTRY("enumerate_enclosures");
    return p->enumerateEnclosures(out, count, filter);
}
ENTRY_FAILS_WITH("enumerate_enclosures", QRN_ERR_FAILED)

int32_t tamlin_fi_pgn_import_resource(wchar_t **out, wchar_t *resource, wchar_t *host, wchar_t *other, int32_t flags,
                                      wchar_t **out2, wchar_t *other2)
try {
    ENTRY("import_resource");
    DELAYED();
    return p->importResource(out, resource, host, other, flags, out2, other2);
}
ENTRY_FAILS_WITH("import_resource", QRN_ERR_FAILED)

int32_t tamlin_fi_pgn_format(wchar_t **a, int32_t b, wchar_t *c, wchar_t *d, wchar_t *e, int32_t f, wchar_t ***g,
                             int32_t *h)
try {
    ENTRY("format");
    DELAYED();
    return p->format(a, b, c, d, e, f, g, h);
}
ENTRY_FAILS_WITH("format", QRN_ERR_FAILED)

int32_t tamlin_fi_pgn_enumerate_host_nodes(qrn_host_node_list **out, int32_t *count, wchar_t *filter)
try {
    ENTRY("enumerate_host_nodes");
    return p->enumerateHostNodes(out, count, filter);
}
ENTRY_FAILS_WITH("enumerate_host_nodes", QRN_ERR_FAILED)

int32_t tamlin_fi_pgn_online_resource(wchar_t **a, int32_t b, wchar_t *c, wchar_t *d, wchar_t *e, wchar_t *f, int32_t g,
                                      wchar_t ***h, int32_t *i)
try {
    ENTRY("online_resource");
    DELAYED();
    return p->onlineResource(a, b, c, d, e, f, g, h, i);
}
ENTRY_FAILS_WITH("online_resource", QRN_ERR_FAILED)

int32_t tamlin_fi_pgn_deport_resource(wchar_t *resource, wchar_t *host, wchar_t *other, wchar_t *other2, int32_t flags)
try {
    ENTRY("deport_resource");
    DELAYED();
    return p->deportResource(resource, host, other, other2, flags);
}
ENTRY_FAILS_WITH("deport_resource", QRN_ERR_FAILED)

int32_t tamlin_fi_pgn_is_parent_pgn(wchar_t *name, int32_t *isParent, int32_t flag)
try {
    ENTRY("is_parent_pgn");
    DELAYED();
    return p->isParentPgn(name, isParent, flag);
}
ENTRY_FAILS_WITH("is_parent_pgn", QRN_ERR_FAILED)

int32_t tamlin_fi_pgn_unformat(wchar_t **a, int32_t b, int32_t c)
try {
    ENTRY("unformat");
    DELAYED();
    return p->unformat(a, b, c);
}
ENTRY_FAILS_WITH("unformat", QRN_ERR_FAILED)

int32_t tamlin_fi_pgn_pre_deport_resource(wchar_t *resource, int32_t flags, wchar_t *host)
try {
    ENTRY("pre_deport_resource");
    DELAYED();
    return p->preDeportResource(resource, flags, host);
}
ENTRY_FAILS_WITH("pre_deport_resource", QRN_ERR_FAILED)

int32_t tamlin_fi_pgn_refresh_tree(qrn_domain *node, int32_t a, int32_t b, qrn_resource *resource, int32_t c,
                                   int32_t *d, void *e, int32_t f)
try {
    ENTRY("refresh_tree");
    DELAYED();
    return p->refreshTree(node, a, b, resource, c, d, e, f);
}
ENTRY_FAILS_WITH("refresh_tree", QRN_ERR_FAILED)

int32_t tamlin_fi_pgn_get_backupset(qrn_domain *node, int32_t a, wchar_t **b, int32_t c, qrn_bkupset *set)
try {
    ENTRY("get_backupset");
    DELAYED();
    return p->getBackupset(node, a, b, c, set);
}
ENTRY_FAILS_WITH("get_backupset", QRN_ERR_FAILED)

int32_t tamlin_fi_pgn_get_app_status(qrn_domain *node, int32_t a, void *b)
try {
    ENTRY("get_app_status");
    DELAYED();
    return p->getAppStatus(node, a, b);
}
ENTRY_FAILS_WITH("get_app_status", QRN_ERR_FAILED)

int32_t tamlin_fi_pgn_set_op_status(qrn_domain *node, int32_t status)
try {
    ENTRY("set_op_status");
    DELAYED();
    return p->setOpStatus(node, status);
}
ENTRY_FAILS_WITH("set_op_status", QRN_ERR_FAILED)

int32_t tamlin_fi_pgn_set_comp_status(qrn_domain *node, int32_t a, wchar_t *b, int32_t c)
try {
    ENTRY("set_comp_status");
    DELAYED();
    return p->setCompStatus(node, a, b, c);
}
ENTRY_FAILS_WITH("set_comp_status", QRN_ERR_FAILED)

int32_t tamlin_fi_pgn_set_restorepaths(qrn_domain *node, wchar_t *paths, int32_t count)
try {
    ENTRY("set_restorepaths");
    DELAYED();
    return p->setRestorepaths(node, paths, count);
}
ENTRY_FAILS_WITH("set_restorepaths", QRN_ERR_FAILED)

}  // extern "C"
