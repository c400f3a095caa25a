#ifndef CFICREDENTIALSPARSER_H
#define CFICREDENTIALSPARSER_H

#include <string>
#include <unordered_set>
#include <vector>

#include "cfiexport.h"
#include "cfitraceable.h"
#include "sficredential.h"

namespace qorin_pdk_4_4 {

// Extracts the storage manager logins of one vendor and product from the framework's
// credential blob:
//
//   [STORAGE_MANAGEMENT_SERVICE\<section>\<anything>]
//   "HOSTNAME"="cv1.example.com"
//   "USERNAME"="admin"
//   "PASSWORD"="secret"
//   "PORT"=dword:00002372          decimal digits, despite the word
//   "DATA"="..."
//
// A section counts when its name holds vendor and product (case-sensitive; empty matches
// all) and, with openArray, "OPENARRAY" (without it, when it doesn't). A login that is already
// in the list (host name in any letter case, all else equal) is not added again. Malformed
// lines are skipped with a warning that never shows a password; nothing is thrown.
class QORIN_PDK_API CFiCredentialsParser : public virtual CFiTraceable {
public:
    CFiCredentialsParser();
    ~CFiCredentialsParser() override;

    void setTraceLog(const CFiTraceLogPtr &log) override;

    // Parses the blob qorin_get_credential_blob gives: 0 without a blob, 31 for an empty one,
    // else as the text form. Records are appended to credentials.
    int parse(std::string vendor, std::string product, std::vector<SFiCredential> &credentials, bool openArray);
    // Gives 0.
    int parse(std::string blob, std::string vendor, std::string product, std::vector<SFiCredential> &credentials,
              bool openArray);

protected:
    // Keeps what lies between the first and the last double quote; false without two.
    bool removeQuotes(std::string &text);

private:
    // Appends the record unless it is invalid or a login already in credentials.
    void closeRecord(SFiCredential &record, const std::string &vendor, const std::string &product,
                     std::vector<SFiCredential> &credentials, bool openArray, std::unordered_set<std::wstring> &known,
                     int &duplicates);
};

}  // namespace qorin_pdk_4_4

#endif
