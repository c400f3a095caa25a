// Command View logins: the framework's blob as the parser reads it, and the merge with the
// configuration file's server sections.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "cficonfiguration.h"
#include "cficredentialsparser.h"
#include "cfierrormanager.h"
#include "cfistringtool.h"
#include "cfitracelog.h"
#include "message_recorder.h"
#include "qrn_results.h"
#include "temp_install_root.h"

using namespace qorin_pdk_4_4;

namespace {

std::string narrow(const std::wstring &text)
{
    return CFiStringTool::wstr2str(text);
}

// The warnings a parser traces, from a log on a private install root at level 6.
struct Warnings {
    explicit Warnings(TempInstallRoot &root) : log(new CFiTraceLog), errors(new CFiErrorManager)
    {
        root.writeFile("ConfigFiles/tamlin.conf", "[DEBUG_TRACE_INFO]\n\"TRACELEVEL\"=dword:00000006\n");
        log->initialize(L"tamlin", ACE_WString(), ACE_WString(), 1, false);
        errors->registerHandler(&recorder);
        log->registerErrorManager(errors);
    }
    bool saw(const std::string &warning) const
    {
        for (const std::string &line : recorder.texts(2)) {
            if (line.rfind(warning, 0) == 0) {
                return true;
            }
        }
        return false;
    }

    tamlin_test::MessageRecorder recorder;
    CFiTraceLogPtr log;
    CFiErrorManagerPtr errors;
};

std::vector<SFiCredential> parse(const std::string &blob, bool openArray = false, const std::string &vendor = "HP",
                                 const std::string &product = "HSV")
{
    std::vector<SFiCredential> out;
    EXPECT_EQ(CFiCredentialsParser().parse(blob, vendor, product, out, openArray), 0);
    return out;
}

const char kBlob[] = "[STORAGE_MANAGEMENT_SERVICE\\HP_HSV_CV1\\1]\n"
                     "\"HOSTNAME\"=\"cv1.example.com\"\n"
                     "\"USERNAME\"=\"admin\"\n"
                     "\"PASSWORD\"=  \"from-\"blob\"\"  \n"
                     "\"PORT\"=dword:00002372\n"
                     "\"DATA\"=\"x\"\n"
                     "[STORAGE_MANAGEMENT_SERVICE\\EMC_CLARIION\\1]\n"
                     "\"HOSTNAME\"=\"emc.example.com\"\n"
                     "\"USERNAME\"=\"u\"\n"
                     "\"PASSWORD\"=\"p\"\n";

}  // namespace

TEST(CredentialsParser, SectionsOfTheVendorAndProductBecomeRecords)
{
    std::vector<SFiCredential> list = parse(kBlob);
    ASSERT_EQ(list.size(), 1u);
    EXPECT_EQ(narrow(list[0].hostname), "cv1.example.com");
    EXPECT_EQ(narrow(list[0].username), "admin");
    EXPECT_EQ(narrow(list[0].password), "from-\"blob\"") << "inner quotes stay, blanks outside go";
    EXPECT_EQ(list[0].port, 2372) << "decimal digits, whatever the word says";
    EXPECT_EQ(narrow(list[0].data), "x");

    // Empty vendor and product take every section; records are appended, but a login the
    // list already holds is not added again.
    std::vector<SFiCredential> all = list;
    EXPECT_EQ(CFiCredentialsParser().parse(kBlob, "", "", all, false), 0);
    ASSERT_EQ(all.size(), 2u);
    EXPECT_EQ(narrow(all[1].hostname), "emc.example.com");

    EXPECT_TRUE(parse(kBlob, false, "HP", "MSA").empty()) << "product tested on the section name too";
    EXPECT_TRUE(parse(kBlob, false, "hp", "HSV").empty()) << "case-sensitive";
    EXPECT_TRUE(parse("").empty());
}

TEST(CredentialsParser, OpenArraySectionsAreTheirOwnSet)
{
    const std::string blob = std::string(kBlob) + "[STORAGE_MANAGEMENT_SERVICE\\HP_HSV_OPENARRAY\\1]\n"
                                                  "\"HOSTNAME\"=\"open.example.com\"\n"
                                                  "\"USERNAME\"=\"u\"\n";
    std::vector<SFiCredential> closed = parse(blob, false);
    ASSERT_EQ(closed.size(), 1u);
    EXPECT_EQ(narrow(closed[0].hostname), "cv1.example.com");
    // With openArray a section is taken whatever it holds, closed by the end of the text.
    std::vector<SFiCredential> open = parse(blob, true);
    ASSERT_EQ(open.size(), 1u);
    EXPECT_EQ(narrow(open[0].hostname), "open.example.com");
    EXPECT_TRUE(open[0].password.empty());
}

