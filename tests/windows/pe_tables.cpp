#include "tests/windows/pe_tables.h"

#include <algorithm>
#include <cstdint>

namespace pe {

namespace {

constexpr std::size_t kHeaderOffset = 0x3C; // in the file's first header, where the next one lies
constexpr std::uint32_t kSignature = 0x00004550;
constexpr std::uint16_t k32Bit = 0x10B;
constexpr std::uint16_t k64Bit = 0x20B;

constexpr std::size_t kExports = 0; // numbers of the table directory's entries
constexpr std::size_t kImports = 1;
constexpr std::size_t kDelayedImports = 13;

struct Section {
    std::uint32_t address;
    bytes::View content;
};

struct TableEntry {
    std::uint32_t address = 0; // 0 for a table that is not there
    std::uint32_t size = 0;
};

std::string shortage(const std::string& what, std::size_t found, std::size_t wanted) {
    return what + ": " + std::to_string(found) + " bytes, " + std::to_string(wanted) + " expected";
}

// The file as it lies in memory: addresses count from where it is loaded.
class Image {
  public:
    explicit Image(bytes::View file);

    bool is_64_bit() const { return is_64_bit_; }

    TableEntry table(std::size_t number) const {
        return number < tables_.size() ? tables_[number] : TableEntry{};
    }

    // All bytes of the section from the address on.
    bytes::Cursor at(std::uint32_t address, const std::string& what) const {
        for (const Section& section : sections_) {
            if (address >= section.address && address - section.address < section.content.size()) {
                return bytes::Cursor(section.content.subspan(address - section.address));
            }
        }
        throw FormatError(what + ": address " + std::to_string(address) + " is in no section");
    }

    std::string text(std::uint32_t address, const std::string& what) const {
        bytes::Cursor cursor = at(address, what);
        const bytes::View rest = cursor.take(cursor.remaining());
        const auto end = std::find(rest.begin(), rest.end(), 0);
        if (end == rest.end()) {
            throw FormatError(what + ": a text without an end");
        }
        return {rest.begin(), end};
    }

  private:
    void read_directory(bytes::Cursor optional_header);
    void read_sections(bytes::View file, bytes::Cursor headers, std::size_t count);

