// Families of hostile presentations: each is one idea how a small file could cost much time or
// memory, built at any size. What a family repeats, it repeats `count` times.
#pragma once

#include "platform/base/bytes.h"

#include <cstddef>
#include <cstdint>
#include <ostream>
#include <span>
#include <string>

namespace limits {

// With sanitizers less than a sixtieth of what the families are measured at otherwise.
#ifdef __SANITIZE_ADDRESS__
inline constexpr std::size_t kMost = 15000;
#else
inline constexpr std::size_t kMost = 1000000;
#endif

// What a call comes to: one status or, at another count, the other.
struct Statuses {
    std::int32_t one = 0;
    std::int32_t other = one;

    bool contains(std::int32_t status) const { return status == one || status == other; }
};

struct Family {
    const char* name;
    bytes::Bytes (*build)(std::size_t count); // the whole file
    std::size_t most;                         // the greatest count that is measured
    Statuses load{};
    Statuses rewrite{};          // of a file that loads
    Statuses load_leaving_out{}; // with the letter `k`, of a file that does not load without
    const char* letters = "het"; // the options
};

inline void PrintTo(const Family& family, std::ostream* out) {
    *out << family.name;
}

// By what they attack.
std::span<const Family> structure_families(); // user edits, persist directory, pages, groups
std::span<const Family> link_families();      // external objects, texts
std::span<const Family> storage_families();   // OLE storages
std::span<const Family> property_families();  // the document properties
std::span<const Family> compound_families();  // the compound file around it all

} // namespace limits
