// The bundle against the code: every key of the provider's list (hpeva_messages.h) and every
// key errmsg forms from a result code is in both languages, each text is a valid
// MessageFormat pattern with as many arguments as the list gives (which the compiler holds
// each raise site to), and German uses the same arguments as the default language.
#include <gtest/gtest.h>

#include <unicode/locid.h>
#include <unicode/messagepattern.h>
#include <unicode/msgfmt.h>
#include <unicode/resbund.h>

#include <map>
#include <regex>
#include <set>
#include <string>

#include "cfierror.h"
#include "cfistringtool.h"
#include "hpeva_messages.h"
#include "qrn_results.h"
#include "test_paths.h"

using namespace qorin_pdk_4_4;

namespace {

// The results an entry can give; errmsg turns each into a key.
const int kResultCodes[] = {QRN_OK,
                            QRN_ERR_DELAYED_INIT,
                            QRN_ERR_INVALID_ARGUMENT,
                            QRN_ERR_NOT_PROVIDED,
                            QRN_ERR_NO_MEMORY,
                            QRN_ERR_FAILED,
                            QRN_ERR_NO_VERSION_BLOCK,
                            QRN_ERR_BAD_UDID,
                            QRN_ERR_VERSION_CHECK,
                            QRN_ERR_INIT_FAILED,
                            QRN_ERR_PRESENTED_ON_OTHER_LUN};

// Argument number -> how the text formats it ("" for plain text, "number" ...).
using Arguments = std::map<int, std::set<std::string>>;

struct Text {
    std::string utf8;
    Arguments arguments;
    bool valid = false;
};

Arguments argumentsOf(const icu::UnicodeString &pattern, bool &valid)
{
    Arguments out;
    UErrorCode status = U_ZERO_ERROR;
    UParseError parseError;
    icu::MessagePattern parsed(pattern, &parseError, status);
    icu::MessageFormat format(pattern, icu::Locale::getRoot(), status);
    valid = U_SUCCESS(status);
    if (!valid) {
        return out;
    }
    for (int i = 0; i < parsed.countParts(); ++i) {
        const icu::MessagePattern::Part &part = parsed.getPart(i);
        if (part.getType() != UMSGPAT_PART_TYPE_ARG_NUMBER) {
            continue;
        }
        std::string style;
        if (i + 1 < parsed.countParts() && parsed.getPart(i + 1).getType() == UMSGPAT_PART_TYPE_ARG_TYPE) {
            const icu::MessagePattern::Part &type = parsed.getPart(i + 1);
            icu::UnicodeString name = pattern.tempSubString(type.getIndex(), type.getLength());
            name.toUTF8String(style);
        }
        out[part.getValue()].insert(style);
    }
    return out;
}

// The language's own table, without what it would take from root.
std::map<std::string, Text> bundle(const char *language)
{
    std::map<std::string, Text> out;
    std::string path = tamlin_test::buildDir() + "/Messages/libtamlin";
    UErrorCode status = U_ZERO_ERROR;
    icu::ResourceBundle table(icu::UnicodeString::fromUTF8(path), icu::Locale(language), status);
    EXPECT_EQ(status, U_ZERO_ERROR) << language << ": " << u_errorName(status);
    if (U_FAILURE(status)) {
        return out;
    }
    while (table.hasNext()) {
        icu::ResourceBundle item = table.getNext(status);
        icu::UnicodeString text = item.getString(status);
        Text entry;
        text.toUTF8String(entry.utf8);
        entry.arguments = argumentsOf(text, entry.valid);
        out[item.getKey()] = entry;
    }
    return out;
}

std::set<std::string> requiredKeys()
{
    std::set<std::string> keys;
    for (const SHpEvaMessageInfo &message : HPEVA_MESSAGES) {
        keys.insert(message.key);
    }
    for (int code : kResultCodes) {
        keys.insert(CFiError(code, L"", L"", 0, L"").getMessageKey("tamlin", 6000));
    }
    return keys;
}

int placeholders(const Arguments &arguments)
{
    return arguments.empty() ? 0 : arguments.rbegin()->first + 1;
}

}  // namespace

TEST(CatalogKeys, BothLanguagesHoldEveryKeyAsAValidPattern)
{
    std::map<std::string, Text> root = bundle("root");
    std::map<std::string, Text> de = bundle("de");
    ASSERT_FALSE(root.empty());
    std::set<std::string> required = requiredKeys();
    EXPECT_GE(required.size(), std::size(HPEVA_MESSAGES) + 10);
    for (const std::string &key : required) {
        EXPECT_EQ(root.count(key), 1u) << key << " missing in root";
        EXPECT_EQ(de.count(key), 1u) << key << " missing in de";
    }
    // German is complete, and has nothing root lacks.
    for (const auto &entry : root) {
        EXPECT_EQ(de.count(entry.first), 1u) << entry.first << " untranslated";
    }
    for (const auto &entry : de) {
        EXPECT_EQ(root.count(entry.first), 1u) << entry.first << " only in de";
    }
    for (const auto *language : {&root, &de}) {
        for (const auto &entry : *language) {
            EXPECT_TRUE(entry.second.valid) << entry.first << ": " << entry.second.utf8;
            EXPECT_FALSE(entry.second.utf8.empty()) << entry.first;
        }
    }
}

TEST(CatalogKeys, PlaceholdersFollowTheArgumentsOfEachKey)
{
    std::map<std::string, Text> root = bundle("root");
    std::map<std::string, Text> de = bundle("de");
    for (const SHpEvaMessageInfo &message : HPEVA_MESSAGES) {
        auto text = root.find(message.key);
        if (text == root.end()) {
            continue;  // reported above
        }
        // Each argument appears, numbered from 0 in the order pushMessage passes them.
        const Arguments &args = text->second.arguments;
        EXPECT_EQ(placeholders(args), message.arguments) << message.key << ": " << text->second.utf8;
        EXPECT_EQ(static_cast<int>(args.size()), message.arguments) << message.key << " leaves an argument out";
        if (de.count(message.key) != 0) {
            EXPECT_EQ(de[message.key].arguments, args) << message.key << ": " << de[message.key].utf8;
        }
    }
    // The texts behind result codes take no arguments.
    for (const auto &entry : root) {
        if (std::regex_match(entry.first, std::regex("MSG_ERROR_TAMLIN_[0-9]{4}"))) {
            EXPECT_TRUE(entry.second.arguments.empty()) << entry.first;
            EXPECT_TRUE(de[entry.first].arguments.empty()) << entry.first;
        }
    }
}
