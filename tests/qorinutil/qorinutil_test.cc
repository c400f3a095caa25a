// The host library as the provider and hosts rely on it: every builder copies what it is
// given, and each record's next field sits where the provider links it.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include <unistd.h>

#include "qorinutil.h"
#include "result_lists.h"

namespace {

// Reads the pointer at a byte offset, as the provider's list code does.
void *pointerAt(const void *record, size_t offset)
{
    void *value;
    memcpy(&value, static_cast<const char *>(record) + offset, sizeof value);
    return value;
}

void setPointerAt(void *record, size_t offset, void *value)
{
    memcpy(static_cast<char *>(record) + offset, &value, sizeof value);
}

class ScopedEnv {
public:
    ScopedEnv(const char *name, const char *value) : m_name(name)
    {
        const char *old = getenv(name);
        m_had = old != nullptr;
        if (m_had) {
            m_old = old;
        }
        if (value != nullptr) {
            setenv(name, value, 1);
        } else {
            unsetenv(name);
        }
    }
    ~ScopedEnv()
    {
        if (m_had) {
            setenv(m_name.c_str(), m_old.c_str(), 1);
        } else {
            unsetenv(m_name.c_str());
        }
    }

private:
    std::string m_name;
    std::string m_old;
    bool m_had;
};

}  // namespace

TEST(QorinObjid, CopiesTextAndComparesByContent)
{
    wchar_t text[] = L"UDID##HP##HSV##ABC";
    qorin_objid *a = qorin_get_objid(text, sizeof text, 3);
    ASSERT_NE(a, nullptr);
    text[0] = L'X';  // the caller's buffer is not referenced
    EXPECT_STREQ(a->text, L"UDID##HP##HSV##ABC");
    EXPECT_EQ(a->size, sizeof text);
    EXPECT_EQ(a->flags, 3u);

    qorin_objid *b = qorin_get_objid(L"UDID##HP##HSV##ABC", 4, 1);
    qorin_objid *c = qorin_get_objid(L"other", 24, 1);
    EXPECT_EQ(qorin_objidcmp(a, b), 0) << "identity is the text, not size or flags";
    EXPECT_NE(qorin_objidcmp(a, c), 0);
    EXPECT_EQ(qorin_objidcmp(nullptr, nullptr), 0);
    EXPECT_NE(qorin_objidcmp(a, nullptr), 0);
    EXPECT_NE(qorin_objidcmp(nullptr, a), 0);
    EXPECT_EQ(qorin_get_objid(nullptr, 0, 3), nullptr);
    free(a);
    free(b);
    free(c);
}

TEST(QorinBuilders, ProviderListCopiesEverythingAndLinksAt40)
{
    wchar_t name[] = L"tamlin";
    wchar_t pattern[] = L"UDID##HP##HSV##";
    wchar_t *patterns[] = {pattern, nullptr};
    uint16_t version[4] = {7, 0, 0, 0};
    qrn_provider_list *first = qorin_build_providerlist_node(name, 1, 2, version, patterns);
    qrn_provider_list *second = qorin_build_providerlist_node(L"other", 3, 4, version, nullptr);
    ASSERT_NE(first, nullptr);
    ASSERT_NE(second, nullptr);
    name[0] = L'X';
    pattern[0] = L'X';
    version[0] = 9;
    EXPECT_STREQ(first->provider, L"tamlin");
    EXPECT_NE(first->claimPatterns, patterns);
    EXPECT_STREQ(first->claimPatterns[0], L"UDID##HP##HSV##");
    EXPECT_EQ(first->claimPatterns[1], nullptr);
    EXPECT_EQ(first->version[0], 7);
    EXPECT_EQ(first->word1, 1u);
    EXPECT_EQ(first->word2, 2u);
    ASSERT_NE(second->claimPatterns, nullptr) << "a missing pattern array still reads as an empty list";
    EXPECT_EQ(second->claimPatterns[0], nullptr);

    EXPECT_EQ(first->next, nullptr);
    setPointerAt(first, 40, second);
    EXPECT_EQ(first->next, second);
    result_lists::freeList(first);
}

