// The path that the relative moniker of an OLE stream gives, byte for byte at its limits.
#include "plugin/status.h"
#include "reader/ole_link_path.h"
#include "tests/ole/memory_storage.h"
#include "tests/pptlinks/code_page_guard.h"
#include "tests/support/ole_storage.h"

namespace {

using namespace presentation_builder;
using ole_test::MemoryStorage;

struct Found {
    std::int32_t is_relative = -1;
    std::string path;
    int status = 0;

    bool operator==(const Found&) const = default;
};

Found path_in(const Bytes& ole_stream_bytes) {
    const MemoryStorage storage(ole_storage({{kOleStreamName, ole_stream_bytes}}), STGM_READ);
    Found found;
    try {
        found.is_relative = ppt::n_getOleLinkPath(storage.get(), &found.path);
    } catch (int status) {
        found.status = status;
    }
    return found;
}

const Bytes kAbsolute = file_moniker({"C:\\far\\book.xls"});

// In streams of both size conventions.
Found path_of(const Bytes& relative, const Bytes& absolute = kAbsolute) {
    const Found found = path_in(ole_stream({relative, absolute, 1, true}));
    EXPECT_EQ(path_in(ole_stream({relative, absolute, 1, false})), found);
    return found;
}

Found relative(std::string path) {
    return {1, std::move(path), 0};
}

Bytes in_folder(const char* ansi, std::optional<std::u16string> wide = {}) {
    return file_moniker({ansi, std::move(wide), 1});
}

TEST(OleLinkPath, ComesFromAFileInThePresentationsFolder) {
    EXPECT_EQ(path_of(in_folder("book.xls")), relative("book.xls"));
    EXPECT_EQ(path_of(in_folder("BOOK~1.XLS", u"book 2004.xls")), relative("book 2004.xls"));
    const CodePageGuard utf8(CP_UTF8);
    EXPECT_EQ(path_of(in_folder("?.xls", u"\u0416\u20AC.xls")),
              relative("\xD0\x96\xE2\x82\xAC.xls"));
}

TEST(OleLinkPath, TakesTheItemBehindTheFile) {
    const Bytes item = item_moniker("Sheet1!R1C1:R3C3");
    EXPECT_EQ(path_of(composite_moniker({in_folder("book.xls"), item})),
              relative("book.xls!Sheet1!R1C1:R3C3"));
    EXPECT_EQ(path_of(composite_moniker({in_folder("b", u"book.xls"), item})),
              relative("book.xls!Sheet1!R1C1:R3C3"));
    EXPECT_EQ(path_of(composite_moniker({in_folder("book.xls"), unknown_moniker()})),
              relative("book.xls"));
    // A composite of a composite has two heads.
    EXPECT_EQ(path_of(composite_moniker(
                  {composite_moniker({in_folder("b", u"book.xls"), item}), unknown_moniker()})),
              relative("book.xls!Sheet1!R1C1:R3C3"));
}

TEST(OleLinkPath, TheUtf16FormCountsBelow768Bytes) {
    const std::u16string longest(383, u'w');
    EXPECT_EQ(path_of(in_folder("ansi", longest)), relative(std::string(383, 'w')));
    EXPECT_EQ(path_of(in_folder("ansi", longest + u'w')), relative("ansi"));
}

TEST(OleLinkPath, IsTheDisplayNameWithoutAnUnderstoodRelativeMoniker) {
    const Found absolute{0, "C:\\far\\book.xls", 0};
    EXPECT_EQ(path_of({}), absolute);
    EXPECT_EQ(path_of(unknown_moniker()), absolute);
    EXPECT_EQ(path_of(file_moniker({"above.xls", {}, 2})), absolute);
    EXPECT_EQ(path_of(file_moniker({"D:\\x.xls", {}, 0})), absolute);
    EXPECT_EQ(path_of({}, composite_moniker({kAbsolute, item_moniker("a")})),
              (Found{0, "C:\\far\\book.xls!a", 0}));
    EXPECT_EQ(path_of({}, unknown_moniker()), (Found{0, "", 0}));
    EXPECT_EQ(path_of({}, file_moniker({std::string(1100, 'x')})), (Found{0, "", 0}));
}

TEST(OleLinkPath, TextsThatDoNotFitAreRefused) {
    EXPECT_EQ(path_of(in_folder(std::string(1023, 'p').c_str())), relative(std::string(1023, 'p')));
    EXPECT_EQ(path_of(in_folder(std::string(1024, 'p').c_str())).status, ppt::status::kTextTooLong);
    const Bytes item = item_moniker(std::string(600, 'i'));
    const Bytes file = in_folder(std::string(600, 'p').c_str());
    EXPECT_EQ(path_of(composite_moniker({file, item})).status, ppt::status::kTextTooLong);
    const CodePageGuard utf8(CP_UTF8);
    EXPECT_EQ(path_of(in_folder("a", std::u16string(383, u'\u20AC'))).status,
              ppt::status::kTextTooLong);
}

TEST(OleLinkPath, DamageEndsInAStatus) {
    const Bytes whole =
        ole_stream({composite_moniker({in_folder("b", u"book.xls"), item_moniker("a")}), {}});
    for (std::size_t size = 0; size <= whole.size(); ++size) {
        const Found found = path_in({whole.begin(), whole.begin() + static_cast<long>(size)});
        const std::uint32_t announced = bytes::load_u32(whole, 20);
        EXPECT_EQ(found.status, size < 24 + announced + 2 ? ppt::status::kShortRead : 0) << size;
    }
    Bytes endless = whole;
    bytes::store_u32(endless, 20, 0xFFFFFFFF);
    EXPECT_EQ(path_in(endless).status, ppt::status::kShortRead);
    // Lengths that lead out of the moniker.
    Bytes long_path = whole;
    bytes::store_u32(long_path, 24 + 20 + 18, 0xFFFFFFFF);
    EXPECT_EQ(path_in(long_path).status, 0);
    const MemoryStorage none(ole_storage({{u"Other", Bytes(5)}}), STGM_READ);
    std::string path;
    try {
        ppt::n_getOleLinkPath(none.get(), &path);
        ADD_FAILURE();
    } catch (int status) {
        EXPECT_EQ(status, ppt::status::kElementMissing);
    }
}

} // namespace
