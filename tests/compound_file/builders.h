// Short ways to say what a test needs: files over media, contents, and the verdict of the checker.
#pragma once

#include "platform/compound_file/compound_file.h"
#include "tests/compound_file/test_backing.h"

#include <gtest/gtest.h>

#include <string>

namespace compound_file::test {

using platform::Errc;

inline std::unique_ptr<CompoundFile> create_on(const std::shared_ptr<Medium>& medium,
                                               Version version) {
    return CompoundFile::create(std::make_unique<TestBacking>(medium), version);
}

inline std::unique_ptr<CompoundFile> open_on(const std::shared_ptr<Medium>& medium,
                                             Access access = Access::read) {
    return CompoundFile::open(std::make_unique<TestBacking>(medium), access);
}

inline bytes::Bytes pattern(std::size_t count, std::uint32_t seed) {
    bytes::Bytes out(count);
    std::uint32_t state = seed * 2654435761U + 1;
    for (std::uint8_t& byte : out) {
        state = state * 1664525U + 1013904223U;
        byte = static_cast<std::uint8_t>(state >> 24);
    }
    return out;
}

inline bytes::Bytes content(CompoundFile& file, EntryId entry) {
    const auto stream = file.stream(entry);
    bytes::Bytes out(static_cast<std::size_t>(stream->size()));
    std::size_t done = 0;
    while (done < out.size()) {
        done += stream->read_at(done, std::span(out).subspan(done));
    }
    return out;
}

inline EntryId add_stream(CompoundFile& file, EntryId storage, std::u16string_view name,
                          bytes::View data) {
    const EntryId entry = file.create_stream(storage, name);
    file.stream(entry)->write_at(0, data);
    return entry;
}

inline bytes::Bytes content_at(CompoundFile& file, std::u16string_view name) {
    return content(file, file.find(kRoot, name));
}

// What the checker says of the file on a medium, its first sentences one a line; empty for a sound
// file.
inline std::string faults_of(const std::shared_ptr<Medium>& medium, bool strict = true) {
    constexpr std::size_t kMost = 10;
    const std::vector<std::string> faults = open_on(medium)->check(strict);
    std::string lines;
    for (std::size_t i = 0; i < std::min(kMost, faults.size()); ++i) {
        lines += faults[i] + "\n";
    }
    return lines;
}

// The code of the error that an action throws; fails the test when it throws none.
template <typename Action>
Errc error_of(Action action) {
    try {
        action();
    } catch (const platform::Error& error) {
        return error.code();
    }
    ADD_FAILURE() << "no error was thrown";
    return Errc::invalid_argument;
}

} // namespace compound_file::test

namespace platform {

inline void PrintTo(Errc code, std::ostream* out) {
    *out << "Errc " << static_cast<int>(code);
}

} // namespace platform
