// Sessions carry the nodes of a group operation from select to make.
#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <string>

#include "cfisessionmanager.h"
#include "host_node.h"
#include "hpeva_single_node.h"
#include "qorinutil.h"
#include "qrn_results.h"

using namespace qorin_pdk_4_4;

namespace {

struct Node : HostNode {
    Node(const wchar_t *name, const char *method) : HostNode(name), split{const_cast<char *>(method), &domain, nullptr}
    {
    }
    qrn_splitnode split;
};

void freeIds(qorin_objid **ids, int count)
{
    for (int i = 0; i < count; ++i) {
        free(ids[i]);
    }
    qorin_free_buf(ids, static_cast<size_t>(count) * sizeof(qorin_objid *));
}

}  // namespace

TEST(Sessions, OneSessionPerIdAndNoneForANullId)
{
    CFiSmartPtr<CFiSessionManager> manager(new CFiSessionManager);
    CFiSessionPtr a = manager->getSession("s1");
    CFiSessionPtr again = manager->getSession("s1");
    CFiSessionPtr other = manager->getSession("s2");
    EXPECT_EQ(a.get(), again.get());
    EXPECT_NE(a.get(), other.get());
    EXPECT_TRUE(manager->getSession(nullptr).isNull());
    EXPECT_TRUE(a->getPendingEntries().empty()) << "a new session has no entries";
}

TEST(Sessions, SelectThenMakeCarriesTargets)
{
    CFiSession session("s");
    Node disk1(L"UDID##HP##HSV##CELL##DISK1", "HPEVA_Snapclone");
    Node disk2(L"UDID##HP##HSV##CELL##DISK2", "HPEVA_Snapclone");
    qrn_splitnode *list[] = {&disk1.split, &disk2.split};
    session.addNodes(list, 2);

    auto pending = session.getPendingEntries();
    ASSERT_EQ(pending.size(), 2u);
    EXPECT_EQ(pending[0].nodeName, L"UDID##HP##HSV##CELL##DISK1");
    EXPECT_EQ(pending[0].method, "HPEVA_Snapclone");
    EXPECT_EQ(session.setTarget(L"UDID##HP##HSV##CELL##DISK1", L"UDID##HP##HSV##CELL##CLONE1"), 0);
    EXPECT_EQ(session.getPendingEntries().size(), 1u);
    EXPECT_EQ(session.setTarget(L"UDID##HP##HSV##CELL##UNKNOWN", L"x"), QRN_ERR_NOT_IN_SESSION);
    EXPECT_EQ(session.getPendingEntries().size(), 1u) << "an unknown name adds nothing";

    qorin_objid **out = nullptr;
    int count = 0;
    ASSERT_EQ(session.getTargets(list, 2, &out, &count), 0);
    ASSERT_EQ(count, 2);
    EXPECT_STREQ(out[0]->text, L"UDID##HP##HSV##CELL##CLONE1");
    EXPECT_EQ(out[0]->flags, 1u);
    EXPECT_STREQ(out[1]->text, L"") << "a node without a target is answered with an empty one";
    EXPECT_TRUE(disk1.domain.flags & QRN_NODE_MADE);
    EXPECT_TRUE(disk2.domain.flags & QRN_NODE_MADE);
    freeIds(out, count);
}

TEST(Sessions, AddingANodeAgainMakesItPendingWithNoTarget)
{
    CFiSession session("s");
    Node disk(L"D1", "HPEVA_VSnap");
    qrn_splitnode *list[] = {&disk.split};
    session.addNodes(list, 1);
    session.setTarget(L"D1", L"T1");
    EXPECT_TRUE(session.getPendingEntries().empty());
    session.addNodes(list, 1);
    auto pending = session.getPendingEntries();
    ASSERT_EQ(pending.size(), 1u);
    EXPECT_TRUE(pending[0].target.empty());
    EXPECT_EQ(pending[0].done, 0);
}

TEST(Sessions, NodesNeverSelectedGiveEmptyTargetsAndAnEmptyListGivesNoArray)
{
    CFiSession session("fresh");
    Node disk(L"D9", "HPEVA_Snapshot");
    qrn_splitnode *list[] = {&disk.split};
    qorin_objid **out = nullptr;
    int count = -1;
    ASSERT_EQ(session.getTargets(list, 1, &out, &count), 0);
    ASSERT_EQ(count, 1);
    EXPECT_STREQ(out[0]->text, L"");
    freeIds(out, count);

    out = reinterpret_cast<qorin_objid **>(0x1);
    ASSERT_EQ(session.getTargets(nullptr, 0, &out, &count), 0);
    EXPECT_EQ(out, nullptr);
    EXPECT_EQ(count, 0);
}

TEST(SingleNodeForm, SubstitutesOnlyForAMissingListOfZero)
{
    int a = 1;
    int other = 2;
    int *one = &a;
    int **list = nullptr;
    int32_t count = 0;
    singleNodeForm(one, list, count);
    ASSERT_EQ(count, 1);
    EXPECT_EQ(list, &one);
    EXPECT_EQ(*list[0], 1);

    int *given[] = {&other};
    list = given;
    count = 0;
    singleNodeForm(one, list, count);
    EXPECT_EQ(list, given) << "a list goes forward as it came";
    EXPECT_EQ(count, 0);

    list = nullptr;
    count = 3;
    singleNodeForm(one, list, count);
    EXPECT_EQ(list, nullptr);
    EXPECT_EQ(count, 3);

    int *none = nullptr;
    count = 0;
    singleNodeForm(none, list, count);
    EXPECT_EQ(list, nullptr) << "no node, no substitution";
    EXPECT_EQ(count, 0);
}
