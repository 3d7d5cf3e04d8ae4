#include "reader/record.h"

#include "common_new/common/conversion.h"
#include "common_new/common/storage.h"
#include "plugin/checked_allocation.h"
#include "plugin/failure.h"
#include "plugin/link_record.h"
#include "plugin/status.h"
#include "reader/presentation.h"
#include "reader/utf16.h"

#include <algorithm>
#include <cstring>

namespace ppt {

void PptRecord::v_readRecord() {
    if (owner == nullptr) {
        return;
    }
    begin_record();
    read_body();
}

void PptRecord::v_readRecord(RecordType type) {
    begin_record();
    if (!is(type)) {
        throw static_cast<int>(status::kDamaged);
    }
    read_body();
}

void PptRecord::begin_record() {
    position = owner->n_tellDocument();
    consumed = 0;
    body.clear();
    RecordHeaderBytes raw{};
    owner->v_readDocument(raw);
    header = decode_record_header(raw);
}

void PptRecord::read_body() {
    if (header.is_container()) {
        return;
    }
    owner->v_requireDocumentBytes(header.length);
    resize_checked(body, header.length);
    owner->v_readDocument(body);
}

void PptRecord::v_readHeader() {
    position = owner->n_tellDocument();
    RecordHeaderBytes raw{};
    require_success(j_readStream(owner->ps_getDocumentStream(), raw.data(), kRecordHeaderSize));
    header = decode_record_header(raw);
}

PptRecord* PptRecord::ps_nextChild() {
    if (!header.is_container()) {
        return nullptr;
    }
    if (static_cast<std::int32_t>(consumed) >= static_cast<std::int32_t>(header.length)) {
        return nullptr;
    }
    if (!child_) {
        child_ = std::make_unique<PptRecord>(owner);
    }
    const std::uint64_t room = header.length - consumed;
    child_->begin_record();
    const bool ends_inside = kRecordHeaderSize + std::uint64_t{child_->header.length} <= room;
    if (!ends_inside) {
        throw static_cast<int>(status::kDamaged);
    }
    child_->read_body();
    consumed += child_->header.length + kRecordHeaderSize;
    return child_.get();
}

void PptRecord::v_skipChild(const PptRecord& child) {
    if (child.header.is_container()) {
        owner->v_requireDocumentBytes(child.header.length);
        owner->v_skipDocument(static_cast<std::int32_t>(child.header.length));
    }
}

void PptRecord::v_skipRest() {
    if (header.is_container() && consumed < header.length) {
        owner->v_requireDocumentBytes(header.length - consumed);
        owner->v_skipDocument(static_cast<std::int32_t>(header.length - consumed));
        consumed = header.length;
    }
}

std::string PptRecord::n_getAnsiString(std::size_t size) const {
    const std::basic_string<WCHAR> text = utf16_units(body);
    if (text.empty()) {
        return {};
    }
    char ansi[kLinkTextLimit];
    size = std::min(size, sizeof ansi);
    std::int32_t written = 0;
    const std::int32_t status = j_wideToAnsi(text.data(), static_cast<std::int32_t>(text.size()),
                                             ansi, static_cast<std::int32_t>(size), &written);
    require_memory(status); // or a link would lose its path
    const bool has_room_for_terminator = static_cast<std::size_t>(written) < size;
    if (status != status::kSuccess || !has_room_for_terminator) {
        return {};
    }
    // The text ends at its first zero, as it does for everybody who reads it as a C string.
    return {ansi, strnlen(ansi, static_cast<std::size_t>(written))};
}

std::uint32_t PptRecord::u32_at(std::size_t offset) const {
    if (body.size() < 4 || offset > body.size() - 4) {
        throw static_cast<int>(status::kDamaged);
    }
    return bytes::load_u32(body, offset);
}

std::uint8_t PptRecord::u8_at(std::size_t offset) const {
    if (offset >= body.size()) {
        throw static_cast<int>(status::kDamaged);
    }
    return body[offset];
}

PptRecord& required_child(PptRecord& parent) {
    PptRecord* child = parent.ps_nextChild();
    if (child == nullptr) {
        throw static_cast<int>(status::kDamaged);
    }
    return *child;
}

PptRecord& required_child(PptRecord& parent, RecordType type) {
    PptRecord& child = required_child(parent);
    if (!child.is(type)) {
        throw static_cast<int>(status::kDamaged);
    }
    return child;
}

} // namespace ppt
