// Writing: ids and addresses of the links become document properties of the copy; stale ones go.
#include "linkid/link_properties.h"

#include "common_new/common/conversion.h"
#include "common_new/common/storage.h"
#include "linkid/hyperlink_list.h"
#include "linkid/link_id_tag.h"
#include "linkid/property_section.h"
#include "linkid/stored_path.h"
#include "plugin/document_path.h"
#include "plugin/error_params.h"
#include "plugin/failure.h"
#include "plugin/state.h"
#include "plugin/status.h"

#include <algorithm>
#include <array>
#include <deque>
#include <map>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace ppt {

namespace {

using WideString = std::basic_string<WCHAR>;
constexpr PROPID kFirstNewId = 2;

// Whether the disk under the copy failed or is full.
bool is_failed_write(std::int32_t status) {
    return status == status::kStorageWriteFault || status == status::kDiskFull;
}

// Throws the status when memory ran out or the disk failed, which tells nothing about the property
// at hand.
void require_machine(HRESULT result) {
    require_memory_of(result);
    if (result == STG_E_WRITEFAULT || result == STG_E_MEDIUMFULL) {
        require_success(j_translateComError(result));
    }
}

// Other failures of the section's own calls are raised with the COM result itself.
void throw_com_result(HRESULT result) {
    if (FAILED(result)) {
        require_machine(result);
        throw static_cast<int>(result);
    }
}

std::string path_of(IStorage* root) {
    STATSTG stat{};
    require_success(j_translateComError(root->Stat(&stat, STATFLAG_DEFAULT)));
    std::array<char, kLinkTextLimit> path{};
    const std::int32_t converted =
        j_wideToAnsi(stat.pwcsName, -1, path.data(), static_cast<std::int32_t>(path.size()));
    CoTaskMemFree(stat.pwcsName);
    require_success(converted);
    return path.data();
}

bool is_ascii(const WideString& text) {
    return std::all_of(text.begin(), text.end(), [](WCHAR unit) { return unit < 0x80; });
}

// What is added may take no more bytes than the system lets a usual stream have, nor than a larger
// one has already. Counted is what every addition takes at least.
class Room {
  public:
    explicit Room(std::uint64_t stream_size)
        : allowed_(std::max(kUsualLimit, stream_size)) {}

    // Throws 8140 when there is no room for so many bytes.
    void take(std::uint64_t bytes) {
        taken_ += bytes;
        if (taken_ > allowed_) {
            throw static_cast<int>(status::kDamaged);
        }
    }

    std::uint64_t allowed() const { return allowed_; }

  private:
    static constexpr std::uint64_t kUsualLimit = std::uint64_t{1} << 20;

    std::uint64_t allowed_;
    std::uint64_t taken_ = 0;
};

// The properties to be written, all in one call. Of several with one name the last one counts.
class NewProperties {
  public:
    explicit NewProperties(Room& room)
        : room_(room) {}

    // `plain_name` is the name where the section's code page does not hold `name`. Throws 8140 when
    // there is no room.
    void add(const std::string& name, const std::string& plain_name, const std::string& value) {
        WideString wide_value = wide_from_ansi(value);
        const auto [known, is_new] = by_name_.try_emplace(name, names_.size());
        if (!is_new) {
            values_[known->second] = std::move(wide_value);
            variants_[known->second].pwszVal = values_[known->second].data();
            return;
        }
        const std::uint64_t size =
            kSmallestProperty + name.size() / kBytesOfAUnit + sizeof(WCHAR) * wide_value.size();
        room_.take(std::max(size, room_.allowed() / kMostProperties));
        names_.push_back(wide_from_ansi(name));
        if (!is_ascii(names_.back())) {
            plain_names_.try_emplace(specs_.size(), wide_from_ansi(plain_name));
        }
        values_.push_back(std::move(wide_value));
        PROPSPEC spec{};
        spec.ulKind = PRSPEC_LPWSTR;
        spec.lpwstr = names_.back().data();
        specs_.push_back(spec);
        PROPVARIANT variant{};
        variant.vt = VT_LPWSTR;
        variant.pwszVal = values_.back().data();
        variants_.push_back(variant);
    }

    // One name that the section does not take shall not lose the ids of all links.
    void write_to(PropertySection& section) {
        if (specs_.empty()) {
            return;
        }
        const HRESULT result = try_to_write(section);
        if (SUCCEEDED(result)) {
            return;
        }
        require_machine(result);
        for (auto& [index, plain_name] : plain_names_) {
            specs_[index].lpwstr = plain_name.data();
        }
        throw_com_result(try_to_write(section));
    }

  private:
    static constexpr std::uint64_t kMostProperties = 65536; // that a section can be read with
    // An entry in the dictionary, a pair, the type and the length of a text.
    static constexpr std::uint64_t kSmallestProperty = 24;
    static constexpr std::uint64_t kBytesOfAUnit = 3; // in an ANSI name, at most

    HRESULT try_to_write(PropertySection& section) const {
        return section->WriteMultiple(static_cast<ULONG>(specs_.size()), specs_.data(),
                                      variants_.data(), kFirstNewId);
    }

    Room& room_;
    std::unordered_map<std::string, std::size_t> by_name_;
    std::deque<WideString> names_;                  // a deque: the specs point into it
    std::map<std::size_t, WideString> plain_names_; // by index, of those with other characters
    std::deque<WideString> values_;
    std::vector<PROPSPEC> specs_;
    std::vector<PROPVARIANT> variants_;
};

class PropertyWriter {
  public:
    PropertyWriter(PropertySection& section, std::string copy_path)
        : section_(section)
        , copy_path_(std::move(copy_path))
        , room_(section.stream_size()) {}

