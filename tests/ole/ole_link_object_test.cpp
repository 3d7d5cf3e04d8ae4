// The linked object behind OleLoad: its display name, a new source, whether that is found, and what
// a save leaves untouched.
#include "platform/compound_file/compound_file.h"
#include "platform/posix/settings.h"
#include "tests/ole/memory_storage.h"
#include "tests/support/drive_folder.h"
#include "tests/support/memory_backing.h"
#include "tests/support/ole_storage.h"

#include <filesystem>
#include <fstream>

namespace {

using namespace presentation_builder;
using ole_test::MemoryStorage;

class OleLinkObject : public testing::Test {
  protected:
    OleLinkObject() {
        std::filesystem::create_directories(folder_ / "data");
        for (const char* name : {"data/book.xls", "data/odd!name.xls"}) {
            std::ofstream(folder_ / name) << "x";
        }
    }
    ~OleLinkObject() override {
        platform::trust_link_targets(false);
        remove_folder(folder_);
    }

    static ComPtr<IOleLink> load(const MemoryStorage& storage) {
        ComPtr<IOleLink> link;
        EXPECT_EQ(OleLoad(storage.get(), IID_IOleLink, nullptr, link.put_void()), S_OK);
        return link;
    }

    static HRESULT set_source(IOleLink* link, std::u16string_view source) {
        const std::basic_string<WCHAR> name(source.begin(), source.end());
        return link->SetSourceDisplayName(name.c_str());
    }

    static std::u16string source_of(IOleLink* link) {
        WCHAR* name = nullptr;
        EXPECT_EQ(link->GetSourceDisplayName(&name), S_OK);
        const std::basic_string_view<WCHAR> text = name;
        const std::u16string copy(text.begin(), text.end());
        ComPtr<IMalloc> allocator;
        EXPECT_EQ(CoGetMalloc(MEMCTX_TASK, allocator.put()), S_OK);
        allocator->Free(name);
        return copy;
    }

    static std::u16string source_in(const Bytes& image) {
        const MemoryStorage storage(image);
        return source_of(load(storage).get());
    }

    // The image after the object took the source, and found it.
    static Bytes with_source(const Bytes& image, const char16_t* source) {
        const MemoryStorage storage(image);
        const ComPtr<IOleLink> link = load(storage);
        EXPECT_EQ(set_source(link.get(), source), S_OK);
        EXPECT_EQ(link->Update(nullptr), S_OK);
        ComPtr<IPersistStorage> object;
        EXPECT_EQ(link->QueryInterface(IID_IPersistStorage, object.put_void()), S_OK);
        EXPECT_EQ(OleSave(object.get(), storage.get(), TRUE), S_OK);
        return storage.image();
    }

    static Bytes absolute_after(const Bytes& absolute, const char16_t* source) {
        const Bytes image = ole_storage({{kOleStreamName, ole_stream({{}, absolute})}});
        const Bytes stream = streams_of(with_source(image, source)).at(kOleStreamName);
        const std::uint32_t size = bytes::load_u32(stream, 24);
        return {stream.begin() + 28, stream.begin() + 24 + size};
    }

