// The interposer on a plug-in with the provider's FIM table: what is claimed and interposed,
// what a node gets at initialisation and loses at deinitialisation, and how the node and
// resource forms of import and deport reach importNode.
#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "cfiplugininterposer.h"
#include "cfiprivatedatamanager.h"
#include "host_node.h"
#include "qrn_results.h"

using namespace qorin_pdk_4_4;

namespace {

const char kPattern[] = "UDID##HP##HSV##";
const char *const kMethods[] = {"HPEVA_VSnap", "HPEVA_Snapshot", "HPEVA_Snapclone", "HPEVA_DRGroup_Snapclone"};
const wchar_t kDisk[] = L"UDID##HP##HSV##5000-1FE1##6005-08B4";
const wchar_t kInterposed[] = L"<tamlin>UDID##HP##HSV##5000-1FE1##6005-08B4";

struct ImportCall {
    std::wstring node;
    std::vector<std::wstring> hosts;
    bool transportable;
    bool singleHost;
    bool deport;
    int mode;
};

class Interposer : public CFiPluginInterposer {
public:
    explicit Interposer(bool withTable = true) : manager(new CFiPrivateDataManager)
    {
        setProviderName(L"tamlin");
        registerPrivateDataManager(manager);
        if (withTable) {
            for (const char *method : kMethods) {
                addFim(kPattern, method, "FI_QUIESCE_NONE", 3, "");
            }
        }
    }
    int importNode(std::wstring node, std::vector<std::wstring> hosts, bool transportable, bool singleHost, bool deport,
                   int mode) override
    {
        calls.push_back({node, hosts, transportable, singleHost, deport, mode});
        return importResult;
    }
    CFiPrivateDataFactoryPtr factory() { return manager->getFactory(); }

    using CFiPluginInterposer::addFim;
    using CFiPluginInterposer::getFims;

    CFiPrivateDataManagerPtr manager;
    std::vector<ImportCall> calls;
    int importResult = 0;
};

using Node = HostNode;

std::wstring group(const char *method)
{
    return std::wstring(method, method + strlen(method)) + L"_FIM_GROUP";
}

void freeIds(qorin_objid *id, qorin_objid **ids, int count)
{
    free(id);
    for (int i = 0; i < count; ++i) {
        free(ids[i]);
    }
    qorin_free_buf(ids, static_cast<size_t>(count) * sizeof(qorin_objid *));
}

std::vector<std::string> methodsOf(const std::vector<SFiFimInfo> &fims)
{
    std::vector<std::string> names;
    for (const SFiFimInfo &fim : fims) {
        names.push_back(fim.method);
    }
    return names;
}

}  // namespace

TEST(FimTable, GroupsTakeTheirNamesFromTheMethodsAndAnEmptyPatternIsRefused)
{
    CFiSmartPtr<Interposer> plugin(new Interposer);
    EXPECT_EQ(methodsOf(plugin->getFims(kInterposed)),
              (std::vector<std::string>{"HPEVA_VSnap", "HPEVA_Snapshot", "HPEVA_Snapclone", "HPEVA_DRGroup_Snapclone"}))
        << "in the order they were added";
    std::vector<SFiFimInfo> one = plugin->getFims(group("HPEVA_Snapclone"));
    ASSERT_EQ(one.size(), 1u);
    EXPECT_EQ(one[0].method, "HPEVA_Snapclone");
    EXPECT_EQ(one[0].quiesceType, "FI_QUIESCE_NONE");
    EXPECT_EQ(one[0].flags, 3);
    EXPECT_TRUE(plugin->getFims(kDisk).empty()) << "a real node has no methods of its own";
    EXPECT_TRUE(plugin->getFims(L"<tamlin>not an identity").empty());

    plugin->addFim("", "HPEVA_Other", "FI_QUIESCE_NONE", 1, "");
    EXPECT_TRUE(plugin->getFims(group("HPEVA_Other")).empty());
    EXPECT_EQ(plugin->getFims(kInterposed).size(), 4u);

    plugin->addFim("OTHER##", "M", "Q", 1, "Named");
    EXPECT_EQ(methodsOf(plugin->getFims(L"Named")), std::vector<std::string>{"M"}) << "a given group name is kept";

    CFiSmartPtr<Interposer> empty(new Interposer(false));
    empty->addFim("", "HPEVA_VSnap", "FI_QUIESCE_NONE", 3, "");
    Node node(kDisk);
    int exists = 7;
    EXPECT_EQ(empty->checkNodeExistence(&node.domain, &exists), QRN_ERR_NOT_PROVIDED)
        << "the refused method left the table empty";
    EXPECT_EQ(exists, 7);
}

