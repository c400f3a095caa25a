// The catch ladder around every provider operation: which exception gives which message,
// result and trace line, and what passes through to the entry, where it ends.
#include <gtest/gtest.h>

#include <stdlib.h>

#include <functional>
#include <new>
#include <stdexcept>
#include <string>
#include <vector>

#include "cfienv.h"
#include "cfierror.h"
#include "cfierrormanager.h"
#include "cfiicumessage.h"
#include "cfistringtool.h"
#include "cfitracelog.h"
#include "cfiudid.h"
#include "efiexecpipe.h"
#include "hpeva_guard.h"
#include "hpeva_singletons.h"
#include "message_recorder.h"
#include "qrn_results.h"
#include "tamlin_entries.h"
#include "temp_install_root.h"

using namespace qorin_pdk_4_4;

namespace {

const char kSite[] = "providers/hpeva/test_site";

struct Pushed {
    std::string key;
    qrn_eseverity severity;
    std::string file;
    int line;
    std::vector<std::string> args;  // each as text, to compare at a glance
};

// Keeps each pushed message also in a form to compare at a glance.
class Recorder : public tamlin_test::MessageRecorder {
public:
    int handleMessage(CFiMessagePtr message) override
    {
        Pushed p{message->getMessageKey(), message->getSeverity(), message->getFile(), message->getLine(), {}};
        CFiIcuMessage back(message->serialize());
        int32_t count = 0;
        UErrorCode status = U_ZERO_ERROR;
        const icu::Formattable *args = back.getArguments().getArray(count, status);
        for (int32_t i = 0; args != nullptr && i < count; ++i) {
            p.args.push_back(args[i].getType() == icu::Formattable::kString
                                 ? CFiStringTool::ustr2str(args[i].getString())
                                 : std::to_string(args[i].getLong()));
        }
        pushed.push_back(p);
        return MessageRecorder::handleMessage(message);
    }

    std::vector<Pushed> pushed;
};

class Ladder : public ::testing::Test {
protected:
    void SetUp() override
    {
        char pattern[] = "/tmp/tamlin-ladder-XXXXXX";
        ASSERT_NE(mkdtemp(pattern), nullptr);
        m_dir = pattern;
        // The level comes from the install root's configuration, as in an installation.
        m_root.writeFile("ConfigFiles/tamlin.conf", "[DEBUG_TRACE_INFO]\n\"TRACELEVEL\"=dword:00000006\n");
        errors = CFiErrorManagerPtr(new CFiErrorManager);
        errors->registerHandler(&recorder);
        log = CFiTraceLogPtr(new CFiTraceLog);
        log->initialize(L"tamlin", CFiStringTool::str2tstr(m_dir), L"trace", 6, false);
        ASSERT_TRUE(log->isInitialized());
        log->registerErrorManager(errors);
    }
    void TearDown() override
    {
        log->registerErrorManager(CFiErrorManagerPtr());
        std::string command = "rm -rf " + m_dir;
        ASSERT_EQ(system(command.c_str()), 0);
    }

    template <class Body>
    int run(Body &&body, bool initialisation = false)
    {
        return CHpEvaGuard(errors, log, "select", kSite, 77, initialisation).run(body);
    }

    CFiErrorManagerPtr errors;
    CFiTraceLogPtr log;
    Recorder recorder;
    TempInstallRoot m_root;
    std::string m_dir;
};

const char kUnhandled[] = "select(): Unhandled execption encountered, exiting the function";

}  // namespace

TEST_F(Ladder, ABodyThatReturnsIsLeftAlone)
{
    EXPECT_EQ(run([] { return QRN_ERR_NOT_PROVIDED; }), QRN_ERR_NOT_PROVIDED);
    EXPECT_EQ(run([] {}), 0) << "a body without a result counts as success";
    EXPECT_TRUE(recorder.pushed.empty());
    EXPECT_FALSE(recorder.traced("Unhandled"));
}

TEST_F(Ladder, EachRowPushesItsKeyAndArgumentsAndFails)
{
    struct Row {
        std::function<void()> raise;
        std::string key;
        std::vector<std::string> args;
    };
    const std::vector<Row> rows = {
        {[] { throw EFiExecPipe("sssu FILE /tmp/omx_fi1", QRN_EXEC_PIPE_READ_TIMEOUT); },
         "MSG_ERROR_UNHANDLED_EXEC_PIPE_EXCEPTION",
         {"QRN_EXEC_PIPE_READ_TIMEOUT", "sssu FILE /tmp/omx_fi1", kSite, "77"}},
        {[] { throw CFiError(5, L"no \u00FC path", L"pdk/src/x", 3, L"openIt"); },
         "MSG_ERROR_UNHANDLED_FIERROR_EXCEPTION",
         {"no \xC3\xBC path", "openIt", kSite, "77"}},
        {[] { CFiUdid udid(std::string("UDID##HP##HSV")); },
         "MSG_ERROR_UDID_PARSING_EXCEPTION",
         {"UDID##HP##HSV", "4"}},
        {[] { throw std::runtime_error("boom"); },
         "MSG_ERROR_UNHANDLED_RUNTIME_EXCEPTION",
         {"std::runtime_error", "boom", kSite, "77"}},
        {[] { throw std::range_error("derived"); },
         "MSG_ERROR_UNHANDLED_RUNTIME_EXCEPTION",
         {"std::runtime_error", "derived", kSite, "77"}},
        {[] { throw -17; }, "MSG_ERROR_UNHANDLED_INT_EXCEPTION", {"-17", kSite, "77"}},
    };
    for (const Row &row : rows) {
        recorder.pushed.clear();
        recorder.lines.clear();
        EXPECT_EQ(run([&] {
                      row.raise();
                      return 0;
                  }),
                  QRN_ERR_FAILED)
            << row.key;
        ASSERT_EQ(recorder.pushed.size(), 1u) << row.key;
        const Pushed &p = recorder.pushed[0];
        EXPECT_EQ(p.key, row.key);
        EXPECT_EQ(p.severity, QRN_SEVERITY_ERROR);
        EXPECT_EQ(p.args, row.args) << row.key;
        EXPECT_EQ(p.file, kSite);
        EXPECT_EQ(p.line, 77);
        EXPECT_TRUE(recorder.traced(kUnhandled)) << row.key;
    }
}