TEST(QorinBuilders, FimListCopiesWordsAndTextsAndLinksAt64)
{
    wchar_t description[] = L"Snapclone of a virtual disk";
    wchar_t version[] = L"4.1";
    qrn_fim_words words = {{1, 2, 3, 4, 5, 6}, description, version};
    qrn_fim_list *rec = qorin_build_fim_list_node(L"HPEVA_Snapclone", &words, L"", L"tamlin");
    ASSERT_NE(rec, nullptr);
    description[0] = L'X';
    version[0] = L'X';
    EXPECT_STREQ(rec->name, L"HPEVA_Snapclone");
    EXPECT_STREQ(rec->description, L"Snapclone of a virtual disk");
    EXPECT_STREQ(rec->version, L"4.1");
    EXPECT_STREQ(rec->extra, L"");
    EXPECT_STREQ(rec->provider, L"tamlin");
    for (int i = 0; i < 6; ++i) {
        EXPECT_EQ(rec->words[i], static_cast<uint32_t>(i + 1));
    }
    setPointerAt(rec, 64, rec);
    EXPECT_EQ(rec->next, rec);
    rec->next = nullptr;
    result_lists::freeList(rec);
}

TEST(QorinBuilders, NodeListKeepsTheIdentifierAndCopiesTextsLinksAt48)
{
    wchar_t display[] = L"\\Virtual Disks\\db\\ACTIVE";
    qorin_objid *id = qorin_get_objid(L"UDID##HP##HSV##X##Y", 80, 3);
    qrn_node_name name = {display, id};
    qrn_node_words words = {10, 20, 30, 2147483648ull};
    qrn_node_list *rec = qorin_build_nodelist_node(&name, &words, L"tamlin");
    ASSERT_NE(rec, nullptr);
    display[0] = L'X';
    EXPECT_STREQ(rec->displayName, L"\\Virtual Disks\\db\\ACTIVE");
    EXPECT_EQ(rec->id, id);
    EXPECT_EQ(rec->word1, 10u);
    EXPECT_EQ(rec->word2, 20u);
    EXPECT_EQ(rec->word3, 30u);
    EXPECT_EQ(rec->size, 2147483648ull);
    EXPECT_STREQ(rec->provider, L"tamlin");
    setPointerAt(rec, 48, rec);
    EXPECT_EQ(rec->next, rec);
    rec->next = nullptr;
    result_lists::freeList(rec);
}

TEST(QorinBuilders, EnclosureListCopiesTextsLinksAt64)
{
    wchar_t cellName[] = L"EVA-1";
    qrn_enclosure_node_list *rec =
        qorin_build_enclosure_list_node(cellName, L"tamlin", L"5000-1FE1", L"HP", L"HSV", 100, 200, 7);
    ASSERT_NE(rec, nullptr);
    cellName[0] = L'X';
    EXPECT_STREQ(rec->name, L"EVA-1");
    EXPECT_STREQ(rec->enclosureId, L"5000-1FE1");
    EXPECT_STREQ(rec->vendor, L"HP");
    EXPECT_STREQ(rec->product, L"HSV");
    EXPECT_EQ(rec->available, 100u);
    EXPECT_EQ(rec->total, 200u);
    EXPECT_EQ(rec->lastWord, 7u);
    setPointerAt(rec, 64, rec);
    EXPECT_EQ(pointerAt(rec, 64), rec);
    EXPECT_EQ(rec->next, rec);
    rec->next = nullptr;
    result_lists::freeList(rec);
}

