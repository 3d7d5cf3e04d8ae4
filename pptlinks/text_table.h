// A table of text: columns padded with blanks to their widest cell, so that a person can read down
// them. Cells hold terminal text (terminal_text.h).
//
// The table keeps one row at a time. All rows are made twice: to be measured, then to be written.
#pragma once

#include "pptlinks/failure.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace pptlinks {

struct TableColumn {
    std::string_view title;
    bool is_number = false; // aligned to the right
};

class TextTable {
  public:
    explicit TextTable(std::vector<TableColumn> columns);

    // The next cell of the row, of which there are as many as columns.
    void add(WideView text);
    // ASCII.
    void add(std::string_view text);

    // Each of these ends the row. A cell wider than 60 columns moves the rest of its own row only.
    void measure_row();
    void append_row_to(std::string& out);

    void append_titles_to(std::string& out);

  private:
    struct Cell {
        std::size_t start; // in text_
        std::size_t size;
        std::size_t columns;
    };

    void add_titles();
    void add_cell(std::size_t start, std::size_t columns);
    void append_cell(std::string& out, const Cell& cell, std::size_t column) const;
    void end_row();

    std::vector<TableColumn> columns_;
    std::vector<std::size_t> widths_;
    std::vector<Cell> cells_; // of the row
    std::string text_;
};

} // namespace pptlinks