TEST_F(Ladder, InitialisationEndsInItsOwnMessageAndInitFailed)
{
    EXPECT_EQ(run([]() -> int { throw CFiError(1, L"t", L"f", 1, L"init"); }, true), QRN_ERR_INIT_FAILED);
    ASSERT_EQ(recorder.pushed.size(), 2u);
    EXPECT_EQ(recorder.pushed[0].key, "MSG_ERROR_UNHANDLED_FIERROR_EXCEPTION");
    EXPECT_EQ(recorder.pushed[1].key, "MSG_ERROR_INITIALIZATION_FAILED");
    EXPECT_EQ(recorder.pushed[1].severity, QRN_SEVERITY_WARNING);
    EXPECT_TRUE(recorder.pushed[1].args.empty());
    EXPECT_FALSE(recorder.traced("Unhandled"));
    // The slot keeps the last one, and its key reaches the host.
    EXPECT_EQ(CFiIcuMessage(errors->getLastError()).getMessageKey(), "MSG_ERROR_INITIALIZATION_FAILED");
}

TEST_F(Ladder, OtherExceptionsPassThroughUntouched)
{
    EXPECT_THROW(run([]() -> int { throw std::logic_error("not on the ladder"); }), std::logic_error);
    EXPECT_THROW(run([]() -> int { throw "text"; }), const char *);
    EXPECT_THROW(run([]() -> int { throw 1L; }), long) << "only int is on the ladder";
    EXPECT_TRUE(recorder.pushed.empty());
    EXPECT_FALSE(recorder.traced("Unhandled"));
}

namespace {

// Throws what a test asks for at the first SSSU run, where the machine-wide lock is taken.
class ThrowingEnv : public CFiEnvWrapper {
public:
    explicit ThrowingEnv(std::function<void()> raise) : m_raise(std::move(raise)) {}
    CFiSemaphorePosix &machineLock(int key) override
    {
        m_raise();
        return CFiEnvWrapper::machineLock(key);
    }

private:
    std::function<void()> m_raise;
};

struct Odd {};

}  // namespace

TEST(EntryShield, WhatPassesTheLadderEndsAtTheEntryInAResultAMessageAndATraceLine)
{
    TempInstallRoot root;
    root.installMessages();
    root.writeFile("ConfigFiles/tamlin.conf", "[DEBUG_TRACE_INFO]\n\"TRACELEVEL\"=dword:00000001\n");
    struct Case {
        std::function<void()> raise;
        std::string kind;
        std::string what;
    };
    const std::vector<Case> cases = {
        {[] { throw std::bad_alloc(); }, "std::bad_alloc", "the process is out of memory"},
        {[] { throw std::logic_error("not on the ladder"); }, "std::logic_error", "not on the ladder"},
        {[] { throw Odd(); }, "exception of an unknown type", ""},
    };
    for (const Case &c : cases) {
        uint16_t version[4] = {0, 0, 0, 0};
        // Fails for want of SSSU; the delayed initialisation still runs at the first entry.
        tamlin_fi_pgn_init(nullptr, version);
        ThrowingEnv env(c.raise);
        CFiPluginPtr plugin;
        getPluginSingleton(plugin, false);
        plugin->setEnv(&env);

        qrn_enclosure_node_list *list = nullptr;
        int32_t count = 0;
        EXPECT_EQ(tamlin_fi_pgn_enumerate_enclosures(&list, &count, nullptr), QRN_ERR_FAILED) << c.kind;
        qrn_msg_info *info = nullptr;
        ASSERT_EQ(tamlin_fi_pgn_get_last_error(&info), QRN_OK);
        ASSERT_NE(info, nullptr) << c.kind;
        CFiIcuMessage message(info);
        EXPECT_EQ(message.getMessageKey(), "MSG_ERROR_ENTRY_EXCEPTION");
        int32_t n = 0;
        UErrorCode status = U_ZERO_ERROR;
        const icu::Formattable *args = message.getArguments().getArray(n, status);
        ASSERT_EQ(n, 3);
        EXPECT_EQ(CFiStringTool::ustr2str(args[0].getString()), "enumerate_enclosures");
        EXPECT_EQ(CFiStringTool::ustr2str(args[1].getString()), c.kind);
        EXPECT_EQ(CFiStringTool::ustr2str(args[2].getString()), c.what);
        tamlin_fi_pgn_fini();

        std::string log;
        for (const std::string &name : root.list("Logs")) {
            log += root.readFile("Logs/" + name);
        }
        EXPECT_NE(log.find("tamlin_fi_pgn_enumerate_enclosures: ended by an unexpected " + c.kind), std::string::npos)
            << c.kind;
    }
}

TEST(LadderWithoutServices, StillGivesItsResult)
{
    CHpEvaGuard guard(CFiErrorManagerPtr(), CFiTraceLogPtr(), "enumerateFims", kSite, 1);
    EXPECT_EQ(guard.run([]() -> int { throw 3; }), QRN_ERR_FAILED);
    CHpEvaGuard init(CFiErrorManagerPtr(), CFiTraceLogPtr(), "init", kSite, 1, true);
    EXPECT_EQ(init.run([]() -> int { throw std::runtime_error("x"); }), QRN_ERR_INIT_FAILED);
}
