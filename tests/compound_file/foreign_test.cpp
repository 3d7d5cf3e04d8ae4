// Other programs and their files: what we write is read by an independent implementation, and real
// presentations are read by us. Skipped where the program or the files are not there.
#include "tests/compound_file/builders.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>

#include <unistd.h>

namespace compound_file::test {
namespace {

namespace fs = std::filesystem;

// The output of a command, as bytes.
bytes::Bytes output_of(const std::string& command) {
    bytes::Bytes out;
    FILE* const pipe = ::popen((command + " 2>/dev/null").c_str(), "r");
    std::array<std::uint8_t, 65536> buffer{};
    while (pipe != nullptr) {
        const std::size_t got = std::fread(buffer.data(), 1, buffer.size(), pipe);
        if (got == 0) {
            break;
        }
        out.insert(out.end(), buffer.begin(), buffer.begin() + static_cast<std::ptrdiff_t>(got));
    }
    if (pipe != nullptr) {
        ::pclose(pipe);
    }
    return out;
}

bool has_gsf() {
    return std::system("command -v gsf >/dev/null 2>&1") == 0;
}

fs::path corpus() {
    const char* const named = std::getenv("PPT_CORPUS");
    return named != nullptr ? fs::path(named)
                            : fs::path(PPT_TEST_SOURCE_DIR) / ".." / "shared" / "corpus";
}

std::vector<fs::path> presentations(const char* folder) {
    std::vector<fs::path> found;
    std::error_code missing;
    for (const auto& entry : fs::recursive_directory_iterator(corpus() / folder, missing)) {
        if (entry.path().extension() == ".ppt") {
            found.push_back(entry.path());
        }
    }
    return found;
}

// Opens and reads everything; returns how many streams there are.
std::size_t read_all(CompoundFile& file) {
    std::size_t streams = 0;
    std::vector<EntryId> storages = {kRoot};
    while (!storages.empty()) {
        const EntryId storage = storages.back();
        storages.pop_back();
        for (const EntryId id : file.children(storage)) {
            if (file.info(id).type == EntryType::storage) {
                storages.push_back(id);
                continue;
            }
            ++streams;
            EXPECT_EQ(content(file, id).size(), file.info(id).size);
        }
    }
    return streams;
}

class Foreign : public testing::Test {
  protected:
    void SetUp() override {
        std::string name = (fs::temp_directory_path() / "foreign-XXXXXX").string();
        ASSERT_NE(::mkdtemp(name.data()), nullptr);
        folder_ = name;
    }
    void TearDown() override { fs::remove_all(folder_); }

    std::string path(const std::string& name) const { return (folder_ / name).string(); }

    void expect_gsf_reads(const std::string& file, const std::string& stream,
                          const bytes::Bytes& expected) {
        const bytes::Bytes found = output_of("gsf cat '" + file + "' '" + stream + "'");
        EXPECT_TRUE(found == expected)
            << stream << ": " << found.size() << " bytes, " << expected.size() << " written";
    }

