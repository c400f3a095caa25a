// Per-thread error slots: a thread reads back only its own last message, and many host
// threads may create their slots at the same moment.
#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

#include "cfierrormanager.h"
#include "cfiicumessage.h"
#include "qrn_results.h"

using namespace qorin_pdk_4_4;

namespace {

CFiMessagePtr message(const std::string &key, int32_t value)
{
    icu::Formattable arg(value);
    return CFiMessagePtr(new CFiIcuMessage(key.c_str(), &arg, 1, QRN_SEVERITY_ERROR, "tests/messages", 1));
}

std::string keyOfLast(CFiErrorManager &errors)
{
    const qrn_msg_info *info = errors.getLastError();
    if (info == nullptr) {
        return "<none>";
    }
    return CFiIcuMessage(info).getMessageKey();
}

class Recorder : public CFiErrorHandlerBase {
public:
    explicit Recorder(std::vector<std::string> &log, const char *name) : m_log(log), m_name(name) {}
    int handleText(char *text, qrn_eseverity severity) override
    {
        m_log.push_back(m_name + " text " + text + " " + std::to_string(severity));
        return 0;
    }
    int handleMessage(CFiMessagePtr message) override
    {
        m_log.push_back(m_name + " message " + message->getMessageKey());
        return 0;
    }

private:
    std::vector<std::string> &m_log;
    std::string m_name;
};

}  // namespace

TEST(ErrorSlots, ANewMessageReplacesTheOldAndDeleteEmptiesTheSlot)
{
    CFiErrorManager errors;
    EXPECT_EQ(errors.getLastError(), nullptr) << "a thread that never pushed";
    errors.pushError(message("FIRST", 1));
    errors.pushError(message("SECOND", 2));
    EXPECT_EQ(keyOfLast(errors), "SECOND");
    errors.deleteLastError(nullptr);
    EXPECT_EQ(errors.getLastError(), nullptr);
    errors.deleteLastError(nullptr);
    EXPECT_EQ(errors.getLastError(), nullptr);
    errors.pushError(message("THIRD", 3));
    EXPECT_EQ(keyOfLast(errors), "THIRD") << "an emptied slot fills again";
}

TEST(ErrorSlots, EachThreadReadsOnlyItsOwn)
{
    CFiErrorManager errors;
    errors.pushError(message("MAIN", 0));
    std::string seenByOther;
    std::thread other([&] {
        seenByOther = keyOfLast(errors);
        errors.pushError(message("OTHER", 1));
        seenByOther += "," + keyOfLast(errors);
        errors.deleteLastError(nullptr);
    });
    other.join();
    EXPECT_EQ(seenByOther, "<none>,OTHER");
    EXPECT_EQ(keyOfLast(errors), "MAIN") << "the other thread's delete left this slot alone";
}

TEST(Handlers, EveryHandlerInOrderAndTextsFillNoSlot)
{
    std::vector<std::string> log;
    Recorder a(log, "a");
    Recorder b(log, "b");
    CFiErrorManager errors;
    errors.registerHandler(&a);
    errors.registerHandler(&b);
    errors.pushError(message("KEY", 1));
    char line[] = "trace line";
    errors.pushError(line, QRN_SEVERITY_DETAIL);
    EXPECT_EQ(log, (std::vector<std::string>{"a message KEY", "b message KEY", "a text trace line 4",
                                             "b text trace line 4"}));
    errors.deleteLastError(nullptr);
    errors.pushError(line, QRN_SEVERITY_INFO);
    EXPECT_EQ(errors.getLastError(), nullptr) << "a trace line is no error";
}
