// The check of the built Windows files: it reads the tables of both widths, names every difference,
// and stays inside files that are cut or whose tables point anywhere.
#include "tests/windows/name_check.h"
#include "tests/windows/pe_builder.h"

#include <gtest/gtest.h>

namespace {

using pe::Expectation;
using pe::test::kSectionAddress;
using pe::test::kSectionOffset;
using pe::test::PeBuilder;
using Texts = std::vector<std::string>;

PeBuilder plug_in(bool is_64_bit) {
    PeBuilder builder(is_64_bit);
    builder.exports({"_j_loadFile@8", "_j_unLoadFile@0"})
        .import("Host.dll", {"_v_id64Set@8"})
        .import("KERNEL32.dll", {"CopyFileA", "#7"});
    return builder;
}

Expectation wanted(bool is_64_bit) {
    return {is_64_bit, {"_j_unLoadFile@0", "_j_loadFile@8"}, {{"Host.dll", {"_v_id64Set@8"}}}};
}

std::vector<std::string> faults_of(PeBuilder builder, bool is_64_bit = false) {
    return differences(pe::read_tables(builder.build()), wanted(is_64_bit));
}

TEST(PeCheck, ReadsBothWidths) {
    for (const bool is_64_bit : {false, true}) {
        const pe::Tables tables = pe::read_tables(plug_in(is_64_bit).build());
        EXPECT_EQ(tables.is_64_bit, is_64_bit);
        EXPECT_EQ(tables.exports, (Texts{"_j_loadFile@8", "_j_unLoadFile@0"}));
        ASSERT_EQ(tables.imports.size(), 2u);
        EXPECT_EQ(tables.imports[1].dll, "KERNEL32.dll");
        EXPECT_EQ(tables.imports[1].names, (Texts{"CopyFileA", "#7"}));
        EXPECT_EQ(faults_of(plug_in(is_64_bit), is_64_bit), Texts{});
    }
}

TEST(PeCheck, NamesEveryDifference) {
    EXPECT_EQ(faults_of(plug_in(true)), (Texts{"it is a 64-bit file"}));
    EXPECT_EQ(faults_of(PeBuilder(false)
                            .exports({"_j_loadFile@8", "j_unLoadFile"})
                            .import("Host.dll", {"_v_id64Set@8"})),
              (Texts{"exports j_unLoadFile, which is not in the list",
                     "not exports _j_unLoadFile@0, which is in the list"}));
    EXPECT_EQ(faults_of(plug_in(false).import("host.dll", {"#2"})),
              (Texts{"imports from Host.dll #2, which is not in the list"}));
    EXPECT_EQ(faults_of(plug_in(false).import("zlib1.dll", {"compress"})),
              (Texts{"imports from zlib1.dll, which it should not need"}));
    EXPECT_EQ(faults_of(plug_in(false).delayed_import("user32.dll", {"MessageBoxA"})),
              (Texts{"imports from user32.dll, which it should not need"}));
    EXPECT_THROW(pe::read_tables(PeBuilder(false).exports({"a"}, 1).build()), pe::FormatError);
}

TEST(PeCheck, RefusesCutFilesAndForeignOnes) {
    for (const bool is_64_bit : {false, true}) {
        const bytes::Bytes whole = plug_in(is_64_bit).build();
        for (std::size_t size = 0; size < whole.size(); ++size) {
            EXPECT_THROW(pe::read_tables(bytes::View(whole).first(size)), pe::FormatError) << size;
        }
    }
    EXPECT_THROW(pe::read_tables(bytes::Bytes(4096, 'x')), pe::FormatError);
}

// Every 32-bit word of the section in turn points to its last byte and behind it.
TEST(PeCheck, StaysInsideItsSections) {
    for (const bool is_64_bit : {false, true}) {
        const bytes::Bytes whole = plug_in(is_64_bit).delayed_import("a.dll", {"b"}).build();
        const auto end = static_cast<std::uint32_t>(whole.size() - kSectionOffset);
        for (std::size_t at = kSectionOffset; at + 4 <= whole.size(); ++at) {
            for (const std::uint32_t value : {kSectionAddress + end - 1, kSectionAddress + end}) {
                bytes::Bytes damaged = whole;
                bytes::store_u32(damaged, at, value);
                try {
                    pe::read_tables(damaged);
                } catch (const pe::FormatError&) {
                    // As good an answer as tables that say something else.
                }
            }
        }
    }
}

} // namespace
