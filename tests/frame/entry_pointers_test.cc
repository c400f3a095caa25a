// Every entry against the pointers a host may hand it: each pointer argument null or
// pointing at zeroed memory (a record whose own pointers are null), in every combination,
// with every number argument 0 and then 1. An entry's calls run in a child process, so a
// crash names the entry and the arguments that caused it instead of ending the program.
#include <gtest/gtest.h>

#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <functional>
#include <memory>
#include <set>
#include <string>
#include <tuple>
#include <type_traits>
#include <vector>

#include "result_lists.h"
#include "started_provider.h"

namespace {

// Zeroed memory for the pointer arguments of one call, long enough for any record or list.
class Zeroes {
public:
    void *next()
    {
        m_blocks.emplace_back(static_cast<char *>(calloc(1, 64 * 1024)));
        return m_blocks.back().get();
    }

private:
    struct Free {
        void operator()(char *p) const { free(p); }
    };
    std::vector<std::unique_ptr<char, Free>> m_blocks;
};

template <class T>
T argument(unsigned mask, int &pointer, int32_t number, Zeroes &zeroes)
{
    if constexpr (std::is_pointer_v<T>) {
        const bool given = (mask >> pointer++) & 1u;
        return given ? reinterpret_cast<T>(zeroes.next()) : nullptr;
    } else {
        return static_cast<T>(number);
    }
}

struct Probe {
    std::string name;
    unsigned combinations;
    // Calls the entry with the pointers of mask given and every number set to number.
    std::function<void(unsigned mask, int32_t number)> call;
};

template <class R, class... A>
Probe probe(const char *name, R (*entry)(A...))
{
    constexpr int pointers = (0 + ... + (std::is_pointer_v<A> ? 1 : 0));
    return {name, 1u << pointers, [entry]([[maybe_unused]] unsigned mask, [[maybe_unused]] int32_t number) {
                Zeroes zeroes;
                [[maybe_unused]] int pointer = 0;
                // Braces: the arguments are made from left to right.
                std::tuple<A...> args{argument<A>(mask, pointer, number, zeroes)...};
                std::apply(entry, args);
            }};
}

// Whether calls ran to their end in a child process.
bool survives(const std::function<void()> &calls)
{
    pid_t child = fork();
    if (child == 0) {
        alarm(120);
        calls();
        _exit(0);
    }
    int status = 0;
    return child > 0 && waitpid(child, &status, 0) == child && WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

std::set<std::string> &probed()
{
    static std::set<std::string> names;
    return names;
}

class EntryPointers : public StartedProvider {
protected:
    static void SetUpTestSuite()
    {
        StartedProvider::SetUpTestSuite();
        if (HasFatalFailure()) {
            return;
        }
        // The delayed initialisation once, here, rather than in every child.
        qrn_enclosure_node_list *enclosures = nullptr;
        provider()->enumerate_enclosures(&enclosures, nullptr, nullptr);
        result_lists::freeList(enclosures);
    }
    void SetUp() override
    {
#if defined(__SANITIZE_THREAD__)
        GTEST_SKIP() << "ThreadSanitizer does not follow a multi-threaded process into fork";
#endif
    }

    // One child per entry for all its calls; only when that child dies, one per call, to
    // name each combination that kills it.
    void expectSurvives(const std::vector<Probe> &family)
    {
        for (const Probe &p : family) {
            probed().insert(p.name);
            auto all = [&p] {
                for (int32_t number : {0, 1}) {
                    for (unsigned mask = 0; mask < p.combinations; ++mask) {
                        p.call(mask, number);
                    }
                }
            };
            if (survives(all)) {
                continue;
            }
            for (int32_t number : {0, 1}) {
                for (unsigned mask = 0; mask < p.combinations; ++mask) {
                    EXPECT_TRUE(survives([&] { p.call(mask, number); }))
                        << p.name << ": pointers given by mask " << mask << ", numbers " << number;
                }
            }
        }
    }
};

#define P(name) probe(#name, provider().entries().name)

}  // namespace

TEST_F(EntryPointers, StartAndMessages)
{
    expectSurvives({P(init), P(fini), P(errmsg), P(get_provider_info), P(enumerate_fims), P(get_last_error),
                    P(del_last_error), P(get_locale_message), P(del_locale_message), P(objctl)});
}

TEST_F(EntryPointers, Enumerations)
{
    expectSurvives({P(enumerate_nodes), P(enumerate_enclosures), P(enumerate_host_nodes), P(enumerate_group_nodes),
                    P(enumerate_associations), P(isvalid_node_association), P(get_associated_nodes),
                    P(check_node_existence), P(revisit_pgn_nodes)});
}

TEST_F(EntryPointers, NodesAndTheirState)
{
    expectSurvives({P(claim), P(supports_fitype), P(interpose), P(init_node), P(init_altnode), P(init_remnode),
                    P(deinit_node), P(reaccess_tmpobj), P(reaccess_altnode), P(config), P(subobj_list), P(getattr),
                    P(process_providerstate), P(cache_disable), P(cache_enable), P(enable_access), P(disable_access)});
}

TEST_F(EntryPointers, GroupOperations)
{
    expectSurvives({P(pre_prepare), P(quiesce), P(unquiesce), P(select), P(prepare), P(make), P(isready),
                    P(verify_qscombos), P(set_import_options)});
}

TEST_F(EntryPointers, CopiesAndTrees)
{
    expectSurvives({P(dispose), P(online), P(import_tree), P(deport_tree), P(build_alttree), P(start_build_alttree),
                    P(refresh_tree), P(get_backupset), P(get_app_status), P(set_op_status), P(set_comp_status),
                    P(set_restorepaths)});
}

TEST_F(EntryPointers, Resources)
{
    expectSurvives({P(import_resource), P(deport_resource), P(pre_deport_resource), P(online_resource), P(format),
                    P(unformat), P(translate_resource_names), P(is_parent_pgn)});
}

TEST_F(EntryPointers, Restore)
{
    expectSurvives({P(restore), P(resync), P(get_status), P(query_valid_secondaries), P(res_status)});
}

TEST_F(EntryPointers, EveryEntryIsInAFamily)
{
    if (!::testing::GTEST_FLAG(filter).empty() && ::testing::GTEST_FLAG(filter) != "*") {
        GTEST_SKIP() << "only with every family run";
    }
    std::set<std::string> all;
#define NAME(name) all.insert(#name);
    TAMLIN_ENTRY_NAMES(NAME)
#undef NAME
    EXPECT_EQ(probed(), all);
}
