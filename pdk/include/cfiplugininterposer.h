#ifndef CFIPLUGININTERPOSER_H
#define CFIPLUGININTERPOSER_H

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "cfiexport.h"
#include "cfipblmops.h"
#include "cfipluginbase.h"
#include "sfifimgroupinfo.h"
#include "sfifiminfo.h"

namespace qorin_pdk_4_4 {

// The machinery between the host's node tree and a provider: the table of snapshot methods
// with their claim patterns, interposition ("<provider>" + node name, one group node per
// method), the claim of interposer nodes, the node life cycle, and the mapping of every
// import and deport form onto importNode.
//
// The tables are filled by the provider's init before the host calls anything else and are
// read without a lock; only each group's node changes later, in initNode and deInitNode.
class QORIN_PDK_API CFiPluginInterposer : public CFiPluginBase {
public:
    ~CFiPluginInterposer() override;

    int claim(qorin_objid *id, qorin_objid ***subordinates, int *count) override;
    int supportsFiType(qrn_domain *node, char *fiType) override;
    int importTreeNode(qrn_domain *node, qorin_objid **a, qorin_objid **b, int count, qorin_objid **out) override;
    int initNode(qrn_domain *node, qrn_domain **parents, int count, qorin_objid *id) override;
    int initAltNode(qrn_domain *source, qrn_domain *other, qrn_domain *target, bool remote) override;
    void deInitNode(qrn_domain *node) override;
    int isReady(char *sessionId, qrn_splitnode **list, int count) override;
    qrn_interpose interpose(qrn_domain *node, qorin_objid **outId, qorin_objid ***outGroups, int *outCount) override;
    int checkNodeExistence(qrn_domain *node, int *exists) override;
    int importResource(wchar_t **out, wchar_t *resource, wchar_t *host, wchar_t *other, int flags, wchar_t **out2,
                       wchar_t *other2) override;
    int deportResource(wchar_t *resource, wchar_t *host, wchar_t *other, wchar_t *other2, int flags) override;

    virtual void addIgnoreNodeType(int type);
    virtual void setDefaultNodeType(int type);
    // Presents (or with deport, takes away) the disk named by node to the hosts. mode is 1
    // for the node forms and 2 for the resource forms. Not provided here: 4.
    virtual int importNode(std::wstring node, std::vector<std::wstring> hosts, bool transportable, bool singleHost,
                           bool deport, int mode);

    // The provider's LUN map.
    CFiPblmOps &getPblmOps() { return m_pblmOps; }

protected:
    CFiPluginInterposer();

    // Adds a snapshot method under a claim pattern; an empty group is named
    // method + "_FIM_GROUP". An empty pattern is refused.
    void addFim(std::string pattern, std::string method, std::string quiesce, int flags, std::string group);
    // For a group node its one method; for an interposer node the methods of the first
    // pattern (in key order) in its name; otherwise none.
    std::vector<SFiFimInfo> getFims(std::wstring name);
    bool isGroupNode(std::wstring name);
    bool isInterposerNode(std::wstring name);
    // "<" + provider name + ">"
    std::wstring getInterposeNodePrefix();

private:
    // For the resource forms: 3 without a resource, 21 for one that is no UDID, else 0.
    static int checkResource(const wchar_t *resource);
    // The host, if one was given, as a list (traced for api).
    std::vector<std::wstring> hostList(const wchar_t *host, const char *api);

    int32_t m_ignoreNodeTypes;
    int32_t m_defaultNodeType;
    CFiPblmOps m_pblmOps;
    std::map<std::string, SFiFimGroupInfo> m_fimGroups;
    std::map<std::string, std::vector<SFiFimInfo>> m_fimsByPattern;
};

}  // namespace qorin_pdk_4_4

#endif