TEST(CredentialsParser, IncompleteRecordsAndForeignLinesAreDropped)
{
    // No password: dropped with openArray false; the last section, closed by the end of
    // the text, is taken like any other.
    std::vector<SFiCredential> list =
        parse("[STORAGE_MANAGEMENT_SERVICE\\HP_HSV_A\\1]\n\"HOSTNAME\"=\"a\"\n\"USERNAME\"=\"u\"\n"
              "[storage_management_service\\HP_HSV_B\\1]\n\"HOSTNAME\"=\"b\"\n\"USERNAME\"=\"u\"\n\"PASSWORD\"=\"p\"\n"
              "\"hostname\"=\"lower case keys are not ours\"\n\"OTHER\"=\"ignored\"\nno equals sign here\n");
    ASSERT_EQ(list.size(), 1u);
    EXPECT_EQ(narrow(list[0].hostname), "b");

    // A header with two tokens ends the section before it and starts none.
    list =
        parse("[STORAGE_MANAGEMENT_SERVICE\\HP_HSV_A\\1]\n\"HOSTNAME\"=\"a\"\n\"USERNAME\"=\"u\"\n\"PASSWORD\"=\"p\"\n"
              "[STORAGE_MANAGEMENT_SERVICE\\HP_HSV_C]\n\"HOSTNAME\"=\"c\"\n\"USERNAME\"=\"u\"\n\"PASSWORD\"=\"p\"\n"
              "[OTHER_SERVICE\\HP_HSV_D\\1]\n\"HOSTNAME\"=\"d\"\n\"USERNAME\"=\"u\"\n\"PASSWORD\"=\"p\"\n");
    ASSERT_EQ(list.size(), 1u);
    EXPECT_EQ(narrow(list[0].hostname), "a");

    // Lines ending in CR LF read like plain ones.
    list = parse("[STORAGE_MANAGEMENT_SERVICE\\HP_HSV\\1]\r\n\"HOSTNAME\"=\"h\"\r\n\"USERNAME\"=\"u\"\r\n"
                 "\"PASSWORD\"=\"p\"\r\n\"PORT\"=dword:00000050\r\n");
    ASSERT_EQ(list.size(), 1u);
    EXPECT_EQ(list[0].port, 50);
}

TEST(CredentialsParser, MalformedLinesAreSkippedWithTheirWarnings)
{
    TempInstallRoot root;
    Warnings warnings(root);
    CFiCredentialsParser parser;
    parser.setTraceLog(warnings.log);
    std::vector<SFiCredential> list;
    parser.parse("[STORAGE_MANAGEMENT_SERVICE\\HP_HSV\\1]\n"
                 "HOSTNAME=\"unquoted key\"\n"
                 "\"HOSTNAME\"=\"h\"\n"
                 "\"USERNAME\"=unquoted value\n"
                 "\"USERNAME\"=\"u\"\n"
                 "PASSWORD=\"Sesame-1\"\n"
                 "\"PASSWORD\"=Sesame-2\n"
                 "\"Password\"=Sesame-3\n"
                 "password\"=\"Sesame-4\n"
                 "\"PASSWORD\"=\"p\"\n"
                 "\"PORT\"=dword:0000a0b0\n",
                 "HP", "HSV", list, false);
    ASSERT_EQ(list.size(), 1u);
    EXPECT_EQ(narrow(list[0].username), "u");
    EXPECT_EQ(list[0].port, -1) << "hexadecimal letters keep the port";
    EXPECT_TRUE(warnings.saw("WARNING: Invalid credentials section 'HOSTNAME=\"unquoted key\"'"));
    EXPECT_TRUE(warnings.saw("WARNING: Invalid value 'unquoted value' for key section 'USERNAME'"));
    EXPECT_TRUE(warnings.saw("WARNING: Invalid dword value '0000a0b0' for key section 'PORT'"));
    // Whatever shape a password line has, its value never reaches a trace line.
    EXPECT_TRUE(warnings.saw("WARNING: Invalid credentials section 'PASSWORD=********'"));
    EXPECT_TRUE(warnings.saw("WARNING: Invalid value '********' for key section 'PASSWORD'"));
    EXPECT_EQ(warnings.recorder.texts(2).size(), 7u);
    EXPECT_EQ(warnings.recorder.count("Sesame"), 0u);

    list.clear();
    parser.parse("[STORAGE_MANAGEMENT_SERVICE\\HP_HSV\\1]\n\"HOSTNAME\"=\"h\"\n", "HP", "HSV", list, false);
    EXPECT_TRUE(list.empty());
    EXPECT_TRUE(warnings.saw("WARNING: skipping invalid credentials for vendor HP"));
}

