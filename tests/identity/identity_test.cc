// What a host learns of the provider before any array is touched: the provider list and
// the snapshot methods, read through dlopen like a real host, without any process or
// thread being started for them.
#include <gtest/gtest.h>

#include <dirent.h>
#include <dlfcn.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <cstdlib>
#include <string>
#include <vector>

#include "result_lists.h"
#include "started_provider.h"

namespace {

std::atomic<int> g_processStarts{0};

template <class F>
F next(const char *name)
{
    return reinterpret_cast<F>(dlsym(RTLD_NEXT, name));
}

}  // namespace

// Every way the provider could start a child passes through here first.
extern "C" int posix_spawn(pid_t *pid, const char *path, const posix_spawn_file_actions_t *actions,
                           const posix_spawnattr_t *attributes, char *const argv[], char *const envp[])
{
    ++g_processStarts;
    return next<decltype(&posix_spawn)>("posix_spawn")(pid, path, actions, attributes, argv, envp);
}

extern "C" int posix_spawnp(pid_t *pid, const char *file, const posix_spawn_file_actions_t *actions,
                            const posix_spawnattr_t *attributes, char *const argv[], char *const envp[])
{
    ++g_processStarts;
    return next<decltype(&posix_spawnp)>("posix_spawnp")(pid, file, actions, attributes, argv, envp);
}

extern "C" pid_t fork(void)
{
    ++g_processStarts;
    return next<pid_t (*)(void)>("fork")();
}

extern "C" pid_t vfork(void)
{
    // vfork can't be forwarded safely from a wrapper; fork has the same effect for a count.
    ++g_processStarts;
    return next<pid_t (*)(void)>("fork")();
}

namespace {

using result_lists::freeList;

size_t threadCount()
{
    size_t n = 0;
    if (DIR *dir = opendir("/proc/self/task")) {
        while (dirent *entry = readdir(dir)) {
            n += entry->d_name[0] != '.';
        }
        closedir(dir);
    }
    return n;
}

class Identity : public StartedProvider {};

}  // namespace

TEST_F(Identity, ProviderInfoIsOneElementWithVersionAndClaimPattern)
{
    qrn_provider_list *list = nullptr;
    ASSERT_EQ(provider()->get_provider_info(&list), 0);
    ASSERT_NE(list, nullptr);
    EXPECT_EQ(list->next, nullptr) << "exactly one element";
    EXPECT_STREQ(list->provider, L"tamlin");
    EXPECT_EQ(list->word1, 1u);
    EXPECT_EQ(list->word2, 2u);
    EXPECT_EQ(std::vector<uint16_t>(list->version, list->version + 4), (std::vector<uint16_t>{7, 0, 0, 0}));
    ASSERT_NE(list->claimPatterns, nullptr);
    EXPECT_STREQ(list->claimPatterns[0], L"UDID##HP##HSV##");
    EXPECT_EQ(list->claimPatterns[1], nullptr);
    freeList(list);
}

TEST_F(Identity, FourMethodsInTheHostsOrder)
{
    struct Expected {
        const wchar_t *name;
        std::vector<uint32_t> words;
    };
    const std::vector<Expected> expected = {
        {L"HPEVA_Snapclone", {1, 0, 1, 1, 0, 5}},
        {L"HPEVA_VSnap", {1, 0, 1, 0, 0, 0}},
        {L"HPEVA_Snapshot", {1, 0, 1, 0, 0, 0}},
        {L"HPEVA_DRGroup_Snapclone", {0, 0, 1, 1, 0, 0}},
    };
    qrn_fim_list *list = nullptr;
    ASSERT_EQ(provider()->enumerate_fims(&list), 0);
    qrn_fim_list *fim = list;
    for (const Expected &e : expected) {
        ASSERT_NE(fim, nullptr) << "missing " << testing::PrintToString(std::wstring(e.name));
        EXPECT_STREQ(fim->name, e.name);
        EXPECT_EQ(std::vector<uint32_t>(fim->words, fim->words + 6), e.words);
        fim = fim->next;
    }
    EXPECT_EQ(fim, nullptr) << "no fifth method";
    freeList(list);
}

TEST_F(Identity, EachCallGivesTheHostAListOfItsOwn)
{
    qrn_fim_list *first = nullptr;
    qrn_fim_list *second = nullptr;
    ASSERT_EQ(provider()->enumerate_fims(&first), 0);
    ASSERT_EQ(provider()->enumerate_fims(&second), 0);
    ASSERT_NE(first, nullptr);
    ASSERT_NE(second, nullptr);
    EXPECT_NE(first, second);
    freeList(first);
    EXPECT_STREQ(second->name, L"HPEVA_Snapclone");
    freeList(second);
}

TEST_F(Identity, NeitherStartsAProcessOrAThread)
{
    size_t threadsBefore = threadCount();
    int startsBefore = g_processStarts;
    for (int i = 0; i < 3; ++i) {
        qrn_provider_list *info = nullptr;
        qrn_fim_list *fims = nullptr;
        ASSERT_EQ(provider()->get_provider_info(&info), 0);
        ASSERT_EQ(provider()->enumerate_fims(&fims), 0);
        freeList(info);
        freeList(fims);
    }
    EXPECT_EQ(g_processStarts, startsBefore);
    EXPECT_EQ(threadCount(), threadsBefore);
}

TEST(IdentityProbe, TheCountersSeeTheProvidersProcessStarts)
{
    // Without this the test above would pass for a wrapper the provider never binds to.
    auto spawn = reinterpret_cast<decltype(&posix_spawn)>(dlsym(RTLD_DEFAULT, "posix_spawn"));
    ASSERT_EQ(spawn, &posix_spawn) << "the test's posix_spawn is the one global lookups find";
    int before = g_processStarts;
    pid_t pid = 0;
    char *argv[] = {const_cast<char *>("true"), nullptr};
    ASSERT_EQ(spawn(&pid, "/bin/true", nullptr, nullptr, argv, environ), 0);
    int status = 0;
    waitpid(pid, &status, 0);
    EXPECT_EQ(g_processStarts, before + 1);
}
