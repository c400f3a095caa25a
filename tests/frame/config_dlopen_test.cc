// config as a host calls it: through the entry table of the loaded provider, on a node the
// host introduced, with every text it gets back freed by the host (the sanitizer build
// checks that nothing is left).
#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <string>

#include "host_node.h"
#include "qorinutil.h"
#include "qrn_results.h"
#include "started_provider.h"

namespace {

const wchar_t kDisk[] = L"UDID##HP##HSV##5000-1FE1-5000-A9F0##6005-08B4-0001";
const wchar_t kValues[] = L"<ConfigValueList><ConfigValue><key>snapshot_resource_spec</key>"
                          L"<value>[E##D;T&amp;1]</value></ConfigValue></ConfigValueList>";

class ConfigEntry : public StartedProvider {
protected:
    void SetUp() override { ASSERT_EQ(provider()->init_node(&node.domain, nullptr, 0, nullptr), QRN_OK); }
    void TearDown() override { provider()->deinit_node(&node.domain); }

    // The entry's result; out is the text the host got back ("null" for none), freed here
    // unless it is the host's own.
    int call(qrn_domain *target, int op, const wchar_t *in, int64_t selector1 = 1, int64_t selector2 = 0)
    {
        qrn_confspec spec{selector1, selector2, const_cast<wchar_t *>(in)};
        char session[] = "S1";
        const int result = provider()->config(target, op, session, &spec);
        out = spec.text != nullptr ? std::wstring(spec.text) : L"null";
        if (spec.text != nullptr && spec.text != in) {
            free(spec.text);
        }
        return result;
    }

    int call(int op, const wchar_t *in, int64_t selector1 = 1, int64_t selector2 = 0)
    {
        return call(&node.domain, op, in, selector1, selector2);
    }

    static std::wstring lastError()
    {
        qrn_msg_info *info = nullptr;
        if (provider()->get_last_error(&info) != QRN_OK || info == nullptr) {
            return L"(none)";
        }
        wchar_t *text = nullptr;
        provider()->get_locale_message(nullptr, info, "", &text);
        std::wstring copy = text != nullptr ? text : L"(null)";
        provider()->del_locale_message(&text);
        provider()->del_last_error(&info);
        return copy;
    }

    HostNode node{kDisk};
    std::wstring out;
};

}  // namespace

TEST_F(ConfigEntry, EveryOperationAsTheHostSeesIt)
{
    // This provider offers no parameters of its own: until the host sets some there are none.
    EXPECT_EQ(call(QRN_CONFIG_GET, nullptr), QRN_OK);
    EXPECT_EQ(out, L"null");
    EXPECT_EQ(call(QRN_CONFIG_GET_PARAMS, nullptr), QRN_OK);
    EXPECT_EQ(out, L"null");
    qrn_domain *self[] = {&node.domain};
    qrn_member_list group{1, 0, self};
    node.domain.members = &group;
    EXPECT_EQ(call(QRN_CONFIG_GET_PARAMS, nullptr, 0, 1), QRN_OK);
    EXPECT_EQ(out, L"null") << "nor for group nodes";
    node.domain.members = nullptr;

    EXPECT_EQ(call(QRN_CONFIG_SET, kValues), QRN_OK);
    const std::wstring stored = out;
    EXPECT_NE(stored.find(L"<value>[E##D;T&amp;1]</value>"), std::wstring::npos) << stored;
    EXPECT_EQ(stored.rfind(L"<?xml version=\"1.0\" standalone=\"yes\" ?>\n", 0), 0u);
    EXPECT_EQ(call(QRN_CONFIG_GET, nullptr), QRN_OK);
    EXPECT_EQ(out, stored);
    EXPECT_EQ(call(QRN_CONFIG_GET, nullptr, 0, 1), QRN_OK);
    EXPECT_EQ(out, L"null") << "the other mode has nothing";
    EXPECT_EQ(call(QRN_CONFIG_SET_ALTERNATE, stored.c_str()), QRN_OK);
    EXPECT_EQ(out, stored);

    EXPECT_EQ(call(QRN_CONFIG_CLEAR, L"as given"), QRN_OK);
    EXPECT_EQ(out, L"as given");
    EXPECT_EQ(call(QRN_CONFIG_GET, nullptr), QRN_OK);
    EXPECT_EQ(out, L"null");

    EXPECT_EQ(call(77, L"as given"), QRN_OK);
    EXPECT_EQ(out, L"as given");
    EXPECT_EQ(call(QRN_CONFIG_SET, L"<bad", 0, 0), QRN_OK) << "both selectors 0: nothing to do";
    EXPECT_EQ(out, L"null");
}

TEST_F(ConfigEntry, RefusalsReachTheHost)
{
    ASSERT_EQ(call(QRN_CONFIG_SET, kValues), QRN_OK);
    EXPECT_EQ(call(QRN_CONFIG_SET, L"<ConfigValueList>\n<ConfigValue>\n</ConfigValueList>"), QRN_ERR_INVALID_ARGUMENT);
    EXPECT_EQ(out, L"null");
    const std::wstring reason = lastError();
    EXPECT_NE(reason.find(L"The parameter document for the node " + std::wstring(kDisk) + L" could not be read"),
              std::wstring::npos)
        << reason;
    EXPECT_NE(reason.find(L"(line 3, column 14)"), std::wstring::npos) << reason;
    // The node keeps its values; its document is the text it was last sent.
    EXPECT_EQ(call(QRN_CONFIG_GET, nullptr), QRN_OK);
    EXPECT_EQ(out, L"<ConfigValueList>\n<ConfigValue>\n</ConfigValueList>");

    HostNode stranger(L"never introduced");
    EXPECT_EQ(call(&stranger.domain, QRN_CONFIG_GET, nullptr), QRN_ERR_INVALID_ARGUMENT);
}
