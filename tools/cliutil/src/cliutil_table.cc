#include "cliutil_table.h"

#include <algorithm>

namespace cliutil {

namespace {

// Characters of a UTF-8 text: every byte that doesn't continue a sequence.
size_t displayWidth(const std::string &text)
{
    size_t n = 0;
    for (unsigned char c : text) {
        if ((c & 0xC0) != 0x80) {
            ++n;
        }
    }
    return n;
}

std::string oneLine(std::string value)
{
    std::replace(value.begin(), value.end(), '\t', ' ');
    std::replace(value.begin(), value.end(), '\n', ' ');
    return value;
}

}  // namespace

Table::Table(std::vector<std::string> headers, std::string title) :
    m_title(std::move(title)),
    m_headers(std::move(headers)),
    m_right(m_headers.size())
{
}

void Table::alignRight(size_t column)
{
    if (column < m_right.size()) {
        m_right[column] = true;
    }
}

void Table::addRow(std::vector<std::string> cells)
{
    cells.resize(m_headers.size());
    m_rows.push_back(std::move(cells));
}

std::string Table::aligned() const
{
    std::vector<size_t> widths(m_headers.size());
    for (size_t c = 0; c < m_headers.size(); ++c) {
        widths[c] = displayWidth(m_headers[c]);
        for (const auto &row : m_rows) {
            widths[c] = std::max(widths[c], displayWidth(row[c]));
        }
    }
    std::string text;
    auto line = [&](const std::vector<std::string> &row) {
        for (size_t c = 0; c < row.size(); ++c) {
            const bool last = c + 1 == row.size();
            const std::string pad(widths[c] - displayWidth(row[c]), ' ');
            if (m_right[c]) {
                text += pad + row[c];
            } else {
                text += row[c];
                if (!last) {
                    text += pad;
                }
            }
            if (!last) {
                text += "  ";
            }
        }
        text += "\n";
    };
    if (!m_title.empty()) {
        text += m_title + " (" + std::to_string(m_rows.size()) + ")\n";
    }
    line(m_headers);
    if (!m_title.empty()) {
        std::vector<std::string> rule;
        for (size_t w : widths) {
            rule.push_back(std::string(w, '-'));
        }
        line(rule);
    }
    for (const auto &row : m_rows) {
        line(row);
    }
    if (!m_title.empty() && m_rows.empty()) {
        text += "(none)\n";
    }
    return text;
}

std::string Table::tsv() const
{
    std::string text;
    if (!m_title.empty()) {
        text += "# " + m_title + "\n";
    }
    auto line = [&](const std::vector<std::string> &row) {
        for (size_t c = 0; c < row.size(); ++c) {
            text += (c ? "\t" : "") + oneLine(row[c]);
        }
        text += "\n";
    };
    line(m_headers);
    for (const auto &row : m_rows) {
        line(row);
    }
    return text;
}

}  // namespace cliutil
