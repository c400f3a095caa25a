#ifndef CLIUTIL_TABLE_H
#define CLIUTIL_TABLE_H

#include <string>
#include <vector>

namespace cliutil {

// A table for people (aligned columns, widths counted in characters of UTF-8 text) or for scripts
// (tab-separated). A titled table is one section of a longer report: it opens with
// "<title> (<rows>)", has a rule under the header and says "(none)" when it is empty.
class Table {
public:
    explicit Table(std::vector<std::string> headers, std::string title = {});

    void alignRight(size_t column);
    // Missing cells are empty, extra ones are dropped.
    void addRow(std::vector<std::string> cells);
    size_t rows() const { return m_rows.size(); }

    std::string aligned() const;
    // "# <title>" when titled, the header, then the rows; tabs and line feeds in values become blanks.
    std::string tsv() const;

private:
    std::string m_title;
    std::vector<std::string> m_headers;
    std::vector<bool> m_right;
    std::vector<std::vector<std::string>> m_rows;
};

}  // namespace cliutil

#endif
