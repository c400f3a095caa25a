// The host library as the provider and hosts rely on it: identifiers, the record builders and
// the settings it reads from the environment.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include <unistd.h>

#include "qorinutil.h"
#include "result_lists.h"
#include "temp_install_root.h"

using tamlin_test::EnvScope;

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

// What each record holds is shown through the list factories (tests/lists); here, that the
// builders copy the caller's texts, keep the node's identifier and stop at a list's end.
TEST(QorinBuilders, CopyTheCallersTextsKeepTheIdentifierAndStopAtTheListsEnd)
{
    wchar_t text[] = L"tamlin";
    wchar_t *list[] = {text, text, nullptr};
    uint16_t version[4] = {7, 0, 0, 0};
    qrn_provider_list *provider = qorin_build_providerlist_node(text, 1, 2, version, list);
    qrn_provider_list *bare = qorin_build_providerlist_node(text, 3, 4, version, nullptr);
    qrn_fim_words words = {{1, 2, 3, 4, 5, 6}, text, text};
    qrn_fim_list *fim = qorin_build_fim_list_node(text, &words, text, text);
    qorin_objid *id = qorin_get_objid(L"UDID##HP##HSV##X##Y", 80, 3);
    qrn_node_name name = {text, id};
    qrn_node_words sizes = {10, 20, 30, 40};
    qrn_node_list *node = qorin_build_nodelist_node(&name, &sizes, text);
    qrn_enclosure_node_list *enclosure = qorin_build_enclosure_list_node(text, text, text, text, text, 1, 2, 3);
    qrn_host_node_list *host = qorin_build_host_list_node(text, list, 9, text);
    ASSERT_TRUE(provider && bare && fim && node && enclosure && host);
    text[0] = L'X';
    version[0] = 9;

    EXPECT_STREQ(provider->provider, L"tamlin");
    EXPECT_NE(provider->claimPatterns, list);
    EXPECT_STREQ(provider->claimPatterns[1], L"tamlin");
    EXPECT_EQ(provider->version[0], 7);
    ASSERT_NE(bare->claimPatterns, nullptr) << "a missing pattern array still reads as an empty list";
    EXPECT_EQ(bare->claimPatterns[0], nullptr);
    EXPECT_STREQ(fim->description, L"tamlin");
    EXPECT_STREQ(fim->version, L"tamlin");
    EXPECT_STREQ(node->displayName, L"tamlin");
    EXPECT_EQ(node->id, id) << "the identifier is handed over, not copied";
    EXPECT_STREQ(enclosure->name, L"tamlin");
    EXPECT_STREQ(host->ports[1], L"tamlin");
    EXPECT_EQ(host->ports[2], nullptr) << "a count beyond the terminator reads no further";
    provider->next = bare;
    result_lists::freeList(provider);
    result_lists::freeList(fim);
    result_lists::freeList(node);
    result_lists::freeList(enclosure);
    result_lists::freeList(host);
}

TEST(QorinSettings, InstallRootGetsATrailingSlash)
{
    wchar_t *root = nullptr;
    {
        EnvScope env("QORIN_INSTALL_ROOT", "/opt/qorin");
        qorin_get_install_root(&root);
        ASSERT_NE(root, nullptr);
        EXPECT_STREQ(root, L"/opt/qorin/");
        free(root);
    }
    {
        EnvScope env("QORIN_INSTALL_ROOT", "/opt/qorin/");
        qorin_get_install_root(&root);
        EXPECT_STREQ(root, L"/opt/qorin/");
        free(root);
    }
    {
        EnvScope env("QORIN_INSTALL_ROOT", std::nullopt);
        root = reinterpret_cast<wchar_t *>(1);
        qorin_get_install_root(&root);
        EXPECT_EQ(root, nullptr);
    }
}

TEST(QorinSettings, ConsumerAndCredentialBlobAreWidenedFromUtf8)
{
    wchar_t *consumer = nullptr;
    {
        EnvScope env("QORIN_CONSUMER", "Sauvegarde-\xc3\xa9t\xc3\xa9");
        qorin_get_consumer_name(&consumer);
        ASSERT_NE(consumer, nullptr);
        EXPECT_STREQ(consumer, L"Sauvegarde-\u00e9t\u00e9");
        free(consumer);
    }
    {
        EnvScope env("QORIN_CONSUMER", "a\xff"
                                       "b");
        qorin_get_consumer_name(&consumer);
        ASSERT_NE(consumer, nullptr);
        EXPECT_STREQ(consumer, L"a\uFFFDb") << "malformed UTF-8 is replaced, not dropped";
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
        EnvScope env("QORIN_CREDENTIAL_BLOB", path);
        qorin_get_credential_blob(&text);
    }
    unlink(path);
    ASSERT_NE(text, nullptr);
    EXPECT_STREQ(text, L"[cv1]\nUSER=adm\u00efn\nPASSWORD=s3cret\n");
    free(text);

    {
        EnvScope env("QORIN_CREDENTIAL_BLOB", "/nonexistent/blob");
        text = reinterpret_cast<wchar_t *>(1);
        qorin_get_credential_blob(&text);
        EXPECT_EQ(text, nullptr) << "an unreadable blob is no blob";
    }
}
