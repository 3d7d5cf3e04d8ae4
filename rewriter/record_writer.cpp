#include "rewriter/record_writer.h"

#include "common_new/common/conversion.h"
#include "plugin/failure.h"
#include "plugin/status.h"
#include "reader/utf16.h"

#include <limits>
#include <utility>

namespace ppt {

void v_writeRecord(RewriteCopy& copy, const PptRecord& record) {
    if (record.header.is_container()) {
        copy.loaded.v_seekDocument(record.position);
        copy.loaded.v_requireDocumentBytes(record.header.length);
        require_success(copy.writer.copy(copy.loaded, record.header.length + kRecordHeaderSize));
    } else {
        copy.writer.write(encode_record_header(record.header));
        copy.writer.write(record.body);
    }
    copy.v_notePositions();
}

std::uint32_t n_openContainer(RewriteCopy& copy, const PptRecord& container) {
    if (!container.header.is_container()) {
        throw static_cast<int>(status::kDamaged);
    }
    const std::uint32_t header_position = copy.writer.tell();
    copy.writer.write(RecordHeaderBytes{});
    copy.v_notePositions();
    return header_position;
}

void v_fixRecordLength(RewriteCopy& copy, const PptRecord& record, std::uint32_t header_position,
                       std::int32_t size_change) {
    const std::int64_t length = std::int64_t{record.header.length} + size_change;
    const bool is_a_length = length >= 0 && length <= std::numeric_limits<std::int32_t>::max();
    if (!is_a_length) {
        throw static_cast<int>(status::kDamaged);
    }
    RecordHeader header = record.header;
    header.length = static_cast<std::uint32_t>(length);
    copy.writer.overwrite(header_position, encode_record_header(header));
}

std::int32_t n_dropRecord(RewriteCopy& copy, const PptRecord& record) {
    copy.loaded.v_seekDocument(record.position + kRecordHeaderSize);
    copy.loaded.v_requireDocumentBytes(record.header.length);
    copy.loaded.v_skipDocument(static_cast<std::int32_t>(record.header.length));
    copy.v_notePositions();
    return -static_cast<std::int32_t>(record.header.length + kRecordHeaderSize);
}

std::int32_t n_setBody(PptRecord& atom, bytes::Bytes body) {
    if (!std::in_range<std::int32_t>(body.size())) {
        throw static_cast<int>(status::kDamaged);
    }
    const std::int64_t change = static_cast<std::int64_t>(body.size()) - atom.header.length;
    atom.header.length = static_cast<std::uint32_t>(body.size());
    atom.body = std::move(body);
    return static_cast<std::int32_t>(change);
}

std::int32_t n_replaceString(PptRecord& record, const std::string& text, RewriteCopy& copy) {
    if (record.header.is_container()) {
        throw static_cast<int>(status::kDamaged);
    }
    const std::int32_t change = n_setBody(record, utf16_bytes(wide_from_ansi(text)));
    v_writeRecord(copy, record);
    return change;
}

} // namespace ppt