// 200,000 copies of one login in a blob once made thousands of SSSU runs.
TEST(CredentialsParser, RepeatedLoginsCountOnce)
{
    std::string blob;
    for (int i = 0; i < 1000; ++i) {
        blob += "[STORAGE_MANAGEMENT_SERVICE\\HP_HSV\\" + std::to_string(i) + "]\n\"HOSTNAME\"=\"" +
                (i % 2 == 0 ? "cv1" : "CV1") + "\"\n\"USERNAME\"=\"u\"\n\"PASSWORD\"=\"p\"\n";
    }
    blob +=
        "[STORAGE_MANAGEMENT_SERVICE\\HP_HSV\\x]\n\"HOSTNAME\"=\"cv1\"\n\"USERNAME\"=\"u\"\n\"PASSWORD\"=\"other\"\n";
    std::vector<SFiCredential> list = parse(blob);
    ASSERT_EQ(list.size(), 2u) << "a login that differs stays";
    EXPECT_EQ(narrow(list[0].hostname), "cv1");
    EXPECT_EQ(narrow(list[1].password), "other");
    EXPECT_EQ(parse(blob + blob).size(), 2u);
}

TEST(CredentialsParser, FrameworkBlobMissingOrEmpty)
{
    TempInstallRoot root;
    std::vector<SFiCredential> list(1);
    EXPECT_EQ(CFiCredentialsParser().parse("HP", "HSV", list, false), 0) << "no blob is no failure";
    EXPECT_EQ(list.size(), 1u);
    root.writeFile("credentials.blob", "");
    EXPECT_EQ(CFiCredentialsParser().parse("HP", "HSV", list, false), QRN_ERR_EMPTY_CREDENTIALS);
    root.writeFile("credentials.blob", kBlob);
    EXPECT_EQ(CFiCredentialsParser().parse("HP", "HSV", list, false), 0);
    ASSERT_EQ(list.size(), 2u);
    EXPECT_EQ(narrow(list[1].hostname), "cv1.example.com");
}

TEST(ImportCredentials, BlobAndFileAreMergedWithTheBlobFirst)
{
    TempInstallRoot root;
    root.writeFile("credentials.blob", kBlob);
    root.writeFile("ConfigFiles/tamlin.conf",
                   "[MANAGEMENT_APPLIANCE_INFO]\n"
                   "[MANAGEMENT_APPLIANCE_INFO\\A_SAME_HOST]\n"
                   "\"HOSTNAME\"=\"CV1.Example.COM\"\n\"USERNAME\"=\"file\"\n\"PASSWORD\"=\"from-file\"\n"
                   "[MANAGEMENT_APPLIANCE_INFO\\B_NEW]\n"
                   "\"HOSTNAME\"=\"cv2.example.com\"\n\"USERNAME\"=\"admin\"\n\"PASSWORD\"=\"two\"\n"
                   "[MANAGEMENT_APPLIANCE_INFO\\C_AGAIN]\n"
                   "\"HOSTNAME\"=\"cv2.example.com\"\n\"USERNAME\"=\"later\"\n\"PASSWORD\"=\"three\"\n"
                   "[MANAGEMENT_APPLIANCE_INFO\\D_NONE]\n"
                   "\"HOSTNAME\"=\"cv3.example.com\"\n\"USERNAME\"=\"admin\"\n\"PASSWORD\"=\"<none>\"\n"
                   "[MANAGEMENT_APPLIANCE_INFO\\E_EMPTY]\n"
                   "\"HOSTNAME\"=\"cv4.example.com\"\n\"USERNAME\"=\"admin\"\n\"PASSWORD\"=\"\"\n"
                   "[MANAGEMENT_APPLIANCE_INFO\\F_OPENARRAY]\n"
                   "\"HOSTNAME\"=\"cv5.example.com\"\n\"USERNAME\"=\"admin\"\n\"PASSWORD\"=\"five\"\n");
    CFiConfiguration config(ACE_WString(L"tamlin"));
    std::vector<SFiCredential> list = config.importCredentials("HP", "HSV", L"MANAGEMENT_APPLIANCE_INFO", false);
    ASSERT_EQ(list.size(), 2u);
    EXPECT_EQ(narrow(list[0].password), "from-\"blob\"") << "the blob wins for the same host";
    EXPECT_EQ(list[0].port, 2372);
    // Of two sections for one host the first in the file counts.
    EXPECT_EQ(narrow(list[1].hostname), "cv2.example.com");
    EXPECT_EQ(narrow(list[1].username), "admin");
    EXPECT_EQ(list[1].port, -1) << "the file gives no port";

    std::vector<SFiCredential> open = config.importCredentials("HP", "HSV", L"MANAGEMENT_APPLIANCE_INFO", true);
    ASSERT_EQ(open.size(), 1u);
    EXPECT_EQ(narrow(open[0].hostname), "cv5.example.com");
}

TEST(ImportCredentials, NothingConfiguredGivesAnEmptyListAndLeavesTheFileAlone)
{
    TempInstallRoot root;
    CFiConfiguration config(ACE_WString(L"tamlin"));
    const std::string before = root.readFile("ConfigFiles/tamlin.conf");
    EXPECT_TRUE(config.importCredentials("HP", "HSV", L"MANAGEMENT_APPLIANCE_INFO", false).empty());
    EXPECT_EQ(root.readFile("ConfigFiles/tamlin.conf"), before) << "the section is made in memory only";
}
