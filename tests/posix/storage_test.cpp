// Opening and creating storages and their elements: which modes are granted, which result a caller
// gets for what is missing, taken or forbidden, and what stays on the file.
#include "tests/posix/storage_fixture.h"

namespace {

using OpenStorage = StorageTest;
using Elements = StorageTest;

TEST_F(OpenStorage, GrantsTheDirectModesAndRefusesOthers) {
    create("a.ppt");
    for (const DWORD mode : {0x10U, 0x11U, 0x12U, 0x20U}) {
        EXPECT_EQ(try_open("a.ppt", mode), S_OK) << mode;
    }
    for (const DWORD mode : {0x00U, 0x02U, 0x13U, 0x21U, 0x22U, 0x30U, 0x40U, 0x42U, 0x1012U,
                             0x10012U, 0x10020U, 0x40000U, 0x40040U}) {
        EXPECT_EQ(try_open("a.ppt", mode), STG_E_INVALIDFLAG) << mode;
    }
}

TEST_F(OpenStorage, TellsApartWhatIsWrongWithTheFile) {
    std::ofstream(native("text.ppt")) << pattern(2000);
    std::ofstream(native("empty.ppt"));
    EXPECT_EQ(try_open("missing.ppt", kReadRoot), STG_E_FILENOTFOUND);
    EXPECT_EQ(try_open("no/such/folder.ppt", kReadRoot), STG_E_PATHNOTFOUND);
    EXPECT_EQ(try_open("text.ppt", kReadRoot), STG_E_FILEALREADYEXISTS);
    EXPECT_EQ(try_open("empty.ppt", kReadRoot), STG_E_FILEALREADYEXISTS);
    EXPECT_EQ(try_open("", kReadRoot), STG_E_ACCESSDENIED); // the folder itself

    ComPtr<IStorage> root;
    EXPECT_EQ(StgOpenStorage(u"", nullptr, kReadRoot, nullptr, 0, root.put()), STG_E_PATHNOTFOUND);
    EXPECT_EQ(StgOpenStorage(nullptr, nullptr, kReadRoot, nullptr, 0, root.put()),
              STG_E_INVALIDNAME);
    EXPECT_EQ(StgOpenStorage(u"a", nullptr, kReadRoot, nullptr, 0, nullptr), STG_E_INVALIDPOINTER);
}

TEST_F(OpenStorage, RefusesToWriteAFileThatMayOnlyBeRead) {
    create("a.ppt");
    std::filesystem::permissions(folder_, std::filesystem::perms(0755));
    std::filesystem::permissions(native("a.ppt"), std::filesystem::perms(0444));
    const auto open_as_nobody = [&](DWORD mode) {
        constexpr uid_t kNobody = 65534;
        const bool dropped = geteuid() != 0 || seteuid(kNobody) == 0; // root may write every file
        return dropped ? try_open("a.ppt", mode) : E_FAIL;
    };
    constexpr int kAccessDenied = 0x05;
    EXPECT_EQ(low_byte_elsewhere([&] { return open_as_nobody(kReadWrite); }), kAccessDenied);
    EXPECT_EQ(low_byte_elsewhere([&] { return open_as_nobody(kReadRoot); }), S_OK);
}

TEST_F(OpenStorage, KnowsStorageFiles) {
    create("a.ppt");
    std::ofstream(native("text.ppt")) << pattern(2000);
    EXPECT_EQ(StgIsStorageFile(path("a.ppt").c_str()), S_OK);
    EXPECT_EQ(StgIsStorageFile(path("text.ppt").c_str()), S_FALSE);
    EXPECT_EQ(StgIsStorageFile(path("missing.ppt").c_str()), STG_E_FILENOTFOUND);

    std::filesystem::resize_file(native("a.ppt"), 100);
    EXPECT_EQ(StgIsStorageFile(path("a.ppt").c_str()), S_OK); // damaged, but one
    EXPECT_EQ(try_open("a.ppt", kReadRoot), STG_E_DOCFILECORRUPT);
    std::filesystem::remove(native("a.ppt"));
}

TEST_F(OpenStorage, CreatesOverAnExistingFileOnlyWhenTold) {
    create_stream(create("a.ppt"), u"old", "x");
    ComPtr<IStorage> root;
    const std::u16string existing = path("a.ppt");
    EXPECT_EQ(StgCreateDocfile(existing.c_str(), kReadWrite, 0, root.put()),
              STG_E_FILEALREADYEXISTS);
    EXPECT_EQ(content(open("a.ppt"), u"old"), "x");
    EXPECT_EQ(StgCreateDocfile(existing.c_str(), kReadStream | STGM_CREATE, 0, root.put()),
              STG_E_INVALIDFLAG);
    ASSERT_EQ(StgCreateDocfile(existing.c_str(), kReadWrite | STGM_CREATE, 0, root.put()), S_OK);
    EXPECT_EQ(try_stream(root, u"old"), STG_E_FILENOTFOUND);
}

TEST_F(OpenStorage, KeepsWhatWasWrittenWithoutACommit) {
    const std::u16string wide_name = u"\u00DCbersicht \u6F22\u5B57";
    {
        const auto root = create("a.ppt");
        create_stream(root, u"small", pattern(100));
        create_stream(root, u"large", pattern(100000));
        create_stream(create_storage(root, wide_name.c_str()), u"\u0001Inner", "deep");
    }
    {
        const auto root = open("a.ppt", kReadWrite);
        const auto small = open_stream(root, u"small", kReadWrite);
        EXPECT_EQ(small->SetSize({9000}), S_OK);
        EXPECT_EQ(seek(small.get(), -4, STREAM_SEEK_END), S_OK);
        put(small.get(), "tail");
    }
    const auto root = open("a.ppt");
    EXPECT_EQ(content(root, u"small"), pattern(100) + std::string(8896, '\0') + "tail");
    EXPECT_EQ(content(root, u"LARGE"), pattern(100000)); // names have no letter case
    ComPtr<IStorage> inner;
    ASSERT_EQ(root->OpenStorage(u"\u00FCbersicht \u6F22\u5B57", nullptr, kReadRoot, nullptr, 0,
                                inner.put()),
              S_OK);
    EXPECT_EQ(content(inner, u"\u0001Inner"), "deep");
}

TEST_F(OpenStorage, LeavesAFileThatNobodyChangedAsItIs) {
    create_stream(create("a.ppt"), u"s", pattern(5000));
    const std::string before = bytes_of("a.ppt");
    {
        const auto root = open("a.ppt", kReadWrite);
        const auto stream = open_stream(root, u"s", kReadWrite);
        EXPECT_EQ(content(stream.get()), pattern(5000));
        EXPECT_EQ(stream->SetSize({5000}), S_OK);
        EXPECT_EQ(root->Commit(STGC_DEFAULT), S_OK);
    }
    EXPECT_EQ(open("a.ppt")->Commit(STGC_DEFAULT), S_OK);
    EXPECT_TRUE(bytes_of("a.ppt") == before);
}

TEST_F(OpenStorage, NamesTheRootByItsFullPath) {
    create("Ma\u00DF \u6F22.ppt");
    STATSTG stat{};
    ASSERT_EQ(open("Ma\u00DF \u6F22.ppt")->Stat(&stat, STATFLAG_DEFAULT), S_OK);
    EXPECT_EQ(take_name(stat), path("Ma\u00DF \u6F22.ppt"));
    EXPECT_EQ(stat.type, STGTY_STORAGE);
    EXPECT_EQ(stat.grfMode, kReadRoot);

    create("plain.ppt");
    const auto before = std::filesystem::current_path();
    std::filesystem::current_path(folder_);
    std::vector<char> expected(1024);
    expected.resize(GetFullPathNameA("plain.ppt", 1024, expected.data(), nullptr));
    ComPtr<IStorage> root;
    EXPECT_EQ(StgOpenStorage(u"plain.ppt", nullptr, kReadRoot, nullptr, 0, root.put()), S_OK);
    std::filesystem::current_path(before);
    ASSERT_EQ(root->Stat(&stat, STATFLAG_DEFAULT), S_OK);
    EXPECT_EQ(take_name(stat), std::u16string(expected.begin(), expected.end()));
    EXPECT_EQ(root->Stat(&stat, 7), STG_E_INVALIDFLAG);
}

TEST_F(Elements, AreOpenedOnlyInModesThatTheirStorageGrants) {
    {
        const auto root = create("a.ppt");
        create_stream(root, u"stream", "x");
        create_storage(root, u"storage");
    }
    const auto root = open("a.ppt");
    EXPECT_EQ(try_stream(root, u"stream", kReadStream), S_OK);
    EXPECT_EQ(try_stream(root, u"stream", kReadRoot), STG_E_INVALIDFLAG);
    EXPECT_EQ(try_stream(root, u"stream", kReadWrite), STG_E_ACCESSDENIED);
    EXPECT_EQ(try_stream(root, u"stream", kReadStream | STGM_TRANSACTED), STG_E_INVALIDFLAG);
    EXPECT_EQ(try_stream(root, u"missing"), STG_E_FILENOTFOUND);
    EXPECT_EQ(try_stream(root, u"storage"), STG_E_FILENOTFOUND);
    EXPECT_EQ(try_stream(root, nullptr), STG_E_INVALIDNAME);
    EXPECT_EQ(try_storage(root, u"storage", kReadRoot), S_OK);
    EXPECT_EQ(try_storage(root, u"storage", kReadWrite), STG_E_ACCESSDENIED);
    EXPECT_EQ(try_storage(root, u"missing"), STG_E_FILENOTFOUND);
    EXPECT_EQ(try_storage(root, u"stream"), STG_E_FILENOTFOUND);

    ComPtr<IStream> stream;
    EXPECT_EQ(root->CreateStream(u"new", kReadWrite, 0, 0, stream.put()), STG_E_ACCESSDENIED);
    EXPECT_EQ(root->DestroyElement(u"stream"), STG_E_ACCESSDENIED);
    EXPECT_EQ(root->SetStateBits(1, 1), STG_E_ACCESSDENIED);
}

TEST_F(Elements, AreOpenForOneCallerAtATime) {
    const auto root = create("a.ppt");
    auto stream = create_stream(root, u"stream", "x");
    auto storage = create_storage(root, u"storage");
    EXPECT_EQ(try_stream(root, u"stream"), STG_E_ACCESSDENIED);
    EXPECT_EQ(try_storage(root, u"storage"), STG_E_ACCESSDENIED);
    EXPECT_EQ(root->RenameElement(u"stream", u"other"), STG_E_ACCESSDENIED);

    ComPtr<IStream> clone;
    ASSERT_EQ(stream->Clone(clone.put()), S_OK);
    stream.reset();
    EXPECT_EQ(try_stream(root, u"stream"), STG_E_ACCESSDENIED); // the clone still has it
    clone.reset();
    storage.reset();
    EXPECT_EQ(try_stream(root, u"stream"), S_OK);
    EXPECT_EQ(try_storage(root, u"storage"), S_OK);
}

TEST_F(Elements, AreCreatedRenamedAndDestroyed) {
    const auto root = create("a.ppt");
    create_stream(root, u"one", "1");
    ComPtr<IStream> stream;
    EXPECT_EQ(root->CreateStream(u"ONE", kReadWrite, 0, 0, stream.put()), STG_E_FILEALREADYEXISTS);
    EXPECT_EQ(root->CreateStream(u"a/b", kReadWrite, 0, 0, stream.put()), STG_E_INVALIDNAME);
    EXPECT_EQ(root->CreateStream(std::u16string(32, u'n').c_str(), kReadWrite, 0, 0, stream.put()),
              STG_E_INVALIDNAME);

    auto open_one = open_stream(root, u"one");
    ASSERT_EQ(root->CreateStream(u"one", kReadWrite | STGM_CREATE, 0, 0, stream.put()), S_OK);
    EXPECT_EQ(size_of(stream.get()), 0U);
    EXPECT_EQ(seek(open_one.get(), 0), STG_E_REVERTED); // its stream was replaced
    open_one.reset();
    EXPECT_EQ(try_stream(root, u"one"), STG_E_ACCESSDENIED); // and the new one is still claimed
    stream.reset();

    create_stream(root, u"two", "2");
    EXPECT_EQ(root->RenameElement(u"one", u"two"), STG_E_FILEALREADYEXISTS);
    EXPECT_EQ(root->RenameElement(u"one", u"three"), S_OK);
    EXPECT_EQ(root->RenameElement(u"one", u"four"), STG_E_FILENOTFOUND);
    EXPECT_EQ(root->DestroyElement(u"two"), S_OK);
    EXPECT_EQ(root->DestroyElement(u"two"), STG_E_FILENOTFOUND);
    EXPECT_EQ(try_stream(root, u"three"), S_OK);
}

TEST_F(Elements, AreEnumeratedInTheOrderOfTheFormat) {
    const auto root = create("a.ppt");
    create_stream(root, u"ccc", "123");
    create_stream(root, u"B");
    create_storage(root, u"a");
    ComPtr<IEnumSTATSTG> elements;
    ASSERT_EQ(root->EnumElements(0, nullptr, 0, elements.put()), S_OK);
    STATSTG stats[4]{};
    ULONG fetched = 0;
    EXPECT_EQ(elements->Next(4, stats, &fetched), S_FALSE);
    ASSERT_EQ(fetched, 3U);
    EXPECT_EQ(take_name(stats[0]), u"a");
    EXPECT_EQ(stats[0].type, STGTY_STORAGE);
    EXPECT_EQ(take_name(stats[1]), u"B");
    EXPECT_EQ(take_name(stats[2]), u"ccc");
    EXPECT_EQ(stats[2].cbSize.QuadPart, 3U);

    EXPECT_EQ(elements->Reset(), S_OK);
    EXPECT_EQ(elements->Skip(2), S_OK);
    ComPtr<IEnumSTATSTG> clone;
    ASSERT_EQ(elements->Clone(clone.put()), S_OK);
    EXPECT_EQ(elements->Skip(2), S_FALSE);
    EXPECT_EQ(clone->Next(1, stats, nullptr), S_OK);
    EXPECT_EQ(take_name(stats[0]), u"ccc");
}

TEST_F(Elements, KeepClassStateBitsAndTimes) {
    const CLSID id{0x64818D10, 0x4F9B, 0x11CF, {0x86, 0xEA, 0, 0xAA, 0, 0xB9, 0x29, 0xE8}};
    const FILETIME created{0x12345678, 0x01D00000};
    {
        const auto root = create("a.ppt");
        EXPECT_EQ(root->SetClass(id), S_OK);
        const auto inner = create_storage(root, u"inner");
        EXPECT_EQ(inner->SetStateBits(0xFF, 0x0F), S_OK);
        EXPECT_EQ(root->SetElementTimes(u"inner", &created, nullptr, nullptr), S_OK);
    }
    const auto root = open("a.ppt");
    STATSTG stat{};
    ASSERT_EQ(root->Stat(&stat, STATFLAG_NONAME), S_OK);
    EXPECT_EQ(stat.clsid, id);
    EXPECT_EQ(stat.mtime.dwHighDateTime, 0U); // nobody asked for the root's times to change
    ComPtr<IStorage> inner;
    ASSERT_EQ(root->OpenStorage(u"inner", nullptr, kReadRoot, nullptr, 0, inner.put()), S_OK);
    ASSERT_EQ(inner->Stat(&stat, STATFLAG_DEFAULT), S_OK);
    EXPECT_EQ(take_name(stat), u"inner");
    EXPECT_EQ(stat.grfStateBits, 0x0FU);
    EXPECT_EQ(stat.ctime.dwLowDateTime, created.dwLowDateTime);
    EXPECT_EQ(stat.ctime.dwHighDateTime, created.dwHighDateTime);
}

TEST_F(OpenStorage, ReadsAPresentationThatAnotherProgramWrote) {
    const char* chosen = std::getenv("PPT_CORPUS");
    const std::filesystem::path corpus = chosen != nullptr ? chosen : PPT_DEFAULT_CORPUS;
    const auto file = corpus / "real" / "WithLinks.ppt";
    if (!std::filesystem::exists(file)) {
        GTEST_SKIP() << "SKIPPED: no corpus at " << corpus << " (set PPT_CORPUS)";
    }
    ComPtr<IStorage> root;
    ASSERT_EQ(StgOpenStorage(file.u16string().c_str(), nullptr, kReadRoot, nullptr, 0, root.put()),
              S_OK);
    const auto document = open_stream(root, u"PowerPoint Document");
    const std::string user = content(root, u"Current User");
    ASSERT_GE(user.size(), 20U);
    EXPECT_EQ(user.substr(2, 2), "\xF6\x0F"); // RT_CurrentUserAtom
    std::uint32_t user_edit = 0;
    std::memcpy(&user_edit, user.data() + 16, 4);
    ASSERT_EQ(seek(document.get(), user_edit), S_OK);
    EXPECT_EQ(get(document.get(), 4).substr(2), "\xF5\x0F"); // RT_UserEditAtom
    EXPECT_EQ(content(document.get()).size(), size_of(document.get()));
}

} // namespace
