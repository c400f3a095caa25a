// Host names and addresses, on loopback and the machine's own name only.
#include <gtest/gtest.h>

#include <unistd.h>

#include <string>

#include "cfinetwork.h"
#include "cfistringtool.h"
#include "qrn_results.h"

using namespace qorin_pdk_4_4;

TEST(Addresses, StrictValidationChecksEveryByte)
{
    EXPECT_TRUE(CFiNetwork::validateIPAddress("255.255.255.255"));
    EXPECT_TRUE(CFiNetwork::validateIPAddress("0.0.0.0"));
    EXPECT_TRUE(CFiNetwork::validateIPAddress("010.1.1.001")) << "leading zeros are digits like any other";
    EXPECT_FALSE(CFiNetwork::validateIPAddress("1.2.3.256"));
    EXPECT_FALSE(CFiNetwork::validateIPAddress("1.2.3"));
    EXPECT_FALSE(CFiNetwork::validateIPAddress("1.2.3.4.5"));
    EXPECT_FALSE(CFiNetwork::validateIPAddress("1.2.3.x"));
    EXPECT_FALSE(CFiNetwork::validateIPAddress("1.2.-3.4"));
    EXPECT_FALSE(CFiNetwork::validateIPAddress("99999999999999999999.1.1.1")) << "no overflow into range";
    EXPECT_FALSE(CFiNetwork::validateIPAddress("4294967296.1.1.1"));
    EXPECT_FALSE(CFiNetwork::validateIPAddress(nullptr));
}

TEST(Compare, FirstFilledFieldOfTheLeftRecordDecides)
{
    CFiHostInfo a{"Host1", "10.0.0.1", "host1.example"};
    CFiHostInfo b{"HOST1", "10.0.0.2", "other.example"};
    EXPECT_TRUE(CFiNetwork::compare(a, b)) << "addresses differ, hostnames match";
    EXPECT_FALSE(CFiNetwork::compare(CFiHostInfo{}, CFiHostInfo{})) << "two empty records";
    EXPECT_FALSE(CFiNetwork::compare(CFiHostInfo{"", "", ""}, b));
    CFiHostInfo onlyFqdn{"", "", "HOST1.EXAMPLE"};
    EXPECT_TRUE(CFiNetwork::compare(onlyFqdn, a));
    EXPECT_FALSE(CFiNetwork::compare(a, CFiHostInfo{"h2", "10.0.0.9", "host1.example.org"}));
}

TEST(Compare, TextAgainstAnyFieldIgnoringCase)
{
    CFiHostInfo info{"vm", "127.0.0.1", "localhost"};
    EXPECT_TRUE(CFiNetwork::compare("LOCALHOST", info));
    EXPECT_TRUE(CFiNetwork::compare("127.0.0.1", info));
    EXPECT_TRUE(CFiNetwork::compare("VM", info));
    EXPECT_FALSE(CFiNetwork::compare("", CFiHostInfo{}));
    EXPECT_FALSE(CFiNetwork::compare("vm2", info));
}

TEST(Lookup, LoopbackForwardAndReverse)
{
    std::string address;
    EXPECT_EQ(CFiNetwork::getHostbyName("localhost", address), 0);
    EXPECT_EQ(address, "127.0.0.1");

    std::string name;
    ASSERT_EQ(CFiNetwork::getHostbyAddr("127.0.0.1", name), 0);
    EXPECT_FALSE(name.empty());
    EXPECT_FALSE(CFiNetwork::validateIPAddress(name.c_str())) << "a name is required, not the number back";

    std::string fqdn;
    ASSERT_EQ(CFiNetwork::getFQDN("LOCALHOST", fqdn), 0);
    EXPECT_EQ(fqdn, CFiStringTool::tostrlower(name)) << "the full name is what reverse lookup says";
    std::string viaAddress;
    ASSERT_EQ(CFiNetwork::getFQDN("127.0.0.1", viaAddress), 0);
    EXPECT_EQ(viaAddress, fqdn);
}

TEST(Lookup, FailuresGiveThreeAndLeaveOrFillAsDocumented)
{
    std::string name = "untouched";
    EXPECT_EQ(CFiNetwork::getHostbyAddr("not-an-address", name), QRN_ERR_INVALID_ARGUMENT);
    EXPECT_EQ(name, "not-an-address") << "an address that doesn't parse is copied";
    std::string fqdn = "untouched";
    EXPECT_EQ(CFiNetwork::getFQDN("", fqdn), QRN_ERR_INVALID_ARGUMENT);
    EXPECT_EQ(CFiNetwork::getFQDN(static_cast<const char *>(nullptr), fqdn), QRN_ERR_INVALID_ARGUMENT);
    EXPECT_EQ(fqdn, "untouched");
    std::string address;
    EXPECT_EQ(CFiNetwork::getHostbyName(nullptr, address), QRN_ERR_INVALID_ARGUMENT);
    EXPECT_TRUE(address.empty());
}

TEST(Resolve, ByNameAndByAddress)
{
    CFiHostInfo byName = CFiNetwork::resolve("localhost");
    EXPECT_EQ(byName.hostname, "localhost");
    EXPECT_EQ(byName.address, "127.0.0.1");
    EXPECT_FALSE(byName.fqdn.empty());

    CFiHostInfo byAddress = CFiNetwork::resolve("127.0.0.1");
    EXPECT_EQ(byAddress.address, "127.0.0.1");
    EXPECT_FALSE(byAddress.hostname.empty());
    EXPECT_EQ(byAddress.fqdn, byName.fqdn);
    EXPECT_TRUE(CFiNetwork::compare(byName, byAddress));

    CFiHostInfo nothing = CFiNetwork::resolve("");
    EXPECT_TRUE(nothing.hostname.empty() && nothing.address.empty() && nothing.fqdn.empty());
}

TEST(Resolve, ThisMachine)
{
    char expected[256] = {0};
    ASSERT_EQ(gethostname(expected, sizeof expected - 1), 0);
    EXPECT_EQ(CFiNetwork::getComputerName(), expected);
    CFiHostInfo self = CFiNetwork::resolve();
    EXPECT_EQ(self.hostname, expected);
    // Whether the machine's name resolves depends on the machine; what it gives must be sound.
    if (!self.address.empty()) {
        EXPECT_TRUE(CFiNetwork::validateIPAddress(self.address.c_str())) << self.address;
        std::string fqdn;
        if (CFiNetwork::getFQDN(fqdn) == 0) {
            EXPECT_EQ(fqdn, self.fqdn);
        }
    }
}
