#include "table_printer.h"

#include <algorithm>

namespace evasim {

TablePrinter::TablePrinter(std::string title, std::vector<std::string> headers) :
    m_title(std::move(title)),
    m_headers(std::move(headers))
{
}

void TablePrinter::row(std::vector<std::string> cells)
{
    cells.resize(m_headers.size());
    m_rows.push_back(std::move(cells));
}

void TablePrinter::print(std::ostream &os, const std::string &format) const
{
    if (format == "tsv") {
        auto clean = [](std::string v) {
            std::replace(v.begin(), v.end(), '\t', ' ');
            std::replace(v.begin(), v.end(), '\n', ' ');
            return v;
        };
        os << "# " << m_title << "\n";
        for (size_t i = 0; i < m_headers.size(); ++i) {
            os << (i ? "\t" : "") << m_headers[i];
        }
        os << "\n";
        for (const auto &r : m_rows) {
            for (size_t i = 0; i < r.size(); ++i) {
                os << (i ? "\t" : "") << clean(r[i]);
            }
            os << "\n";
        }
        return;
    }
    std::vector<size_t> width(m_headers.size());
    for (size_t i = 0; i < m_headers.size(); ++i) {
        width[i] = m_headers[i].size();
    }
    for (const auto &r : m_rows) {
        for (size_t i = 0; i < r.size(); ++i) {
            width[i] = std::max(width[i], r[i].size());
        }
    }
    auto line = [&](const std::vector<std::string> &cells) {
        std::string text;
        for (size_t i = 0; i < cells.size(); ++i) {
            if (i) {
                text += "  ";
            }
            text += cells[i];
            if (i + 1 < cells.size()) {
                text += std::string(width[i] - cells[i].size(), ' ');
            }
        }
        os << text << "\n";
    };
    os << m_title << " (" << m_rows.size() << ")\n";
    line(m_headers);
    std::vector<std::string> rule;
    for (size_t w : width) {
        rule.push_back(std::string(w, '-'));
    }
    line(rule);
    for (const auto &r : m_rows) {
        line(r);
    }
    if (m_rows.empty()) {
        os << "(none)\n";
    }
}

}  // namespace evasim
