// One stream through IStream: positions, ends, sizes, copies inside a file, between files and to
// streams of others.
#include "platform/adapters/error_codes.h"
#include "tests/posix/storage_fixture.h"

#include <limits>

namespace {

class StreamTest : public StorageTest {
  protected:
    ComPtr<IStorage> root_ = create("a.ppt");
};

// A stream of somebody else that takes at most `room` bytes and then fails with `refusal`, or takes
// what fits and says S_OK when that is the refusal.
class ForeignStream final : public IStream {
  public:
    explicit ForeignStream(std::size_t room = ~std::size_t{0}, HRESULT refusal = S_OK)
        : room_(room)
        , refusal_(refusal) {}

    std::string taken;

    HRESULT QueryInterface(REFIID, void** object) override {
        *object = nullptr;
        return E_NOINTERFACE;
    }
    ULONG AddRef() override { return 1; }
    ULONG Release() override { return 1; }
    HRESULT Read(void*, ULONG, ULONG*) override { return E_NOTIMPL; }
    HRESULT Write(const void* buffer, ULONG count, ULONG* written) override {
        *written = static_cast<ULONG>(std::min<std::size_t>(count, room_ - taken.size()));
        taken.append(static_cast<const char*>(buffer), *written);
        return *written < count ? refusal_ : S_OK;
    }
    HRESULT Seek(LARGE_INTEGER, DWORD, ULARGE_INTEGER*) override { return E_NOTIMPL; }
    HRESULT SetSize(ULARGE_INTEGER) override { return E_NOTIMPL; }
    HRESULT CopyTo(IStream*, ULARGE_INTEGER, ULARGE_INTEGER*, ULARGE_INTEGER*) override {
        return E_NOTIMPL;
    }
    HRESULT Commit(DWORD) override { return E_NOTIMPL; }
    HRESULT Revert() override { return E_NOTIMPL; }
    HRESULT LockRegion(ULARGE_INTEGER, ULARGE_INTEGER, DWORD) override { return E_NOTIMPL; }
    HRESULT UnlockRegion(ULARGE_INTEGER, ULARGE_INTEGER, DWORD) override { return E_NOTIMPL; }
    HRESULT Stat(STATSTG*, DWORD) override { return E_NOTIMPL; }
    HRESULT Clone(IStream**) override { return E_NOTIMPL; }

  private:
    std::size_t room_;
    HRESULT refusal_;
};

struct Copied {
    HRESULT result;
    std::uint64_t read;
    std::uint64_t written;

