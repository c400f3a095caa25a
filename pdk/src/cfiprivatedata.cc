#include "cfiprivatedata.h"

#include <cstring>

#include "cfistringtool.h"
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
