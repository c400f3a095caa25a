// The parameters a node is given: defaults merged into its values, and the snapshot
// resource specification that names the disks to receive its snapshot.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "cfierrormanager.h"
#include "cfiprivatedata.h"
#include "cfitracelog.h"
#include "cfiudidexception.h"
#include "message_recorder.h"
#include "qrn_results.h"
#include "temp_install_root.h"

using namespace qorin_pdk_4_4;

namespace {

const wchar_t kNode[] = L"UDID##HP##HSV##5000-1FE1-5000-A9F0##6005-08B4-0001";

// A node's private data whose trace lines are kept.
class Node : public ::testing::Test {
protected:
    Node() : log(new CFiTraceLog), errors(new CFiErrorManager), data(new CFiPrivateData(kNode, false))
    {
        // A trace log needs somewhere to write before it traces at all.
        root.writeFile("ConfigFiles/tamlin.conf", "[DEBUG_TRACE_INFO]\n\"TRACELEVEL\"=dword:00000001\n");
        log->initialize(L"tamlin", ACE_WString(), ACE_WString(), 1, false);
        errors->registerHandler(&recorder);
        log->registerErrorManager(errors);
        data->setTraceLog(log);
    }

    // The result with spec as the node's resource specification; what is traced is in recorder.
    int select(const std::string &spec)
    {
        data->configDataList(1).setValue("snapshot_resource_spec", spec.c_str());
        recorder.clear();
        return data->selectTargetFromConfigData();
    }
    // The one level-1 line of the last run, without its head.
    std::string failure() const
    {
        for (const std::string &line : recorder.lines) {
            if (line.find("Source found") != std::string::npos) {
                continue;
            }
            for (const char *start : {"Error:", "Configuration", "Source", "No matching"}) {
                const size_t at = line.find(start);
                if (at != std::string::npos) {
                    return line.substr(at, line.find_last_not_of("\n") + 1 - at);
                }
            }
        }
        return "";
    }

    TempInstallRoot root;
    CFiTraceLogPtr log;
    CFiErrorManagerPtr errors;
    tamlin_test::MessageRecorder recorder;
    CFiSmartPtr<CFiPrivateData> data;
};

const std::string kName = "[UDID##HP##HSV##5000-1FE1-5000-A9F0##6005-08B4-0001].";

}  // namespace

TEST_F(Node, FirstMatchingSpecificationGivesItsTargets)
{
    // The node's own specification comes second, in other case, with "&amp;" between.
    ASSERT_EQ(select("[5000-1FE1-5000-A9F0##6005-08B4-0009;T9]&amp;\n"
                     "[5000-1fe1-5000-a9f0##6005-08b4-0001;6005-08B4-00A1;OTHER##6005-08B4-00A2]"
                     "[5000-1FE1-5000-A9F0##6005-08B4-0001;LATER][##bad]"),
              QRN_OK)
        << failure();
    EXPECT_EQ(data->getTargets(), (std::vector<std::string>{"6005-08B4-00A1", "6005-08B4-00A2"}));
    // The enclosure stays the source's, whatever the target names.
    EXPECT_EQ(data->getConfiguredTarget(), "UDID##HP##HSV##5000-1FE1-5000-A9F0##6005-08B4-00A1");
    EXPECT_TRUE(recorder.traced("Target Udid [UDID##HP##HSV##5000-1FE1-5000-A9F0##6005-08B4-00A1]"));

    // The typical value, for a node that is its second source.
    CFiPrivateData device4(L"UDID##HP##HSV##ENCLOSURE2##DEVICE4", false);
    device4.configDataList(1).setValue("snapshot_resource_spec",
                                       "[enclosure##device;device2;device3][enclosure2##device4;device5]");
    ASSERT_EQ(device4.selectTargetFromConfigData(), QRN_OK);
    EXPECT_EQ(device4.getConfiguredTarget(), "UDID##HP##HSV##ENCLOSURE2##DEVICE5");

    // A second run starts with no targets.
    ASSERT_EQ(select("5000-1FE1-5000-A9F0##6005-08B4-0001;B"), QRN_OK);
    EXPECT_EQ(data->getTargets(), (std::vector<std::string>{"B"}));
}