    std::filesystem::path folder_ = make_drive_folder("ole-link");
};

const Bytes kOldFile = file_moniker({"C:\\old\\book.xls"});

TEST_F(OleLinkObject, SaysWhereItsSourceIs) {
    const auto source = [](Bytes absolute) {
        return source_in(ole_storage({{kOleStreamName, ole_stream({{}, std::move(absolute)})}}));
    };
    EXPECT_EQ(source(kOldFile), u"C:\\old\\book.xls");
    EXPECT_EQ(source(file_moniker({"C:\\?.xls", u"C:\\\u0416.xls"})), u"C:\\\u0416.xls");
    EXPECT_EQ(source(composite_moniker({kOldFile, item_moniker("Sheet1!R1C1")})),
              u"C:\\old\\book.xls!Sheet1!R1C1");
    EXPECT_EQ(source(composite_moniker({kOldFile, item_moniker("?", u"\u0416")})),
              u"C:\\old\\book.xls!\u0416");
    EXPECT_EQ(source(item_moniker("a")), u"!a");
}

TEST_F(OleLinkObject, SaveChangesTheOleStreamAndNothingElse) {
    const OleStream before{file_moniker({"book.xls", {}, 1}), kOldFile, 0x1001};
    const Bytes image = ole_storage(linked_object(before));
    const Bytes saved = with_source(image, u"Q:\\data\\book.xls");
    const OleStream after{{}, file_moniker({"Q:\\data\\book.xls"}), 0x1001};
    EXPECT_EQ(streams_of(saved), linked_object(after));
    EXPECT_EQ(entries_of(saved), entries_of(image));
#if !defined(_WIN32) // Wine's own storages keep fewer rules of the format
    const auto file = compound_file::CompoundFile::open(
        std::make_unique<MemoryBacking>(std::make_shared<Bytes>(saved)),
        compound_file::Access::read);
    EXPECT_EQ(file->check(true), std::vector<std::string>());
#endif
}

TEST_F(OleLinkObject, SaveWithoutANewSourceKeepsEveryByte) {
    const Bytes image = ole_storage(linked_object({{}, unknown_moniker()}));
    const MemoryStorage storage(image);
    ComPtr<IPersistStorage> object;
    ASSERT_EQ(OleLoad(storage.get(), IID_IPersistStorage, nullptr, object.put_void()), S_OK);
    EXPECT_EQ(OleSave(object.get(), storage.get(), TRUE), S_OK);
    EXPECT_EQ(storage.image(), image);
}

// The stream moves out of the mini stream and back.
TEST_F(OleLinkObject, OleStreamGrowsAndShrinksAcrossTheMiniStreamLimit) {
    platform::trust_link_targets(true);
    const std::u16string item(2500, u'i');
    const Bytes small = ole_storage(linked_object({{}, kOldFile}));
    const Bytes large = with_source(small, (u"Q:\\data\\book.xls!" + item).c_str());
    EXPECT_EQ(source_in(large), u"Q:\\data\\book.xls!" + item);
    const Bytes again = with_source(large, u"C:\\old\\book.xls");
    EXPECT_EQ(streams_of(again), streams_of(small));
}

TEST_F(OleLinkObject, NewSourceMustBeFoundUnlessItIsTrusted) {
    const MemoryStorage storage(ole_storage(linked_object({{}, kOldFile})));
    const ComPtr<IOleLink> link = load(storage);
    EXPECT_EQ(link->Update(nullptr), MK_E_CANTOPENFILE); // where the object pointed before
    for (const char16_t* found : {u"Q:\\DATA\\Book.XLS", u"q:/data/book.xls!Sheet1!R1C1",
                                  u"\\\\srv\\pub\\data\\book.xls"}) {
        EXPECT_EQ(set_source(link.get(), found), S_OK);
        EXPECT_EQ(link->Update(nullptr), S_OK);
        EXPECT_EQ(source_of(link.get()), found);
    }
    for (const char16_t* missing : {u"Q:\\data\\none.xls", u"Q:\\data", u"\\\\srv\\other\\b.xls"}) {
        platform::trust_link_targets(false);
        EXPECT_EQ(set_source(link.get(), missing), S_OK);
        EXPECT_EQ(link->Update(nullptr), MK_E_CANTOPENFILE);
        platform::trust_link_targets(true);
        EXPECT_EQ(link->Update(nullptr), S_OK);
    }
    for (const char16_t* no_name : {u"", u"!Sheet1", u"C:\\book.xls!"}) {
        EXPECT_EQ(set_source(link.get(), no_name), MK_E_SYNTAX);
    }
    EXPECT_EQ(link->SetSourceDisplayName(nullptr), E_INVALIDARG);
    EXPECT_EQ(source_of(link.get()), u"\\\\srv\\other\\b.xls");
}

TEST_F(OleLinkObject, NameIsSplitWhereTheFileEnds) {
    platform::trust_link_targets(true);
    const Bytes item = item_moniker("Sheet1!R1C1");
    const auto composed = [&](const char* path) {
        return composite_moniker({file_moniker({path}), item});
    };
    // By what is there, by what the items were, by the last component.
    EXPECT_EQ(absolute_after(kOldFile, u"Q:\\data\\odd!name.xls!Sheet1!R1C1"),
              composed("Q:\\data\\odd!name.xls"));
    EXPECT_EQ(absolute_after(composed("C:\\old\\book.xls"), u"C:\\new\\a!b.xls!Sheet1!R1C1"),
              composed("C:\\new\\a!b.xls"));
    EXPECT_EQ(absolute_after(kOldFile, u"C:\\wow!\\b.xls!Sheet1!R1C1"),
              composed("C:\\wow!\\b.xls"));
    // An item that is left out is gone, another one takes its place.
    EXPECT_EQ(absolute_after(composed("C:\\old\\book.xls"), u"C:\\b.xls"),
              file_moniker({"C:\\b.xls"}));
    EXPECT_EQ(absolute_after(composed("C:\\old\\book.xls"), u"C:\\b.xls!other"),
              composite_moniker({file_moniker({"C:\\b.xls"}), item_moniker("other")}));
}

TEST_F(OleLinkObject, ItemsAndUnknownPartsKeepTheirBytes) {
    platform::trust_link_targets(true);
    const Bytes odd_item = item_moniker("a", u"a"); // a UTF-16 form that was not needed
    const Bytes file = file_moniker({"C:\\b.xls"});
    EXPECT_EQ(
        absolute_after(composite_moniker({kOldFile, odd_item, unknown_moniker()}), u"C:\\b.xls!a"),
        composite_moniker({file, odd_item, unknown_moniker()}));
    EXPECT_EQ(absolute_after(unknown_moniker(), u"C:\\b.xls"), file);
}

TEST_F(OleLinkObject, PathsOutsideAsciiDoNotDependOnTheCodePage) {
    platform::trust_link_targets(true);
    const UINT page = GetACP();
    ASSERT_TRUE(platform::set_ansi_code_page(1252));
    EXPECT_EQ(absolute_after(kOldFile, u"C:\\\u00FC\u0416.xls!\u0416"),
              composite_moniker({file_moniker({"C:\\\xFC?.xls", u"C:\\\u00FC\u0416.xls"}),
                                 item_moniker("?", u"\u0416")}));
    ASSERT_TRUE(platform::set_ansi_code_page(page));
}

TEST_F(OleLinkObject, IsNotMadeOfAnythingElse) {
    const auto load_result = [](const Streams& streams) {
        const MemoryStorage storage(ole_storage(streams));
        ComPtr<IOleLink> link;
        return OleLoad(storage.get(), IID_IOleLink, nullptr, link.put_void());
    };
    EXPECT_EQ(load_result({{u"Other", Bytes(30)}}), STG_E_FILENOTFOUND);
    EXPECT_EQ(load_result({{kOleStreamName, ole_stream({{}, {}, 0})}}), E_NOINTERFACE);
    EXPECT_EQ(load_result({{kOleStreamName, Bytes(10)}}), STG_E_DOCFILECORRUPT);
    Bytes damaged = ole_stream({{}, kOldFile});
    bytes::store_u32(damaged, 24, 0xFFFFFFF0);
    EXPECT_EQ(load_result({{kOleStreamName, damaged}}), STG_E_DOCFILECORRUPT);
    const MemoryStorage unknown(
        ole_storage({{kOleStreamName, ole_stream({{}, unknown_moniker()})}}));
    WCHAR* name = nullptr;
    EXPECT_EQ(load(unknown)->GetSourceDisplayName(&name), E_FAIL);
    EXPECT_EQ(name, nullptr);
}

} // namespace
