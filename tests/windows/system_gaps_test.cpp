// Where the Windows of a test machine falls short: each call that other tests send to our
// engines instead (and WNetGetUniversalNameA, which knows no drives there that are shares), with
// the result that Wine 8 gives and the one that Windows is known to give. When a case here fails
// under another Wine, that call need no longer be replaced.
#include "tests/ole/memory_storage.h"
#include "tests/support/ole_storage.h"
#include "tests/support/property_stream.h"
#include "tests/support/temporary_folder.h"

#include <fstream>

namespace {

using namespace presentation_builder;
using ole_test::MemoryStorage;

bool is_wine() {
    return GetProcAddress(GetModuleHandleA("ntdll"), "wine_get_version") != nullptr;
}

void expect_result(HRESULT result, HRESULT of_windows, HRESULT of_wine) {
    EXPECT_EQ(static_cast<std::uint32_t>(result),
              static_cast<std::uint32_t>(is_wine() ? of_wine : of_windows))
        << std::hex << result;
}

class SystemGaps : public testing::Test {
  protected:
    void SetUp() override { ASSERT_EQ(OleInitialize(nullptr), S_OK); }
    void TearDown() override { OleUninitialize(); }
};

HRESULT open_section(const Bytes& stream, REFFMTID section, ComPtr<IPropertyStorage>& properties) {
    const MemoryStorage storage(
        ole_storage({{std::u16string(kDocumentSummaryInformation), stream}}));
    ComPtr<IStream> opened;
    EXPECT_EQ(storage.get()->OpenStream(L"\005DocumentSummaryInformation", nullptr,
                                        STGM_READWRITE | STGM_SHARE_EXCLUSIVE, 0, opened.put()),
              S_OK);
    return StgOpenPropStg(opened.get(), section, 0, 0, properties.put());
}

// As every presentation with user-defined properties has it.
TEST_F(SystemGaps, APropertySetOfTwoSectionsDoesNotOpen) {
    const Bytes stream = PropertyStream().text(u"a name", u"a value").build();
    constexpr HRESULT kOfWine =
        sizeof(void*) == 8 ? STG_E_INVALIDPOINTER : STG_E_INSUFFICIENTMEMORY;
    for (const FMTID& section : {FMTID_DocSummaryInformation, FMTID_UserDefinedProperties}) {
        ComPtr<IPropertyStorage> properties;
        expect_result(open_section(stream, section, properties), S_OK, kOfWine);
    }
}

TEST_F(SystemGaps, ASectionThatIsNotThereOpensAsTheOneThatIs) {
    ComPtr<IPropertyStorage> properties;
    expect_result(open_section(PropertyStream().without_user_defined().build(),
                               FMTID_UserDefinedProperties, properties),
                  STG_E_FILENOTFOUND, S_OK);
}

TEST_F(SystemGaps, LinkedObjectsCannotBeLoaded) {
    const MemoryStorage storage(
        ole_storage(linked_object({{}, file_moniker({"C:\\old\\book.xls"})})));
    ComPtr<IOleLink> link;
    expect_result(OleLoad(storage.get(), IID_IOleLink, nullptr, link.put_void()), S_OK,
                  E_NOINTERFACE);
}

TEST_F(SystemGaps, ItemsOfFilesHaveNoMonikers) {
    const std::filesystem::path folder = make_temporary_folder("gaps");
    std::ofstream(folder / "book.xls") << "content";
    ComPtr<IBindCtx> context;
    ASSERT_EQ(CreateBindCtx(0, context.put()), S_OK);
    ULONG eaten = 0;
    ComPtr<IMoniker> moniker;
    expect_result(MkParseDisplayName(context.get(), (folder / "gone.xls").wstring().c_str(), &eaten,
                                     moniker.put()),
                  MK_E_CANTOPENFILE, E_NOTIMPL);
    const std::wstring item = (folder / "book.xls").wstring() + L"!Sheet1";
    const HRESULT parsed = MkParseDisplayName(context.get(), item.c_str(), &eaten, moniker.put());
    if (is_wine()) {
        expect_result(parsed, E_NOTIMPL, E_NOTIMPL);
    } else { // the application that is registered for the file has a say
        EXPECT_NE(parsed, E_NOTIMPL);
    }
    remove_folder(folder);
}

} // namespace
