// Tables as evasim prints them with --format tsv (show, history): a "# title" line starts a
// table, its first line names the columns and each further line is a row.
#ifndef TSV_ROWS_H
#define TSV_ROWS_H

#include <map>
#include <sstream>
#include <string>
#include <vector>

namespace tamlin_test {

using TsvRow = std::map<std::string, std::string>;

// The fields of a line, an empty last one included.
inline std::vector<std::string> splitFields(const std::string &line, char separator = '\t')
{
    std::vector<std::string> fields(1);
    for (const char c : line) {
        if (c == separator) {
            fields.emplace_back();
        } else {
            fields.back() += c;
        }
    }
    return fields;
}

// The rows of every table in text, by column name; a short row reads "" in its missing columns.
inline std::vector<TsvRow> tsvRows(const std::string &text)
{
    std::vector<TsvRow> rows;
    std::vector<std::string> header;
    std::istringstream in(text);
    std::string line;
    while (std::getline(in, line)) {
        if (line.empty() || line[0] == '#') {
            header.clear();
            continue;
        }
        const std::vector<std::string> cells = splitFields(line);
        if (header.empty()) {
            header = cells;
            continue;
        }
        TsvRow row;
        for (size_t i = 0; i < header.size(); ++i) {
            row[header[i]] = i < cells.size() ? cells[i] : "";
        }
        rows.push_back(row);
    }
    return rows;
}

}  // namespace tamlin_test

#endif