TEST(Interpose, ARealNodeIsInterposedAndOnlyItsInterposerNodeClaimed)
{
    CFiSmartPtr<Interposer> plugin(new Interposer);
    Node disk(kDisk);
    qorin_objid **subordinates = reinterpret_cast<qorin_objid **>(0x1);
    int count = 9;
    EXPECT_EQ(plugin->claim(disk.id, &subordinates, &count), 0) << "the real node holds the pattern but no prefix";

    qorin_objid *id = nullptr;
    qorin_objid **groups = nullptr;
    int groupCount = 0;
    ASSERT_EQ(plugin->interpose(&disk.domain, &id, &groups, &groupCount), QRN_INTERPOSED);
    ASSERT_NE(id, nullptr);
    EXPECT_STREQ(id->text, kInterposed);
    EXPECT_EQ(id->flags, 3u);
    ASSERT_EQ(groupCount, 4);
    for (int i = 0; i < 4; ++i) {
        EXPECT_EQ(groups[i]->text, group(kMethods[i]));
        EXPECT_EQ(groups[i]->flags, 3u);
    }

    EXPECT_EQ(plugin->claim(id, &subordinates, &count), 2);
    EXPECT_EQ(subordinates, nullptr);
    EXPECT_EQ(count, 0);
    Node foreign(L"<other>UDID##HP##HSV##5000-1FE1##6005-08B4");
    Node prefixOnly(L"<tamlin>C:\\data");
    qorin_objid noText = {nullptr, 0, 0};
    EXPECT_EQ(plugin->claim(foreign.id, &subordinates, &count), 0);
    EXPECT_EQ(plugin->claim(prefixOnly.id, &subordinates, &count), 0) << "the prefix without a pattern";
    EXPECT_EQ(plugin->claim(&noText, &subordinates, &count), 0);
    freeIds(id, groups, groupCount);
}

TEST(Interpose, IgnoredTypesForeignNodesAndAnEmptyTableAreLeftAlone)
{
    CFiSmartPtr<Interposer> plugin(new Interposer);
    qorin_objid *sentinel = reinterpret_cast<qorin_objid *>(0x1);
    qorin_objid *id = sentinel;
    qorin_objid **groups = nullptr;
    int count = -1;

    Node ignored(kDisk, 2048);
    EXPECT_EQ(plugin->interpose(&ignored.domain, &id, &groups, &count), 0);
    plugin->addIgnoreNodeType(16);
    Node added(kDisk, 16 | 1);
    EXPECT_EQ(plugin->interpose(&added.domain, &id, &groups, &count), 0);
    Node foreign(L"/dev/sda");
    EXPECT_EQ(plugin->interpose(&foreign.domain, &id, &groups, &count), 0);
    CFiSmartPtr<Interposer> empty(new Interposer(false));
    Node disk(kDisk);
    EXPECT_EQ(empty->interpose(&disk.domain, &id, &groups, &count), 0);
    EXPECT_EQ(id, sentinel) << "nothing written";
    EXPECT_EQ(count, -1);
}

