// Stand-in for the host framework's utility library. Everything handed out is malloc'ed
// and owned by the caller; texts are always copied.
#include "qorinutil.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <cwchar>
#include <string>

#include <locale.h>

namespace {

wchar_t *dupWide(const wchar_t *text)
{
    if (text == nullptr) {
        return nullptr;
    }
    size_t bytes = (wcslen(text) + 1) * sizeof(wchar_t);
    auto *copy = static_cast<wchar_t *>(malloc(bytes));
    if (copy != nullptr) {
        memcpy(copy, text, bytes);
    }
    return copy;
}

// Settings are UTF-8 whatever the host process's locale is: the conversion runs under a
// UTF-8 locale of this thread only. Malformed bytes become U+FFFD.
std::wstring widenUtf8(const std::string &in)
{
    // Made once, and freed when the library goes (a host may load and unload it repeatedly).
    struct Utf8Locale {
        locale_t handle = newlocale(LC_CTYPE_MASK, "C.UTF-8", static_cast<locale_t>(0));
        ~Utf8Locale()
        {
            if (handle != static_cast<locale_t>(0)) {
                freelocale(handle);
            }
        }
    };
    static const Utf8Locale locale;
    const locale_t utf8 = locale.handle;
    locale_t previous = utf8 != static_cast<locale_t>(0) ? uselocale(utf8) : static_cast<locale_t>(0);
    std::wstring out;
    mbstate_t state{};
    const char *p = in.data();
    size_t left = in.size();
    while (left > 0) {
        wchar_t c;
        size_t n = mbrtowc(&c, p, left, &state);
        if (n == static_cast<size_t>(-1) || n == static_cast<size_t>(-2)) {
            out.push_back(L'\uFFFD');
            state = mbstate_t{};
            n = 1;
        } else {
            out.push_back(c);
            n = n == 0 ? 1 : n;
        }
        p += n;
        left -= n;
    }
    if (previous != static_cast<locale_t>(0)) {
        uselocale(previous);
    }
    return out;
}

wchar_t *fromEnvironment(const char *name, bool asDirectory)
{
    const char *value = getenv(name);
    if (value == nullptr || *value == '\0') {
        return nullptr;
    }
    std::wstring wide = widenUtf8(value);
    if (asDirectory && wide.back() != L'/') {
        wide.push_back(L'/');
    }
    return dupWide(wide.c_str());
}

}  // namespace

