// OLE streams and monikers: as bytes, as values, and through the object that OLE makes of them.
#include "common_new/common/storage.h"
#include "fuzz/support/target.h"
#include "platform/base/error.h"
#include "platform/compound_file/compound_file.h"
#include "platform/ole_link/link_stream.h"
#include "platform/ole_link/moniker.h"
#include "platform/platform.h"
#include "platform/posix/settings.h"
#include "reader/ole_link_path.h"
#include "tests/support/memory_backing.h"

#include <algorithm>
#include <string>

namespace {

using bytes::Bytes;
using bytes::View;
using fuzz::require;
using ole_link::LinkStream;
using ole_link::Moniker;
using presentation_builder::MemoryBacking;

constexpr const char16_t* kOleStream = u"\001Ole";
constexpr const char16_t* kNewSource = u"D:\\new\\book.xls";

bool same(const ole_link::Text& a, const ole_link::Text& b) {
    return a.ansi == b.ansi && a.wide == b.wide;
}

bool same(const Moniker& a, const Moniker& b) {
    return a.file.has_value() == b.file.has_value() && (!a.file || same(*a.file, *b.file)) &&
           std::equal(a.items.begin(), a.items.end(), b.items.begin(), b.items.end(),
                      [](const ole_link::Item& x, const ole_link::Item& y) {
                          return same(x.delimiter, y.delimiter) && same(x.name, y.name) &&
                                 x.stored == y.stored;
                      }) &&
           a.unknown == b.unknown && a.unknown_count == b.unknown_count;
}

void check_moniker(View stored) {
    const std::optional<Moniker> moniker = ole_link::parse_moniker(stored);
    if (moniker) {
        const auto again = ole_link::parse_moniker(ole_link::serialise(*moniker));
        require(again && same(*again, *moniker), "a moniker that is written reads back");
    }
}

void check_stream(View data) {
    LinkStream stream = LinkStream::parse(data);
    const Bytes written = stream.serialise();
    require(std::equal(written.begin(), written.end(), data.begin(), data.end()),
            "an unchanged stream is written as it was read");
    check_moniker(stream.relative_source());
    check_moniker(stream.absolute_source());
    if (stream.is_link()) {
        Moniker source;
        source.file = ole_link::Text{"D:\\new\\book.xls"};
        const Bytes moniker = ole_link::serialise(source);
        stream.set_absolute_source(moniker);
        const Bytes changed = stream.serialise();
        const LinkStream again = LinkStream::parse(changed);
        require(std::equal(moniker.begin(), moniker.end(), again.absolute_source().begin(),
                           again.absolute_source().end()),
                "a new source reads back");
        require(again.relative_source().empty(), "and nothing is relative to it");
        require(again.serialise() == changed, "and is written as it was read");
    }
}

// A storage in memory with just that stream.
class Storage {
  public:
    explicit Storage(View data) {
        const auto image = std::make_shared<Bytes>();
        const auto file = compound_file::CompoundFile::create(
            std::make_unique<MemoryBacking>(image), compound_file::Version::v3);
        file->stream(file->create_stream(compound_file::kRoot, kOleStream))->write_at(0, data);
        file->flush();
        memory_ = GlobalAlloc(GMEM_MOVEABLE, image->size());
        std::copy(image->begin(), image->end(), static_cast<std::uint8_t*>(GlobalLock(memory_)));
        GlobalUnlock(memory_);
        require(ppt::j_openStorageOnMemory(memory_, false, storage_.put()) == 0,
                "a sound storage opens");
    }
    Storage(const Storage&) = delete;
    Storage& operator=(const Storage&) = delete;
    ~Storage() {
        storage_.reset();
        GlobalFree(memory_);
    }

    IStorage* get() const { return storage_.get(); }

  private:
    HGLOBAL memory_ = nullptr;
    ComPtr<IStorage> storage_;
};

// Paths are read where they stand in a stream without a reserved moniker.
bool has_reserved_moniker(View data) {
    constexpr std::size_t kReservedSizeOffset = 16;
    bytes::Cursor cursor(data);
    cursor.seek(kReservedSizeOffset);
    return cursor.u32() != 0;
}

void check_object(View data) {
    const Storage storage(data);
    std::string path;
    ppt::n_getOleLinkPath(storage.get(), &path);
    ComPtr<IOleLink> link;
    if (FAILED(OleLoad(storage.get(), IID_IOleLink, nullptr, link.put_void())) ||
        FAILED(link->SetSourceDisplayName(kNewSource))) {
        return;
    }
    ComPtr<IPersistStorage> object;
    require(SUCCEEDED(link->QueryInterface(IID_IPersistStorage, object.put_void())) &&
                SUCCEEDED(OleSave(object.get(), storage.get(), TRUE)),
            "a new source is saved");
    object.reset();
    link.reset();
    ppt::n_getOleLinkPath(storage.get(), &path);
    require(has_reserved_moniker(data) || path.starts_with("D:\\new\\book.xls"),
            "and is found again");
}

} // namespace

void fuzz::test_one(View data) {
    platform::set_ansi_code_page(1252);
    platform::trust_link_targets(true);
    check_moniker(data);
    try {
        check_stream(data);
    } catch (const platform::Error&) { // no OLE stream
    }
    try {
        check_object(data);
    } catch (int) { // a status: the object has no path
    }
}
