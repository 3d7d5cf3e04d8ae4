// A table of text: columns padded with blanks to their widest cell, so that a person can read down
// them. Cells hold terminal text (terminal_text.h).
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

    // Cells are added row by row, as many in each as there are columns.
    void add(WideView text);
    // ASCII.
    void add(std::string_view text);

    // Title line and rows. A cell wider than 60 columns moves the rest of its own row only.
    void append_to(std::string& out) const;

  private:
    struct Cell {
        std::size_t start; // in text_
        std::size_t size;
        std::size_t columns;
    };

    void add_cell(std::size_t start, std::size_t columns);
    void append_cell(std::string& out, const Cell& cell, std::size_t column) const;

    std::vector<TableColumn> columns_;
    std::vector<std::size_t> widths_;
    std::vector<Cell> cells_; // the title row first
    std::string text_;
};

} // namespace pptlinks
