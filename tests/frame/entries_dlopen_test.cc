// The entry table as a host meets it: loaded with dlopen, every entry resolved by name,
// and the guards that answer before any operation runs.
#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <cstring>
#include <string>
#include <thread>
#include <vector>

#include "host_context.h"
#include "qorinutil.h"
#include "qrn_results.h"
#include "result_lists.h"
#include "started_provider.h"

namespace {

class Entries : public StartedProvider {
protected:
    const ProviderLibrary &lib() { return provider(); }
};

qrn_domain blankNode()
{
    qrn_domain node;
    memset(&node, 0, sizeof node);
    return node;
}

}  // namespace

TEST_F(Entries, AllSeventyResolve)
{
    EXPECT_EQ(ProviderLibrary::entryCount(), 70u);
    EXPECT_TRUE(provider().missing().empty());
}

TEST_F(Entries, NullArgumentsAreNotClaimedAndNullOutParametersGiveThree)
{
    qorin_objid *id = qorin_get_objid(L"<tamlin>UDID##HP##HSV##A##B", 64, 3);
    qorin_objid **subordinates = nullptr;
    int32_t count = 0;
    EXPECT_EQ(lib()->claim(nullptr, &subordinates, &count), 0);
    EXPECT_EQ(lib()->claim(id, nullptr, &count), 0);
    EXPECT_EQ(lib()->claim(id, &subordinates, nullptr), 0);
    free(id);

    EXPECT_EQ(lib()->get_provider_info(nullptr), QRN_ERR_INVALID_ARGUMENT);
    EXPECT_EQ(lib()->enumerate_nodes(nullptr, nullptr, 0, nullptr), QRN_ERR_INVALID_ARGUMENT);
    qrn_domain node = blankNode();
    qorin_objid **ids = nullptr;
    EXPECT_EQ(lib()->subobj_list(nullptr, &ids, &count), QRN_ERR_INVALID_ARGUMENT);
    EXPECT_EQ(lib()->subobj_list(&node, nullptr, &count), QRN_ERR_INVALID_ARGUMENT);
    EXPECT_EQ(lib()->subobj_list(&node, &ids, nullptr), QRN_ERR_INVALID_ARGUMENT);
    qrn_confspec spec = {1, 1, nullptr};
    EXPECT_EQ(lib()->config(nullptr, 1, nullptr, &spec), QRN_ERR_INVALID_ARGUMENT);
    EXPECT_EQ(lib()->config(&node, 1, nullptr, nullptr), QRN_ERR_INVALID_ARGUMENT);
    wchar_t *names[] = {nullptr};
    wchar_t *out[] = {nullptr};
    EXPECT_EQ(lib()->translate_resource_names(nullptr, 0, out), QRN_ERR_INVALID_ARGUMENT);
    EXPECT_EQ(lib()->translate_resource_names(names, 0, nullptr), QRN_ERR_INVALID_ARGUMENT);
}

TEST_F(Entries, ProviderInfoStartsFromAnEmptyList)
{
    qrn_provider_list *list = reinterpret_cast<qrn_provider_list *>(0x1);
    lib()->get_provider_info(&list);
    // Whatever the operation answers, the host never sees its own stale pointer back.
    EXPECT_NE(list, reinterpret_cast<qrn_provider_list *>(0x1));
    result_lists::freeList(list);
}

TEST_F(Entries, ObjctlKeepsTheOperationResultInStatus)
{
    wchar_t *outXml = nullptr;
    int32_t status = -1;
    EXPECT_EQ(lib()->objctl(L"noop", L"<OBJCTL_ARG_LIST> <OBJCTL_INPUT arg=a value=1 type=int /> </OBJCTL_ARG_LIST>",
                            &outXml, &status),
              0);
    EXPECT_EQ(status, 0);
    ASSERT_NE(outXml, nullptr);
    EXPECT_STREQ(outXml, L"<OBJCTL_ARG_LIST> </OBJCTL_ARG_LIST> ");
    free(outXml);
}

TEST_F(Entries, SelectTakesTheSessionPathAndNeedsASessionId)
{
    qrn_domain node = blankNode();
    qorin_objid *id = qorin_get_objid(L"UDID##HP##HSV##C##D", 80, 3);
    node.id = id;
    char method[] = "HPEVA_VSnap";
    qrn_splitnode split = {method, &node, nullptr};
    char session[] = "entries-test";
    // The single-node form: no list, count 0, one node.
    EXPECT_EQ(lib()->select(&split, session, nullptr, 0), 0);
    EXPECT_EQ(lib()->select(&split, nullptr, nullptr, 0), QRN_ERR_INVALID_ARGUMENT);
    free(id);
}

TEST_F(Entries, ManyHostThreadsAtOnce)
{
    std::atomic<int> failures{0};
    std::vector<std::thread> threads;
    for (int t = 0; t < 8; ++t) {
        threads.emplace_back([&] {
            for (int i = 0; i < 200; ++i) {
                qrn_msg_info *info = reinterpret_cast<qrn_msg_info *>(0x1);
                if (lib()->get_last_error(&info) != 0 || info != nullptr) {
                    ++failures;
                }
                int32_t status[2] = {0, 0};
                if (lib()->get_status(nullptr, nullptr, 2, nullptr, 0, status) != 0 || status[1] != 8) {
                    ++failures;
                }
                qrn_fim_list *fims = nullptr;
                lib()->enumerate_fims(&fims);
                result_lists::freeList(fims);
            }
        });
    }
    for (auto &t : threads) {
        t.join();
    }
    EXPECT_EQ(failures, 0);
}