TEST(QorinBuilders, HostListCopiesPortsBoundedByCountLinksAt32)
{
    wchar_t p1[] = L"50060B0000C26204";
    wchar_t p2[] = L"50060B0000C26206";
    wchar_t *ports[] = {p1, p2, nullptr};
    qrn_host_node_list *rec = qorin_build_host_list_node(L"backup01", ports, 2, L"5000-1FE1");
    ASSERT_NE(rec, nullptr);
    p1[0] = L'X';
    EXPECT_STREQ(rec->hostName, L"backup01");
    EXPECT_EQ(rec->portCount, 2u);
    EXPECT_STREQ(rec->ports[0], L"50060B0000C26204");
    EXPECT_STREQ(rec->ports[1], L"50060B0000C26206");
    EXPECT_EQ(rec->ports[2], nullptr);
    EXPECT_STREQ(rec->enclosureId, L"5000-1FE1");

    // A count larger than the array never reads past its terminator.
    qrn_host_node_list *short_ = qorin_build_host_list_node(L"h", ports, 9, L"e");
    ASSERT_NE(short_, nullptr);
    EXPECT_EQ(short_->ports[2], nullptr);
    setPointerAt(rec, 32, short_);
    EXPECT_EQ(rec->next, short_);
    result_lists::freeList(rec);
}

TEST(QorinSettings, InstallRootGetsATrailingSlash)
{
    wchar_t *root = nullptr;
    {
        ScopedEnv env("QORIN_INSTALL_ROOT", "/opt/qorin");
        qorin_get_install_root(&root);
        ASSERT_NE(root, nullptr);
        EXPECT_STREQ(root, L"/opt/qorin/");
        free(root);
    }
    {
        ScopedEnv env("QORIN_INSTALL_ROOT", "/opt/qorin/");
        qorin_get_install_root(&root);
        EXPECT_STREQ(root, L"/opt/qorin/");
        free(root);
    }
    {
        ScopedEnv env("QORIN_INSTALL_ROOT", nullptr);
        root = reinterpret_cast<wchar_t *>(1);
        qorin_get_install_root(&root);
        EXPECT_EQ(root, nullptr);
    }
}

TEST(QorinSettings, ConsumerAndCredentialBlobAreWidenedFromUtf8)
{
    wchar_t *consumer = nullptr;
    {
        ScopedEnv env("QORIN_CONSUMER", "Sauvegarde-\xc3\xa9t\xc3\xa9");
        qorin_get_consumer_name(&consumer);
        ASSERT_NE(consumer, nullptr);
        EXPECT_STREQ(consumer, L"Sauvegarde-\u00e9t\u00e9");
        free(consumer);
    }

    char path[] = "/tmp/qorin_blob_XXXXXX";
    int fd = mkstemp(path);
    ASSERT_GE(fd, 0);
    const char blob[] = "[cv1]\nUSER=adm\xc3\xafn\nPASSWORD=s3cret\n";
    ASSERT_EQ(write(fd, blob, sizeof blob - 1), static_cast<ssize_t>(sizeof blob - 1));
    close(fd);
    wchar_t *text = nullptr;
    {
        ScopedEnv env("QORIN_CREDENTIAL_BLOB", path);
        qorin_get_credential_blob(&text);
    }
    unlink(path);
    ASSERT_NE(text, nullptr);
    EXPECT_STREQ(text, L"[cv1]\nUSER=adm\u00efn\nPASSWORD=s3cret\n");
    free(text);

    {
        ScopedEnv env("QORIN_CREDENTIAL_BLOB", "/nonexistent/blob");
        text = reinterpret_cast<wchar_t *>(1);
        qorin_get_credential_blob(&text);
        EXPECT_EQ(text, nullptr) << "an unreadable blob is no blob";
    }
}

TEST(QorinSettings, MalformedUtf8IsReplacedNotDropped)
{
    ScopedEnv env("QORIN_CONSUMER", "a\xff"
                                    "b");
    wchar_t *consumer = nullptr;
    qorin_get_consumer_name(&consumer);
    ASSERT_NE(consumer, nullptr);
    EXPECT_STREQ(consumer, L"a\uFFFDb");
    free(consumer);
}
