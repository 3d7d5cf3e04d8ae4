#include "reader/presentation.h"

#include "common_new/common/storage.h"
#include "plugin/checked_allocation.h"
#include "plugin/document_path.h"
#include "plugin/error_params.h"
#include "plugin/failure.h"
#include "plugin/status.h"
#include "reader/readable_size.h"
#include "reader/record_header.h"
#include "reader/record_types.h"

#include <unordered_set>
#include <utility>

namespace ppt {

namespace {

constexpr std::size_t kStoredEditSize = kRecordHeaderSize + kUserEditSize;

RecordHeader read_header(IStream* stream) {
    RecordHeaderBytes raw{};
    require_success(
        j_readStream(stream, raw.data(), static_cast<std::int32_t>(raw.size()), nullptr));
    return decode_record_header(raw);
}

} // namespace

PptPresentation::PptPresentation(ComPtr<IStorage> root)
    : root_(std::move(root)) {
    read_current_user();
}

void PptPresentation::read_current_user() {
    ComPtr<IStream> stream;
    RecordHeaderBytes header{};
    CurrentUserBytes fixed{};
    std::int32_t status = j_openStream(root_.get(), WIDE("Current User"), true, stream.put());
    if (status == status::kSuccess) {
        status = j_readStream(stream.get(), header.data(), static_cast<std::int32_t>(header.size()),
                              nullptr);
    }
    if (status != status::kSuccess) {
        require_memory(status);
        return;
    }
    ULONG read = 0;
    const HRESULT result = stream->Read(fixed.data(), static_cast<ULONG>(fixed.size()), &read);
    if (FAILED(result) || read < fixed.size()) {
        require_memory_of(result);
        return;
    }
    current_user_ = decode_current_user(fixed);
    current_user_valid_ = current_user_.is_valid();
}

IStream* PptPresentation::ps_getDocumentStream() {
    if (!document_ && current_user_valid_) {
        require_success(
            j_openStream(root_.get(), WIDE("PowerPoint Document"), true, document_.put()));
        STATSTG stat{};
        require_success(j_translateComError(document_->Stat(&stat, STATFLAG_NONAME)));
        document_size_ = stat.cbSize.QuadPart;
    }
    return document_.get();
}

void PptPresentation::v_setDocumentStream(ComPtr<IStream> stream) {
    document_ = std::move(stream);
    document_size_.reset();
    readable_size_.reset();
}

void PptPresentation::v_releaseDocumentStream() {
    v_setDocumentStream({});
}

IStream* PptPresentation::stream_or_throw() {
    IStream* stream = ps_getDocumentStream();
    if (stream == nullptr) {
        throw static_cast<int>(status::kNullArgument);
    }
    return stream;
}

std::uint64_t PptPresentation::document_size() {
    IStream* stream = stream_or_throw();
    if (document_size_) {
        return *document_size_;
    }
    STATSTG stat{};
    require_success(j_translateComError(stream->Stat(&stat, STATFLAG_NONAME)));
    return stat.cbSize.QuadPart;
}

std::uint64_t PptPresentation::readable_size() {
    if (!readable_size_) {
        readable_size_ = n_readableSize(stream_or_throw(), document_size());
    }
    return *readable_size_;
}

void PptPresentation::v_readPersistDirectory() {
    if (current_user_edit_ || current_user_.offset_to_current_edit == 0) {
        return;
    }
    std::unordered_set<std::uint32_t> edits_seen;
    std::unordered_set<std::uint32_t> directories_seen;
    std::uint32_t offset = current_user_.offset_to_current_edit;
    do {
        const bool returned_to_an_edit = !edits_seen.insert(offset).second;
        // A stream too short for a single edit is told by the read of it.
        const bool edits_overlap =
            edits_seen.size() > 1 && edits_seen.size() * kStoredEditSize > readable_size();
        if (returned_to_an_edit || edits_overlap) {
            throw static_cast<int>(status::kDamaged);
        }
        UserEdit edit;
        read_user_edit(offset, edit);
        user_edits_.push_back({offset, edit});
        if (!current_user_edit_) {
            persist_directory_ = std::make_unique<PersistDirectory>();
            current_user_edit_ = edit;
        }
        // A directory that a newer edit shares has nothing to add.
        if (directories_seen.insert(edit.offset_of_persist_directory).second) {
            read_persist_block(edit.offset_of_persist_directory);
        }
        offset = edit.offset_of_last_edit;
    } while (offset != 0);
}

void PptPresentation::read_user_edit(std::uint32_t offset, UserEdit& edit) {
    IStream* stream = stream_or_throw();
    require_success(j_seekStream(document_path().c_str(), stream, static_cast<std::int32_t>(offset),
                                 0, nullptr));
    if (read_header(stream).type != RT_UserEditAtom) {
        throw static_cast<int>(status::kDamaged);
    }
    UserEditBytes raw{};
    require_success(
        j_readStream(stream, raw.data(), static_cast<std::int32_t>(raw.size()), nullptr));
    edit = decode_user_edit(raw);
}

void PptPresentation::read_persist_block(std::uint32_t offset) {
    IStream* stream = stream_or_throw();
    require_success(j_seekStream(document_path().c_str(), stream, static_cast<std::int32_t>(offset),
                                 0, nullptr));
    const RecordHeader header = read_header(stream);
    if (header.is_container() || header.type != RT_PersistDirectoryAtom) {
        throw static_cast<int>(status::kDamaged);
    }
    // No memory is taken on the word of a header whose body the stream does not hold.
    const std::uint64_t available = readable_size() - n_tellDocument();
    if (header.length > available) {
        v_setErrorParamText(document_path());
        b_appendErrorParamNumber(static_cast<std::int32_t>(available));
        b_appendErrorParamNumber(static_cast<std::int32_t>(header.length));
        throw static_cast<int>(status::kShortRead);
    }
    persist_bytes_read_ += header.length;
    const bool directories_overlap = persist_bytes_read_ > readable_size();
    if (directories_overlap) {
        throw static_cast<int>(status::kDamaged);
    }
    bytes::Bytes body;
    resize_checked(body, header.length);
    if (!body.empty()) {
        require_success(
            j_readStream(stream, body.data(), static_cast<std::int32_t>(header.length)));
    }
    std::vector<std::uint32_t> words;
    resize_checked(words, body.size() / 4);
    for (std::size_t i = 0; i < words.size(); ++i) {
        words[i] = bytes::load_u32(body, 4 * i);
    }
    persist_directory_->append_block(std::move(words));
}

void PptPresentation::v_buildObjectArray() {
    if (persist_directory_) {
        persist_directory_->v_buildObjectArray();
        // The container that is read is the one that is rewritten, also where the newest directory
        // puts it at offset 0 and an older one elsewhere.
        const std::uint32_t document = current_user_edit_->document_persist_id;
        const std::uint32_t offset = persist_directory_->n_lookupPersistId(document);
        if (offset != kNoOffset) {
            persist_directory_->v_setObjectOffset(document, offset);
        }
        persist_directory_->v_noteObjectAtStart(document);
    }
}

bool PptPresentation::b_isLaidOutAs(PptPresentation& other) {
    return user_edits_ == other.user_edits_ && document_size() == other.document_size();
}

void PptPresentation::v_seekDocumentContainer() {
    const std::uint32_t offset =
        persist_directory().n_lookupPersistId(current_user_edit().document_persist_id);
    require_success(j_seekStream(document_path().c_str(), stream_or_throw(),
                                 static_cast<std::int32_t>(offset), 0, nullptr));
}

std::uint32_t PptPresentation::n_tellDocument() {
    std::uint32_t position = 0;
    require_success(j_seekStream("", stream_or_throw(), 0, 1, &position));
    return position;
}

void PptPresentation::v_seekDocument(std::uint32_t offset) {
    require_success(
        j_seekStream("", stream_or_throw(), static_cast<std::int32_t>(offset), 0, nullptr));
}

void PptPresentation::v_skipDocument(std::int32_t count) {
    require_success(j_seekStream("", stream_or_throw(), count, 1, nullptr));
}

void PptPresentation::v_readDocument(std::span<std::uint8_t> out) {
    if (out.empty()) {
        return;
    }
    ULONG read = 0;
    const HRESULT result =
        stream_or_throw()->Read(out.data(), static_cast<ULONG>(out.size()), &read);
    if (FAILED(result)) {
        throw static_cast<int>(j_translateComError(result));
    }
    if (read < out.size()) {
        throw static_cast<int>(status::kDamaged);
    }
}

bool PptPresentation::b_holdsDocumentBytes(std::uint32_t count) {
    const std::uint64_t size = readable_size();
    const std::uint64_t position = n_tellDocument();
    return position <= size && count <= size - position && std::in_range<std::int32_t>(count);
}

void PptPresentation::v_requireDocumentBytes(std::uint32_t count) {
    if (!b_holdsDocumentBytes(count)) {
        throw static_cast<int>(status::kDamaged);
    }
}

PersistDirectory& PptPresentation::persist_directory() {
    if (!persist_directory_) {
        throw static_cast<int>(status::kDamaged);
    }
    return *persist_directory_;
}

UserEdit& PptPresentation::current_user_edit() {
    if (!current_user_edit_) {
        throw static_cast<int>(status::kDamaged);
    }
    return *current_user_edit_;
}

} // namespace ppt