TEST(NodeLifeCycle, AGroupNodeIsBoundOnceAndInterposerNodesPointToIt)
{
    CFiSmartPtr<Interposer> plugin(new Interposer);
    Node vsnap(group("HPEVA_VSnap"));
    Node clone(group("HPEVA_Snapclone"));
    ASSERT_EQ(plugin->initNode(&vsnap.domain, nullptr, 0, nullptr), 0);
    EXPECT_EQ(vsnap.domain.type, 4098u);
    EXPECT_EQ(vsnap.domain.name, vsnap.id->text);
    ASSERT_NE(vsnap.domain.methods, nullptr) << "a group node has its one method";
    EXPECT_STREQ(vsnap.domain.methods->split->method, "HPEVA_VSnap");
    EXPECT_EQ(vsnap.domain.methods->next, nullptr);

    vsnap.domain.type = 77;
    EXPECT_EQ(plugin->initNode(&vsnap.domain, nullptr, 0, nullptr), 0);
    EXPECT_EQ(vsnap.domain.type, 77u) << "the second call leaves the bound node as it is";

    ASSERT_EQ(plugin->initNode(&clone.domain, nullptr, 0, nullptr), 0);

    Node node(kInterposed);
    ASSERT_EQ(plugin->initNode(&node.domain, nullptr, 0, nullptr), 0);
    std::vector<qrn_method_entry *> entries;
    for (qrn_method_entry *e = node.domain.methods; e != nullptr; e = e->next) {
        entries.push_back(e);
    }
    ASSERT_EQ(entries.size(), 4u);
    qrn_domain *expectedGroups[] = {&vsnap.domain, nullptr, &clone.domain, nullptr};
    for (size_t i = 0; i < 4; ++i) {
        EXPECT_STREQ(entries[i]->split->method, kMethods[i]);
        EXPECT_STREQ(entries[i]->quiesce->quiesceType, "FI_QUIESCE_NONE");
        EXPECT_EQ(entries[i]->split->node, &node.domain);
        EXPECT_EQ(entries[i]->quiesce->node, &node.domain);
        EXPECT_EQ(entries[i]->split->group, expectedGroups[i]) << "groups not yet initialised stay null";
        EXPECT_EQ(entries[i]->quiesce->group, expectedGroups[i]);
    }
    EXPECT_FALSE(plugin->factory()->find(&node.domain).isNull());

    Node snapshot(group("HPEVA_Snapshot"));
    plugin->initNode(&snapshot.domain, nullptr, 0, nullptr);
    EXPECT_EQ(entries[1]->split->group, nullptr) << "nothing fills a group in later";

    // A group that went and came back is bound to its new node.
    plugin->deInitNode(&vsnap.domain);
    Node vsnapAgain(group("HPEVA_VSnap"));
    vsnapAgain.domain.type = 5;
    plugin->initNode(&vsnapAgain.domain, nullptr, 0, nullptr);
    EXPECT_EQ(vsnapAgain.domain.type, 4098u);
    Node later(L"<tamlin>UDID##HP##HSV##5000-1FE1##6005-0001");
    plugin->initNode(&later.domain, nullptr, 0, nullptr);
    ASSERT_NE(later.domain.methods, nullptr);
    EXPECT_EQ(later.domain.methods->split->group, &vsnapAgain.domain);

    for (Node *n : {&node, &later, &clone, &snapshot, &vsnapAgain}) {
        plugin->deInitNode(&n->domain);
        EXPECT_EQ(n->domain.methods, nullptr);
        EXPECT_EQ(n->domain.privateData, nullptr);
    }
    EXPECT_TRUE(plugin->factory()->getAll(false).empty()) << "every private data went with its node";
}

TEST(NodeLifeCycle, ARealNodeGetsPrivateDataButNoMethods)
{
    CFiSmartPtr<Interposer> plugin(new Interposer);
    Node disk(kDisk);
    EXPECT_EQ(plugin->initNode(&disk.domain, nullptr, 0, nullptr), 0);
    EXPECT_EQ(disk.domain.methods, nullptr);
    EXPECT_EQ(disk.domain.type, 4098u);
    EXPECT_FALSE(plugin->factory()->find(&disk.domain).isNull());
    plugin->setDefaultNodeType(12);
    Node other(L"UDID##HP##HSV##5000-1FE1##6005-0002");
    plugin->initNode(&other.domain, nullptr, 0, nullptr);
    EXPECT_EQ(other.domain.type, 12u);
    EXPECT_EQ(plugin->initNode(nullptr, nullptr, 0, nullptr), QRN_ERR_INVALID_ARGUMENT);
    plugin->deInitNode(&disk.domain);
    plugin->deInitNode(&other.domain);
}

TEST(SupportsFiType, AnyKnownAndUnknownMethodsAndTheImportOptions)
{
    CFiSmartPtr<Interposer> plugin(new Interposer);
    Node node(kInterposed);
    char any[] = "any";
    char clone[] = "HPEVA_Snapclone";
    char unknown[] = "HPEVA_Mirror";
    node.capability = 0x10;
    EXPECT_EQ(plugin->supportsFiType(&node.domain, any), 1);
    EXPECT_EQ(node.capability, 0x13u) << "the method's flags are added, nothing cleared";
    EXPECT_EQ(plugin->supportsFiType(&node.domain, clone), 1);
    EXPECT_EQ(plugin->supportsFiType(&node.domain, unknown), 0);
    EXPECT_EQ(node.capability, 0u);

    Node groupNode(group("HPEVA_VSnap"));
    char vsnap[] = "HPEVA_VSnap";
    EXPECT_EQ(plugin->supportsFiType(&groupNode.domain, vsnap), 1);
    EXPECT_EQ(plugin->supportsFiType(&groupNode.domain, clone), 0) << "a group node has only its own method";
    Node disk(kDisk);
    EXPECT_EQ(plugin->supportsFiType(&disk.domain, any), 0) << "a real node has no method";

    // Once the host has given import options they decide the capability.
    plugin->initNode(&node.domain, nullptr, 0, nullptr);
    wchar_t hostName[] = L"backup-host";
    qrn_host_infn hosts = {hostName, nullptr};
    qrn_splitnode split = {clone, &node.domain, nullptr};
    qrn_splitnode *list[] = {&split};
    plugin->setImportOptions(list, 1, &hosts, 0, nullptr);
    node.capability = 0x10;
    EXPECT_EQ(plugin->supportsFiType(&node.domain, any), 1);
    EXPECT_EQ(node.capability, 1u);
    plugin->setImportOptions(list, 1, &hosts, 1, nullptr);
    EXPECT_EQ(plugin->supportsFiType(&node.domain, any), 1);
    EXPECT_EQ(node.capability, 2u);
    plugin->deInitNode(&node.domain);
}

