#include "rewriter/copy_writer.h"

#include "common_new/common/storage.h"
#include "plugin/document_path.h"
#include "plugin/failure.h"
#include "plugin/status.h"
#include "reader/presentation.h"

#include <algorithm>
#include <limits>

namespace ppt {

namespace {

constexpr std::size_t kPieceSize = std::size_t{64} * 1024;
constexpr std::uint32_t kSmallCopy = 16 * 1024;

} // namespace

void CopyWriter::seek(std::uint32_t position) {
    if (position != tell()) {
        flush();
        start_ = position;
    }
}

void CopyWriter::write(bytes::View data) {
    const bool stream_holds_it =
        data.size() <= std::numeric_limits<std::int32_t>::max() - std::uint64_t{tell()};
    if (!stream_holds_it) {
        throw static_cast<int>(status::kDamaged);
    }
    if (pending_.size() + data.size() > kPieceSize) {
        flush();
    }
    if (data.size() >= kPieceSize) {
        write_at(start_, data);
        start_ += static_cast<std::uint32_t>(data.size());
        return;
    }
    bytes::append(pending_, data);
}

void CopyWriter::overwrite(std::uint32_t position, bytes::View data) {
    if (position >= start_) {
        std::copy(data.begin(), data.end(), pending_.begin() + (position - start_));
        return;
    }
    flush();
    write_at(position, data);
}

std::int32_t CopyWriter::copy(PptPresentation& source, std::uint32_t count) {
    if (count <= kSmallCopy && source.b_holdsDocumentBytes(count)) {
        bytes::Bytes buffer(count);
        source.v_readDocument(buffer);
        write(buffer);
        return status::kSuccess;
    }
    flush();
    require_success(j_seekStream("", stream_, static_cast<std::int32_t>(start_), 0));
    const std::int32_t status =
        j_copyStream(source.ps_getDocumentStream(), stream_, static_cast<std::int32_t>(count));
    if (status == status::kSuccess) {
        start_ += count;
    }
    return status;
}

void CopyWriter::flush() {
    if (!pending_.empty()) {
        write_at(start_, pending_);
        start_ = tell();
        pending_.clear();
    }
}

void CopyWriter::write_at(std::uint32_t position, bytes::View data) {
    require_success(j_seekStream("", stream_, static_cast<std::int32_t>(position), 0));
    require_success(j_writeStream(document_path().c_str(), stream_, data.data(),
                                  static_cast<std::int32_t>(data.size())));
}

} // namespace ppt
