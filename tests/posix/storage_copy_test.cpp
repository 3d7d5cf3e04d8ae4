// Copying and moving whole elements between storages.
#include "tests/posix/storage_fixture.h"

namespace {

class CopyStorage : public StorageTest {
  protected:
    // root: "big", "small", inner{ "leaf", deepest{ "end" } }
    CopyStorage() {
        create_stream(root_, u"big", pattern(70000));
        create_stream(root_, u"small", "s");
        const auto inner = create_storage(root_, u"inner");
        EXPECT_EQ(inner->SetStateBits(5, 7), S_OK);
        create_stream(inner, u"leaf", "l");
        create_stream(create_storage(inner, u"deepest"), u"end", "e");
    }

    static ComPtr<IStorage> open_inner(const ComPtr<IStorage>& parent, const char16_t* name,
                                       DWORD mode = kReadWrite) {
        ComPtr<IStorage> inner;
        EXPECT_EQ(parent->OpenStorage(name, nullptr, mode, nullptr, 0, inner.put()), S_OK);
        return inner;
    }

    ComPtr<IStorage> root_ = create("a.ppt");
    CLSID id_{1, 2, 3, {4, 5, 6, 7, 8, 9, 10, 11}};
};

TEST_F(CopyStorage, CopiesTheWholeTreeAndMergesIt) {
    EXPECT_EQ(root_->SetClass(id_), S_OK);
    const auto held = open_stream(root_, u"small"); // open elements are copied too
    {
        const auto other = create("b.ppt");
        create_stream(create_storage(other, u"inner"), u"kept", "k");
        create_stream(other, u"small", "a longer old content");
        ASSERT_EQ(root_->CopyTo(0, nullptr, nullptr, other.get()), S_OK);
    }
    const auto other = open("b.ppt");
    STATSTG stat{};
    ASSERT_EQ(other->Stat(&stat, STATFLAG_NONAME), S_OK);
    EXPECT_EQ(stat.clsid, id_);
    EXPECT_EQ(content(other, u"big"), pattern(70000));
    EXPECT_EQ(content(other, u"small"), "s");
    const auto inner = open_inner(other, u"inner", kReadRoot);
    ASSERT_EQ(inner->Stat(&stat, STATFLAG_NONAME), S_OK);
    EXPECT_EQ(stat.grfStateBits, 5U);
    EXPECT_EQ(content(inner, u"leaf"), "l");
    EXPECT_EQ(content(inner, u"kept"), "k");
    EXPECT_EQ(content(open_inner(inner, u"deepest", kReadRoot), u"end"), "e");
}

TEST_F(CopyStorage, LeavesOutWhatIsExcluded) {
    const auto other = create("b.ppt");
    std::u16string big = u"BIG";
    WCHAR* names[] = {big.data(), nullptr};
    ASSERT_EQ(root_->CopyTo(1, &IID_IStorage, names, other.get()), S_OK);
    EXPECT_EQ(try_stream(other, u"small"), S_OK);
    EXPECT_EQ(try_stream(other, u"big"), STG_E_FILENOTFOUND);
    EXPECT_EQ(try_storage(other, u"inner"), STG_E_FILENOTFOUND);
}

TEST_F(CopyStorage, RefusesToCopyAStorageIntoItself) {
    EXPECT_EQ(root_->CopyTo(0, nullptr, nullptr, root_.get()), STG_E_ACCESSDENIED);
    const auto inner = open_inner(root_, u"inner");
    EXPECT_EQ(root_->CopyTo(0, nullptr, nullptr, inner.get()), STG_E_ACCESSDENIED);
    EXPECT_EQ(inner->CopyTo(0, nullptr, nullptr, root_.get()), S_OK); // upwards is fine
    EXPECT_EQ(content(root_, u"leaf"), "l");
}

TEST_F(CopyStorage, MovesAndCopiesSingleElements) {
    const auto other = create("b.ppt");
    EXPECT_EQ(root_->MoveElementTo(u"inner", other.get(), u"moved", 0), S_OK);
    EXPECT_EQ(try_storage(root_, u"inner"), STG_E_FILENOTFOUND);
    EXPECT_EQ(content(open_inner(open_inner(other, u"moved"), u"deepest"), u"end"), "e");
    EXPECT_EQ(root_->MoveElementTo(u"big", other.get(), u"copied", 1), S_OK);
    EXPECT_EQ(content(root_, u"big"), content(other, u"copied"));
    EXPECT_EQ(root_->MoveElementTo(u"small", other.get(), u"copied", 0), STG_E_FILEALREADYEXISTS);
    EXPECT_EQ(try_stream(root_, u"small"), S_OK);
    EXPECT_EQ(root_->MoveElementTo(u"missing", other.get(), u"m", 0), STG_E_FILENOTFOUND);
}

} // namespace
