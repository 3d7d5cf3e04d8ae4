// A whole presentation, described page by page and written as the application writes it: external
// objects, masters, slides and notes, saved once or in several steps, and the compound file around
// them. Tests, the benchmark and fuzzing make their input with it.
//
//     Deck deck;
//     const auto web = deck.hyperlink(u"http://example.org/");
//     deck.add_slide().shape(Shape().link(web)).shape(Shape().picture(u"C:\\map.wmf"));
//     deck.write("links.ppt");
//
// A deck starts with nothing. `save` writes what changed since the last save behind what is there,
// as an incremental save does: the changed objects, a persist directory that lists them, a user
// edit. Everything that hands out bytes or offsets saves first if something changed. The document
// container has persist id 1; pages get the ids that follow, in the order they are added.
//
// Cost: linear in what is described; the pictures stream is never in memory when written to a file.
#pragma once

#include "platform/compound_file/compound_file.h"
#include "tests/support/page.h"
#include "tests/support/property_stream.h"
#include "tests/support/record_finder.h"

#include <deque>
#include <string>
#include <utility>
#include <vector>

namespace presentation_builder {

class Deck {
  public:
    // External objects. Each call declares one in the document's list and returns its object id.
    std::uint32_t hyperlink(std::u16string target);
    std::uint32_t declare(const Hyperlink& link); // with friendly name, location or no target
    // A sound or video container of the type, see `media`.
    std::uint32_t sound(std::uint16_t type, std::u16string_view path);
    std::uint32_t movie(std::uint16_t type, std::u16string_view path);
    // A ready record for the list; `next_object_id` gives ids for what it declares.
    Deck& external_object(View record);
    std::uint32_t next_object_id() { return ++last_object_id_; }
    // A linked OLE object around the record of its storage (ole_storage.h).
    std::uint32_t ole_link(Bytes storage_record);

    // A persist object that is no page, behind the pages of the next save; returns its persist id.
    std::uint32_t persist_object(Bytes record);

    // Pages stay where they are: references live as long as the deck.
    Page& add_master() { return add(PageKind::master); }
    Page& add_slide() { return add(PageKind::slide); }
    Page& add_notes() { return add(PageKind::notes); }
    // The order of the slide lists in the document; a kind that is missing has no list. Masters,
    // slides, notes unless told otherwise; a list without pages is written only for slides.
    Deck& list_order(std::vector<PageKind> order);
    // A record at the end of a slide list.
    Deck& list_record(PageKind list, View record);

    // Records in the document container: in front of the slide lists, behind the end atom.
    Deck& document_record(View record);
    Deck& behind_document_end(View record);
    // Within a save the document stands first unless this moves it behind the pages.
    Deck& document_last();
    // Bytes in front of the next save's objects that nothing refers to.
    Deck& loose_bytes(View data);
    // The next `count` persist ids get no object.
    Deck& skip_persist_ids(std::uint32_t count);
    // An entry of the next save's persist directory for an id of no page.
    Deck& directory_entry(PersistEntry entry);
    // Runs of at most this many ids in persist directories.
    Deck& longest_run(std::uint32_t ids);
    // The next save lists the document container again though nothing in it changed.
    Deck& touch_document();
    Deck& save();

    // What was written, and where. Edits count from 0, the oldest.
    const Bytes& document_stream();
    std::size_t edit_count();
    std::uint32_t offset_of_user_edit(std::size_t edit);
    std::uint32_t offset_of_persist_directory(std::size_t edit);
    std::uint32_t offset_of_document();
    std::uint32_t offset_of(const Page& page);
    // A record below the newest document container or the newest version of a page.
    RecordAt find_in_document(std::initializer_list<Step> path);
    RecordAt find_in(const Page& page, std::initializer_list<Step> path);

    // What goes into the file instead of what the deck makes: damaged streams.
    Deck& replace_document_stream(Bytes stream);
    Deck& replace_current_user(Bytes stream);

    // The rest of the compound file.
    Deck& version(compound_file::Version version);
    // A "Pictures" stream of this size, filled with bytes that do not compress.
    Deck& pictures(std::uint64_t size);
    // "DocumentSummaryInformation" in the root storage.
    Deck& properties(Bytes stream);
    // Further entries; '/' separates the storages that the path goes through, made where missing.
    Deck& stream(std::u16string path, Bytes data);
    Deck& storage(std::u16string path);

    // Writes the file, replacing one that is there. Throws platform::Error.
    void write(const std::string& native_path);
    // The same in memory.
    Bytes image();

  private:
    struct Edit {
        std::uint32_t user_edit = 0;
        std::uint32_t directory = 0;
    };

    Page& add(PageKind kind);
    bool needs_save() const;
    void finish();
    std::uint32_t append_object(View record);
    std::uint32_t offset_of_id(std::uint32_t persist_id) const { return offsets_[persist_id]; }
    void put(std::vector<PersistEntry>& entries, std::uint32_t persist_id, View record);
    void put_pages(std::vector<PersistEntry>& entries);
    void append_edit(std::vector<PersistEntry> entries);
    Bytes slide_list(PageKind kind) const;
    Bytes document_container() const;
    void fill(compound_file::CompoundFile& file);

    struct PersistObject {
        std::uint32_t persist_id = 0;
        Bytes record;
    };

    std::deque<Page> pages_;
    std::vector<PersistObject> unsaved_objects_;
    std::uint32_t next_persist_id_ = 2;
    std::uint32_t page_counts_[3] = {};
    std::uint32_t last_object_id_ = 0;
    Bytes external_objects_;
    Bytes document_records_;
    Bytes behind_end_;
    Bytes list_records_[3];
    std::vector<PageKind> list_order_{PageKind::master, PageKind::slide, PageKind::notes};
    bool document_last_ = false;
    bool document_changed_ = true;

    Bytes loose_;
    std::vector<PersistEntry> extra_entries_;
    std::uint32_t longest_run_ = 4095;
    Bytes written_;
    std::vector<std::uint32_t> offsets_; // by persist id, newest; ids without an object hold 0
    std::vector<Edit> edits_;

    std::optional<Bytes> replaced_document_;
    std::optional<Bytes> replaced_current_user_;
    compound_file::Version version_ = compound_file::Version::v3;
    std::uint64_t pictures_size_ = 0;
    struct Entry {
        std::u16string path;
        std::optional<Bytes> data; // none for a storage
    };
    std::vector<Entry> entries_;
};

} // namespace presentation_builder
