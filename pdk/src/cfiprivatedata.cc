#include "cfiprivatedata.h"

#include <cstring>

#include "cfiformatoption.h"
#include "cfistringtool.h"
#include "cfitracelogfunction.h"
#include "cfiudid.h"
#include "qorinutil.h"
#include "qrn_results.h"

namespace qorin_pdk_4_4 {

namespace {

int modeIndex(int mode)
{
    return mode == 1 ? 1 : 0;
}

}  // namespace

CFiPrivateData::CFiPrivateData() : CFiPrivateData(static_cast<qorin_objid *>(nullptr), false) {}

CFiPrivateData::CFiPrivateData(qorin_objid *id, bool isAltNode) :
    m_objectId(id),
    m_ownsObjectId(false),
    m_isAltNode(isAltNode),
    m_transportable(false),
    m_intent(0),
    m_owner(0),
    m_group(0)
{
}

CFiPrivateData::CFiPrivateData(const wchar_t *name, bool isAltNode) :
    CFiPrivateData(static_cast<qorin_objid *>(nullptr), isAltNode)
{
    if (name != nullptr) {
        m_objectId = qorin_get_objid(name, static_cast<uint32_t>((wcslen(name) + 1) * sizeof(wchar_t)), 3);
        m_ownsObjectId = m_objectId != nullptr;
    }
}

CFiPrivateData::~CFiPrivateData()
{
    if (m_ownsObjectId) {
        free(m_objectId);
    }
}

bool CFiPrivateData::hasConfigInfoList(int mode)
{
    return !m_configInfoLists[modeIndex(mode)].isNull();
}

CFiConfigParamInfoList &CFiPrivateData::configInfoList(int mode)
{
    CFiSmartPtr<CFiConfigParamInfoList> &list = m_configInfoLists[modeIndex(mode)];
    if (list.isNull()) {
        list = new CFiConfigParamInfoList;
    }
    return *list;
}

bool CFiPrivateData::hasConfigDataList(int mode)
{
    return !m_configDataLists[modeIndex(mode)].isNull();
}

CFiConfigParamDataList &CFiPrivateData::configDataList(int mode)
{
    CFiSmartPtr<CFiConfigParamDataList> &list = m_configDataLists[modeIndex(mode)];
    if (list.isNull()) {
        list = new CFiConfigParamDataList;
    }
    return *list;
}

void CFiPrivateData::addDefaultConfigParamsToDataList(int mode, CFiConfigParamInfoList *list)
{
    CFiTraceLogFunction traceFunction(m_traceLog, "qorin_pdk_4_4::CFiPrivateData::addDefaultConfigParamsToDataList");
    const CFiConfigParamDataList defaults =
        list != nullptr ? list->getDefaultDataList() : configInfoList(mode).getDefaultDataList();
    const std::vector<std::string> defaultKeys = defaults.getKeys();
    if (defaultKeys.empty()) {
        return;
    }
    CFiConfigParamDataList &data = configDataList(mode);
    const std::vector<std::string> keys = data.getKeys();
    if (keys.empty()) {
        data = defaults;
        return;
    }
    for (const std::string &key : defaultKeys) {
        // A configured key that merely contains the default's key counts as setting it too.
        bool configured = false;
        for (const std::string &given : keys) {
            if (given.find(key) != std::string::npos) {
                configured = true;
                break;
            }
        }
        if (!configured) {
            data.addParamData(CFiFormatOption(key.c_str(), defaults.getValue(key.c_str()).c_str()));
        }
    }
}

void CFiPrivateData::setIntent(qrn_intent intent)
{
    m_intent = intent;
}

qrn_intent CFiPrivateData::getIntent()
{
    return m_intent;
}

void CFiPrivateData::setSplitType(const char *splitType)
{
    m_splitType = splitType != nullptr ? splitType : "";
}

std::string CFiPrivateData::getSplitType()
{
    return m_splitType;
}

void CFiPrivateData::setSessionId(const char *sessionId)
{
    if (sessionId != nullptr) {
        m_sessionId = sessionId;
    }
}

std::string CFiPrivateData::getSessionId()
{
    return m_sessionId;
}

std::vector<std::wstring> CFiPrivateData::getHostList()
{
    return m_hostList;
}

void CFiPrivateData::setHostList(qrn_host_infn *hosts)
{
    for (; hosts != nullptr; hosts = hosts->next) {
        if (hosts->name != nullptr) {
            m_hostList.emplace_back(hosts->name);
        }
    }
}

bool CFiPrivateData::getTransportable()
{
    return m_transportable;
}

void CFiPrivateData::setTransportable(bool transportable)
{
    m_transportable = transportable;
}

int CFiPrivateData::setNodeState(qrn_blob *)
{
    return 0;
}

int CFiPrivateData::getNodeState(qrn_blob *blob)
{
    if (blob == nullptr) {
        return QRN_ERR_INVALID_ARGUMENT;
    }
    const wchar_t *name = getObjName();
    std::string text = "<NODE_NAME>" + CFiStringTool::wstr2str(name != nullptr ? name : L"") + "</NODE_NAME>\n" +
                       "<IS_ALT_NODE>" + CFiStringTool::bool2str(m_isAltNode) + "</IS_ALT_NODE>\n" + "<SESSION_ID>" +
                       m_sessionId + "</SESSION_ID>\n";
    std::wstring wide = CFiStringTool::str2wstr(text);
    size_t bytes = (wide.size() + 1) * sizeof(wchar_t);
    void *data = qorin_alloc_buf(bytes);
    if (data == nullptr) {
        return QRN_ERR_NO_MEMORY;
    }
    memcpy(data, wide.c_str(), bytes);
    blob->length = bytes;
    blob->data = data;
    blob->filled = 1;
    return 0;
}

wchar_t *CFiPrivateData::getObjName()
{
    return m_objectId != nullptr ? m_objectId->text : nullptr;
}

void CFiPrivateData::addSubObject(qorin_objid *id)
{
    m_subObjects.push_back(id);
}

qorin_objid **CFiPrivateData::getSubObjectList()
{
    return m_subObjects.empty() ? nullptr : m_subObjects.data();
}

int CFiPrivateData::getSubObjectListLength()
{
    return static_cast<int>(m_subObjects.size());
}

void CFiPrivateData::setIsAltNode(bool isAltNode)
{
    m_isAltNode = isAltNode;
}

bool CFiPrivateData::getIsAltNode()
{
    return m_isAltNode;
}

std::string CFiPrivateData::getConfiguredTarget()
{
    return m_configuredTarget;
}

std::vector<std::string> CFiPrivateData::getTargets()
{
    return m_targets;
}

void CFiPrivateData::addTarget(std::string target)
{
    m_targets.push_back(std::move(target));
}

void CFiPrivateData::setConfiguredTarget(std::string &target)
{
    m_configuredTarget = target;
}

int CFiPrivateData::selectTargetFromConfigData()
{
    CFiTraceLogFunction traceFunction(m_traceLog, "qorin_pdk_4_4::CFiPrivateData::selectTargetFromConfigData");
    static const char KEY[] = "snapshot_resource_spec";
    const wchar_t *objName = getObjName();
    const wchar_t *name = objName != nullptr ? objName : L"";
    const CFiUdid udid(objName);
    trace(3, "called for UDID [%s] \n", udid.toString().c_str());

    if (!hasConfigDataList(1)) {
        trace(1, "Error: No snapshot configuration data has been specified for [%S]", name);
        return QRN_ERR_FAILED;
    }
    std::string value;
    if (configDataList(1).getValue(KEY, value) != 0) {
        trace(1, "Configuration data parameter \"%s\" unspecified for object [%S].", KEY, name);
        return QRN_ERR_FAILED;
    }
    trace(3, "FI_CONFIG_PARAM_SNAPSHOT_RESOURCE_SPEC: [%s]", value.c_str());

    value = CFiStringTool::convertFromXmlSpecialCharacters(value);
    const std::vector<std::string> entries = CFiStringTool::tokenize(value, "[]&\n\r");
    if (entries.empty() || value.empty()) {
        trace(1, "Configuration \"%s\" has no resources specified for source [%S].", value.c_str(), name);
        return QRN_ERR_FAILED;
    }

    m_targets.clear();
    bool found = false;
    for (const std::string &entry : entries) {
        trace(3, "Info: resourceSpec [%s] \n", entry.c_str());
        const std::vector<std::string> parts = CFiStringTool::tokenize(entry, ";");
        if (parts.empty()) {
            trace(1, "Source configuration \"%s\" has not targets specified for [%S].", entry.c_str(), name);
            return QRN_ERR_FAILED;
        }
        std::string enclosure;
        for (const std::string &part : parts) {
            trace(3, "resourceSpec [%s] \n", part.c_str());
            std::string device;
            const size_t separator = part.find("##");
            if (separator == std::string::npos) {
                device = part;
            } else {
                device = part.substr(separator + 2);
                // A target's enclosure is read and not used: targets lie in the source's cell.
                enclosure = part.substr(0, separator);
            }
            trace(6, "RESINFO: [%s][%s]", device.c_str(), enclosure.c_str());
            if (device.empty()) {
                trace(1, "Source configuration \"%s\" has no device data specified for [%S].", part.c_str(), name);
                return QRN_ERR_FAILED;
            }
            if (found) {
                addTarget(device);
                continue;
            }
            if (enclosure.empty()) {
                trace(1, "Source configuration \"%s\" has no enclosure data specified for [%S].", part.c_str(), name);
                return QRN_ERR_FAILED;
            }
            if (!CFiStringTool::CompareNoCase(device, udid.getDisk()) ||
                !CFiStringTool::CompareNoCase(enclosure, udid.getEnclosure())) {
                break;
            }
            trace(3, "Source found [%s] \n", udid.toString().c_str());
            found = true;
        }
        // The first entry for this node's disk wins; later ones aren't read.
        if (found) {
            break;
        }
    }
    if (!found) {
        trace(1, "No matching source specification found for [%S].", name);
        return QRN_ERR_FAILED;
    }
    const std::vector<std::string> targets = getTargets();
    if (targets.empty()) {
        trace(1, "Source configuration found, but no targets are specified for [%S].", name);
        return QRN_ERR_FAILED;
    }
    CFiUdid target(udid);
    target.setDisk(targets.front());
    std::string text = target.toString();
    setConfiguredTarget(text);
    trace(3, "Target Udid [%s] \n", text.c_str());
    return QRN_OK;
}

void CFiPrivateData::setOwnerGID(int32_t owner, int32_t group)
{
    m_owner = owner;
    m_group = group;
}

int CFiPrivateData::getOwnerGID(qrn_ownergid *out) const
{
    if (out == nullptr) {
        return QRN_ERR_INVALID_ARGUMENT;
    }
    out->owner = m_owner;
    out->group = m_group;
    return 0;
}

}  // namespace qorin_pdk_4_4
