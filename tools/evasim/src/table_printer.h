// A table for `evasim show`: aligned columns for people, or tab-separated rows for scripts.
#ifndef EVASIM_TABLE_PRINTER_H
#define EVASIM_TABLE_PRINTER_H

#include <ostream>
#include <string>
#include <vector>

namespace evasim {

class TablePrinter {
public:
    TablePrinter(std::string title, std::vector<std::string> headers);
    void row(std::vector<std::string> cells);
    // "table": a title, a header, a rule, aligned rows. "tsv": the title as "# title", the header,
    // then rows, all tab-separated, tabs and line feeds in values replaced by blanks.
    void print(std::ostream &os, const std::string &format) const;

private:
    std::string m_title;
    std::vector<std::string> m_headers;
    std::vector<std::vector<std::string>> m_rows;
};

}  // namespace evasim

#endif
