#include "cfipluginbase.h"

#include "cfierror.h"
#include "cfimutexwrapper.h"
#include "cfiprivatedata.h"
#include "cfiprivatedatamanager.h"
#include "cfisessionmanager.h"
#include "cfistringtool.h"
#include "cfitracelogfunction.h"
#include "qrn_results.h"

namespace qorin_pdk_4_4 {

// Every default opens the function trace named after its qualified name.
#define PLUGIN_BASE_TRACE(op) CFiTraceLogFunction traceFunction(m_traceLog, "qorin_pdk_4_4::CFiPluginBase::" op)

namespace {

bool g_shuttingDown = false;

}  // namespace

CFiPluginBase::CFiPluginBase() : m_messageIndexOffset(6000), m_delayedInitDone(false) {}

CFiPluginBase::~CFiPluginBase() = default;

int CFiPluginBase::delayedInit()
{
    return 0;
}

CFiConfigParamInfoList &CFiPluginBase::globalConfigInfoList(int mode, bool group)
{
    int index = mode == 1 ? 1 : 0;
    return group ? m_groupParamLists[index] : m_nodeParamLists[index];
}

int CFiPluginBase::init()
{
    PLUGIN_BASE_TRACE("init");
    return 0;
}

void CFiPluginBase::fini()
{
    PLUGIN_BASE_TRACE("fini");
}

int CFiPluginBase::claim(qorin_objid *, qorin_objid ***, int *)
{
    PLUGIN_BASE_TRACE("claim");
    return 0;
}

int CFiPluginBase::supportsFiType(qrn_domain *node, char *)
{
    PLUGIN_BASE_TRACE("supportsFiType");
    if (node != nullptr && node->capability != nullptr) {
        *node->capability = 0;
    }
    return 0;
}

int CFiPluginBase::deportTree(qrn_domain *, qrn_domain *, qrn_accessnode *)
{
    PLUGIN_BASE_TRACE("deportTree");
    return 0;
}

int CFiPluginBase::importTreeNode(qrn_domain *, qorin_objid **, qorin_objid **, int, qorin_objid **)
{
    PLUGIN_BASE_TRACE("importTreeNode");
    return 0;
}

int CFiPluginBase::initNode(qrn_domain *, qrn_domain **, int, qorin_objid *)
{
    PLUGIN_BASE_TRACE("initNode");
    return 0;
}

int CFiPluginBase::config(qrn_domain *node, int op, char *sessionId, qrn_confspec *spec)
{
    PLUGIN_BASE_TRACE("config");
    if (node == nullptr || spec == nullptr) {
        return QRN_ERR_INVALID_ARGUMENT;
    }
    CFiPrivateDataFactoryPtr factory = privateDataFactory();
    CFiPrivateDataPtr data = factory.isNull() ? CFiPrivateDataPtr() : factory->find(node);
    if (data.isNull()) {
        return QRN_ERR_INVALID_ARGUMENT;
    }
    trace(3, " config str %S \n", spec->text != nullptr ? spec->text : L"");
    data->setSessionId(sessionId);
    const bool group = node->members != nullptr && node->members->count != 0 && node->members->members != nullptr &&
                       node->members->members[0] == node;
    if (spec->selector1 == 0 && spec->selector2 == 0) {
        spec->text = nullptr;
        return QRN_OK;
    }
    const int mode = spec->selector1 != 0 ? 1 : 0;
    int result = QRN_OK;
    // The host frees what it gets; a copy that can't be made is a failed allocation.
    auto hand = [&](const wchar_t *xml) {
        spec->text = CFiStringTool::wstrdup(xml);
        if (spec->text == nullptr) {
            result = QRN_ERR_NO_MEMORY;
        }
    };

    switch (op) {
    case QRN_CONFIG_GET: {
        if (data->hasConfigDataList(mode)) {
            CFiConfigParamDataList &values = data->configDataList(mode);
            if (values.size() != 0) {
                hand(values.getXML());
            } else {
                spec->text = nullptr;
            }
        } else if (data->hasConfigInfoList(mode)) {
            CFiConfigParamInfoList &infos = data->configInfoList(mode);
            if (infos.isEmpty()) {
                spec->text = nullptr;
            } else {
                CFiConfigParamDataList &values = data->configDataList(mode);
                values = infos.getDefaultDataList();
                hand(values.getXML());
            }
        } else {
            // Nothing is stored: a node keeps no values it was never given.
            const CFiConfigParamDataList defaults = globalConfigInfoList(mode, false).getDefaultDataList();
            if (*defaults.getXML() != 0) {
                hand(defaults.getXML());
            } else {
                spec->text = nullptr;
            }
        }
        trace(1, "GET: Mode[%d]: %S \n", mode, spec->text != nullptr ? spec->text : L"");
        break;
    }
    case QRN_CONFIG_SET:
    case QRN_CONFIG_SET_ALTERNATE: {
        if (spec->text == nullptr) {
            trace(1, "ERROR: SET: Mode[%d], Invalid config string.\n", mode);
            return QRN_OK;
        }
        CFiConfigParamDataList &values = data->configDataList(mode);
        result = values.parse(spec->text);
        if (result == QRN_OK) {
            if (data->hasConfigInfoList(mode)) {
                data->addDefaultConfigParamsToDataList(mode, nullptr);
            } else {
                data->addDefaultConfigParamsToDataList(mode, &globalConfigInfoList(mode, false));
            }
            hand(values.getXML());
        } else {
            trace(1, "ERROR: SET: Mode[%d]: Invalid XML [%S] \n", mode, spec->text);
            trace(1, "ERROR: SET: Mode[%d]: %s", mode, values.getParseError().describe().c_str());
            // The values stay the old ones while the document keeps the refused text, as the
            // list's parse leaves it: a host that asks again sees what it sent.
            spec->text = nullptr;
        }
        break;
    }
    case QRN_CONFIG_CLEAR:
        if (data->hasConfigDataList(mode)) {
            data->configDataList(mode).clear();
        }
        break;
    case QRN_CONFIG_GET_PARAMS: {
        if (data->hasConfigInfoList(mode) && !data->configInfoList(mode).isEmpty()) {
            hand(data->configInfoList(mode).getXML());
        } else {
            CFiConfigParamInfoList &infos = globalConfigInfoList(mode, group);
            if (!infos.isEmpty()) {
                hand(infos.getXML());
            } else {
                spec->text = nullptr;
            }
        }
        trace(3, "GETPARAM: Mode[%d]: %S \n", mode, spec->text != nullptr ? spec->text : L"");
        break;
    }
    default:
        break;
    }
    return result;
}

int CFiPluginBase::initAltNode(qrn_domain *, qrn_domain *, qrn_domain *, bool)
{
    PLUGIN_BASE_TRACE("initAltNode");
    return 0;
}

int CFiPluginBase::reAccessTmpObj(qrn_domain *node, qorin_objid *, char *splitType, qrn_domain *, char *sessionId,
                                  qrn_intent intent)
{
    PLUGIN_BASE_TRACE("reAccessTmpObj");
    CFiPrivateDataFactoryPtr factory = privateDataFactory();
    CFiPrivateDataPtr data = factory.isNull() ? CFiPrivateDataPtr() : factory->create(node, false);
    if (!data.isNull()) {
        data->setIntent(intent);
        data->setSessionId(sessionId);
        if (splitType != nullptr) {
            data->setSplitType(splitType);
        }
    }
    return 0;
}

int CFiPluginBase::reAccessAltNode(qrn_domain *node, qorin_objid *, qorin_objid *, char *sessionId, qorin_objid **,
                                   qorin_objid **, int, qrn_intent intent)
{
    PLUGIN_BASE_TRACE("reAccessAltNode");
    CFiPrivateDataFactoryPtr factory = privateDataFactory();
    CFiPrivateDataPtr data = factory.isNull() ? CFiPrivateDataPtr() : factory->create(node, false);
    if (!data.isNull()) {
        data->setIntent(intent);
        data->setSessionId(sessionId);
    }
    return 0;
}

void CFiPluginBase::deInitNode(qrn_domain *node)
{
    PLUGIN_BASE_TRACE("deInitNode");
    if (node == nullptr) {
        return;
    }
    freeMethodList(node);
    CFiPrivateDataFactoryPtr factory = privateDataFactory();
    if (!factory.isNull()) {
        factory->destroy(node);
    }
}

CFiPrivateDataFactoryPtr CFiPluginBase::privateDataFactory() const
{
    return m_privateDataManager.isNull() ? CFiPrivateDataFactoryPtr() : m_privateDataManager->getFactory();
}

void CFiPluginBase::freeMethodList(qrn_domain *node)
{
    if (node == nullptr) {
        return;
    }
    qrn_method_entry *entry = node->methods;
    while (entry != nullptr) {
        qrn_method_entry *next = entry->next;
        if (entry->quiesce != nullptr) {
            free(entry->quiesce->quiesceType);
            delete entry->quiesce;
        }
        if (entry->split != nullptr) {
            free(entry->split->method);
            delete entry->split;
        }
        delete entry;
        entry = next;
    }
    node->methods = nullptr;
}

int CFiPluginBase::dispose(qrn_domain *, qrn_domain *, qrn_splitnode *, qrn_disposition)
{
    PLUGIN_BASE_TRACE("dispose");
    return 0;
}

int CFiPluginBase::online(qrn_domain *, qrn_domain *, int, qrn_disposition)
{
    PLUGIN_BASE_TRACE("online");
    return 0;
}

int CFiPluginBase::subobjList(qrn_domain *node, qorin_objid ***out, int *count)
{
    PLUGIN_BASE_TRACE("subobjList");
    CFiPrivateDataFactoryPtr factory = privateDataFactory();
    CFiPrivateDataPtr data = factory.isNull() ? CFiPrivateDataPtr() : factory->find(node);
    if (data.isNull() || out == nullptr || count == nullptr) {
        return 0;
    }
    // The array stays the private data's.
    *out = data->getSubObjectList();
    *count = data->getSubObjectListLength();
    for (int i = 0; i < *count; ++i) {
        const qorin_objid *id = (*out)[i];
        trace(3, "Info: subobjList, list element [%d,%S]", i, id != nullptr && id->text != nullptr ? id->text : L"");
    }
    return 0;
}

int CFiPluginBase::errMsg(int code, const wchar_t **text)
{
    PLUGIN_BASE_TRACE("errMsg");
    CFiError error(code, std::wstring(), L"pdk/src/cfipluginbase", __LINE__, L"errMsg");
    std::string key = error.getMessageKey(CFiStringTool::wstr2str(m_providerName), m_messageIndexOffset);
    if (!m_catalogManager.isNull()) {
        m_catalogManager->getLocalizedMessage(key.c_str(), "native", const_cast<wchar_t **>(text));
    }
    return 0;
}

int CFiPluginBase::buildAltTree(qrn_domain *, char *, qorin_objid **, qorin_objid **, int, qorin_objid **)
{
    PLUGIN_BASE_TRACE("buildAltTree");
    return 0;
}

int CFiPluginBase::quiesce(qrn_quiescenode **, int, char *)
{
    PLUGIN_BASE_TRACE("quiesce");
    return 0;
}

void CFiPluginBase::unquiesce(qrn_quiescenode **, int)
{
    PLUGIN_BASE_TRACE("unquiesce");
}

int CFiPluginBase::make(char *, qrn_splitnode **, int, qorin_objid ***, int *)
{
    PLUGIN_BASE_TRACE("make");
    return QRN_ERR_NOT_PROVIDED;
}

int CFiPluginBase::makeSnapshots(CFiSessionPtr &)
{
    PLUGIN_BASE_TRACE("makeSnapshots");
    return QRN_ERR_NOT_PROVIDED;
}

int CFiPluginBase::prepare(char *, qrn_splitnode **, int, int)
{
    PLUGIN_BASE_TRACE("prepare");
    return QRN_ERR_NOT_PROVIDED;
}

int CFiPluginBase::prepareSnapshots(CFiSessionPtr &)
{
    PLUGIN_BASE_TRACE("prepareSnapshots");
    return 0;
}

int CFiPluginBase::select(char *, qrn_splitnode **, int)
{
    PLUGIN_BASE_TRACE("select");
    return QRN_ERR_NOT_PROVIDED;
}

int CFiPluginBase::selectSnapshots(CFiSessionPtr &)
{
    PLUGIN_BASE_TRACE("selectSnapshots");
    return 0;
}

int CFiPluginBase::isReady(char *, qrn_splitnode **, int)
{
    PLUGIN_BASE_TRACE("isReady");
    return 0;
}

int CFiPluginBase::cacheDisable(qrn_domain *, int)
{
    PLUGIN_BASE_TRACE("cacheDisable");
    return 0;
}

void CFiPluginBase::cacheEnable(qrn_domain *, int)
{
    PLUGIN_BASE_TRACE("cacheEnable");
}

void CFiPluginBase::cacheFlush(qrn_domain *, int)
{
    PLUGIN_BASE_TRACE("cacheFlush");
}

qrn_interpose CFiPluginBase::interpose(qrn_domain *, qorin_objid **, qorin_objid ***, int *)
{
    PLUGIN_BASE_TRACE("interpose");
    return 0;
}

int CFiPluginBase::getAttr(qrn_domain *, qrn_domain *, qrn_splitnode *, qrn_attributes *)
{
    PLUGIN_BASE_TRACE("getAttr");
    return 0;
}

int CFiPluginBase::getProviderInfo(qrn_provider_list **)
{
    PLUGIN_BASE_TRACE("getProviderInfo");
    return 0;
}

int CFiPluginBase::enumerateNodes(qrn_node_list **out, int *, int, wchar_t *)
{
    PLUGIN_BASE_TRACE("enumerateNodes");
    if (out == nullptr) {
        return QRN_ERR_INVALID_ARGUMENT;
    }
    *out = nullptr;
    return 0;
}

int CFiPluginBase::enumerateAssociations(qrn_assoc_list **out)
{
    PLUGIN_BASE_TRACE("enumerateAssociations");
    if (out == nullptr) {
        return QRN_ERR_INVALID_ARGUMENT;
    }
    *out = nullptr;
    return 0;
}

int CFiPluginBase::enumerateGroupNodes(qrn_group_node_list **out)
{
    PLUGIN_BASE_TRACE("enumerateGroupNodes");
    if (out == nullptr) {
        return QRN_ERR_INVALID_ARGUMENT;
    }
    *out = nullptr;
    return 0;
}

int CFiPluginBase::enumerateFims(qrn_fim_list **out)
{
    PLUGIN_BASE_TRACE("enumerateFims");
    if (out != nullptr) {
        *out = nullptr;
    }
    return 0;
}

int CFiPluginBase::isValidNodeAssociation(qrn_assoc *, int *)
{
    PLUGIN_BASE_TRACE("isValidNodeAssociation");
    return QRN_ERR_NOT_PROVIDED;
}

int CFiPluginBase::getAssociatedNodes(qrn_node *, qrn_node_list **out)
{
    PLUGIN_BASE_TRACE("getAssociatedNodes");
    if (out == nullptr) {
        return QRN_ERR_INVALID_ARGUMENT;
    }
    *out = nullptr;
    return 0;
}

int CFiPluginBase::checkNodeExistence(qrn_domain *, int *)
{
    PLUGIN_BASE_TRACE("checkNodeExistence");
    return QRN_ERR_NOT_PROVIDED;
}

int32_t CFiPluginBase::objctl(std::wstring, CFiObjctlArgs &)
{
    PLUGIN_BASE_TRACE("objctl");
    return 0;
}

int CFiPluginBase::processProviderState(qrn_domain *, qrn_blob *blob, qrn_op_providerstate op)
{
    PLUGIN_BASE_TRACE("processProviderState");
    if (op == QRN_PROVIDERSTATE_READ && blob != nullptr) {
        blob->length = 0;
        blob->data = nullptr;
    }
    return 0;
}

int CFiPluginBase::getLastError(qrn_msg_info **out)
{
    PLUGIN_BASE_TRACE("getLastError");
    if (out != nullptr) {
        *out = m_errorManager.isNull() ? nullptr : const_cast<qrn_msg_info *>(m_errorManager->getLastError());
    }
    return 0;
}

int CFiPluginBase::delLastError(qrn_msg_info **info)
{
    PLUGIN_BASE_TRACE("delLastError");
    if (!m_errorManager.isNull()) {
        m_errorManager->deleteLastError(info);
    }
    return 0;
}

int CFiPluginBase::getLocaleMessage(int *, qrn_msg_info *info, const char *language, wchar_t **out)
{
    PLUGIN_BASE_TRACE("getLocaleMessage");
    if (!m_catalogManager.isNull()) {
        m_catalogManager->getLocalizedMessage(info, language, out);
    }
    return 0;
}

int CFiPluginBase::delLocaleMessage(wchar_t **text)
{
    PLUGIN_BASE_TRACE("delLocaleMessage");
    if (!m_catalogManager.isNull()) {
        m_catalogManager->deleteLocalizedMessage(text);
    }
    return 0;
}

int CFiPluginBase::enableAccess(qrn_node_subobj_list *list, int32_t, int, int)
{
    PLUGIN_BASE_TRACE("enableAccess");
    if (list == nullptr) {
        return QRN_ERR_INVALID_ARGUMENT;
    }
    for (; list != nullptr; list = list->next) {
        if (list->node != nullptr) {
            list->node->flags &= ~static_cast<uint32_t>(QRN_NODE_ACCESS_DISABLED);
        }
    }
    return 0;
}

int CFiPluginBase::disableAccess(qrn_node_subobj_list *list, int32_t)
{
    PLUGIN_BASE_TRACE("disableAccess");
    if (list == nullptr) {
        return QRN_ERR_INVALID_ARGUMENT;
    }
    for (; list != nullptr; list = list->next) {
        if (list->node != nullptr) {
            list->node->flags |= QRN_NODE_ACCESS_DISABLED;
        }
    }
    return 0;
}

int CFiPluginBase::restore(qorin_objid **, qorin_objid **, int32_t, wchar_t *, wchar_t *, int32_t, int32_t *)
{
    PLUGIN_BASE_TRACE("restore");
    return QRN_ERR_NOT_PROVIDED;
}

int CFiPluginBase::resync(qorin_objid **, qorin_objid **, int32_t, wchar_t *, wchar_t *, int32_t, int32_t *)
{
    PLUGIN_BASE_TRACE("resync");
    return 0;
}

int CFiPluginBase::getStatus(qorin_objid **, qorin_objid **, int32_t count, wchar_t *, int32_t, int32_t *status)
{
    PLUGIN_BASE_TRACE("getStatus");
    if (count != 0 && status != nullptr) {
        for (int32_t i = 0; i < count; ++i) {
            status[i] = 8;
        }
    }
    return 0;
}

int CFiPluginBase::prePrepare(qrn_domain *)
{
    PLUGIN_BASE_TRACE("prePrepare");
    return 0;
}

int CFiPluginBase::queryValidSecondaries(wchar_t *, qorin_objid ***, int32_t *count)
{
    PLUGIN_BASE_TRACE("queryValidSecondaries");
    if (count != nullptr) {
        *count = 0;
    }
    return 0;
}

int CFiPluginBase::resourceStatus(qorin_objid *, int32_t, int32_t *, qrn_msg_info **)
{
    PLUGIN_BASE_TRACE("resourceStatus");
    return 0;
}

int CFiPluginBase::revisitPluginNodes(qrn_pgn_node_list *)
{
    PLUGIN_BASE_TRACE("revisitPluginNodes");
    return 0;
}

int CFiPluginBase::verifyQSCombos(qrn_splitnode **, int)
{
    PLUGIN_BASE_TRACE("verifyQSCombos");
    return 0;
}

int CFiPluginBase::setImportOptions(qrn_splitnode **list, int count, qrn_host_infn *hosts, int transportable, void *)
{
    PLUGIN_BASE_TRACE("setImportOptions");
    CFiPrivateDataFactoryPtr factory = privateDataFactory();
    for (int i = 0; !factory.isNull() && list != nullptr && i < count; ++i) {
        CFiPrivateDataPtr data = list[i] != nullptr ? factory->find(list[i]->node) : CFiPrivateDataPtr();
        if (!data.isNull()) {
            data->setHostList(hosts);
            data->setTransportable(transportable != 0);
        }
    }
    return 0;
}

int CFiPluginBase::startBuildAltTree(qrn_domain *, qorin_objid **, void *)
{
    PLUGIN_BASE_TRACE("startBuildAltTree");
    return 0;
}

int CFiPluginBase::translateResourceNames(wchar_t **, int, wchar_t **)
{
    PLUGIN_BASE_TRACE("translateResourceNames");
    return 0;
}

int CFiPluginBase::enumerateEnclosures(qrn_enclosure_node_list **, int *, wchar_t *)
{
    PLUGIN_BASE_TRACE("enumerateEnclosures");
    return 0;
}

int CFiPluginBase::importResource(wchar_t **, wchar_t *, wchar_t *, wchar_t *, int, wchar_t **, wchar_t *)
{
    PLUGIN_BASE_TRACE("importResource");
    return 0;
}

int CFiPluginBase::format(wchar_t **, int, wchar_t *, wchar_t *, wchar_t *, int, wchar_t ***, int *)
{
    PLUGIN_BASE_TRACE("format");
    return 0;
}

int CFiPluginBase::enumerateHostNodes(qrn_host_node_list **, int *, wchar_t *)
{
    PLUGIN_BASE_TRACE("enumerateHostNodes");
    return 0;
}

int CFiPluginBase::onlineResource(wchar_t **, int, wchar_t *, wchar_t *, wchar_t *, wchar_t *, int, wchar_t ***, int *)
{
    PLUGIN_BASE_TRACE("onlineResource");
    return 0;
}

int CFiPluginBase::deportResource(wchar_t *, wchar_t *, wchar_t *, wchar_t *, int)
{
    PLUGIN_BASE_TRACE("deportResource");
    return 0;
}

int CFiPluginBase::isParentPgn(wchar_t *, int *, int)
{
    PLUGIN_BASE_TRACE("isParentPgn");
    return 0;
}

int CFiPluginBase::unformat(wchar_t **, int, int)
{
    PLUGIN_BASE_TRACE("unformat");
    return 0;
}

int CFiPluginBase::preDeportResource(wchar_t *, int, wchar_t *)
{
    PLUGIN_BASE_TRACE("preDeportResource");
    return 0;
}

int CFiPluginBase::refreshTree(qrn_domain *, int, int, qrn_resource *, int, int *, void *, int)
{
    PLUGIN_BASE_TRACE("refreshTree");
    return 0;
}

int CFiPluginBase::getBackupset(qrn_domain *, int, wchar_t **, int, qrn_bkupset *)
{
    PLUGIN_BASE_TRACE("getBackupset");
    return 0;
}

int CFiPluginBase::getAppStatus(qrn_domain *, int, void *)
{
    PLUGIN_BASE_TRACE("getAppStatus");
    return 0;
}

int CFiPluginBase::setOpStatus(qrn_domain *, int)
{
    PLUGIN_BASE_TRACE("setOpStatus");
    return 0;
}

int CFiPluginBase::setCompStatus(qrn_domain *, int, wchar_t *, int)
{
    PLUGIN_BASE_TRACE("setCompStatus");
    return 0;
}

int CFiPluginBase::setRestorepaths(qrn_domain *, wchar_t *, int)
{
    PLUGIN_BASE_TRACE("setRestorepaths");
    return 0;
}

void CFiPluginBase::setProviderName(const std::wstring &name)
{
    m_providerName = name;
}

std::wstring CFiPluginBase::getProviderName() const
{
    return m_providerName;
}

void CFiPluginBase::setMessageIndexOffset(int32_t offset)
{
    m_messageIndexOffset = offset;
}

void CFiPluginBase::registerErrorManager(const CFiErrorManagerPtr &manager)
{
    m_errorManager = manager;
}

void CFiPluginBase::registerCatalogManager(const CFiCatalogManagerPtr &manager)
{
    m_catalogManager = manager;
}

void CFiPluginBase::registerPrivateDataManager(const CFiPrivateDataManagerPtr &manager)
{
    m_privateDataManager = manager;
}

void CFiPluginBase::registerSessionManager(const CFiSessionManagerPtr &manager)
{
    m_sessionManager = manager;
}

ACE_Recursive_Thread_Mutex *CFiPluginBase::getMutex()
{
    return &m_mutex;
}

int CFiPluginBase::invokeDelayedInit()
{
    CFiMutexWrapper lock(&m_mutex, true);
    if (m_delayedInitDone) {
        return 0;
    }
    // Set before the call: a failed delayed initialisation is not retried.
    m_delayedInitDone = true;
    return delayedInit();
}

bool CFiPluginBase::isShuttingDown(bool set)
{
    if (set) {
        g_shuttingDown = true;
    }
    return g_shuttingDown;
}

void CFiPluginBase::addDefaultConfigInfoParam(CFiConfigParamInfo &param, int mode, bool group)
{
    globalConfigInfoList(mode, group).addParamInfo(param);
}

int CFiPluginBase::setOwnerIds(std::string, int32_t, int32_t)
{
    trace(3, "INFO: setOwnerIds done");
    return 0;
}

}  // namespace qorin_pdk_4_4
