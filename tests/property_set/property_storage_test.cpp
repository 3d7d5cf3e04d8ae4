// IPropertyStorage on a stream in memory that can be told to fail.
#include "platform/adapters/com_object.h"
#include "platform/base/com_ptr.h"
#include "platform/platform.h"
#include "platform/posix/settings.h"
#include "tests/property_set/raw_stream.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <string>

namespace {

using namespace std::string_view_literals;

class MemoryStream final : public platform::ComObject<IStream> {
  public:
    explicit MemoryStream(bytes::Bytes initial = {})
        : content(std::move(initial)) {}
    ~MemoryStream() override = default;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
        return answer(iid, object, {IID_ISequentialStream, IID_IStream});
    }
    HRESULT STDMETHODCALLTYPE Read(void* buffer, ULONG count, ULONG* read) override {
        const std::size_t there = std::min<std::size_t>(count, content.size() - position_);
        std::copy_n(content.begin() + static_cast<std::ptrdiff_t>(position_), there,
                    static_cast<BYTE*>(buffer));
        position_ += there;
        *read = static_cast<ULONG>(there);
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE Write(const void* buffer, ULONG count, ULONG* written) override {
        ++writes;
        if (write_result != S_OK) {
            return write_result;
        }
        const auto* data = static_cast<const BYTE*>(buffer);
        content.resize(std::max<std::size_t>(content.size(), position_ + count));
        std::copy_n(data, count, content.begin() + static_cast<std::ptrdiff_t>(position_));
        position_ += count;
        *written = count;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE Seek(LARGE_INTEGER move, DWORD, ULARGE_INTEGER*) override {
        position_ = static_cast<std::size_t>(move.QuadPart);
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE SetSize(ULARGE_INTEGER size) override {
        const HRESULT result = size.QuadPart > content.size() ? grow_result : cut_result;
        if (result == S_OK) {
            content.resize(size.QuadPart);
        }
        return result;
    }
    HRESULT STDMETHODCALLTYPE CopyTo(IStream*, ULARGE_INTEGER, ULARGE_INTEGER*,
                                     ULARGE_INTEGER*) override {
        return STG_E_INVALIDFUNCTION;
    }
    HRESULT STDMETHODCALLTYPE Commit(DWORD) override { return commit_result; }
    HRESULT STDMETHODCALLTYPE Revert() override { return S_OK; }
    HRESULT STDMETHODCALLTYPE LockRegion(ULARGE_INTEGER, ULARGE_INTEGER, DWORD) override {
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE UnlockRegion(ULARGE_INTEGER, ULARGE_INTEGER, DWORD) override {
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE Stat(STATSTG* stat, DWORD) override {
        stat->cbSize.QuadPart = content.size();
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE Clone(IStream**) override { return STG_E_INVALIDFUNCTION; }

    bytes::Bytes content;
    int writes = 0;
    HRESULT write_result = S_OK;
    HRESULT grow_result = S_OK;
    HRESULT cut_result = S_OK;
    HRESULT commit_result = S_OK;

  private:
    std::size_t position_ = 0;
};

PROPSPEC named(const WCHAR* name) {
    PROPSPEC spec{};
    spec.ulKind = PRSPEC_LPWSTR;
    spec.lpwstr = const_cast<WCHAR*>(name);
    return spec;
}

ComPtr<IPropertyStorage> open_section(MemoryStream& stream) {
    ComPtr<IPropertyStorage> section;
    EXPECT_EQ(StgOpenPropStg(&stream, FMTID_UserDefinedProperties, 0, 0, section.put()), S_OK);
    return section;
}

ComPtr<IPropertyStorage> create_section(MemoryStream& stream) {
    ComPtr<IPropertyStorage> section;
    EXPECT_EQ(StgCreatePropStg(&stream, FMTID_UserDefinedProperties, nullptr, 0, 0, section.put()),
              S_OK);
    return section;
}

HRESULT write_text(IPropertyStorage& section, const WCHAR* name, const WCHAR* text) {
    const PROPSPEC spec = named(name);
    PROPVARIANT value{};
    value.vt = VT_LPWSTR;
    value.pwszVal = const_cast<WCHAR*>(text);
    return section.WriteMultiple(1, &spec, &value, 2);
}

std::basic_string<WCHAR> read_text(IPropertyStorage& section, const WCHAR* name) {
    const PROPSPEC spec = named(name);
    PROPVARIANT value{};
    const HRESULT result = section.ReadMultiple(1, &spec, &value);
    const std::basic_string<WCHAR> text =
        result == S_OK && value.vt == VT_LPWSTR ? value.pwszVal : WIDE("(nothing)");
    PropVariantClear(&value);
    return text;
}

TEST(PropertyStorage, ChangesReachTheStreamAtCommitAndAtRelease) {
    ComPtr<MemoryStream> stream(new MemoryStream);
    ComPtr<IPropertyStorage> section;
    EXPECT_EQ(StgOpenPropStg(stream.get(), FMTID_UserDefinedProperties, 0, 0, section.put()),
              STG_E_FILENOTFOUND);
    section = create_section(*stream.get());
    EXPECT_EQ(write_text(*section.get(), WIDE("one"), WIDE("1")), S_OK);
    EXPECT_EQ(stream->writes, 0);
    EXPECT_EQ(section->Commit(STGC_DEFAULT), S_OK);
    EXPECT_EQ(read_text(*open_section(*stream.get()).get(), WIDE("ONE")), WIDE("1"));
    EXPECT_EQ(section->Commit(STGC_DEFAULT), S_OK);
    EXPECT_EQ(stream->writes, 1) << "a commit without changes writes nothing";

    EXPECT_EQ(write_text(*section.get(), WIDE("dropped"), WIDE("0")), S_OK);
    EXPECT_EQ(section->Revert(), S_OK);
    EXPECT_EQ(write_text(*section.get(), WIDE("two"), WIDE("2")), S_OK);
    section.reset();
    section = open_section(*stream.get());
    EXPECT_EQ(read_text(*section.get(), WIDE("two")), WIDE("2"));
    EXPECT_EQ(read_text(*section.get(), WIDE("dropped")), WIDE("(nothing)"));
}

TEST(PropertyStorage, AFailingWriteIsReportedAndTheLengthIsTheOldOrTheNew) {
    const std::basic_string<WCHAR> long_text(3000, u'x');
    struct Case {
        HRESULT MemoryStream::*fails;
        const WCHAR* text;
    };
    const Case cases[]{{&MemoryStream::grow_result, long_text.c_str()},
                       {&MemoryStream::write_result, long_text.c_str()},
                       {&MemoryStream::commit_result, long_text.c_str()},
                       {&MemoryStream::cut_result, WIDE("")}};
    for (const Case& failing : cases) {
        ComPtr<MemoryStream> stream(new MemoryStream);
        ComPtr<IPropertyStorage> section = create_section(*stream.get());
        ASSERT_EQ(write_text(*section.get(), WIDE("p"), WIDE("middle")), S_OK);
        ASSERT_EQ(section->Commit(STGC_DEFAULT), S_OK);
        const std::size_t old_length = stream->content.size();

        ASSERT_EQ(write_text(*section.get(), WIDE("p"), failing.text), S_OK);
        stream.get()->*failing.fails = STG_E_MEDIUMFULL;
        EXPECT_EQ(section->Commit(STGC_DEFAULT), STG_E_MEDIUMFULL);
        const std::size_t length = stream->content.size();

        stream.get()->*failing.fails = S_OK;
        EXPECT_EQ(section->Commit(STGC_DEFAULT), S_OK) << "the changes are still there";
        EXPECT_TRUE(length == old_length || length == stream->content.size());
        EXPECT_EQ(read_text(*open_section(*stream.get()).get(), WIDE("p")), failing.text);
    }
}

TEST(PropertyStorage, NarrowTextIsOfTheAnsiCodePage) {
    const UINT old_page = GetACP();
    ASSERT_TRUE(platform::set_ansi_code_page(1252));
    ComPtr<MemoryStream> stream(new MemoryStream(raw_stream::user_stream({
        {0, raw_stream::dictionary(
                65001, {{2, raw_stream::latin("good")}, {3, raw_stream::latin("bad")}})},
        {1, raw_stream::i2(65001)},
        {2, raw_stream::lpstr("caf\xC3\xA9\0"sv)},
        {3, raw_stream::lpstr("caf\xE9\0"sv)},
    })));
    ComPtr<IPropertyStorage> section = open_section(*stream.get());
    for (const WCHAR* name : {WIDE("good"), WIDE("bad")}) {
        const PROPSPEC spec = named(name);
        PROPVARIANT value{};
        EXPECT_EQ(section->ReadMultiple(1, &spec, &value), S_OK);
        EXPECT_STREQ(value.pszVal, "caf\xE9");
        EXPECT_EQ(section->WriteMultiple(1, &spec, &value, 2), S_OK);
        PropVariantClear(&value);
    }
    section.reset();
    EXPECT_EQ(raw_stream::parse(stream->content, property_set::kUserDefinedFormat).values.at(3),
              raw_stream::lpstr("caf\xC3\xA9\0"sv));
    platform::set_ansi_code_page(old_page);
}

TEST(PropertyStorage, ReadingSeveralGivesAllOrNothing) {
    ComPtr<MemoryStream> stream(new MemoryStream(raw_stream::user_stream(
        {{1, raw_stream::i2(1252)}, {2, raw_stream::lpwstr(u"x")}, {3, {0x03, 0x10, 0, 0}}})));
    ComPtr<IPropertyStorage> section = open_section(*stream.get());
    PROPSPEC specs[2]{};
    PROPVARIANT values[2]{};
    specs[0].ulKind = specs[1].ulKind = PRSPEC_PROPID;
    specs[0].propid = 2;
    specs[1].propid = 3;
    EXPECT_EQ(section->ReadMultiple(2, specs, values), static_cast<HRESULT>(0x80070032));
    EXPECT_EQ(values[0].vt, VT_EMPTY);
    specs[1].propid = 99;
    EXPECT_EQ(section->ReadMultiple(2, specs, values), S_OK);
    EXPECT_EQ(values[1].vt, VT_EMPTY);
    PropVariantClear(&values[0]);
    EXPECT_EQ(section->ReadMultiple(1, specs + 1, values), S_FALSE);
}

TEST(PropertyStorage, EnumeratorsSeeTheListAsItWasAndCloneTheirPlace) {
    ComPtr<MemoryStream> stream(new MemoryStream);
    ComPtr<IPropertyStorage> section = create_section(*stream.get());
    for (const WCHAR* name : {WIDE("one"), WIDE("two"), WIDE("three")}) {
        ASSERT_EQ(write_text(*section.get(), name, WIDE("")), S_OK);
    }
    ComPtr<IEnumSTATPROPSTG> properties;
    ASSERT_EQ(section->Enum(properties.put()), S_OK);
    const PROPSPEC gone = named(WIDE("two"));
    EXPECT_EQ(section->DeleteMultiple(1, &gone), S_OK);
    EXPECT_EQ(properties->Skip(1), S_OK);
    ComPtr<IEnumSTATPROPSTG> clone;
    ASSERT_EQ(properties->Clone(clone.put()), S_OK);
    for (IEnumSTATPROPSTG* each : {properties.get(), clone.get()}) {
        STATPROPSTG stats[3]{};
        ULONG fetched = 0;
        EXPECT_EQ(each->Next(3, stats, &fetched), S_FALSE);
        ASSERT_EQ(fetched, 2u);
        EXPECT_EQ(std::basic_string<WCHAR>(stats[0].lpwstrName), WIDE("two"));
        EXPECT_EQ(std::basic_string<WCHAR>(stats[1].lpwstrName), WIDE("three"));
        EXPECT_EQ(stats[1].propid, 4u);
        EXPECT_EQ(stats[1].vt, VT_LPWSTR);
        for (STATPROPSTG& stat : stats) {
            CoTaskMemFree(stat.lpwstrName);
        }
        EXPECT_EQ(each->Next(1, stats, nullptr), S_FALSE);
    }
}

} // namespace