    fs::path folder_;
};

TEST_F(Foreign, WhatWeWriteIsReadByAnIndependentImplementation) {
    if (!has_gsf()) {
        GTEST_SKIP() << "gsf is not installed";
    }
    for (const Version version : {Version::v3, Version::v4}) {
        const std::string name = path(version == Version::v3 ? "v3.ppt" : "v4.ppt");
        const std::size_t huge = version == Version::v3 ? 8000000 : 5000000;
        auto file = CompoundFile::create(create_file(name, false), version);
        const EntryId storage = file->create_storage(kRoot, u"storage");
        add_stream(*file, storage, u"inner", pattern(300, 1));
        add_stream(*file, kRoot, u"huge", pattern(huge, 2)); // past the FAT list of the header
        const EntryId changed = add_stream(*file, kRoot, u"changed", pattern(5000, 3));
        for (char16_t c = u'a'; c <= u'z'; ++c) {
            add_stream(*file, kRoot, std::u16string(1, c), pattern(c, c));
        }
        file->flush();
        file.reset();
        file = CompoundFile::open(open_file(name, Access::read_write), Access::read_write);
        file->stream(changed)->resize(700); // changed in place
        file->stream(changed)->write_at(700, pattern(900, 4));
        file->erase(file->find(kRoot, u"k"));
        file->flush();
        file.reset();
        bytes::Bytes expected = pattern(5000, 3);
        expected.resize(700);
        const bytes::Bytes added = pattern(900, 4);
        expected.insert(expected.end(), added.begin(), added.end());
        expect_gsf_reads(name, "storage/inner", pattern(300, 1));
        expect_gsf_reads(name, "huge", pattern(huge, 2));
        expect_gsf_reads(name, "changed", expected);
        expect_gsf_reads(name, "q", pattern('q', 'q'));
        const bytes::Bytes listed = output_of("gsf list '" + name + "'");
        EXPECT_EQ(std::count(listed.begin(), listed.end(), '\n'), 31); // title, root, 29 entries
    }
}

TEST_F(Foreign, RealPresentationsAreReadAsAnotherProgramReadsThem) {
    const std::vector<fs::path> files = presentations("real");
    if (files.empty()) {
        GTEST_SKIP() << "no presentations in " << corpus() << "; PPT_CORPUS may name their folder";
    }
    const bool compare = has_gsf();
    for (const fs::path& real : files) {
        SCOPED_TRACE(real.filename());
        auto file = CompoundFile::open(open_file(real.string(), Access::read), Access::read);
        EXPECT_GT(read_all(*file), 0U);
        const auto faults = file->check(false);
        EXPECT_TRUE(faults.empty()) << faults.front();
        const EntryId main = file->find(kRoot, u"PowerPoint Document");
        ASSERT_NE(main, kNoEntry);
        if (compare) {
            expect_gsf_reads(real.string(), "PowerPoint Document", content(*file, main));
        }
    }
}

TEST_F(Foreign, RealPresentationsStayWholeWhenChangedInPlace) {
    std::vector<fs::path> files = presentations("real");
    const std::vector<fs::path> made = presentations("made");
    files.insert(files.end(), made.begin(), made.end());
    if (files.empty()) {
        GTEST_SKIP() << "no presentations in " << corpus() << "; PPT_CORPUS may name their folder";
    }
    for (const fs::path& real : files) {
        SCOPED_TRACE(real.filename());
        std::ifstream input(real, std::ios::binary);
        const bytes::Bytes image{std::istreambuf_iterator<char>(input), {}};
        const auto medium = std::make_shared<Medium>();
        medium->put(0, image);
        auto file = open_on(medium, Access::read_write);
        const EntryId main = file->find(kRoot, u"PowerPoint Document");
        bytes::Bytes expected = content(*file, main);
        const bytes::Bytes user = content_at(*file, u"Current User");
        const bytes::Bytes more = pattern(100000, 1);
        file->stream(main)->write_at(expected.size(), more);
        file->stream(file->find(kRoot, u"Current User"))->resize(5000);
        file->stream(file->find(kRoot, u"Current User"))->resize(user.size());
        add_stream(*file, kRoot, u"added", pattern(500, 2));
        file->flush();
        EXPECT_EQ(faults_of(medium, false), "");
        const auto again = open_on(medium);
        expected.insert(expected.end(), more.begin(), more.end());
        EXPECT_TRUE(content_at(*again, u"PowerPoint Document") == expected);
        EXPECT_EQ(content_at(*again, u"Current User"), user);
        EXPECT_EQ(content_at(*again, u"added"), pattern(500, 2));
        read_all(*again);
    }
}

TEST_F(Foreign, DamagedPresentationsEndInErrorsOnly) {
    const std::vector<fs::path> files = presentations("damaged");
    if (files.empty()) {
        GTEST_SKIP() << "no presentations in " << corpus() << "; PPT_CORPUS may name their folder";
    }
    for (const fs::path& damaged : files) {
        try {
            auto file = CompoundFile::open(open_file(damaged.string(), Access::read), Access::read);
            file->check(true);
            for (const EntryId id : file->children(kRoot)) {
                if (file->info(id).type == EntryType::stream) {
                    content(*file, id);
                }
            }
        } catch (const platform::Error&) {
        }
    }
}

} // namespace
} // namespace compound_file::test
