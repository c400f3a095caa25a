#include "cfiplugininterposer.h"

#include <cstdlib>
#include <cstring>

#include "cfiprivatedatamanager.h"
#include "cfisession.h"
#include "cfistringtool.h"
#include "cfitracelogfunction.h"
#include "cfiudid.h"
#include "qorinutil.h"
#include "qrn_results.h"

namespace qorin_pdk_4_4 {

#define INTERPOSER_TRACE(op) CFiTraceLogFunction traceFunction(m_traceLog, "qorin_pdk_4_4::CFiPluginInterposer::" op)

namespace {

// Node types that are never interposed on, and the type an initialised node gets.
const int32_t kIgnoredNodeTypes = 2048;
const int32_t kDefaultNodeType = 4098;

std::wstring textOf(const qorin_objid *id)
{
    return id != nullptr && id->text != nullptr ? std::wstring(id->text) : std::wstring();
}

const wchar_t *printable(const wchar_t *text)
{
    return text != nullptr ? text : L"";
}

qorin_objid *makeId(const std::wstring &text)
{
    return qorin_get_objid(text.c_str(), static_cast<uint32_t>((text.size() + 1) * sizeof(wchar_t)), 3);
}

}  // namespace

CFiPluginInterposer::CFiPluginInterposer() : m_ignoreNodeTypes(kIgnoredNodeTypes), m_defaultNodeType(kDefaultNodeType)
{
}

CFiPluginInterposer::~CFiPluginInterposer()
{
    for (auto &kv : m_fimGroups) {
        free(kv.second.id);
    }
}

void CFiPluginInterposer::addIgnoreNodeType(int type)
{
    m_ignoreNodeTypes |= type;
}

void CFiPluginInterposer::setDefaultNodeType(int type)
{
    m_defaultNodeType = type;
}

int CFiPluginInterposer::importNode(std::wstring, std::vector<std::wstring>, bool, bool, bool, int)
{
    INTERPOSER_TRACE("importNode");
    return QRN_ERR_NOT_PROVIDED;
}

void CFiPluginInterposer::addFim(std::string pattern, std::string method, std::string quiesce, int flags,
                                 std::string group)
{
    INTERPOSER_TRACE("addFim");
    if (pattern.empty()) {
        trace(1, "ERROR: Invalid arg to addFim(), invalid claim pattern");
        return;
    }
    if (group.empty()) {
        group = method + "_FIM_GROUP";
    }
    SFiFimGroupInfo info;
    info.group = group;
    info.pattern = pattern;
    info.id = makeId(CFiStringTool::str2wstr(group));
    auto found = m_fimGroups.find(group);
    if (found != m_fimGroups.end()) {
        free(found->second.id);
        found->second = info;
    } else {
        m_fimGroups.emplace(group, info);
    }
    SFiFimInfo fim;
    fim.group = group;
    fim.method = method;
    fim.quiesceType = quiesce;
    fim.flags = flags;
    m_fimsByPattern[pattern].push_back(fim);
}

std::vector<SFiFimInfo> CFiPluginInterposer::getFims(std::wstring name)
{
    std::string narrow = CFiStringTool::wstr2str(name);
    if (isGroupNode(name)) {
        for (const auto &kv : m_fimsByPattern) {
            for (const SFiFimInfo &fim : kv.second) {
                if (fim.group == narrow) {
                    return {fim};
                }
            }
        }
    } else if (isInterposerNode(name)) {
        for (const auto &kv : m_fimsByPattern) {
            if (narrow.find(kv.first) != std::string::npos) {
                return kv.second;
            }
        }
    }
    return {};
}

bool CFiPluginInterposer::isGroupNode(std::wstring name)
{
    return m_fimGroups.count(CFiStringTool::wstr2str(name)) != 0;
}

bool CFiPluginInterposer::isInterposerNode(std::wstring name)
{
    return name.find(getInterposeNodePrefix()) != std::wstring::npos;
}

std::wstring CFiPluginInterposer::getInterposeNodePrefix()
{
    return L"<" + m_providerName + L">";
}

int CFiPluginInterposer::claim(qorin_objid *id, qorin_objid ***subordinates, int *count)
{
    INTERPOSER_TRACE("claim");
    if (id == nullptr || id->text == nullptr) {
        trace(3, "ERROR: Invalid primary object id for claim()");
        return QRN_CLAIM_NONE;
    }
    std::string narrow = CFiStringTool::wstr2str(id->text);
    // Only this provider's own interposer nodes are claimed, and only as a secondary.
    if (isInterposerNode(id->text)) {
        for (const auto &kv : m_fimsByPattern) {
            if (narrow.find(kv.first) != std::string::npos) {
                if (subordinates != nullptr) {
                    *subordinates = nullptr;
                }
                if (count != nullptr) {
                    *count = 0;
                }
                trace(3, "Info, claiming node [%s] QRN_CLAIM_SECONDARY", narrow.c_str());
                return QRN_CLAIM_SECONDARY;
            }
        }
    }
    trace(3, "Info, NOT claiming node [%s]", narrow.c_str());
    return QRN_CLAIM_NONE;
}

qrn_interpose CFiPluginInterposer::interpose(qrn_domain *node, qorin_objid **outId, qorin_objid ***outGroups,
                                             int *outCount)
{
    INTERPOSER_TRACE("interpose");
    if (node == nullptr || outId == nullptr || outGroups == nullptr || outCount == nullptr) {
        return QRN_NOT_INTERPOSED;
    }
    std::wstring text = textOf(node->id);
    std::string narrow = CFiStringTool::wstr2str(text);
    for (const auto &kv : m_fimsByPattern) {
        if ((node->type & static_cast<uint32_t>(m_ignoreNodeTypes)) != 0) {
            return QRN_NOT_INTERPOSED;
        }
        if (narrow.find(kv.first) == std::string::npos) {
            continue;
        }
        std::wstring name = getInterposeNodePrefix() + text;
        qorin_objid *id = makeId(name);
        if (id == nullptr) {
            trace(1, "ERROR: interpose(): no memory for the interposer node's identifier");
            return QRN_NOT_INTERPOSED;
        }
        std::vector<std::wstring> groups;
        for (const SFiFimInfo &fim : kv.second) {
            groups.push_back(CFiStringTool::str2wstr(fim.group));
        }
        if (CFiSession::makeIdArray(groups, 3, outGroups, outCount) != 0) {
            // Half an answer is no answer: the host gets nothing to free.
            free(id);
            *outGroups = nullptr;
            *outCount = 0;
            trace(1, "ERROR: interpose(): no memory for the group identifiers");
            return QRN_NOT_INTERPOSED;
        }
        *outId = id;
        trace(3, "Info, interposing with node [%S] on [%S].", name.c_str(), text.c_str());
        return QRN_INTERPOSED;
    }
    return QRN_NOT_INTERPOSED;
}

int CFiPluginInterposer::initNode(qrn_domain *node, qrn_domain **, int, qorin_objid *)
{
    INTERPOSER_TRACE("initNode");
    if (node == nullptr) {
        return QRN_ERR_INVALID_ARGUMENT;
    }
    try {
        const wchar_t *text = node->id != nullptr ? node->id->text : nullptr;
        trace(3, "CFiPluginInterposer::initNode for Node [%S]", printable(text));
        for (auto &kv : m_fimGroups) {
            if (qorin_objidcmp(node->id, kv.second.id) == 0) {
                // A group node is bound once; the host may introduce it again.
                if (kv.second.node == node) {
                    return 0;
                }
                kv.second.node = node;
                break;
            }
        }
        node->name = const_cast<wchar_t *>(text);
        node->cleared80 = 0;
        node->methods = nullptr;
        node->type = static_cast<uint32_t>(m_defaultNodeType);

        // The records copy each group's node as it stands now: a group initialised later
        // is not filled in.
        qrn_method_entry **tail = &node->methods;
        for (const SFiFimInfo &fim : getFims(textOf(node->id))) {
            auto group = m_fimGroups.find(fim.group);
            qrn_domain *groupNode = group != m_fimGroups.end() ? group->second.node : nullptr;
            auto *entry = new qrn_method_entry{nullptr, nullptr, nullptr};
            *tail = entry;
            tail = &entry->next;
            entry->quiesce = new qrn_quiescenode{strdup(fim.quiesceType.c_str()), node, groupNode};
            entry->split = new qrn_splitnode{strdup(fim.method.c_str()), node, groupNode};
        }

        CFiPrivateDataFactoryPtr factory = privateDataFactory();
        if (!factory.isNull()) {
            factory->create(node, false);
        }
        return 0;
    } catch (...) {
        trace(1, "ERROR: Caught unhandled exception at %s, %d", __FILE__, __LINE__);
        return QRN_ERR_FAILED;
    }
}

void CFiPluginInterposer::deInitNode(qrn_domain *node)
{
    INTERPOSER_TRACE("deInitNode");
    if (node == nullptr) {
        return;
    }
    trace(3, "CFiPluginInterposer::deInitNode for Node [%S]",
          printable(node->id != nullptr ? node->id->text : nullptr));
    for (auto &kv : m_fimGroups) {
        if (qorin_objidcmp(node->id, kv.second.id) == 0) {
            kv.second.node = nullptr;
            break;
        }
    }
    freeMethodList(node);
    CFiPrivateDataFactoryPtr factory = privateDataFactory();
    if (!factory.isNull()) {
        factory->destroy(node);
    }
}

int CFiPluginInterposer::supportsFiType(qrn_domain *node, char *fiType)
{
    INTERPOSER_TRACE("supportsFiType");
    if (node == nullptr) {
        return 0;
    }
    const SFiFimInfo *hit = nullptr;
    std::vector<SFiFimInfo> fims = getFims(textOf(node->id));
    for (const SFiFimInfo &fim : fims) {
        if (fiType != nullptr && (strcmp(fiType, "any") == 0 || fim.method == fiType)) {
            hit = &fim;
            break;
        }
    }
    if (hit == nullptr) {
        if (node->capability != nullptr) {
            *node->capability = 0;
        }
        return 0;
    }
    CFiPrivateDataFactoryPtr factory = privateDataFactory();
    CFiPrivateDataPtr data = factory.isNull() ? CFiPrivateDataPtr() : factory->find(node);
    if (node->capability != nullptr) {
        // Import options decide the capability once the host has given them.
        if (!data.isNull() && !data->getHostList().empty()) {
            *node->capability = data->getTransportable() ? 2 : 1;
        } else {
            *node->capability |= static_cast<uint32_t>(hit->flags);
        }
    }
    return 1;
}

int CFiPluginInterposer::isReady(char *, qrn_splitnode **list, int count)
{
    INTERPOSER_TRACE("isReady");
    for (int i = 0; list != nullptr && i < count; ++i) {
        if (list[i] == nullptr) {
            continue;
        }
        if (list[i]->node != nullptr) {
            list[i]->node->flags |= QRN_NODE_READY;
        }
        if (list[i]->group != nullptr) {
            list[i]->group->flags |= QRN_NODE_READY;
        }
    }
    return 0;
}

int CFiPluginInterposer::checkNodeExistence(qrn_domain *node, int *exists)
{
    INTERPOSER_TRACE("checkNodeExistence");
    if (m_fimsByPattern.empty()) {
        return QRN_ERR_NOT_PROVIDED;
    }
    if (exists != nullptr) {
        *exists = node != nullptr && isInterposerNode(textOf(node->id)) ? 1 : 0;
    }
    return 0;
}

int CFiPluginInterposer::initAltNode(qrn_domain *source, qrn_domain *, qrn_domain *target, bool remote)
{
    INTERPOSER_TRACE("initAltNode");
    if (target == nullptr) {
        trace(1, "ERROR: initAltNode(): target node is invalid.");
        return QRN_ERR_INVALID_ARGUMENT;
    }
    CFiPrivateDataFactoryPtr factory = privateDataFactory();
    if (!factory.isNull()) {
        factory->create(target, true);
    }
    target->cleared80 = 0;
    target->methods = nullptr;
    target->type |= static_cast<uint32_t>(m_defaultNodeType);

    CFiPrivateDataPtr data = factory.isNull() || source == nullptr ? CFiPrivateDataPtr() : factory->find(source);
    // A local alternate node is presented to the source's hosts at once, unless the copy is
    // to be transported or the host said what it intends.
    if (!remote && !data.isNull() && !data->getTransportable() && data->getIntent() == 0) {
        return importNode(textOf(target->id), data->getHostList(), false, false, false, 1);
    }
    return 0;
}

int CFiPluginInterposer::importTreeNode(qrn_domain *node, qorin_objid **, qorin_objid **, int, qorin_objid **out)
{
    INTERPOSER_TRACE("importTreeNode");
    if (node == nullptr || node->importId == nullptr || node->importId->text == nullptr) {
        trace(1, "Error: Invalid input arguments to importTreeNode");
        return QRN_ERR_INVALID_ARGUMENT;
    }
    std::wstring text = node->importId->text;
    CFiPrivateDataFactoryPtr factory = privateDataFactory();
    CFiPrivateDataPtr data = factory.isNull() ? CFiPrivateDataPtr() : factory->find(node);
    int result = data.isNull() ? importNode(text, {}, false, false, false, 1)
                               : importNode(text, data->getHostList(), data->getTransportable(), false, false, 1);
    if (out != nullptr) {
        *out = node->importId;
    }
    return result;
}

int CFiPluginInterposer::checkResource(const wchar_t *resource)
{
    if (resource == nullptr) {
        return QRN_ERR_INVALID_ARGUMENT;
    }
    try {
        CFiUdid udid(resource);
    } catch (const CFiUdidException &) {
        return QRN_ERR_BAD_UDID;
    }
    return 0;
}

std::vector<std::wstring> CFiPluginInterposer::hostList(const wchar_t *host, const char *api)
{
    std::vector<std::wstring> hosts;
    if (host != nullptr) {
        hosts.emplace_back(host);
        trace(3, "Hostname [%S] was passed to %s API. Adding it hostList ", host, api);
    } else {
        trace(3, "No hostname was passed to the %s API", api);
    }
    return hosts;
}

int CFiPluginInterposer::importResource(wchar_t **, wchar_t *resource, wchar_t *host, wchar_t *, int flags, wchar_t **,
                                        wchar_t *)
{
    INTERPOSER_TRACE("importResource");
    if (int refused = checkResource(resource)) {
        return refused;
    }
    const std::vector<std::wstring> hosts = hostList(host, "importResource");
    if (flags & QRN_IMPORT_NOT_PROVIDED) {
        return QRN_ERR_NOT_PROVIDED;
    }
    if (flags & QRN_IMPORT_ALL) {
        return importNode(resource, hosts, false, false, false, 2);
    }
    if (flags & QRN_IMPORT_SINGLE_HOST) {
        return importNode(resource, hosts, false, true, false, 2);
    }
    return QRN_ERR_FAILED;
}

int CFiPluginInterposer::deportResource(wchar_t *resource, wchar_t *host, wchar_t *, wchar_t *, int flags)
{
    INTERPOSER_TRACE("deportResource");
    if (int refused = checkResource(resource)) {
        return refused;
    }
    if (flags & QRN_DEPORT_NOTHING) {
        return 0;
    }
    const std::vector<std::wstring> hosts = hostList(host, "deportResource");
    if (flags & QRN_DEPORT_SINGLE_HOST) {
        return importNode(resource, hosts, false, true, true, 2);
    }
    if (flags & QRN_DEPORT_ALL) {
        return importNode(resource, hosts, false, false, true, 2);
    }
    if (flags & QRN_DEPORT_NOT_PROVIDED) {
        return QRN_ERR_NOT_PROVIDED;
    }
    return 0;
}

}  // namespace qorin_pdk_4_4
