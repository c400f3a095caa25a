#ifndef SFIXMLPARSEERROR_H
#define SFIXMLPARSEERROR_H

#include <cstdint>
#include <string>

namespace qorin_pdk_4_4 {

// Why a document could not be read, and where. An empty message means that the last parse
// succeeded. Line and column count from 1; both are 0 when the failure has no place in the
// text (no parser, out of memory).
struct SFiXmlParseError {
    std::string message;  // UTF-8
    int64_t line = 0;
    int64_t column = 0;

    bool failed() const { return !message.empty(); }
    // "message (line L, column C)", or the message alone when it has no place.
    std::string describe() const
    {
        if (line <= 0) {
            return message;
        }
        return message + " (line " + std::to_string(line) + ", column " + std::to_string(column) + ")";
    }
};

}  // namespace qorin_pdk_4_4

#endif
