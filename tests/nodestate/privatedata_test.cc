// Private data of nodes: how the factory shares, keeps and drops it, what a node state blob
// holds, and the base operations that read and write it.
#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "cfipluginbase.h"
#include "cfiprivatedataconcretefactory.h"
#include "cfiprivatedatamanager.h"
#include "cfitracelog.h"
#include "host_node.h"
#include "hpeva_disknames.h"
#include "hpeva_privatedata.h"
#include "qrn_results.h"

using namespace qorin_pdk_4_4;

namespace {

using Node = HostNode;

using Factory = CFiPrivateDataConcreteFactory<CFiPrivateData>;

class PluginWithPrivateData : public CFiPluginBase {
public:
    PluginWithPrivateData() : manager(new CFiPrivateDataManager) { registerPrivateDataManager(manager); }
    CFiPrivateDataFactoryPtr factory() { return manager->getFactory(); }
    CFiPrivateDataManagerPtr manager;
};

}  // namespace

TEST(PrivateDataFactory, NodesWithOneIdentifierShareOneObjectPerKind)
{
    int32_t before = CFiRefCount::liveObjects();
    {
        CFiPrivateDataFactoryPtr factory(new Factory);
        Node a(L"UDID##HP##HSV##C##1");
        Node b(L"UDID##HP##HSV##C##1");
        Node alt(L"UDID##HP##HSV##C##1");
        CFiPrivateDataPtr first = factory->create(&a.domain, false);
        ASSERT_FALSE(first.isNull());
        EXPECT_EQ(factory->create(&a.domain, false).get(), first.get()) << "the handle is used again";
        EXPECT_EQ(factory->find(&a.domain).get(), first.get());
        EXPECT_EQ(factory->create(&b.domain, false).get(), first.get()) << "same identifier text, same object";
        EXPECT_EQ(factory->create(&a.domain, true).get(), first.get()) << "a handle wins over the kind asked for";
        EXPECT_FALSE(first->getIsAltNode());

        CFiPrivateDataPtr alternate = factory->create(&alt.domain, true);
        EXPECT_NE(alternate.get(), first.get()) << "alternate nodes have a map of their own";
        EXPECT_TRUE(alternate->getIsAltNode());
        EXPECT_EQ(factory->find(L"UDID##HP##HSV##C##1", false).get(), first.get());
        EXPECT_EQ(factory->find(L"UDID##HP##HSV##C##1", true).get(), alternate.get());
        EXPECT_TRUE(factory->find(L"UDID##HP##HSV##C##2", false).isNull());
        EXPECT_EQ(factory->getAll(false).size(), 1u);
        EXPECT_EQ(factory->getAll(true).size(), 1u);

        Node none(L"UDID##HP##HSV##C##9");
        EXPECT_TRUE(factory->find(&none.domain).isNull()) << "no handle, nothing found";
        EXPECT_TRUE(factory->find(static_cast<qrn_domain *>(nullptr)).isNull());
        EXPECT_TRUE(factory->create(nullptr, false).isNull());

        factory->destroy(&a.domain);
        factory->destroy(&b.domain);
        factory->destroy(&alt.domain);
    }
    EXPECT_EQ(CFiRefCount::liveObjects(), before) << "every object went with its last holder";
}

TEST(PrivateDataFactory, DestroyKeepsTheObjectWhileAnotherNodeHoldsIt)
{
    CFiPrivateDataFactoryPtr factory(new Factory);
    Node a(L"N1");
    Node b(L"N1");
    factory->create(&a.domain, false)->setSessionId("s1");
    factory->create(&b.domain, false);

    EXPECT_EQ(factory->destroy(&a.domain), 0);
    EXPECT_EQ(a.domain.privateData, nullptr);
    CFiPrivateDataPtr kept = factory->find(L"N1", false);
    ASSERT_FALSE(kept.isNull()) << "b still holds it";
    EXPECT_EQ(kept->getSessionId(), "s1");
    kept = CFiPrivateDataPtr();

    EXPECT_EQ(factory->destroy(&b.domain), 0);
    EXPECT_TRUE(factory->find(L"N1", false).isNull()) << "the last node took the map's entry with it";
    EXPECT_EQ(factory->destroy(&b.domain), -1) << "no handle left";
    EXPECT_EQ(factory->destroy(nullptr), -1);

    Node again(L"N1");
    EXPECT_EQ(factory->create(&again.domain, false)->getSessionId(), "") << "a new node starts afresh";
    factory->destroy(&again.domain);
}

