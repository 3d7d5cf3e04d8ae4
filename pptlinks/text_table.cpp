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
    std::size_t& width = widths_[cells_.size() % columns_.size()];
    width = std::max(width, std::min(columns, kWidestPadding));
    cells_.push_back({start, text_.size() - start, columns});
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

void TextTable::append_to(std::string& out) const {
    for (std::size_t i = 0; i < cells_.size(); ++i) {
        const std::size_t column = i % columns_.size();
        append_cell(out, cells_[i], column);
        if (column + 1 == columns_.size()) {
            out.erase(out.find_last_not_of(' ') + 1);
            out.push_back('\n');
        }
    }
}

} // namespace pptlinks