extern "C" {

void *qorin_alloc_buf(size_t size)
{
    return malloc(size == 0 ? 1 : size);
}

void qorin_free_buf(void *buffer, size_t)
{
    free(buffer);
}

qorin_objid *qorin_get_objid(const wchar_t *text, uint32_t size, uint32_t flags)
{
    if (text == nullptr) {
        return nullptr;
    }
    // The stored size is the caller's; the copy is bounded by the real text so that a
    // short size never leaves the identifier unterminated.
    size_t chars = wcslen(text);
    size_t bytes = (chars + 1) * sizeof(wchar_t);
    auto *id = static_cast<qorin_objid *>(malloc(sizeof(qorin_objid) + bytes));
    if (id == nullptr) {
        return nullptr;
    }
    id->text = reinterpret_cast<wchar_t *>(id + 1);
    memcpy(id->text, text, bytes);
    id->size = size;
    id->flags = flags;
    return id;
}

int32_t qorin_objidcmp(const qorin_objid *a, const qorin_objid *b)
{
    const wchar_t *ta = a != nullptr ? a->text : nullptr;
    const wchar_t *tb = b != nullptr ? b->text : nullptr;
    if (ta == nullptr || tb == nullptr) {
        return ta == tb ? 0 : (ta == nullptr ? -1 : 1);
    }
    return wcscmp(ta, tb);
}

int32_t qorin_get_consumer_name(wchar_t **out)
{
    if (out != nullptr) {
        *out = fromEnvironment("QORIN_CONSUMER", false);
    }
    return 0;
}

int32_t qorin_get_install_root(wchar_t **out)
{
    if (out != nullptr) {
        *out = fromEnvironment("QORIN_INSTALL_ROOT", true);
    }
    return 0;
}

int32_t qorin_get_credential_blob(wchar_t **out)
{
    if (out == nullptr) {
        return 0;
    }
    *out = nullptr;
    const char *path = getenv("QORIN_CREDENTIAL_BLOB");
    if (path == nullptr || *path == '\0') {
        return 0;
    }
    FILE *file = fopen(path, "rb");
    if (file == nullptr) {
        return 0;
    }
    std::string content;
    char chunk[4096];
    size_t n;
    while ((n = fread(chunk, 1, sizeof chunk, file)) > 0) {
        content.append(chunk, n);
    }
    fclose(file);
    *out = dupWide(widenUtf8(content).c_str());
    return 0;
}

qrn_provider_list *qorin_build_providerlist_node(const wchar_t *provider, uint64_t word1, uint64_t word2,
                                                 const uint16_t *version, wchar_t *const *claimPatterns)
{
    auto *rec = static_cast<qrn_provider_list *>(calloc(1, sizeof(qrn_provider_list)));
    if (rec == nullptr) {
        return nullptr;
    }
    rec->provider = dupWide(provider);
    rec->word1 = word1;
    rec->word2 = word2;
    if (version != nullptr) {
        memcpy(rec->version, version, sizeof rec->version);
    }
    size_t count = 0;
    while (claimPatterns != nullptr && claimPatterns[count] != nullptr) {
        ++count;
    }
    rec->claimPatterns = static_cast<wchar_t **>(calloc(count + 1, sizeof(wchar_t *)));
    for (size_t i = 0; rec->claimPatterns != nullptr && i < count; ++i) {
        rec->claimPatterns[i] = dupWide(claimPatterns[i]);
    }
    return rec;
}

qrn_fim_list *qorin_build_fim_list_node(const wchar_t *name, const qrn_fim_words *words, const wchar_t *extra,
                                        const wchar_t *provider)
{
    auto *rec = static_cast<qrn_fim_list *>(calloc(1, sizeof(qrn_fim_list)));
    if (rec == nullptr) {
        return nullptr;
    }
    rec->name = dupWide(name);
    if (words != nullptr) {
        memcpy(rec->words, words->words, sizeof rec->words);
        rec->description = dupWide(words->description);
        rec->version = dupWide(words->version);
    }
    rec->extra = dupWide(extra);
    rec->provider = dupWide(provider);
    return rec;
}

qrn_node_list *qorin_build_nodelist_node(const qrn_node_name *name, const qrn_node_words *words,
                                         const wchar_t *provider)
{
    auto *rec = static_cast<qrn_node_list *>(calloc(1, sizeof(qrn_node_list)));
    if (rec == nullptr) {
        return nullptr;
    }
    if (name != nullptr) {
        rec->displayName = dupWide(name->displayName);
        rec->id = name->id;
    }
    if (words != nullptr) {
        rec->word1 = words->word1;
        rec->word2 = words->word2;
        rec->word3 = words->word3;
        rec->size = words->size;
    }
    rec->provider = dupWide(provider);
    return rec;
}

qrn_enclosure_node_list *qorin_build_enclosure_list_node(const wchar_t *name, const wchar_t *provider,
                                                         const wchar_t *enclosureId, const wchar_t *vendor,
                                                         const wchar_t *product, uint64_t available, uint64_t total,
                                                         uint32_t lastWord)
{
    auto *rec = static_cast<qrn_enclosure_node_list *>(calloc(1, sizeof(qrn_enclosure_node_list)));
    if (rec == nullptr) {
        return nullptr;
    }
    rec->name = dupWide(name);
    rec->provider = dupWide(provider);
    rec->enclosureId = dupWide(enclosureId);
    rec->vendor = dupWide(vendor);
    rec->product = dupWide(product);
    rec->available = available;
    rec->total = total;
    rec->lastWord = lastWord;
    return rec;
}

qrn_host_node_list *qorin_build_host_list_node(const wchar_t *hostName, wchar_t *const *ports, uint32_t portCount,
                                               const wchar_t *enclosureId)
{
    auto *rec = static_cast<qrn_host_node_list *>(calloc(1, sizeof(qrn_host_node_list)));
    if (rec == nullptr) {
        return nullptr;
    }
    rec->hostName = dupWide(hostName);
    // The count is the caller's word, but a shorter null-terminated array bounds the copy.
    uint32_t n = 0;
    while (ports != nullptr && n < portCount && ports[n] != nullptr) {
        ++n;
    }
    rec->ports = static_cast<wchar_t **>(calloc(n + 1, sizeof(wchar_t *)));
    for (uint32_t i = 0; rec->ports != nullptr && i < n; ++i) {
        rec->ports[i] = dupWide(ports[i]);
    }
    rec->portCount = portCount;
    rec->enclosureId = dupWide(enclosureId);
    return rec;
}

}  // extern "C"
