// Two implementations of structured storage behind one interface: ours and the system's. A Side
// works on one compound file on disk; paths inside it are written "storage/stream". Failures end
// the test's process with what was asked and the result, since nothing sensible can follow them.
#pragma once

#include "platform/base/bytes.h"

#include <cstdint>
#include <filesystem>
#include <memory>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

namespace storage_sides {

// One element of a compound file, in the order in which its storage enumerates it; a storage is
// followed by what it holds.
struct Element {
    std::u16string path;
    bool is_storage = false;
    bytes::Bytes content;

    bool operator==(const Element&) const = default;
};

class Side {
  public:
    virtual ~Side() = default;

    virtual void add_storage(std::u16string_view path) = 0;
    virtual void add_stream(std::u16string_view path) = 0;
    virtual void write_at(std::u16string_view path, std::uint32_t offset, bytes::View data) = 0;
    virtual void resize(std::u16string_view path, std::uint32_t size) = 0;
    virtual void erase(std::u16string_view path) = 0;
    virtual void rename(std::u16string_view path, std::u16string_view new_name) = 0;
    virtual bool has(std::u16string_view path) = 0;
    virtual std::vector<Element> elements() = 0;

    // Everything is on disk when it returns.
    virtual void save() = 0;
};

enum class Maker { ours, system };

std::unique_ptr<Side> create(Maker maker, const std::filesystem::path& file);
std::unique_ptr<Side> open(Maker maker, const std::filesystem::path& file);

// What the checker of our engine finds wrong with a file, a sentence a line.
std::string faults_of(const std::filesystem::path& file);

inline void PrintTo(Maker maker, std::ostream* out) {
    *out << (maker == Maker::ours ? "ours" : "the system's");
}

// Splits "a/b/c" into "a/b" and "c".
struct SplitPath {
    std::u16string storage;
    std::u16string name;
};
SplitPath split(std::u16string_view path);

std::unique_ptr<Side> make_our_side(const std::filesystem::path& file, bool create);
std::unique_ptr<Side> make_system_side(const std::filesystem::path& file, bool create);

} // namespace storage_sides