TEST_F(Node, EveryRefusalSaysWhy)
{
    struct Case {
        std::string spec;
        std::string message;
    };
    const Case cases[] = {
        {"[]&amp;\n\r[", "Configuration \"[]&\n\r[\" has no resources specified for source " + kName},
        {"", "Configuration \"\" has no resources specified for source " + kName},
        {"[;;]", "Source configuration \";;\" has not targets specified for " + kName},
        {"[##6005-08B4-0001;T]",
         "Source configuration \"##6005-08B4-0001\" has no enclosure data specified for " + kName},
        {"[6005-08B4-0001;T]", "Source configuration \"6005-08B4-0001\" has no enclosure data specified for " + kName},
        {"[5000-1FE1-5000-A9F0##;T]",
         "Source configuration \"5000-1FE1-5000-A9F0##\" has no device data specified for " + kName},
        {"[5000-1FE1-5000-A9F0##6005-08B4-0001;T;E##]",
         "Source configuration \"E##\" has no device data specified for " + kName},
        {"[5000-1FE1-5000-A9F0##6005-08B4-0001]",
         "Source configuration found, but no targets are specified for " + kName},
        {"[OTHER##6005-08B4-0001;T][5000-1FE1-5000-A9F0##6005-08B4-0002;T]",
         "No matching source specification found for " + kName},
        // A bad source ends the run even though a later specification would match.
        {"[##X;T][5000-1FE1-5000-A9F0##6005-08B4-0001;T]",
         "Source configuration \"##X\" has no enclosure data specified for " + kName},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.spec);
        EXPECT_EQ(select(c.spec), QRN_ERR_FAILED);
        EXPECT_EQ(failure(), c.message);
        EXPECT_EQ(data->getConfiguredTarget(), "");
    }
    // Targets read before a failure stay until the next run.
    select("[5000-1FE1-5000-A9F0##6005-08B4-0001;T1;##]");
    EXPECT_EQ(data->getTargets(), (std::vector<std::string>{"T1"}));

    // Without a value, or without any values of mode 1.
    data->configDataList(1).clear();
    recorder.clear();
    EXPECT_EQ(data->selectTargetFromConfigData(), QRN_ERR_FAILED);
    EXPECT_EQ(failure(), "Configuration data parameter \"snapshot_resource_spec\" unspecified for object " + kName);
    CFiPrivateData fresh(kNode, false);
    fresh.setTraceLog(log);
    recorder.clear();
    EXPECT_EQ(fresh.selectTargetFromConfigData(), QRN_ERR_FAILED);
    EXPECT_EQ(failure(), "Error: No snapshot configuration data has been specified for [" +
                             kName.substr(1, kName.size() - 3) + "]");
    EXPECT_FALSE(fresh.hasConfigDataList(0));

    CFiPrivateData notADisk(L"host-a", false);
    EXPECT_THROW(notADisk.selectTargetFromConfigData(), CFiUdidException);
}

TEST_F(Node, DefaultsFillOnlyWhatNoConfiguredKeyCovers)
{
    CFiConfigParamInfoList offered;
    offered.addParamInfo(CFiConfigParamInfo("retries", 3, CFiConfigParamInfo::AUTO, 0, 9, "M", false, false));
    offered.addParamInfo(CFiConfigParamInfo("wait", true, CFiConfigParamInfo::AUTO, "M", false, false));
    offered.addParamInfo(CFiConfigParamInfo("pool", "default", CFiConfigParamInfo::SELECT, "M", false, false));

    // No values yet: they become the defaults, and another mode is left alone.
    data->addDefaultConfigParamsToDataList(0, &offered);
    EXPECT_EQ(data->configDataList(0).getKeys(), (std::vector<std::string>{"pool", "retries", "wait"}));
    EXPECT_FALSE(data->hasConfigDataList(1));

    // "max_retries" contains "retries", so that default stays out, as does the set "wait".
    CFiConfigParamDataList &values = data->configDataList(1);
    values.setValue("max_retries", "7");
    values.setValue("wait", "false");
    data->addDefaultConfigParamsToDataList(1, &offered);
    EXPECT_EQ(values.getKeys(), (std::vector<std::string>{"max_retries", "pool", "wait"}));
    EXPECT_EQ(values.getValue("wait"), "false");
    EXPECT_EQ(values.getValue("pool"), "default");
    EXPECT_STREQ(values.getXML(), CFiConfigParamDataList(values.getXML()).getXML()) << "the document follows";

    // Null takes the node's own descriptions; with none there is nothing to add.
    data->configInfoList(1).addParamInfo(CFiConfigParamInfo("mine", "m", 0, "M", false, false));
    data->addDefaultConfigParamsToDataList(1, nullptr);
    EXPECT_EQ(values.getValue("mine"), "m");
    data->configDataList(0).clear();
    data->addDefaultConfigParamsToDataList(0, nullptr);
    EXPECT_EQ(data->configDataList(0).size(), 0u);
}
