// The config operation as the host uses it: values per node and mode, descriptions, and
// what the host gets back in the record's text.
#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <string>

#include "cfipluginbase.h"
#include "cfiprivatedataconcretefactory.h"
#include "cfiprivatedatamanager.h"
#include "host_node.h"
#include "qorinutil.h"
#include "qrn_results.h"

using namespace qorin_pdk_4_4;

namespace {

const wchar_t kValues[] = L"<ConfigValueList><ConfigValue><key>given</key><value>1</value></ConfigValue>"
                          L"</ConfigValueList>";

class Plugin : public CFiPluginBase {
public:
    Plugin() : manager(new CFiPrivateDataManager) { registerPrivateDataManager(manager); }
    CFiPrivateDataPtr dataOf(qrn_domain *node) { return manager->getFactory()->find(node); }
    CFiPrivateDataPtr attach(qrn_domain *node) { return manager->getFactory()->create(node, false); }
    CFiPrivateDataManagerPtr manager;
};

// A node record with its own identifier, and the host's side of a call.
class Config : public ::testing::Test {
protected:
    Config() : data(plugin.attach(&node)) {}
    ~Config() override
    {
        data = CFiPrivateDataPtr();
        plugin.manager->getFactory()->destroy(&node);
    }

    // The operation's result; text is what the host got back ("null" for none), freed here.
    int call(int op, int64_t selector1, const wchar_t *in, int64_t selector2 = 1)
    {
        qrn_confspec spec{selector1, selector2, const_cast<wchar_t *>(in)};
        const int result = plugin.config(&node, op, nullptr, &spec);
        if (spec.text == nullptr) {
            text = "null";
        } else {
            text = std::string(spec.text, spec.text + wcslen(spec.text));
            if (spec.text != in) {
                free(spec.text);
            }
        }
        return result;
    }
    static std::string xml(const CFiConfigParamDataList &list)
    {
        const std::wstring wide = list.getXML();
        return std::string(wide.begin(), wide.end());
    }
    static CFiConfigParamInfo param(const char *key, const char *value)
    {
        return CFiConfigParamInfo(key, value, CFiConfigParamInfo::AUTO, "M", false, false);
    }

    Plugin plugin;
    HostNode host{L"N1"};
    qrn_domain &node = host.domain;
    CFiPrivateDataPtr data;
    std::string text;
};

}  // namespace

TEST_F(Config, GetAnswersValuesThenDescriptionsThenThePluginsDefaults)
{
    EXPECT_EQ(call(QRN_CONFIG_GET, 1, nullptr), QRN_OK);
    EXPECT_EQ(text, "null") << "nothing offered, nothing set";

    CFiConfigParamInfo offered = param("offered", "o");
    plugin.addDefaultConfigInfoParam(offered, 1, false);
    EXPECT_EQ(call(QRN_CONFIG_GET, 1, nullptr), QRN_OK);
    EXPECT_EQ(text, xml(plugin.globalConfigInfoList(1, false).getDefaultDataList()));
    EXPECT_FALSE(data->hasConfigDataList(1)) << "the plug-in's defaults aren't stored";
    EXPECT_EQ(call(QRN_CONFIG_GET, 0, nullptr), QRN_OK);
    EXPECT_EQ(text, "null") << "selector 0 is mode 0, which offers nothing";

    data->configInfoList(1);
    EXPECT_EQ(call(QRN_CONFIG_GET, 1, nullptr), QRN_OK);
    EXPECT_EQ(text, "null") << "the node's own empty descriptions win over the plug-in's";
    data->configInfoList(1).addParamInfo(param("own", "x"));
    EXPECT_EQ(call(QRN_CONFIG_GET, 7, nullptr), QRN_OK);
    ASSERT_TRUE(data->hasConfigDataList(1)) << "the node's defaults become its values";
    EXPECT_EQ(data->configDataList(1).getValue("own"), "x");
    EXPECT_EQ(text, xml(data->configDataList(1)));

    data->configDataList(1).clear();
    EXPECT_EQ(call(QRN_CONFIG_GET, 1, nullptr), QRN_OK);
    EXPECT_EQ(text, "null") << "values that were cleared stay cleared";
}

TEST_F(Config, SetParsesMergesDefaultsAndAnswersTheValues)
{
    CFiConfigParamInfo offered = param("offered", "o");
    plugin.addDefaultConfigInfoParam(offered, 1, false);
    EXPECT_EQ(call(QRN_CONFIG_SET, 1, kValues), QRN_OK);
    const CFiConfigParamDataList &values = data->configDataList(1);
    EXPECT_EQ(values.getKeys(), (std::vector<std::string>{"given", "offered"}));
    EXPECT_EQ(text, xml(values));

    // Operation 5 is the same; the node's descriptions replace the plug-in's.
    data->configInfoList(1).addParamInfo(param("own", "x"));
    EXPECT_EQ(call(QRN_CONFIG_SET_ALTERNATE, 1, kValues), QRN_OK);
    EXPECT_EQ(values.getKeys(), (std::vector<std::string>{"given", "own"}));

    EXPECT_EQ(call(QRN_CONFIG_SET, 1, nullptr), QRN_OK) << "no text, nothing to set";
    EXPECT_EQ(values.size(), 2u);
    EXPECT_FALSE(data->hasConfigDataList(0));

    // Clear empties the values of its mode. With both selectors 0 nothing is done, but the
    // session the call names is noted all the same.
    EXPECT_EQ(call(QRN_CONFIG_CLEAR, 1, nullptr), QRN_OK);
    EXPECT_EQ(values.size(), 0u);
    qrn_confspec idle{0, 0, nullptr};
    char session[] = "S-7";
    EXPECT_EQ(plugin.config(&node, QRN_CONFIG_SET, session, &idle), QRN_OK);
    EXPECT_EQ(data->getSessionId(), "S-7");
}

TEST_F(Config, GetParamAnswersTheNodesDescriptionsOrThoseOfItsKind)
{
    EXPECT_EQ(call(QRN_CONFIG_GET_PARAMS, 1, nullptr), QRN_OK);
    EXPECT_EQ(text, "null");

    CFiConfigParamInfo single = param("single", "s");
    CFiConfigParamInfo grouped = param("grouped", "g");
    plugin.addDefaultConfigInfoParam(single, 1, false);
    plugin.addDefaultConfigInfoParam(grouped, 1, true);
    auto expected = [](const CFiConfigParamInfoList &list) {
        const std::wstring wide = list.getXML();
        return std::string(wide.begin(), wide.end());
    };
    EXPECT_EQ(call(QRN_CONFIG_GET_PARAMS, 1, nullptr), QRN_OK);
    EXPECT_EQ(text, expected(plugin.globalConfigInfoList(1, false)));

    // A group node is one whose member list starts with itself.
    qrn_domain *members[] = {&node};
    qrn_member_list list{1, 0, members};
    node.members = &list;
    EXPECT_EQ(call(QRN_CONFIG_GET_PARAMS, 1, nullptr), QRN_OK);
    EXPECT_EQ(text, expected(plugin.globalConfigInfoList(1, true)));
    qrn_domain other;
    members[0] = &other;
    EXPECT_EQ(call(QRN_CONFIG_GET_PARAMS, 1, nullptr), QRN_OK);
    EXPECT_EQ(text, expected(plugin.globalConfigInfoList(1, false))) << "a member of another group";
    node.members = nullptr;

    data->configInfoList(1).addParamInfo(param("own", "x"));
    EXPECT_EQ(call(QRN_CONFIG_GET_PARAMS, 1, nullptr), QRN_OK);
    EXPECT_EQ(text, expected(data->configInfoList(1)));
}
