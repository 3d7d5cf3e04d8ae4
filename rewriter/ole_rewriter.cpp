#include "rewriter/ole_rewriter.h"

#include "common_new/SafeFunc/paths.h"
#include "common_new/SafeFunc/split_path.h"
#include "common_new/common/conversion.h"
#include "common_new/common/storage.h"
#include "plugin/checked_allocation.h"
#include "plugin/error_params.h"
#include "plugin/failure.h"
#include "plugin/link_table.h"
#include "plugin/status.h"
#include "reader/object_storage.h"
#include "rewriter/record_writer.h"

#define ZLIB_CONST
#include <zlib.h>

#include <new>
#include <optional>
#include <utility>

namespace ppt {

namespace {

using WidePath = std::basic_string<WCHAR>;

void require(HRESULT result) {
    if (FAILED(result)) {
        throw static_cast<int>(j_translateComError(result));
    }
}

// A relative path would be taken relative to something else than the presentation.
bool is_absolute(std::string_view path) {
    PathParts parts;
    if (!b_splitPath(path, kSmallDirectoryCapacity, &parts)) {
        throw static_cast<int>(status::kSystemError);
    }
    return has_drive(path) || path.starts_with("//") || path.starts_with("\\\\");
}

// False for a path that OLE links do not get. The new source is in the storage when this returns.
bool retarget(IStorage* storage, const WidePath& wide_path, const std::string& path) {
    ComPtr<IOleLink> link;
    require(OleLoad(storage, IID_IOleLink, nullptr, link.put_void()));
    require(link->SetSourceDisplayName(wide_path.c_str()));
    if (!is_absolute(path)) {
        return false;
    }
    ComPtr<IBindCtx> context;
    static_cast<void>(CreateBindCtx(0, context.put())); // an update does without one
    require(link->Update(context.get()));
    ComPtr<IPersistStorage> saved;
    require(link->QueryInterface(IID_IPersistStorage, saved.put_void()));
    require(OleSave(saved.get(), storage, TRUE));
    return true;
}

// Packs a storage piece by piece: the room that zlib asks for beforehand is that of the storage
// itself.
class Deflater {
  public:
    explicit Deflater(bytes::View source) {
        stream_.zalloc = allocate_for_zlib;
        stream_.zfree = free_for_zlib;
        stream_.next_in = source.data();
        stream_.avail_in = static_cast<uInt>(source.size());
        ready_ = deflateInit(&stream_, Z_DEFAULT_COMPRESSION);
    }
    Deflater(const Deflater&) = delete;
    Deflater& operator=(const Deflater&) = delete;
    ~Deflater() { deflateEnd(&stream_); }

    // Appends all of it; returns zlib's result, Z_STREAM_END for success.
    int append_to(bytes::Bytes& out) {
        constexpr std::size_t kPiece = std::size_t{64} * 1024;
        int result = ready_;
        while (result == Z_OK) {
            const std::size_t size = out.size();
            resize_checked(out, size + kPiece);
            stream_.next_out = out.data() + size;
            stream_.avail_out = static_cast<uInt>(kPiece);
            result = deflate(&stream_, Z_FINISH);
            out.resize(size + kPiece - stream_.avail_out);
        }
        return result;
    }

  private:
    z_stream stream_{};
    int ready_ = Z_OK;
};

// The size of the storage, then the storage compressed; nothing when zlib cannot.
std::optional<bytes::Bytes> compressed_body(bytes::View storage) {
    bytes::Bytes body;
    bytes::append_u32(body, static_cast<std::uint32_t>(storage.size()));
    const int result = Deflater(storage).append_to(body);
    if (result == Z_MEM_ERROR) {
        throw std::bad_alloc();
    }
    return result == Z_STREAM_END ? std::optional(std::move(body)) : std::nullopt;
}

std::optional<bytes::Bytes> storage_body(const PptRecord& record, const MemoryBlock& block) {
    const LockedBytes locked(block);
    const bytes::View storage = locked.get();
    return b_isCompressed(record) ? compressed_body(storage)
                                  : bytes::Bytes(storage.begin(), storage.end());
}

// The new body of the record; nothing when the object stays as it is. The old body is given up.
std::optional<bytes::Bytes> retargeted_body(PptRecord& record, const LinkRecord& link) {
    const MemoryBlock block = object_storage(record);
    record.body = {};
    const WidePath path = wide_from_ansi(link.file_name);
    const ComPtr<IStorage> storage = open_object_storage(block, false);
    try {
        if (retarget(storage.get(), path, link.file_name)) {
            return storage_body(record, block);
        }
    } catch (const std::bad_alloc&) {
        throw; // this is no fault of the object, and nothing to tell the user about its path
    } catch (int failure) {
        require_memory(failure);
        v_setErrorParamTwoTexts(link.initial_file_name, link.file_name.c_str());
    } catch (...) {
        v_setErrorParamTwoTexts(link.initial_file_name.text(), link.file_name.c_str());
    }
    return std::nullopt;
}

// Every link through this object that was to get the same path.
void note_written(RewriteCopy& copy, const LinkRecord& written) {
    const LinkRecord* link = nullptr;
    while ((link = ps_nextLinkOfHolder(written.holder_persist_id, true, link)) != nullptr) {
        if (b_pathsEqual(link->file_name.c_str(), written.file_name.c_str())) {
            copy.written_links[link->table_index] = true;
        }
    }
}

} // namespace

std::int32_t n_rewriteOleObject(RewriteCopy& copy, std::uint32_t old_offset,
                                const LinkRecord* link) {
    if (link == nullptr) {
        throw static_cast<int>(status::kNullArgument);
    }
    copy.loaded.v_seekDocument(old_offset);
    PptRecord record(&copy.loaded);
    record.v_readRecord();
    if (!record.is(RT_ExternalOleObjectStg)) {
        throw static_cast<int>(status::kDamaged);
    }
    std::optional<bytes::Bytes> body = retargeted_body(record, *link);
    if (!body) {
        return 0;
    }
    const std::int32_t change = n_setBody(record, std::move(*body));
    v_writeRecord(copy, record);
    note_written(copy, *link);
    return change;
}

} // namespace ppt