TEST(PrivateDataFactory, DestroyingAnAlternateNodeLeavesTheOrdinaryOne)
{
    CFiPrivateDataFactoryPtr factory(new Factory);
    Node plain(L"N2");
    Node alt(L"N2");
    factory->create(&plain.domain, false);
    factory->create(&alt.domain, true);
    factory->destroy(&alt.domain);
    EXPECT_TRUE(factory->find(L"N2", true).isNull());
    EXPECT_FALSE(factory->find(L"N2", false).isNull());
    factory->destroy(&plain.domain);
}

TEST(PrivateDataManager, ARegisteredFactoryMakesTheProvidersKindWithTheManagersLog)
{
    CFiPrivateDataManagerPtr manager(new CFiPrivateDataManager);
    CFiTraceLogPtr log(new CFiTraceLog);
    manager->setTraceLog(log);
    Node before(L"B");
    CFiPrivateDataPtr plain = manager->getFactory()->create(&before.domain, false);
    EXPECT_EQ(dynamic_cast<CHpEvaPrivateData *>(plain.get()), nullptr);
    EXPECT_EQ(plain->getTraceLog().get(), log.get()) << "the default factory has the log too";
    plain = CFiPrivateDataPtr();
    manager->getFactory()->destroy(&before.domain);

    manager->registerFactory(CFiPrivateDataFactoryPtr(new CHpEvaPrivateDataFactory));
    manager->registerFactory(CFiPrivateDataFactoryPtr());
    Node after(L"A");
    CFiPrivateDataPtr data = manager->getFactory()->create(&after.domain, false);
    auto *eva = dynamic_cast<CHpEvaPrivateData *>(data.get());
    ASSERT_NE(eva, nullptr) << "a null registration keeps the active factory";
    EXPECT_EQ(data->getTraceLog().get(), log.get());
    EXPECT_FALSE(isCompleteDisk(eva->getSourceDisk())) << "the records start empty";

    SHpEvaVdisk disk;
    disk.wwlunid = "6005";
    disk.objectname = "\\Virtual Disks\\a\\ACTIVE";
    eva->setSourceDisk(disk);
    disk.wwlunid = "changed";
    EXPECT_EQ(eva->getSourceDisk().wwlunid, "6005") << "a copy is kept";
    data = CFiPrivateDataPtr();
    manager->getFactory()->destroy(&after.domain);
}

TEST(PrivateData, NodeStateIsThreeTaggedLinesCountedWithTheTerminator)
{
    Node node(L"UDID##HP##HSV##C##\u00C41");
    CFiPrivateData data(node.id, true);
    data.setSessionId("sess-7");
    qrn_blob blob = {0, nullptr, 0};
    ASSERT_EQ(data.getNodeState(&blob), 0);
    const std::wstring expected = L"<NODE_NAME>UDID##HP##HSV##C##\u00C41</NODE_NAME>\n<IS_ALT_NODE>true</IS_ALT_NODE>\n"
                                  L"<SESSION_ID>sess-7</SESSION_ID>\n";
    ASSERT_NE(blob.data, nullptr);
    EXPECT_EQ(std::wstring(static_cast<wchar_t *>(blob.data)), expected);
    EXPECT_EQ(blob.length, (expected.size() + 1) * sizeof(wchar_t));
    EXPECT_EQ(blob.filled, 1u);
    qorin_free_buf(blob.data, blob.length);
    EXPECT_EQ(data.getNodeState(nullptr), QRN_ERR_INVALID_ARGUMENT);
    EXPECT_EQ(data.setNodeState(&blob), 0);
}