TEST(Import, AnAlternateNodeIsPresentedToTheSourcesHostsOnlyWhenLocalUntransportedAndWithoutIntent)
{
    CFiSmartPtr<Interposer> plugin(new Interposer);
    plugin->importResult = 17;
    Node source(kInterposed);
    Node target(L"UDID##HP##HSV##5000-1FE1##6005-CLONE", 1);
    EXPECT_EQ(plugin->initAltNode(&source.domain, nullptr, nullptr, false), QRN_ERR_INVALID_ARGUMENT);
    EXPECT_EQ(plugin->initAltNode(&source.domain, nullptr, &target.domain, false), 0) << "no source data, no import";
    EXPECT_TRUE(plugin->calls.empty());
    EXPECT_EQ(target.domain.type, 1u | 4098u);
    CFiPrivateDataPtr targetData = plugin->factory()->find(&target.domain);
    ASSERT_FALSE(targetData.isNull());
    EXPECT_TRUE(targetData->getIsAltNode());
    targetData = CFiPrivateDataPtr();

    CFiPrivateDataPtr data = plugin->factory()->create(&source.domain, false);
    wchar_t hostName[] = L"h1";
    qrn_host_infn hosts = {hostName, nullptr};
    data->setHostList(&hosts);
    EXPECT_EQ(plugin->initAltNode(&source.domain, nullptr, &target.domain, true), 0) << "a remote node";
    data->setIntent(2);
    EXPECT_EQ(plugin->initAltNode(&source.domain, nullptr, &target.domain, false), 0) << "an intent";
    data->setIntent(0);
    data->setTransportable(true);
    EXPECT_EQ(plugin->initAltNode(&source.domain, nullptr, &target.domain, false), 0) << "a transported copy";
    EXPECT_TRUE(plugin->calls.empty());

    data->setTransportable(false);
    EXPECT_EQ(plugin->initAltNode(&source.domain, nullptr, &target.domain, false), 17);
    ASSERT_EQ(plugin->calls.size(), 1u);
    const ImportCall &call = plugin->calls[0];
    EXPECT_EQ(call.node, L"UDID##HP##HSV##5000-1FE1##6005-CLONE");
    EXPECT_EQ(call.hosts, std::vector<std::wstring>{L"h1"});
    EXPECT_FALSE(call.transportable || call.singleHost || call.deport);
    EXPECT_EQ(call.mode, 1);
    data = CFiPrivateDataPtr();
    plugin->deInitNode(&source.domain);
    plugin->deInitNode(&target.domain);
}

