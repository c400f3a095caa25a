// The defaults of the plug-in base: what a host gets from every operation a provider
// leaves alone, and the run-once delayed initialisation.
#include <gtest/gtest.h>

#include <atomic>
#include <cstring>
#include <thread>
#include <vector>

#include "cfimessagecatalogmanager.h"
#include "cfipluginbase.h"
#include "cfisession.h"
#include "qrn_results.h"

using namespace qorin_pdk_4_4;

namespace {

class TestPlugin : public CFiPluginBase {
public:
    std::atomic<int> delayedRuns{0};
    int delayedResult = 0;
    int delayedInit() override
    {
        ++delayedRuns;
        // Long enough for competing threads to pile up on the mutex.
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
        return delayedResult;
    }
};

qrn_domain makeNode()
{
    qrn_domain node;
    memset(&node, 0, sizeof node);
    return node;
}

}  // namespace

TEST(DelayedInit, RunsOnceEvenAfterAFailure)
{
    CFiSmartPtr<TestPlugin> plugin(new TestPlugin);
    plugin->delayedResult = 29;
    EXPECT_EQ(plugin->invokeDelayedInit(), QRN_ERR_VERSION_CHECK);
    EXPECT_EQ(plugin->invokeDelayedInit(), 0) << "a failed delayed initialisation is not retried";
    EXPECT_EQ(plugin->delayedRuns, 1);
}

TEST(DelayedInit, ConcurrentFirstCallsRunItOnce)
{
    CFiSmartPtr<TestPlugin> plugin(new TestPlugin);
    plugin->delayedResult = 6;
    std::atomic<int> sawFailure{0};
    std::vector<std::thread> threads;
    for (int i = 0; i < 16; ++i) {
        threads.emplace_back([&] {
            if (plugin->invokeDelayedInit() != 0) {
                ++sawFailure;
            }
        });
    }
    for (auto &t : threads) {
        t.join();
    }
    EXPECT_EQ(plugin->delayedRuns, 1);
    EXPECT_EQ(sawFailure, 1) << "only the caller that ran it sees its result";
}

TEST(PluginDefaults, ListOperationsGuardTheirOutParameter)
{
    CFiSmartPtr<TestPlugin> plugin(new TestPlugin);
    EXPECT_EQ(plugin->enumerateNodes(nullptr, nullptr, 0, nullptr), QRN_ERR_INVALID_ARGUMENT);
    qrn_node_list *nodes = reinterpret_cast<qrn_node_list *>(0x1);
    EXPECT_EQ(plugin->enumerateNodes(&nodes, nullptr, 0, nullptr), 0);
    EXPECT_EQ(nodes, nullptr);
    EXPECT_EQ(plugin->enumerateAssociations(nullptr), QRN_ERR_INVALID_ARGUMENT);
    EXPECT_EQ(plugin->enumerateGroupNodes(nullptr), QRN_ERR_INVALID_ARGUMENT);
    EXPECT_EQ(plugin->getAssociatedNodes(nullptr, nullptr), QRN_ERR_INVALID_ARGUMENT);
    EXPECT_EQ(plugin->enumerateFims(nullptr), 0);
    qrn_fim_list *fims = reinterpret_cast<qrn_fim_list *>(0x1);
    EXPECT_EQ(plugin->enumerateFims(&fims), 0);
    EXPECT_EQ(fims, nullptr);
}

TEST(PluginDefaults, AccessBitsWalkTheListAndSkipEmptyElements)
{
    CFiSmartPtr<TestPlugin> plugin(new TestPlugin);
    qrn_domain a = makeNode();
    qrn_domain b = makeNode();
    a.flags = 0x1;
    qrn_node_subobj_list third = {&b, {}, nullptr};
    qrn_node_subobj_list second = {nullptr, {}, &third};
    qrn_node_subobj_list first = {&a, {}, &second};

    EXPECT_EQ(plugin->disableAccess(&first, 0), 0);
    EXPECT_EQ(a.flags, 0x41u);
    EXPECT_EQ(b.flags, 0x40u);
    EXPECT_EQ(plugin->enableAccess(&first, 0, 0, 0), 0);
    EXPECT_EQ(a.flags, 0x1u);
    EXPECT_EQ(b.flags, 0x0u);
    EXPECT_EQ(plugin->enableAccess(nullptr, 0, 0, 0), QRN_ERR_INVALID_ARGUMENT);
    EXPECT_EQ(plugin->disableAccess(nullptr, 0), QRN_ERR_INVALID_ARGUMENT);
}

TEST(PluginDefaults, DeInitNodeFreesTheMethodList)
{
    CFiSmartPtr<TestPlugin> plugin(new TestPlugin);
    qrn_domain node = makeNode();
    for (int i = 0; i < 3; ++i) {
        auto *entry = new qrn_method_entry;
        entry->quiesce = new qrn_quiescenode{strdup("FI_QUIESCE_NONE"), &node, nullptr};
        entry->split = new qrn_splitnode{strdup("HPEVA_VSnap"), &node, nullptr};
        entry->next = node.methods;
        node.methods = entry;
    }
    plugin->deInitNode(&node);
    EXPECT_EQ(node.methods, nullptr);  // the sanitizer build sees any record left behind
    plugin->deInitNode(&node);
    plugin->deInitNode(nullptr);
}

TEST(PluginDefaults, ErrMsgReducesOnlyCodesAboveTheOffset)
{
    CFiSmartPtr<TestPlugin> plugin(new TestPlugin);
    plugin->setProviderName(L"tamlin");
    plugin->setMessageIndexOffset(6000);
    CFiCatalogManagerPtr catalogs(new CFiMessageCatalogManager);
    plugin->registerCatalogManager(catalogs);

    const wchar_t *reduced = nullptr;
    const wchar_t *plain = nullptr;
    const wchar_t *offset = nullptr;
    EXPECT_EQ(plugin->errMsg(6012, &reduced), 0);
    ASSERT_NE(reduced, nullptr);
    std::wstring reducedText = reduced;
    EXPECT_EQ(plugin->errMsg(12, &plain), 0);
    EXPECT_EQ(reducedText, std::wstring(plain));
    // Without a catalog the key itself comes back, in angle brackets.
    EXPECT_EQ(reducedText, L"<MSG_ERROR_TAMLIN_0012>");
    EXPECT_EQ(plugin->errMsg(6000, &offset), 0);
    EXPECT_STREQ(offset, L"<MSG_ERROR_TAMLIN_6000>");
}