    bool is_64_bit_ = false;
    std::vector<TableEntry> tables_;
    std::vector<Section> sections_;
};

Image::Image(bytes::View file) {
    bytes::Cursor cursor(file);
    cursor.seek(kHeaderOffset);
    const std::uint32_t header = cursor.u32();
    cursor.seek(header);
    if (cursor.u32() != kSignature) {
        throw FormatError("not a Windows program or library");
    }
    cursor.skip(2); // processor
    const std::uint16_t section_count = cursor.u16();
    cursor.skip(12);
    const std::uint16_t optional_size = cursor.u16();
    cursor.skip(2);
    const bytes::View optional_header = cursor.take(optional_size);
    if (!cursor.ok()) {
        throw FormatError(shortage("headers", file.size(), header + 24u + optional_size));
    }
    read_directory(bytes::Cursor(optional_header));
    read_sections(file, cursor, section_count);
}

void Image::read_directory(bytes::Cursor optional_header) {
    const std::uint16_t kind = optional_header.u16();
    if (kind != k32Bit && kind != k64Bit) {
        throw FormatError("neither a 32-bit nor a 64-bit file, but of kind " +
                          std::to_string(kind));
    }
    is_64_bit_ = kind == k64Bit;
    optional_header.seek(is_64_bit_ ? 108 : 92);
    const std::uint32_t count = optional_header.u32();
    if (!optional_header.ok() || count > optional_header.remaining() / 8) {
        throw FormatError(shortage("table directory", optional_header.remaining(), count * 8ull));
    }
    for (std::uint32_t i = 0; i < count; ++i) {
        const std::uint32_t address = optional_header.u32();
        tables_.push_back({address, optional_header.u32()});
    }
}

void Image::read_sections(bytes::View file, bytes::Cursor headers, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
        headers.skip(12);
        const std::uint32_t address = headers.u32();
        const std::uint32_t size = headers.u32();
        const std::uint32_t offset = headers.u32();
        headers.skip(16);
        if (!headers.ok() || offset > file.size() || size > file.size() - offset) {
            throw FormatError("section " + std::to_string(i + 1) + " is not wholly in the file");
        }
        sections_.push_back({address, file.subspan(offset, size)});
    }
}

std::vector<std::string> read_exports(const Image& image) {
    const TableEntry table = image.table(kExports);
    if (table.address == 0) {
        return {};
    }
    bytes::Cursor cursor = image.at(table.address, "export table");
    cursor.skip(20);
    const std::uint32_t function_count = cursor.u32();
    const std::uint32_t name_count = cursor.u32();
    cursor.skip(4);
    const std::uint32_t names_address = cursor.u32();
    if (!cursor.ok()) {
        throw FormatError("export table: its end is missing");
    }
    if (function_count != name_count) {
        throw FormatError("export table: " + std::to_string(function_count) + " functions, " +
                          std::to_string(name_count) + " names");
    }
    std::vector<std::string> exports;
    if (name_count == 0) {
        return exports;
    }
    bytes::Cursor names = image.at(names_address, "names of exports");
    for (std::uint32_t i = 0; i < name_count; ++i) {
        const std::uint32_t address = names.u32();
        if (!names.ok()) {
            throw FormatError(shortage("names of exports", names.position(), name_count * 4ull));
        }
        exports.push_back(image.text(address, "name of an export"));
    }
    return exports;
}

// The functions of one library: a list of addresses of names, or of numbers, that ends with 0.
std::vector<std::string> read_imported_names(const Image& image, std::uint32_t address) {
    bytes::Cursor list = image.at(address, "names of imports");
    const std::uint64_t by_number = image.is_64_bit() ? 1ull << 63 : 1ull << 31;
    std::vector<std::string> names;
    for (;;) {
        const std::uint64_t entry = image.is_64_bit() ? list.u64() : list.u32();
        if (!list.ok()) {
            throw FormatError("names of imports: a list without an end");
        }
        if (entry == 0) {
            return names;
        }
        if ((entry & by_number) != 0) {
            names.push_back("#" + std::to_string(entry & 0xFFFF));
            continue;
        }
        constexpr std::uint32_t kHintSize = 2;
        names.push_back(image.text(static_cast<std::uint32_t>(entry) + kHintSize, "import"));
    }
}

// Where the addresses of the library's name and of its functions' names stand in an entry.
struct EntryLayout {
    std::size_t size;
    std::size_t dll;
    std::size_t names;
};

constexpr EntryLayout kImportLayout = {20, 12, 0};
constexpr EntryLayout kDelayedLayout = {32, 4, 16};

void read_imports(const Image& image, std::size_t number, const EntryLayout& layout,
                  std::vector<Import>& imports) {
    const TableEntry table = image.table(number);
    if (table.address == 0) {
        return;
    }
    bytes::Cursor entries = image.at(table.address, "import table");
    for (;;) {
        const bytes::View entry = entries.take(layout.size);
        if (!entries.ok()) {
            throw FormatError("import table: its end is missing");
        }
        const std::uint32_t library = bytes::load_u32(entry, layout.dll);
        if (library == 0) {
            return;
        }
        imports.push_back({image.text(library, "name of a library"),
                           read_imported_names(image, bytes::load_u32(entry, layout.names))});
    }
}

} // namespace

Tables read_tables(bytes::View file) {
    const Image image(file);
    Tables tables;
    tables.is_64_bit = image.is_64_bit();
    tables.exports = read_exports(image);
    read_imports(image, kImports, kImportLayout, tables.imports);
    read_imports(image, kDelayedImports, kDelayedLayout, tables.imports);
    return tables;
}

} // namespace pe
