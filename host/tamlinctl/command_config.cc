// config: a node's configuration parameters, shown and set as a backup framework does.
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <cwchar>
#include <string>

#include "commands.h"
#include "json_writer.h"
#include "provider_session.h"
#include "qorinutil.h"
#include "qrn_results.h"
#include "text.h"
#include "xml_indent.h"

namespace {

struct Operation {
    const char *word;
    int32_t code;
};
const Operation kOperations[] = {
    {"get", QRN_CONFIG_GET},
    {"set", QRN_CONFIG_SET},
    {"clear", QRN_CONFIG_CLEAR},
    {"params", QRN_CONFIG_GET_PARAMS},
};

// The node as the host keeps it while the provider knows it; a group node's member list
// starts with the node itself.
class HostNode {
public:
    HostNode(const std::wstring &name, bool group)
    {
        memset(&m_domain, 0, sizeof m_domain);
        m_domain.id = qorin_get_objid(name.c_str(), static_cast<uint32_t>((name.size() + 1) * sizeof(wchar_t)), 3);
        m_self[0] = &m_domain;
        m_members = {1, 0, m_self};
        if (group) {
            m_domain.members = &m_members;
        }
    }
    ~HostNode() { free(m_domain.id); }
    qrn_domain *get() { return &m_domain; }
    bool ok() const { return m_domain.id != nullptr; }

    HostNode(const HostNode &) = delete;
    HostNode &operator=(const HostNode &) = delete;

private:
    qrn_domain m_domain;
    qrn_domain *m_self[1];
    qrn_member_list m_members;
};

// The whole file, or standard input for "-". Empty with a reason when it can't be read.
bool readDocument(const std::string &path, std::string &content, std::string &reason)
{
    FILE *in = path == "-" ? stdin : fopen(path.c_str(), "rb");
    if (in == nullptr) {
        reason = "cannot open " + path + ": " + strerror(errno);
        return false;
    }
    char buffer[65536];
    size_t n;
    while ((n = fread(buffer, 1, sizeof buffer, in)) > 0) {
        content.append(buffer, n);
    }
    const bool failed = ferror(in) != 0;
    if (in != stdin) {
        fclose(in);
    }
    if (failed) {
        reason = "cannot read " + path;
        return false;
    }
    return true;
}

// A document is handed over as wide text: bytes that are no UTF-8, and NUL, which would end
// the text early, are refused here with their place rather than changed on the way.
bool checkText(const std::string &content, std::string &reason)
{
    size_t line = 1;
    size_t column = 1;
    size_t at = 0;
    while (at < content.size()) {
        const auto c = static_cast<unsigned char>(content[at]);
        size_t length = c < 0x80 ? 1 : (c >> 5) == 0x6 ? 2 : (c >> 4) == 0xE ? 3 : (c >> 3) == 0x1E ? 4 : 0;
        uint32_t code = length == 2 ? c & 0x1F : length == 3 ? c & 0x0F : c & 0x07;
        bool valid = length != 0 && at + length <= content.size();
        for (size_t i = 1; valid && i < length; ++i) {
            const auto next = static_cast<unsigned char>(content[at + i]);
            valid = (next & 0xC0) == 0x80;
            code = (code << 6) | (next & 0x3F);
        }
        if (valid && length > 1) {
            // Shortest form only, no surrogates, nothing beyond Unicode.
            static const uint32_t least[] = {0, 0, 0x80, 0x800, 0x10000};
            valid = code >= least[length] && code <= 0x10FFFF && !(code >= 0xD800 && code <= 0xDFFF);
        }
        char where[64];
        snprintf(where, sizeof where, " at line %zu, column %zu", line, column);
        if (!valid) {
            char byte[8];
            snprintf(byte, sizeof byte, "0x%02X", c);
            reason = std::string("the document is not UTF-8 text: byte ") + byte + where;
            return false;
        }
        if (c == 0) {
            reason = std::string("the document holds a NUL character") + where;
            return false;
        }
        if (c == '\n') {
            ++line;
            column = 1;
        } else {
            ++column;
        }
        at += length;
    }
    return true;
}

const char *describe(int32_t op, bool got)
{
    switch (op) {
    case QRN_CONFIG_GET:
        return got ? "" : "no parameter values";
    case QRN_CONFIG_SET:
        return got ? "" : "no parameter values after setting";
    case QRN_CONFIG_CLEAR:
        return "parameter values cleared";
    default:
        return got ? "" : "no parameters described";
    }
}

}  // namespace

