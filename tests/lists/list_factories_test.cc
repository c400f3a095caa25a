// Result lists as the host receives them: built through libqorinutil, handed over when the
// factory's scope ends, in the order of add.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "cfienclosurenodelistfactory.h"
#include "cfifimlistfactory.h"
#include "cfihostnodelistfactory.h"
#include "cfinodelistfactory.h"
#include "cfiproviderinfolistfactory.h"
#include "result_lists.h"

using namespace qorin_pdk_4_4;

using result_lists::elements;
using result_lists::freeList;

TEST(ListFactory, NothingAddedLeavesAnEmptyListAndTheCountAlone)
{
    auto *out = reinterpret_cast<qrn_node_list *>(0x1);
    int32_t count = 5;
    {
        CFiNodeListFactory factory(&out, &count);
    }
    EXPECT_EQ(out, nullptr);
    EXPECT_EQ(count, 5);
}

TEST(ListFactory, TheListArrivesWhenTheScopeEndsInOrderOfAdd)
{
    qrn_node_list *out = nullptr;
    int32_t count = 0;
    {
        CFiNodeListFactory factory(&out, &count);
        for (const char *name : {"first", "second", "third"}) {
            CFiNode node(L"tamlin", name, "UDID##HP##HSV##X", 1, 2, 3, 4);
            factory.add(node);
        }
        EXPECT_EQ(out, nullptr) << "nothing is handed over before the scope ends";
        EXPECT_EQ(count, 3) << "the count grows at each add";
    }
    auto nodes = elements(out);
    ASSERT_EQ(nodes.size(), 3u);
    EXPECT_STREQ(nodes[0]->displayName, L"first");
    EXPECT_STREQ(nodes[1]->displayName, L"second");
    EXPECT_STREQ(nodes[2]->displayName, L"third");
    freeList(out);
}

TEST(ListFactory, WithoutACountStillAppends)
{
    qrn_host_node_list *out = nullptr;
    {
        CFiHostNodeListFactory factory(&out, nullptr);
        CFiHostNode a(L"a", L"E1");
        CFiHostNode b(L"b", L"E1");
        factory.add(a);
        factory.add(b);
    }
    EXPECT_EQ(elements(out).size(), 2u);
    freeList(out);
}

TEST(ListFactory, TwoFactoriesOnOneOutPointerTheLaterDestructorWins)
{
    qrn_enclosure_node_list *out = nullptr;
    qrn_enclosure_node_list *lost = nullptr;
    {
        CFiEnclosureNodeListFactory outer(&out, nullptr);
        CFiEnclosureNode one(L"one", L"tamlin", L"id1", L"HP", L"HSV", 1, 2, 3);
        outer.add(one);
        {
            CFiEnclosureNodeListFactory inner(&out, nullptr);
            CFiEnclosureNode two(L"two", L"tamlin", L"id2", L"HP", L"HSV", 1, 2, 3);
            inner.add(two);
        }
        lost = out;
    }
    ASSERT_NE(out, nullptr);
    EXPECT_STREQ(out->name, L"one");
    EXPECT_EQ(out->next, nullptr);
    freeList(out);
    freeList(lost);
}

TEST(ListFactory, NoOutPointerStillCountsButBuildsNothing)
{
    int32_t count = 0;
    {
        CFiNodeListFactory factory(nullptr, &count);
        CFiNode node(L"tamlin", "d", "u", 0, 0, 0, 0);
        factory.add(node);
        factory.add(node);
    }
    // A record built here would reach nobody; the leak check of the sanitizer runs sees it.
    EXPECT_EQ(count, 2);
}

TEST(ListItems, FimWordsAndTextsSurviveACopyOfTheItem)
{
    qrn_fim_list *out = nullptr;
    {
        CFiFimListFactory factory(L"tamlin", &out);
        std::vector<CFiFim> fims;
        {
            CFiFim original(L"HPEVA_Snapclone", 1, 0, 1, 1, 0, 5, L"HPEVA_Snapclone", L"4.1");
            fims.push_back(original);
        }
        fims.emplace_back(nullptr, 9, 9, 9, 9, 9, 9, nullptr, nullptr);
        for (CFiFim &fim : fims) {
            factory.add(fim);
        }
    }
    auto list = elements(out);
    ASSERT_EQ(list.size(), 2u);
    EXPECT_STREQ(list[0]->name, L"HPEVA_Snapclone");
    EXPECT_EQ(std::vector<uint32_t>(list[0]->words, list[0]->words + 6), (std::vector<uint32_t>{1, 0, 1, 1, 0, 5}));
    EXPECT_STREQ(list[0]->description, L"HPEVA_Snapclone");
    EXPECT_STREQ(list[1]->name, L"") << "a null text is empty";
    EXPECT_STREQ(list[1]->description, L"");
    freeList(out);
}

TEST(ListItems, NodeGetsAnIdentifierOfItsUdidAndWidenedTexts)
{
    qrn_node_list *out = nullptr;
    {
        CFiNodeListFactory factory(&out, nullptr);
        CFiNode node(L"tamlin", "\\Virtual Disks\\d\xC3\xBC\\ACTIVE", "UDID##HP##HSV##5000##6000", 1ULL << 33, 7, 8, 9);
        factory.add(node);
        CFiNode empty(nullptr, nullptr, nullptr, 0, 0, 0, 0);
        factory.add(empty);
    }
    auto nodes = elements(out);
    ASSERT_EQ(nodes.size(), 2u);
    EXPECT_STREQ(nodes[0]->displayName, L"\\Virtual Disks\\d\u00FC\\ACTIVE");
    ASSERT_NE(nodes[0]->id, nullptr);
    EXPECT_STREQ(nodes[0]->id->text, L"UDID##HP##HSV##5000##6000");
    EXPECT_EQ(nodes[0]->id->size, (wcslen(L"UDID##HP##HSV##5000##6000") + 1) * sizeof(wchar_t));
    EXPECT_EQ(nodes[0]->id->flags, 3u);
    EXPECT_STREQ(nodes[1]->displayName, L"");
    ASSERT_NE(nodes[1]->id, nullptr);
    EXPECT_STREQ(nodes[1]->id->text, L"");
    freeList(out);
}

TEST(ListItems, HostPortsLoseDashesAndColonsKeepTheirOrder)
{
    qrn_host_node_list *out = nullptr;
    int32_t count = 0;
    {
        CFiHostNodeListFactory factory(&out, &count);
        CFiHostNode host(L"host1", L"5000-1FE1");
        wchar_t *const *ports = host.addPorts({"5000-1FE1:0015-8A30", "::-a-b:c"});
        ASSERT_NE(ports, nullptr);
        EXPECT_STREQ(ports[0], L"50001FE100158A30");
        EXPECT_STREQ(ports[1], L"abc");
        EXPECT_EQ(ports[2], nullptr);
        host.addPorts({"1:2"});
        EXPECT_EQ(host.getPortCount(), 3u);
        factory.add(host);
    }
    ASSERT_NE(out, nullptr);
    EXPECT_STREQ(out->hostName, L"host1");
    EXPECT_EQ(out->portCount, 3u);
    EXPECT_STREQ(out->ports[2], L"12");
    EXPECT_EQ(out->ports[3], nullptr);
    EXPECT_EQ(count, 1);
    freeList(out);
}
