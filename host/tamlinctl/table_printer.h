#ifndef TABLE_PRINTER_H
#define TABLE_PRINTER_H

#include <cstdio>
#include <string>
#include <vector>

// An aligned text table: a header row, then one row per entry, columns padded to their
// widest cell (counted in characters, not bytes). Numbers may be right-aligned.
class TablePrinter {
public:
    explicit TablePrinter(std::vector<std::string> headers);

    void alignRight(size_t column);
    void addRow(std::vector<std::string> cells);
    size_t rows() const { return m_rows.size(); }
    void print(FILE *out) const;

private:
    std::vector<std::string> m_headers;
    std::vector<bool> m_right;
    std::vector<std::vector<std::string>> m_rows;
};

#endif