TEST(PluginPrivateData, ReAccessMakesThePrivateDataAndRecordsIntentSessionAndMethod)
{
    CFiSmartPtr<PluginWithPrivateData> plugin(new PluginWithPrivateData);
    Node node(L"T1");
    char method[] = "HPEVA_Snapclone";
    char session[] = "s-1";
    EXPECT_EQ(plugin->reAccessTmpObj(&node.domain, nullptr, method, nullptr, session, 3), 0);
    CFiPrivateDataPtr data = plugin->factory()->find(&node.domain);
    ASSERT_FALSE(data.isNull());
    EXPECT_FALSE(data->getIsAltNode());
    EXPECT_EQ(data->getIntent(), 3);
    EXPECT_EQ(data->getSessionId(), "s-1");
    EXPECT_EQ(data->getSplitType(), "HPEVA_Snapclone");

    EXPECT_EQ(plugin->reAccessTmpObj(&node.domain, nullptr, nullptr, nullptr, nullptr, 1), 0);
    EXPECT_EQ(data->getSplitType(), "HPEVA_Snapclone") << "null arguments keep what was there";
    EXPECT_EQ(data->getSessionId(), "s-1");
    EXPECT_EQ(data->getIntent(), 1);

    Node alt(L"T2");
    char other[] = "s-2";
    EXPECT_EQ(plugin->reAccessAltNode(&alt.domain, nullptr, nullptr, other, nullptr, nullptr, 0, 5), 0);
    CFiPrivateDataPtr altData = plugin->factory()->find(&alt.domain);
    ASSERT_FALSE(altData.isNull());
    EXPECT_EQ(altData->getIntent(), 5);
    EXPECT_EQ(altData->getSessionId(), "s-2");

    data = CFiPrivateDataPtr();
    altData = CFiPrivateDataPtr();
    plugin->deInitNode(&node.domain);
    plugin->deInitNode(&alt.domain);
    EXPECT_EQ(node.domain.privateData, nullptr);
    EXPECT_TRUE(plugin->factory()->find(L"T1", false).isNull()) << "deinit drops the private data";
}

TEST(PluginPrivateData, SubObjectsAndImportOptionsReachOnlyNodesWithPrivateData)
{
    CFiSmartPtr<PluginWithPrivateData> plugin(new PluginWithPrivateData);
    Node known(L"K");
    Node unknown(L"U");
    CFiPrivateDataPtr data = plugin->factory()->create(&known.domain, false);
    qorin_objid sub = {nullptr, 0, 0};
    data->addSubObject(&sub);

    qorin_objid **out = nullptr;
    int count = -1;
    EXPECT_EQ(plugin->subobjList(&known.domain, &out, &count), 0);
    EXPECT_EQ(count, 1);
    EXPECT_EQ(out, data->getSubObjectList()) << "the array stays the private data's";
    out = reinterpret_cast<qorin_objid **>(0x1);
    count = -1;
    EXPECT_EQ(plugin->subobjList(&unknown.domain, &out, &count), 0);
    EXPECT_EQ(count, -1) << "a node without private data leaves the out-parameters";

    wchar_t name[] = L"backup-host";
    qrn_host_infn hosts = {name, nullptr};
    char method[] = "HPEVA_VSnap";
    qrn_splitnode a = {method, &known.domain, nullptr};
    qrn_splitnode b = {method, &unknown.domain, nullptr};
    qrn_splitnode *list[] = {&a, &b};
    EXPECT_EQ(plugin->setImportOptions(list, 2, &hosts, 1, nullptr), 0);
    EXPECT_EQ(data->getHostList(), std::vector<std::wstring>{L"backup-host"});
    EXPECT_TRUE(data->getTransportable());
    EXPECT_EQ(unknown.domain.privateData, nullptr) << "import options make no private data";

    plugin->deInitNode(&known.domain);
}
