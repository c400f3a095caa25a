// Interposition as a host meets it: the provider loaded with dlopen, node records built and
// owned by the test, every string and record the provider hands out freed again (the
// sanitizer build checks that nothing is left).
#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "host_node.h"
#include "qorinutil.h"
#include "qrn_results.h"
#include "started_provider.h"

namespace {

const char *const kMethods[] = {"HPEVA_VSnap", "HPEVA_Snapshot", "HPEVA_Snapclone", "HPEVA_DRGroup_Snapclone"};
const wchar_t kDisk[] = L"UDID##HP##HSV##5000-1FE1-5000-A9F0##6005-08B4-0001";

std::wstring groupOf(const char *method)
{
    return std::wstring(method, method + strlen(method)) + L"_FIM_GROUP";
}

using Interposition = StartedProvider;

void freeIdArray(qorin_objid **ids, int32_t count)
{
    for (int32_t i = 0; i < count; ++i) {
        free(ids[i]);
    }
    qorin_free_buf(ids, static_cast<size_t>(count) * sizeof(qorin_objid *));
}

}  // namespace

TEST_F(Interposition, ADiskNodeGetsThePrefixedNameAndTheFourGroups)
{
    HostNode disk(kDisk);
    qorin_objid *id = nullptr;
    qorin_objid **groups = nullptr;
    int32_t count = 0;
    ASSERT_EQ(provider()->interpose(&disk.domain, &id, &groups, &count), QRN_INTERPOSED);
    ASSERT_NE(id, nullptr);
    EXPECT_EQ(std::wstring(id->text), L"<tamlin>" + std::wstring(kDisk));
    ASSERT_EQ(count, 4);
    for (int i = 0; i < 4; ++i) {
        EXPECT_EQ(std::wstring(groups[i]->text), groupOf(kMethods[i]));
    }

    qorin_objid **subordinates = nullptr;
    int32_t subordinateCount = -1;
    EXPECT_EQ(provider()->claim(id, &subordinates, &subordinateCount), 2) << "the interposer node is claimed";
    EXPECT_EQ(subordinateCount, 0);
    EXPECT_EQ(provider()->claim(disk.domain.id, &subordinates, &subordinateCount), 0) << "the real node is not";
    free(id);
    freeIdArray(groups, count);

    HostNode other(L"/dev/sdb");
    id = nullptr;
    EXPECT_EQ(provider()->interpose(&other.domain, &id, &groups, &count), 0);
    EXPECT_EQ(id, nullptr);
}

TEST_F(Interposition, NodesLiveFromInitToDeinitWithMethodsPointingAtTheirGroups)
{
    std::vector<HostNode *> groups;
    for (const char *method : kMethods) {
        groups.push_back(new HostNode(groupOf(method)));
        ASSERT_EQ(provider()->init_node(&groups.back()->domain, nullptr, 0, nullptr), 0);
    }
    HostNode node(L"<tamlin>" + std::wstring(kDisk));
    ASSERT_EQ(provider()->init_node(&node.domain, nullptr, 0, nullptr), 0);
    EXPECT_EQ(node.domain.name, node.domain.id->text);
    int i = 0;
    for (qrn_method_entry *entry = node.domain.methods; entry != nullptr; entry = entry->next, ++i) {
        ASSERT_LT(i, 4);
        EXPECT_STREQ(entry->split->method, kMethods[i]);
        EXPECT_STREQ(entry->quiesce->quiesceType, "FI_QUIESCE_NONE");
        EXPECT_EQ(entry->split->node, &node.domain);
        EXPECT_EQ(entry->split->group, &groups[i]->domain);
        EXPECT_EQ(entry->quiesce->group, &groups[i]->domain);
    }
    EXPECT_EQ(i, 4);
    EXPECT_NE(node.domain.privateData, nullptr);

    char any[] = "any";
    EXPECT_EQ(provider()->supports_fitype(&node.domain, any), 1);
    EXPECT_EQ(node.capability, 3u);

    // Everything the provider built for the node goes with deinit_node.
    provider()->deinit_node(&node.domain);
    EXPECT_EQ(node.domain.methods, nullptr);
    EXPECT_EQ(node.domain.privateData, nullptr);
    for (HostNode *group : groups) {
        provider()->deinit_node(&group->domain);
        EXPECT_EQ(group->domain.methods, nullptr);
        EXPECT_EQ(group->domain.privateData, nullptr);
        delete group;
    }
}