int runConfig(CliOptions &options)
{
    cliutil::Args args(options.args);
    const bool group = args.flag("--group");
    long long mode = 1;
    args.integer("--mode", mode, 0, 1);
    const std::vector<std::string> words = args.positional();
    const Operation *operation = nullptr;
    std::string node;
    std::string file;
    if (words.size() < 2) {
        args.fail("config needs a node and an operation (get, set FILE, clear or params)");
    } else {
        node = words[0];
        for (const Operation &candidate : kOperations) {
            if (words[1] == candidate.word) {
                operation = &candidate;
            }
        }
        const size_t wanted = operation != nullptr && operation->code == QRN_CONFIG_SET ? 3 : 2;
        if (operation == nullptr) {
            args.fail("unknown operation '" + words[1] + "' (get, set FILE, clear or params)");
        } else if (words.size() < wanted) {
            args.fail("set needs the file of a ConfigValueList document (\"-\" for standard input)");
        } else if (words.size() > wanted) {
            args.fail("unexpected argument '" + words[wanted] + "'");
        } else if (wanted == 3) {
            file = words[2];
        }
    }
    if (!finishArgs(args, "config")) {
        return ProviderSession::kExitUsage;
    }

    // The document is checked before the provider is loaded: a file that can't be used is the
    // administrator's to fix, not the provider's to refuse.
    std::wstring document;
    if (operation->code == QRN_CONFIG_SET) {
        std::string content;
        std::string reason;
        if (!readDocument(file, content, reason) || !checkText(content, reason)) {
            fprintf(stderr, "tamlinctl config: %s: %s\n", file.c_str(), reason.c_str());
            return ProviderSession::kExitUsage;
        }
        document = fromUtf8(content);
    }

    ProviderSession session(options);
    const int status = startWithArrays(session);
    if (status != 0) {
        return status;
    }
    HostNode host(fromUtf8(node), group);
    if (!host.ok()) {
        fprintf(stderr, "tamlinctl config: no memory for the node's identifier\n");
        return ProviderSession::kExitFailed;
    }
    session.beginCall();
    int32_t result = session.lib()->init_node(host.get(), nullptr, 0, nullptr);
    if (result != QRN_OK) {
        return session.failure("init_node", result);
    }
    // Mode 1 is the first selector set; the second keeps the call from being one with
    // nothing to do.
    qrn_confspec spec{mode, 1, operation->code == QRN_CONFIG_SET ? &document[0] : nullptr};
    wchar_t *const given = spec.text;
    session.beginCall();
    result = session.lib()->config(host.get(), operation->code, nullptr, &spec);
    std::string answer;
    const bool got = spec.text != nullptr && spec.text != given;
    if (got) {
        answer = toUtf8(spec.text);
        qorin_free_buf(spec.text, (wcslen(spec.text) + 1) * sizeof(wchar_t));
    }
    session.lib()->deinit_node(host.get());
    if (result != QRN_OK) {
        return session.failure("config", result);
    }

    if (options.json) {
        JsonWriter json;
        json.beginObject().key("node").value(node).key("operation").value(std::string(operation->word));
        json.key("mode").value(static_cast<int32_t>(mode)).key("group").value(group).key("document");
        if (got) {
            json.value(answer);
        } else {
            json.null();
        }
        fprintf(options.out, "%s\n", json.endObject().text().c_str());
    } else if (got) {
        fputs(indentXml(answer).c_str(), options.out);
    } else {
        fprintf(options.out, "%s: %s (mode %lld%s)\n", node.c_str(), describe(operation->code, got), mode,
                group ? ", group node" : "");
    }
    return ProviderSession::kExitOk;
}