TEST(Import, ATreeNodeIsImportedByTheIdentifierItHandsBack)
{
    CFiSmartPtr<Interposer> plugin(new Interposer);
    plugin->importResult = 0;
    Node node(kInterposed);
    qorin_objid *out = nullptr;
    EXPECT_EQ(plugin->importTreeNode(&node.domain, nullptr, nullptr, 0, &out), QRN_ERR_INVALID_ARGUMENT)
        << "no identifier at 112";
    qorin_objid noText = {nullptr, 0, 0};
    node.domain.importId = &noText;
    EXPECT_EQ(plugin->importTreeNode(&node.domain, nullptr, nullptr, 0, &out), QRN_ERR_INVALID_ARGUMENT);
    EXPECT_EQ(plugin->importTreeNode(nullptr, nullptr, nullptr, 0, &out), QRN_ERR_INVALID_ARGUMENT);

    Node copy(L"UDID##HP##HSV##5000-1FE1##6005-COPY");
    node.domain.importId = copy.id;
    EXPECT_EQ(plugin->importTreeNode(&node.domain, nullptr, nullptr, 0, &out), 0);
    EXPECT_EQ(out, copy.id);
    ASSERT_EQ(plugin->calls.size(), 1u);
    EXPECT_EQ(plugin->calls[0].node, L"UDID##HP##HSV##5000-1FE1##6005-COPY");
    EXPECT_TRUE(plugin->calls[0].hosts.empty());

    CFiPrivateDataPtr data = plugin->factory()->create(&node.domain, false);
    wchar_t hostName[] = L"h2";
    qrn_host_infn hosts = {hostName, nullptr};
    data->setHostList(&hosts);
    data->setTransportable(true);
    plugin->importTreeNode(&node.domain, nullptr, nullptr, 0, &out);
    ASSERT_EQ(plugin->calls.size(), 2u);
    EXPECT_EQ(plugin->calls[1].hosts, std::vector<std::wstring>{L"h2"});
    EXPECT_TRUE(plugin->calls[1].transportable);
    EXPECT_EQ(plugin->calls[1].mode, 1);
    data = CFiPrivateDataPtr();
    plugin->deInitNode(&node.domain);
}

TEST(Import, ResourceFormsParseTheIdentityAndRouteByFlags)
{
    CFiSmartPtr<Interposer> plugin(new Interposer);
    plugin->importResult = 11;
    wchar_t disk[] = L"UDID##HP##HSV##5000-1FE1##6005-08B4";
    wchar_t bad[] = L"UDID##HP##HSV";
    wchar_t host[] = L"h3";

    struct Route {
        bool deport;
        int flags;
        int result;
        bool called;
        bool singleHost;
    };
    const std::vector<Route> routes = {
        {false, 0x4 | 0x1, 4, false, false},  // not provided comes first
        {false, 0x1 | 0x2, 11, true, false},   {false, 0x2, 11, true, true},  {false, 0x8, 6, false, false},
        {true, 0x10 | 0x20, 11, true, true},   {true, 0x20, 11, true, false}, {true, 0x40, 4, false, false},
        {true, 0x400 | 0x10, 0, false, false},  // parsed, then nothing done
        {true, 0x8, 0, false, false},
    };
    for (const Route &r : routes) {
        plugin->calls.clear();
        int result = r.deport ? plugin->deportResource(disk, host, nullptr, nullptr, r.flags)
                              : plugin->importResource(nullptr, disk, host, nullptr, r.flags, nullptr, nullptr);
        SCOPED_TRACE((r.deport ? "deport " : "import ") + std::to_string(r.flags));
        EXPECT_EQ(result, r.result);
        ASSERT_EQ(plugin->calls.size(), r.called ? 1u : 0u);
        if (r.called) {
            const ImportCall &call = plugin->calls[0];
            EXPECT_EQ(call.node, disk);
            EXPECT_EQ(call.hosts, std::vector<std::wstring>{L"h3"});
            EXPECT_FALSE(call.transportable);
            EXPECT_EQ(call.singleHost, r.singleHost);
            EXPECT_EQ(call.deport, r.deport);
            EXPECT_EQ(call.mode, 2);
        }
    }

    plugin->calls.clear();
    EXPECT_EQ(plugin->importResource(nullptr, disk, nullptr, nullptr, 0x1, nullptr, nullptr), 11);
    ASSERT_EQ(plugin->calls.size(), 1u);
    EXPECT_TRUE(plugin->calls[0].hosts.empty()) << "no host, no host list";

    EXPECT_EQ(plugin->importResource(nullptr, bad, host, nullptr, 0x1, nullptr, nullptr), QRN_ERR_BAD_UDID);
    EXPECT_EQ(plugin->deportResource(bad, host, nullptr, nullptr, 0x400), QRN_ERR_BAD_UDID)
        << "parsed before the flags";
    EXPECT_EQ(plugin->importResource(nullptr, nullptr, host, nullptr, 0x1, nullptr, nullptr), QRN_ERR_INVALID_ARGUMENT);
    EXPECT_EQ(plugin->deportResource(nullptr, host, nullptr, nullptr, 0x10), QRN_ERR_INVALID_ARGUMENT);

    CFiSmartPtr<Interposer> base(new Interposer);
    EXPECT_EQ(base->CFiPluginInterposer::importNode(disk, {}, false, false, false, 2), QRN_ERR_NOT_PROVIDED);
}