    void write_ids(std::int32_t flags) {
        const bool from_document = state().ids_in_document;
        NewProperties added(room_);
        if ((flags & kFlagLinks) != 0 || from_document) {
            for (const LinkRecord& link : state().links.links()) {
                store_id(link, added);
            }
        }
        if ((flags & kFlagTargetFileId) != 0 || from_document) {
            const std::string name(kTargetFileIdName);
            added.add(name, name, id_text(state().target_file_id));
        }
        throw_com_result(section_->Commit(STGC_DEFAULT));
        added.write_to(section_);
    }

    // Every hyperlink whose path changed gets it as its address, when `flags` ask for links as the
    // rewriting of the records did; the others keep theirs unit for unit.
    void write_hyperlink_list(std::int32_t flags) {
        PropertyValue old_value;
        WideString name = wide_from_ansi(kHyperlinkListName);
        section_.read(name, old_value);
        if (old_value.is_empty_blob()) {
            return;
        }
        HyperlinkList list;
        if (old_value.is_blob()) {
            list = parse_hyperlink_list(old_value.blob());
        }
        if (!list.complete) {
            throw static_cast<int>(status::kDamaged);
        }
        const bool links_wanted = (flags & kFlagLinks) != 0;
        for (std::size_t k = 0; links_wanted && k < list.entries.size(); ++k) {
            set_address(list.entries[k], static_cast<std::int32_t>(k));
        }
        bytes::Bytes blob = build_hyperlink_list(list);
        PROPSPEC spec{};
        spec.ulKind = PRSPEC_LPWSTR;
        spec.lpwstr = name.data();
        PROPVARIANT value{};
        value.vt = old_value.type();
        value.blob = {static_cast<ULONG>(blob.size()), blob.data()};
        throw_com_result(section_->WriteMultiple(1, &spec, &value, kFirstNewId));
    }

  private:
    void store_id(const LinkRecord& link, NewProperties& added) {
        const bool from_document = state().ids_in_document;
        const bool id_changed = (link.change_status & kLinkIdChanged) != 0;
        if (link.change_status == kLinkUnchanged && !from_document) {
            return;
        }
        if (id_changed && !from_document && link.property_id > 0) {
            // Several uses of a link share their property, which may be gone by now.
            const bool has_property = !deleted_.contains(link.property_id);
            if (b_id64IsClear(&link.link_id) != 0) {
                if (has_property) {
                    delete_property(link.property_id);
                }
                return;
            }
            if (has_property) {
                rename_property(link);
            }
            if (has_property && !link.path_changed()) {
                return;
            }
        }
        add_id(link, added);
    }

    void add_id(const LinkRecord& link, NewProperties& added) const {
        const bool clear = b_id64IsClear(&link.link_id) != 0;
        if (clear && (state().ids_in_document || link.property_id == 0)) {
            return;
        }
        added.add(link_property_name(link), plain_property_name(link),
                  stored_path(link.file_name, copy_path_));
    }

    void delete_property(PROPID id) {
        PROPSPEC spec{};
        spec.ulKind = PRSPEC_PROPID;
        spec.propid = id;
        throw_com_result(section_->DeleteMultiple(1, &spec));
        deleted_.insert(id);
    }

    HRESULT try_to_rename(PROPID id, const std::string& name) {
        WideString wide = wide_from_ansi(name);
        WCHAR* const names = wide.data();
        return section_->WritePropertyNames(1, &id, &names);
    }

    void rename_property(const LinkRecord& link) {
        const HRESULT result = try_to_rename(link.property_id, link_property_name(link));
        if (FAILED(result)) {
            require_machine(result);
            throw_com_result(try_to_rename(link.property_id, plain_property_name(link)));
        }
    }

    void set_address(HyperlinkEntry& entry, std::int32_t ordinal) {
        LinkTable& table = state().links;
        for (const std::uint32_t index : table.uses_of_hyperlink(ordinal)) {
            const LinkRecord& use = table.links()[index];
            if (use.path_changed()) {
                entry.new_address = wide_from_ansi(use.file_name);
                room_.take(sizeof(WCHAR) * entry.new_address->size());
                return;
            }
        }
    }

    PropertySection& section_;
    std::string copy_path_;
    Room room_;
    std::unordered_set<PROPID> deleted_;
};

bool b_anyId() {
    const std::deque<LinkRecord>& links = state().links.links();
    return b_id64IsClear(&state().target_file_id) == 0 ||
           std::any_of(links.begin(), links.end(),
                       [](const LinkRecord& link) { return b_id64IsClear(&link.link_id) == 0; });
}

// Runs one step; its failure ends the step alone, unless memory ran out or the disk failed. A
// status code leaves the document path as error parameter.
template <class Step>
void run(Step step) {
    try {
        step();
    } catch (int failure) {
        if (is_out_of_memory(failure) || is_failed_write(failure)) {
            throw;
        }
        v_setErrorParamText(document_path());
    }
}

} // namespace

std::int32_t j_writeLinkIdsToProperties(IStorage* root, std::int32_t flags) {
    const std::string copy_path = path_of(root);
    PropertySection section;
    try {
        section.open_for_writing(root);
    } catch (int failure) {
        // A stream without the section, and without a place for it, has nothing that could be old.
        if (failure == status::kDamaged && state().keeps_going() && !b_anyId()) {
            return status::kSuccess;
        }
        v_setErrorParamText(document_path());
        return failure;
    }
    PropertyWriter writer(section, copy_path);
    run([&] { writer.write_ids(flags); });
    run([&] { writer.write_hyperlink_list(flags); });
    return j_translateComError(section->Commit(STGC_DEFAULT));
}

} // namespace ppt
