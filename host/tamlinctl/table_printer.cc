#include "table_printer.h"

#include <algorithm>

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

}  // namespace

TablePrinter::TablePrinter(std::vector<std::string> headers) : m_headers(std::move(headers)), m_right(m_headers.size())
{
}

void TablePrinter::alignRight(size_t column)
{
    if (column < m_right.size()) {
        m_right[column] = true;
    }
}

void TablePrinter::addRow(std::vector<std::string> cells)
{
    cells.resize(m_headers.size());
    m_rows.push_back(std::move(cells));
}

void TablePrinter::print(FILE *out) const
{
    std::vector<size_t> widths(m_headers.size());
    for (size_t c = 0; c < m_headers.size(); ++c) {
        widths[c] = displayWidth(m_headers[c]);
        for (const auto &row : m_rows) {
            widths[c] = std::max(widths[c], displayWidth(row[c]));
        }
    }
    auto printRow = [&](const std::vector<std::string> &row) {
        std::string line;
        for (size_t c = 0; c < row.size(); ++c) {
            bool last = c + 1 == row.size();
            std::string pad(widths[c] - displayWidth(row[c]), ' ');
            if (m_right[c]) {
                line += pad + row[c];
            } else {
                line += row[c];
                if (!last) {
                    line += pad;
                }
            }
            if (!last) {
                line += "  ";
            }
        }
        fprintf(out, "%s\n", line.c_str());
    };
    printRow(m_headers);
    for (const auto &row : m_rows) {
        printRow(row);
    }
}
