#include "xml_indent.h"

#include <vector>

namespace {

struct Token {
    enum Kind { OPEN, CLOSE, EMPTY, OTHER, TEXT } kind;
    std::string text;
};

bool blank(const std::string &text)
{
    return text.find_first_not_of(" \t\r\n") == std::string::npos;
}

std::vector<Token> tokens(const std::string &xml)
{
    std::vector<Token> out;
    size_t at = 0;
    while (at < xml.size()) {
        if (xml[at] != '<') {
            const size_t next = xml.find('<', at);
            const size_t end = next == std::string::npos ? xml.size() : next;
            out.push_back({Token::TEXT, xml.substr(at, end - at)});
            at = end;
            continue;
        }
        const size_t close = xml.find('>', at);
        const size_t end = close == std::string::npos ? xml.size() : close + 1;
        std::string tag = xml.substr(at, end - at);
        Token::Kind kind = Token::OPEN;
        if (tag.compare(0, 2, "</") == 0) {
            kind = Token::CLOSE;
        } else if (tag.compare(0, 2, "<?") == 0 || tag.compare(0, 2, "<!") == 0) {
            kind = Token::OTHER;
        } else if (tag.size() >= 2 && tag.compare(tag.size() - 2, 2, "/>") == 0) {
            kind = Token::EMPTY;
        }
        out.push_back({kind, std::move(tag)});
        at = end;
    }
    return out;
}

}  // namespace

std::string indentXml(const std::string &xml)
{
    const std::vector<Token> all = tokens(xml);
    std::string out;
    size_t depth = 0;
    auto line = [&](const std::string &text) { out += std::string(2 * depth, ' ') + text + "\n"; };
    for (size_t i = 0; i < all.size(); ++i) {
        const Token &token = all[i];
        switch (token.kind) {
        case Token::TEXT:
            // Layout between tags goes; anything else is shown where it stands.
            if (!blank(token.text)) {
                line(token.text);
            }
            break;
        case Token::OPEN:
            // A leaf: its text (possibly none) and its closing tag on the same line.
            if (i + 1 < all.size() && all[i + 1].kind == Token::CLOSE) {
                line(token.text + all[i + 1].text);
                ++i;
            } else if (i + 2 < all.size() && all[i + 1].kind == Token::TEXT && all[i + 2].kind == Token::CLOSE) {
                line(token.text + all[i + 1].text + all[i + 2].text);
                i += 2;
            } else {
                line(token.text);
                ++depth;
            }
            break;
        case Token::CLOSE:
            depth = depth > 0 ? depth - 1 : 0;
            line(token.text);
            break;
        case Token::EMPTY:
        case Token::OTHER:
            line(token.text);
            break;
        }
    }
    return out;
}
