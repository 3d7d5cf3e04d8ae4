// See presentation_builder.h: the records and saves of a deck. Its compound file is in
// deck_file.cpp.
#include "tests/support/presentation_builder.h"

#include <algorithm>

namespace presentation_builder {

namespace {

using namespace record_type;

constexpr std::uint32_t kDocumentId = 1;
constexpr std::uint32_t kFirstSlideId = 256;
constexpr std::uint32_t kFirstMasterId = 0x80000000;

std::size_t index(PageKind kind) {
    return static_cast<std::size_t>(kind);
}

Bytes document_atom() {
    Bytes body;
    for (const std::uint32_t value : {5760U, 4320U, 4320U, 5760U, 5U, 10U, 0U, 0U}) {
        bytes::append_u32(body, value); // slide and notes size, zoom, no masters of notes
    }
    bytes::append_u16(body, 1); // first slide number
    bytes::append_u16(body, 0); // on-screen show
    body.resize(40);
    return atom(0, kDocumentAtom, body, 1);
}

Bytes drawing_group(std::uint32_t drawings) {
    Bytes body;
    for (const std::uint32_t value : {1024 * (drawings + 1), 1U, drawings, drawings}) {
        bytes::append_u32(body, value);
    }
    return container(0, kDrawingGroup,
                     {container(0, kArtDrawingGroup, {atom(0, kArtDrawingGroupAtom, body)})});
}

} // namespace

std::uint32_t Deck::hyperlink(std::u16string target) {
    return declare({std::move(target)});
}

std::uint32_t Deck::declare(const Hyperlink& link) {
    const std::uint32_t id = next_object_id();
    external_object(external_hyperlink(id, link));
    return id;
}

std::uint32_t Deck::sound(std::uint16_t type, std::u16string_view path) {
    const std::uint32_t id = next_object_id();
    external_object(media(type, id, path));
    return id;
}

std::uint32_t Deck::movie(std::uint16_t type, std::u16string_view path) {
    const std::uint32_t id = next_object_id();
    external_object(presentation_builder::movie(type, id, path));
    return id;
}

std::uint32_t Deck::ole_link(Bytes storage_record) {
    const std::uint32_t id = next_object_id();
    external_object(external_ole_link(id, persist_object(std::move(storage_record))));
    return id;
}

std::uint32_t Deck::persist_object(Bytes record) {
    unsaved_objects_.push_back({next_persist_id_, std::move(record)});
    return next_persist_id_++;
}

Deck& Deck::external_object(View record) {
    bytes::append(external_objects_, record);
    return touch_document();
}

Page& Deck::add(PageKind kind) {
    const std::uint32_t number = page_counts_[index(kind)]++;
    const std::uint32_t base = kind == PageKind::master ? kFirstMasterId : kFirstSlideId;
    const std::uint32_t drawing_id = static_cast<std::uint32_t>(pages_.size()) + 1;
    touch_document();
    return pages_.emplace_back(kind, next_persist_id_++, base + number, drawing_id);
}

Deck& Deck::list_order(std::vector<PageKind> order) {
    list_order_ = std::move(order);
    return touch_document();
}

Deck& Deck::list_record(PageKind list, View record) {
    bytes::append(list_records_[index(list)], record);
    return touch_document();
}

Deck& Deck::document_record(View record) {
    bytes::append(document_records_, record);
    return touch_document();
}

Deck& Deck::behind_document_end(View record) {
    bytes::append(behind_end_, record);
    return touch_document();
}

Deck& Deck::document_last() {
    document_last_ = true;
    return *this;
}

Deck& Deck::loose_bytes(View data) {
    bytes::append(loose_, data);
    return *this;
}

Deck& Deck::skip_persist_ids(std::uint32_t count) {
    next_persist_id_ += count;
    return *this;
}

Deck& Deck::directory_entry(PersistEntry entry) {
    extra_entries_.push_back(entry);
    return *this;
}

Deck& Deck::longest_run(std::uint32_t ids) {
    longest_run_ = ids;
    return *this;
}

Deck& Deck::touch_document() {
    document_changed_ = true;
    return *this;
}

Bytes Deck::slide_list(PageKind kind) const {
    Bytes records;
    for (const Page& page : pages_) {
        if (page.kind() == kind) {
            bytes::append(records, page.list_records());
        }
    }
    bytes::append(records, list_records_[index(kind)]);
    if (records.empty() && kind != PageKind::slide) {
        return {};
    }
    return container(static_cast<std::uint16_t>(kind), kSlideListWithText, {records});
}

Bytes Deck::document_container() const {
    Bytes lists;
    for (const PageKind kind : list_order_) {
        bytes::append(lists, slide_list(kind));
    }
    return container(0, kDocument,
                     {document_atom(),
                      external_objects_.empty()
                          ? Bytes{}
                          : external_object_list(last_object_id_, external_objects_),
                      drawing_group(static_cast<std::uint32_t>(pages_.size())), document_records_,
                      lists, end_document_atom(), behind_end_});
}

std::uint32_t Deck::append_object(View record) {
    const std::uint32_t offset = static_cast<std::uint32_t>(written_.size());
    bytes::append(written_, record);
    return offset;
}

void Deck::put(std::vector<PersistEntry>& entries, std::uint32_t persist_id, View record) {
    const std::uint32_t offset = append_object(record);
    entries.push_back({persist_id, offset});
    if (offsets_.size() <= persist_id) {
        offsets_.resize(persist_id + 1);
    }
    offsets_[persist_id] = offset;
}

void Deck::put_pages(std::vector<PersistEntry>& entries) {
    for (Page& page : pages_) {
        if (page.is_changed()) {
            put(entries, page.persist_id(), page.records());
        }
        document_changed_ = document_changed_ || page.is_outline_changed();
        page.mark_saved();
    }
    for (const PersistObject& object : unsaved_objects_) {
        put(entries, object.persist_id, object.record);
    }
    unsaved_objects_.clear();
}

void Deck::append_edit(std::vector<PersistEntry> entries) {
    entries.insert(entries.end(), extra_entries_.begin(), extra_entries_.end());
    extra_entries_.clear();
    std::sort(entries.begin(), entries.end(),
              [](const PersistEntry& a, const PersistEntry& b) { return a.id < b.id; });
    UserEdit edit;
    edit.last_slide_id = kFirstSlideId + page_counts_[index(PageKind::slide)];
    edit.previous_edit = edits_.empty() ? 0 : edits_.back().user_edit;
    edit.persist_directory = append_object(persist_directory_atom(entries, longest_run_));
    edit.document_id = kDocumentId;
    edit.persist_id_seed = next_persist_id_;
    edits_.push_back({append_object(user_edit_atom(edit)), edit.persist_directory});
}

Deck& Deck::save() {
    append_object(loose_);
    loose_.clear();
    std::vector<PersistEntry> entries;
    if (document_last_) {
        put_pages(entries);
    }
    const auto outline_changed = [](const Page& page) { return page.is_outline_changed(); };
    if (document_changed_ || std::any_of(pages_.begin(), pages_.end(), outline_changed)) {
        put(entries, kDocumentId, document_container());
    }
    if (!document_last_) {
        put_pages(entries);
    }
    document_changed_ = false;
    append_edit(std::move(entries));
    return *this;
}

bool Deck::needs_save() const {
    return edits_.empty() || document_changed_ || !loose_.empty() || !extra_entries_.empty() ||
           !unsaved_objects_.empty() ||
           std::any_of(pages_.begin(), pages_.end(), [](const Page& page) {
               return page.is_changed() || page.is_outline_changed();
           });
}

void Deck::finish() {
    if (needs_save()) {
        save();
    }
}

const Bytes& Deck::document_stream() {
    finish();
    return written_;
}

std::size_t Deck::edit_count() {
    finish();
    return edits_.size();
}

std::uint32_t Deck::offset_of_user_edit(std::size_t edit) {
    finish();
    return edits_.at(edit).user_edit;
}

std::uint32_t Deck::offset_of_persist_directory(std::size_t edit) {
    finish();
    return edits_.at(edit).directory;
}

std::uint32_t Deck::offset_of_document() {
    finish();
    return offset_of_id(kDocumentId);
}

std::uint32_t Deck::offset_of(const Page& page) {
    finish();
    return offset_of_id(page.persist_id());
}

RecordAt Deck::find_in_document(std::initializer_list<Step> path) {
    return find_record(document_stream(), offset_of_document(), path);
}

RecordAt Deck::find_in(const Page& page, std::initializer_list<Step> path) {
    return find_record(document_stream(), offset_of(page), path);
}

} // namespace presentation_builder
