#include "pptlinks/text_table.h"

#include "pptlinks/terminal_text.h"

#include <algorithm>
#include <utility>

namespace pptlinks {

namespace {

constexpr std::size_t kWidestPadding = 60;
constexpr std::string_view kGap = "  ";

} // namespace

TextTable::TextTable(std::vector<TableColumn> columns)
    : columns_(std::move(columns))
    , widths_(columns_.size()) {
    add_titles();
    measure_row();
}

void TextTable::add_titles() {
    for (const TableColumn& column : columns_) {
        add(column.title);
    }
}

void TextTable::add(WideView text) {
    const std::size_t start = text_.size();
    add_cell(start, append_terminal_text(text_, text));
}

void TextTable::add(std::string_view text) {
    const std::size_t start = text_.size();
    text_ += text;
    add_cell(start, text.size());
}

void TextTable::add_cell(std::size_t start, std::size_t columns) {
    cells_.push_back({start, text_.size() - start, columns});
}

void TextTable::end_row() {
    cells_.clear();
    text_.clear();
}

void TextTable::measure_row() {
    for (std::size_t i = 0; i < cells_.size(); ++i) {
        widths_[i] = std::max(widths_[i], std::min(cells_[i].columns, kWidestPadding));
    }
    end_row();
}

void TextTable::append_cell(std::string& out, const Cell& cell, std::size_t column) const {
    const std::size_t padding = widths_[column] - std::min(widths_[column], cell.columns);
    if (columns_[column].is_number) {
        out.append(padding, ' ');
    }
    out.append(text_, cell.start, cell.size);
    const bool is_last = column + 1 == columns_.size();
    if (!is_last) {
        if (!columns_[column].is_number) {
            out.append(padding, ' ');
        }
        out += kGap;
    }
}

void TextTable::append_row_to(std::string& out) {
    for (std::size_t i = 0; i < cells_.size(); ++i) {
        append_cell(out, cells_[i], i);
    }
    out.erase(out.find_last_not_of(' ') + 1);
    out.push_back('\n');
    end_row();
}

void TextTable::append_titles_to(std::string& out) {
    add_titles();
    append_row_to(out);
}

} // namespace pptlinks
