// Entries of a compound file: creating, finding, ordering, renaming and erasing, and what survives
// a reopening.
#include "tests/compound_file/builders.h"

#include <random>

namespace compound_file::test {
namespace {

class Entries : public testing::TestWithParam<Version> {
  protected:
    void SetUp() override { file_ = create_on(medium_, GetParam()); }

    void reopen(Access access = Access::read) {
        if (file_->access() == Access::read_write) {
            file_->flush();
        }
        file_.reset();
        EXPECT_EQ(faults_of(medium_), "");
        file_ = open_on(medium_, access);
    }

    std::vector<std::u16string> names(EntryId storage) {
        std::vector<std::u16string> out;
        for (const EntryId id : file_->children(storage)) {
            out.push_back(file_->info(id).name);
        }
        return out;
    }

    std::shared_ptr<Medium> medium_ = std::make_shared<Medium>();
    std::unique_ptr<CompoundFile> file_;
};

INSTANTIATE_TEST_SUITE_P(BothVersions, Entries, testing::Values(Version::v3, Version::v4),
                         [](const auto& tested) {
                             return tested.param == Version::v3 ? "v3" : "v4";
                         });

TEST_P(Entries, ANewFileIsSoundAndEmpty) {
    reopen();
    EXPECT_EQ(file_->version(), GetParam());
    EXPECT_TRUE(file_->children(kRoot).empty());
    EXPECT_EQ(file_->info(kRoot).type, EntryType::root);
}

TEST_P(Entries, NamesAreFoundWithoutRegardToCaseAndListedShortestFirst) {
    const EntryId inner = file_->create_storage(kRoot, u"Storage");
    file_->create_stream(kRoot, u"b");
    file_->create_stream(kRoot, u"A");
    file_->create_stream(kRoot, u"\x00E4\x00DF\x0451"); // sharp s has no one-to-one upper case
    add_stream(*file_, inner, u"A", pattern(10, 1));
    reopen();
    EXPECT_EQ(names(kRoot),
              (std::vector<std::u16string>{u"A", u"b", u"\x00E4\x00DF\x0451", u"Storage"}));
    EXPECT_EQ(file_->info(file_->find(kRoot, u"B")).name, u"b");
    EXPECT_EQ(file_->info(file_->find(kRoot, u"STORAGE")).type, EntryType::storage);
    EXPECT_NE(file_->find(kRoot, u"\x00C4\x00DF\x0401"), kNoEntry);
    EXPECT_EQ(file_->find(kRoot, u"\x00C4SS\x0401"), kNoEntry);
    const EntryId in_storage = file_->find(file_->find(kRoot, u"storage"), u"a");
    EXPECT_EQ(content(*file_, in_storage), pattern(10, 1));
}

TEST_P(Entries, BadNamesAndDuplicatesAreRefused) {
    const EntryId first = file_->create_stream(kRoot, u"Name");
    const EntryId second = file_->create_stream(kRoot, u"Other");
    EXPECT_EQ(error_of([&] { file_->create_storage(kRoot, u"NAME"); }), Errc::exists);
    EXPECT_EQ(error_of([&] { file_->rename(second, u"name"); }), Errc::exists);
    for (const char16_t* bad : {u"", u"a/b", u"a\\b", u"a:b", u"a!b"}) {
        EXPECT_EQ(error_of([&] { file_->create_stream(kRoot, bad); }), Errc::invalid_name);
    }
    EXPECT_EQ(error_of([&] { file_->create_stream(kRoot, std::u16string(32, u'x')); }),
              Errc::invalid_name);
    file_->create_stream(kRoot, std::u16string(31, u'x'));
    file_->rename(first, u"nAME"); // only the letter case
    EXPECT_EQ(error_of([&] { file_->children(second); }), Errc::invalid_argument);
    EXPECT_EQ(error_of([&] { file_->stream(kRoot); }), Errc::invalid_argument);
    EXPECT_EQ(error_of([&] { file_->erase(kRoot); }), Errc::invalid_argument);
    EXPECT_EQ(error_of([&] { file_->info(500); }), Errc::not_found);
    reopen();
    EXPECT_EQ(names(kRoot),
              (std::vector<std::u16string>{u"nAME", u"Other", std::u16string(31, u'x')}));
    EXPECT_EQ(error_of([&] { file_->create_stream(kRoot, u"more"); }), Errc::access);
}

TEST_P(Entries, TreesStaySoundInAnyOrderOfCreationAndErasure) {
    std::mt19937 random(7);
    std::vector<std::u16string> wanted;
    for (char16_t i = 0; i < 200; ++i) {
        wanted.push_back({u'n', static_cast<char16_t>(u'\x4E00' + i)});
    }
    std::shuffle(wanted.begin(), wanted.end(), random);
    for (const auto& name : wanted) {
        file_->create_stream(kRoot, name);
    }
    reopen(Access::read_write);
    std::shuffle(wanted.begin(), wanted.end(), random);
    for (std::size_t i = 0; i < 150; ++i) {
        file_->erase(file_->find(kRoot, wanted[i]));
    }
    for (std::size_t i = 0; i < 50; ++i) {
        file_->create_stream(kRoot, wanted[i]);
    }
    const std::uint64_t size_before = medium_->size;
    reopen();
    EXPECT_EQ(medium_->size, size_before); // freed entries are used again
    std::vector<std::u16string> left(wanted.begin(), wanted.begin() + 50);
    left.insert(left.end(), wanted.begin() + 150, wanted.end());
    std::sort(left.begin(), left.end());
    EXPECT_EQ(names(kRoot), left);
}

TEST_P(Entries, AStorageIsErasedWithEverythingInIt) {
    const EntryId outer = file_->create_storage(kRoot, u"outer");
    const EntryId inner = file_->create_storage(outer, u"inner");
    add_stream(*file_, inner, u"large", pattern(100000, 1));
    const EntryId small = add_stream(*file_, outer, u"small", pattern(100, 2));
    add_stream(*file_, kRoot, u"kept", pattern(5000, 3));
    file_->flush();
    const std::uint64_t size_before = medium_->size;
    const auto held = file_->stream(small);
    file_->erase(outer);
    EXPECT_EQ(held->size(), 0U);
    EXPECT_EQ(error_of([&] { held->resize(10); }), Errc::access);
    file_->flush();
    add_stream(*file_, kRoot, u"again", pattern(100000, 4)); // into the sectors set free
    EXPECT_LE(medium_->size, size_before + 4096);
    reopen();
    EXPECT_EQ(names(kRoot), (std::vector<std::u16string>{u"kept", u"again"}));
    EXPECT_EQ(content_at(*file_, u"kept"), pattern(5000, 3));
    EXPECT_EQ(content_at(*file_, u"again"), pattern(100000, 4));
}

TEST_P(Entries, FieldsOfEntriesAreKept) {
    std::array<std::uint8_t, 16> class_id{};
    class_id.fill(0x5A);
    const EntryId storage = file_->create_storage(kRoot, u"storage");
    file_->set_class_id(storage, class_id);
    file_->set_state_bits(storage, 0xFFFF, 0x0FF0);
    file_->set_state_bits(storage, 0, 0x00F0);
    file_->set_times(storage, 0x0123456789ABCDEF, 0xFEDCBA9876543210);
    file_->set_class_id(kRoot, class_id);
    reopen(Access::read_write);
    const EntryId found = file_->find(kRoot, u"storage");
    file_->create_stream(kRoot, u"a"); // moves the entry in its tree
    file_->rename(found, u"renamed");
    reopen();
    const EntryInfo info = file_->info(file_->find(kRoot, u"renamed"));
    EXPECT_EQ(info.class_id, class_id);
    EXPECT_EQ(info.state_bits, 0x0F00U);
    EXPECT_EQ(info.created, 0x0123456789ABCDEFU);
    EXPECT_EQ(info.modified, 0xFEDCBA9876543210U);
    EXPECT_EQ(file_->info(kRoot).class_id, class_id);
}

} // namespace
} // namespace compound_file::test