    friend bool operator==(const Copied&, const Copied&) = default;
};

std::ostream& operator<<(std::ostream& out, const Copied& copied) {
    return out << std::hex << copied.result << ", " << copied.read << ", " << copied.written;
}

Copied copy(const ComPtr<IStream>& from, IStream* to, std::uint64_t count) {
    ULARGE_INTEGER read{77};
    ULARGE_INTEGER written{77};
    const HRESULT result = from->CopyTo(to, {count}, &read, &written);
    return {result, read.QuadPart, written.QuadPart};
}

TEST_F(StreamTest, ReadsToItsEndAndNoFurther) {
    const auto stream = create_stream(root_, u"s", "0123456789");
    EXPECT_EQ(seek(stream.get(), -4, STREAM_SEEK_END), S_OK);
    EXPECT_EQ(get(stream.get(), 8), "6789");
    EXPECT_EQ(get(stream.get(), 8), "");
    EXPECT_EQ(seek(stream.get(), 1000), S_OK);
    EXPECT_EQ(get(stream.get(), 8), "");
    EXPECT_EQ(position(stream.get()), 1000U);
    EXPECT_EQ(stream->Read(nullptr, 4, nullptr), STG_E_INVALIDPOINTER);
}

TEST_F(StreamTest, SeeksFromAllOriginsButNotBeforeTheStart) {
    const auto stream = create_stream(root_, u"s", pattern(100));
    EXPECT_EQ(seek(stream.get(), 10, STREAM_SEEK_SET), S_OK);
    EXPECT_EQ(seek(stream.get(), -3, STREAM_SEEK_CUR), S_OK);
    EXPECT_EQ(position(stream.get()), 7U);
    EXPECT_EQ(seek(stream.get(), -8, STREAM_SEEK_CUR), STG_E_INVALIDFUNCTION);
    EXPECT_EQ(seek(stream.get(), -1, STREAM_SEEK_SET), STG_E_INVALIDFUNCTION);
    EXPECT_EQ(seek(stream.get(), -101, STREAM_SEEK_END), STG_E_INVALIDFUNCTION);
    EXPECT_EQ(seek(stream.get(), std::numeric_limits<std::int64_t>::min(), STREAM_SEEK_CUR),
              STG_E_INVALIDFUNCTION);
    EXPECT_EQ(seek(stream.get(), std::numeric_limits<std::int64_t>::max(), STREAM_SEEK_CUR),
              STG_E_INVALIDFUNCTION);
    EXPECT_EQ(seek(stream.get(), 0, 3), STG_E_INVALIDFUNCTION);
    EXPECT_EQ(position(stream.get()), 7U);
    EXPECT_EQ(seek(stream.get(), -100, STREAM_SEEK_END), S_OK);
    EXPECT_EQ(position(stream.get()), 0U);
}

TEST_F(StreamTest, GrowsByWritingAndChangesItsSize) {
    const auto stream = create_stream(root_, u"s", "abc");
    EXPECT_EQ(seek(stream.get(), 5000), S_OK);
    EXPECT_EQ(stream->Write("", 0, nullptr), S_OK);
    EXPECT_EQ(size_of(stream.get()), 3U);
    put(stream.get(), "xyz");
    EXPECT_EQ(content(stream.get()), "abc" + std::string(4997, '\0') + "xyz");
    EXPECT_EQ(seek(stream.get(), 5003), S_OK);
    EXPECT_EQ(stream->SetSize({2}), S_OK);
    EXPECT_EQ(position(stream.get()), 5003U);
    EXPECT_EQ(stream->SetSize({6}), S_OK);
    EXPECT_EQ(content(stream.get()), std::string("ab\0\0\0\0", 6));
    EXPECT_EQ(stream->SetSize({std::uint64_t{1} << 40}), STG_E_DOCFILETOOLARGE);
    EXPECT_EQ(content(stream.get()), std::string("ab\0\0\0\0", 6));
}

TEST_F(StreamTest, KeepsToTheAccessThatItWasOpenedWith) {
    create_stream(root_, u"s", "abc");
    const auto reader = open_stream(root_, u"s", kReadStream);
    EXPECT_EQ(reader->Write("x", 1, nullptr), STG_E_ACCESSDENIED);
    EXPECT_EQ(reader->SetSize({1}), STG_E_ACCESSDENIED);
    const auto other = create_stream(root_, u"other", "xyz");
    EXPECT_EQ(seek(other.get(), 0), S_OK);
    EXPECT_EQ(copy(other, reader.get(), 1), (Copied{STG_E_ACCESSDENIED, 0, 0}));

    create_stream(root_, u"w");
    const auto writer = open_stream(root_, u"w", STGM_WRITE | STGM_SHARE_EXCLUSIVE);
    put(writer.get(), "abc");
    char byte = 0;
    EXPECT_EQ(writer->Read(&byte, 1, nullptr), STG_E_ACCESSDENIED);
}

TEST_F(StreamTest, HasClonesWithTheSameBytesAndTheirOwnPositions) {
    const auto stream = create_stream(root_, u"s", "0123456789");
    EXPECT_EQ(seek(stream.get(), 4), S_OK);
    ComPtr<IStream> clone;
    ASSERT_EQ(stream->Clone(clone.put()), S_OK);
    put(stream.get(), "XY");
    EXPECT_EQ(get(clone.get(), 3), "XY6");
    EXPECT_EQ(position(stream.get()), 6U);
    EXPECT_EQ(clone->SetSize({5}), S_OK);
    EXPECT_EQ(size_of(stream.get()), 5U);
}

TEST_F(StreamTest, CopiesBetweenPositionsOfOneFile) {
    const auto from = create_stream(root_, u"from", pattern(50000));
    const auto to = create_stream(root_, u"to", "head");
    EXPECT_EQ(seek(from.get(), 100), S_OK);
    EXPECT_EQ(copy(from, to.get(), 20000), (Copied{S_OK, 20000, 20000}));
    EXPECT_EQ(position(from.get()), 20100U);
    EXPECT_EQ(position(to.get()), 20004U);
    EXPECT_EQ(copy(from, to.get(), 1000000), (Copied{S_OK, 29900, 29900}));
    EXPECT_EQ(copy(from, to.get(), kWholeRest), (Copied{S_OK, 0, 0}));
    EXPECT_EQ(content(to.get()), "head" + pattern(50000).substr(100));

    ComPtr<IStream> clone;
    ASSERT_EQ(from->Clone(clone.put()), S_OK);
    EXPECT_EQ(seek(clone.get(), 0), S_OK);
    EXPECT_EQ(seek(from.get(), 5), S_OK);
    EXPECT_EQ(copy(clone, from.get(), 10000), (Copied{S_OK, 10000, 10000})); // overlapping
    EXPECT_EQ(content(from.get()), pattern(5) + pattern(10000) + pattern(50000).substr(10005));
}

TEST_F(StreamTest, CopiesTheRestIntoAnotherFile) {
    const std::string bytes = pattern(3000000);
    const auto from = create_stream(root_, u"from", bytes);
    EXPECT_EQ(seek(from.get(), 7), S_OK);
    {
        const auto other = create("b.ppt");
        const auto to = create_stream(other, u"to");
        EXPECT_EQ(copy(from, to.get(), kWholeRest),
                  (Copied{S_OK, bytes.size() - 7, bytes.size() - 7}));
        EXPECT_EQ(from->CopyTo(to.get(), {kWholeRest}, nullptr, nullptr), S_OK);
    }
    EXPECT_TRUE(content(open("b.ppt"), u"to") == bytes.substr(7));
}

TEST_F(StreamTest, CopiesIntoAStreamOfAnother) {
    const std::string bytes = pattern(600000);
    const auto from = create_stream(root_, u"from", bytes);
    EXPECT_EQ(seek(from.get(), 0), S_OK);
    ForeignStream all;
    EXPECT_EQ(copy(from, &all, kWholeRest), (Copied{S_OK, bytes.size(), bytes.size()}));
    EXPECT_TRUE(all.taken == bytes);

    EXPECT_EQ(seek(from.get(), 0), S_OK);
    ForeignStream full(300000, STG_E_MEDIUMFULL);
    const Copied refused = copy(from, &full, kWholeRest);
    EXPECT_EQ(refused.result, STG_E_MEDIUMFULL);
    EXPECT_EQ(refused.written, 300000U);
    EXPECT_EQ(position(from.get()), refused.read);

    EXPECT_EQ(seek(from.get(), 0), S_OK);
    ForeignStream curt(1000);
    EXPECT_EQ(copy(from, &curt, 1500), (Copied{S_OK, 1500, 1000}));
    EXPECT_EQ(copy(from, nullptr, 1).result, STG_E_INVALIDPOINTER);
}

TEST_F(StreamTest, DescribesItself) {
    const auto stream = create_stream(root_, u"Current User", "abc");
    STATSTG stat{};
    ASSERT_EQ(stream->Stat(&stat, STATFLAG_DEFAULT), S_OK);
    EXPECT_EQ(take_name(stat), u"Current User");
    EXPECT_EQ(stat.type, STGTY_STREAM);
    EXPECT_EQ(stat.cbSize.QuadPart, 3U);
    EXPECT_EQ(stat.grfMode, kReadWrite);

    ComPtr<IUnknown> unknown;
    ComPtr<IStream> same;
    ASSERT_EQ(stream->QueryInterface(IID_IUnknown, unknown.put_void()), S_OK);
    EXPECT_EQ(unknown->QueryInterface(IID_IStream, same.put_void()), S_OK);
    EXPECT_EQ(same.get(), stream.get());
    ComPtr<IStorage> none;
    EXPECT_EQ(unknown->QueryInterface(IID_IStorage, none.put_void()), E_NOINTERFACE);
}

} // namespace
