#include "cficredentialsparser.h"

#include <cwchar>
#include <string>

#include "cfistringtool.h"
#include "cfitracelogfunction.h"
#include "qorinutil.h"
#include "qrn_results.h"

namespace qorin_pdk_4_4 {

namespace {

const char kServiceToken[] = "STORAGE_MANAGEMENT_SERVICE";
const char kOpenArray[] = "OPENARRAY";
const char kDword[] = "dword:";

bool holds(const std::string &text, const std::string &part)
{
    return text.find(part) != std::string::npos;
}

const char kHidden[] = "********";

// A line of the blob as a trace may show it: whatever follows the "=" of a line that names a
// password, in any letter case, is hidden.
std::string traceable(const std::string &line)
{
    if (!holds(CFiStringTool::tostrupper(line), "PASSWORD")) {
        return line;
    }
    const size_t equals = line.find('=');
    return equals == std::string::npos ? std::string(kHidden) : line.substr(0, equals + 1) + kHidden;
}

// Two records are the same login when all fields agree, the host name in any letter case.
std::wstring identity(const SFiCredential &record)
{
    return CFiStringTool::tostrlower(record.hostname) + L'\n' + record.username + L'\n' + record.password + L'\n' +
           std::to_wstring(record.port) + L'\n' + record.data;
}

}  // namespace

CFiCredentialsParser::CFiCredentialsParser() = default;

CFiCredentialsParser::~CFiCredentialsParser() = default;

void CFiCredentialsParser::setTraceLog(const CFiTraceLogPtr &log)
{
    CFiTraceable::setTraceLog(log);
}

bool CFiCredentialsParser::removeQuotes(std::string &text)
{
    size_t first = text.find('"');
    if (first == std::string::npos) {
        return false;
    }
    std::string rest = text.substr(first + 1);
    size_t last = rest.rfind('"');
    if (last == std::string::npos) {
        return false;
    }
    text = rest.substr(0, last);
    return true;
}

int CFiCredentialsParser::parse(std::string vendor, std::string product, std::vector<SFiCredential> &credentials,
                                bool openArray)
{
    CFiTraceLogFunction fn(m_traceLog, "qorin_pdk_4_4::CFiCredentialsParser::parse");
    wchar_t *blob = nullptr;
    qorin_get_credential_blob(&blob);
    if (blob == nullptr) {
        return 0;
    }
    std::string text = CFiStringTool::wstr2str(std::wstring(blob));
    // The framework's memory goes back to the framework; the password stays only in text.
    size_t size = (wcslen(blob) + 1) * sizeof(wchar_t);
    wmemset(blob, L'\0', wcslen(blob));
    qorin_free_buf(blob, size);
    if (text.empty()) {
        return QRN_ERR_EMPTY_CREDENTIALS;
    }
    return parse(text, vendor, product, credentials, openArray);
}

void CFiCredentialsParser::closeRecord(SFiCredential &record, const std::string &vendor, const std::string &product,
                                       std::vector<SFiCredential> &credentials, bool openArray,
                                       std::unordered_set<std::wstring> &known, int &duplicates)
{
    if (!openArray && !record.isValid()) {
        return;
    }
    // A blob may hold the same login many times over; each copy would cost SSSU runs.
    if (!known.insert(identity(record)).second) {
        ++duplicates;
        return;
    }
    trace(3, "INFO: adding array credentials for: vendor %s, product %s, server %ls, username %ls", vendor.c_str(),
          product.c_str(), record.hostname.c_str(), record.username.c_str());
    credentials.push_back(record);
}

int CFiCredentialsParser::parse(std::string blob, std::string vendor, std::string product,
                                std::vector<SFiCredential> &credentials, bool openArray)
{
    CFiTraceLogFunction fn(m_traceLog, "qorin_pdk_4_4::CFiCredentialsParser::parse");
    SFiCredential record;
    bool wanted = false;
    std::unordered_set<std::wstring> known;
    for (const SFiCredential &existing : credentials) {
        known.insert(identity(existing));
    }
    int duplicates = 0;

    for (std::string line : CFiStringTool::tokenize(blob, "\n")) {
        // A blob written on the other platform ends its lines in CR LF.
        if (!line.empty() && line.back() == '\r') {
            line.pop_back();
        }
        if (holds(line, "[") && holds(line, "]")) {
            if (wanted) {
                wanted = false;
                closeRecord(record, vendor, product, credentials, openArray, known, duplicates);
            }
            record = SFiCredential();
            std::vector<std::string> tokens = CFiStringTool::tokenize(line, "\t\r[]\\ \n");
            if (tokens.size() != 3 || !CFiStringTool::CompareNoCase(tokens[0], std::string(kServiceToken))) {
                continue;
            }
            const std::string &section = tokens[1];
            if ((!vendor.empty() && !holds(section, vendor)) || (!product.empty() && !holds(section, product))) {
                continue;
            }
            if (openArray && !holds(section, kOpenArray)) {
                trace(3, "INFO: Skipping non OPENARRAY credentials section '%s'", section.c_str());
                continue;
            }
            if (!openArray && holds(section, kOpenArray)) {
                trace(3, "INFO: Skipping OPENARRAY credentials section '%s'", section.c_str());
                continue;
            }
            wanted = true;
            continue;
        }
        if (!wanted) {
            continue;
        }
        size_t equals = line.find('=');
        if (equals == std::string::npos) {
            continue;
        }
        std::string key = line.substr(0, equals);
        if (!removeQuotes(key)) {
            trace(2, "WARNING: Invalid credentials section '%s'", traceable(line).c_str());
            continue;
        }
        std::string value = line.substr(equals + 1);
        size_t dword = value.find(kDword);
        if (dword != std::string::npos) {
            value = value.substr(dword + sizeof kDword - 1);
        } else if (!removeQuotes(value)) {
            trace(2, "WARNING: Invalid value '%s' for key section '%s'",
                  holds(CFiStringTool::tostrupper(key), "PASSWORD") ? kHidden : value.c_str(), key.c_str());
            continue;
        }

        if (key == "HOSTNAME") {
            record.hostname = CFiStringTool::tstr2wstr(CFiStringTool::str2tstr(value));
        } else if (key == "USERNAME") {
            record.username = CFiStringTool::tstr2wstr(CFiStringTool::str2tstr(value));
        } else if (key == "PASSWORD") {
            record.password = CFiStringTool::tstr2wstr(CFiStringTool::str2tstr(value));
        } else if (key == "DATA") {
            record.data = CFiStringTool::tstr2wstr(CFiStringTool::str2tstr(value));
        } else if (key == "PORT") {
            if (CFiStringTool::isDigit(value)) {
                CFiStringTool::str2int(value, record.port);
            } else {
                trace(2, "WARNING: Invalid dword value '%s' for key section '%s'", value.c_str(), key.c_str());
            }
        }
    }

    if (wanted) {
        if (!openArray && !record.isValid()) {
            trace(2, "WARNING: skipping invalid credentials for vendor %s", vendor.c_str());
        } else {
            closeRecord(record, vendor, product, credentials, openArray, known, duplicates);
        }
    }
    if (duplicates > 0) {
        trace(3, "INFO: %d repeated credentials for vendor %s, product %s are left out", duplicates, vendor.c_str(),
              product.c_str());
    }
    return 0;
}

}  // namespace qorin_pdk_4_4
