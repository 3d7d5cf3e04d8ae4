#include "linkid/link_properties.h"

#include "common_new/common/conversion.h"
#include "common_new/common/storage.h"
#include "linkid/hyperlink_list.h"
#include "linkid/link_id_tag.h"
#include "linkid/property_section.h"
#include "linkid/stored_path.h"
#include "plugin/document_path.h"
#include "plugin/error_params.h"
#include "plugin/state.h"
#include "plugin/status.h"

#include <array>
#include <deque>
#include <vector>

namespace ppt {

namespace {

using WideString = std::basic_string<WCHAR>;
constexpr PROPID kFirstNewId = 2;

// The failures of the section's own calls are raised with the COM result itself.
void throw_com_result(HRESULT result) {
    if (FAILED(result)) {
        throw static_cast<int>(result);
    }
}

std::string path_of(IStorage* root) {
    STATSTG stat{};
    const std::int32_t status = j_translateComError(root->Stat(&stat, STATFLAG_DEFAULT));
    if (status != status::kSuccess) {
        throw static_cast<int>(status);
    }
    std::array<char, kLinkTextLimit> path{};
    const std::int32_t converted =
        j_wideToAnsi(stat.pwcsName, -1, path.data(), static_cast<std::int32_t>(path.size()));
    CoTaskMemFree(stat.pwcsName);
    if (converted != status::kSuccess) {
        throw static_cast<int>(converted);
    }
    return path.data();
}

// The properties to be written, all in one call.
class NewProperties {
  public:
    void add(const std::string& name, const std::string& value) {
        names_.push_back(wide_from_ansi(name));
        values_.push_back(wide_from_ansi(value));
        PROPSPEC spec{};
        spec.ulKind = PRSPEC_LPWSTR;
        spec.lpwstr = names_.back().data();
        specs_.push_back(spec);
        PROPVARIANT variant{};
        variant.vt = VT_LPWSTR;
        variant.pwszVal = values_.back().data();
        variants_.push_back(variant);
    }

    void write_to(PropertySection& section) const {
        if (!specs_.empty()) {
            throw_com_result(section->WriteMultiple(static_cast<ULONG>(specs_.size()), specs_.data(),
                                                    variants_.data(), kFirstNewId));
        }
    }

  private:
    std::deque<WideString> names_; // a deque: the specs point into it
    std::deque<WideString> values_;
    std::vector<PROPSPEC> specs_;
    std::vector<PROPVARIANT> variants_;
};

class PropertyWriter {
  public:
    PropertyWriter(PropertySection& section, std::string copy_path)
        : section_(section), copy_path_(std::move(copy_path)) {}

    void write_ids(std::int32_t flags) {
        const bool from_document = state().ids_in_document;
        NewProperties added;
        if ((flags & kFlagLinks) != 0 || from_document) {
            for (const LinkRecord& link : state().links.links()) {
                store_id(link, added);
            }
        }
        if ((flags & kFlagTargetFileId) != 0 || from_document) {
            added.add(std::string(kTargetFileIdName), id_text(state().target_file_id));
        }
        throw_com_result(section_->Commit(STGC_DEFAULT));
        added.write_to(section_);
    }

    // Every hyperlink whose path changed gets it as its address; the others keep theirs unit for
    // unit.
    void write_hyperlink_list() {
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
        for (std::size_t k = 0; k < list.entries.size(); ++k) {
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
            if (b_id64IsClear(&link.link_id) != 0) {
                delete_property(link.property_id);
                return;
            }
            rename_property(link.property_id, link_property_name(link));
            if (!link.path_changed()) {
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
        added.add(link_property_name(link), stored_path(link.file_name, copy_path_));
    }

    void delete_property(PROPID id) {
        PROPSPEC spec{};
        spec.ulKind = PRSPEC_PROPID;
        spec.propid = id;
        throw_com_result(section_->DeleteMultiple(1, &spec));
    }

    void rename_property(PROPID id, const std::string& name) {
        const WideString wide = wide_from_ansi(name);
        const WCHAR* names = wide.c_str();
        throw_com_result(section_->WritePropertyNames(1, &id, &names));
    }

    static void set_address(HyperlinkEntry& entry, std::int32_t ordinal) {
        for (const LinkRecord* use : state().links.uses_of_hyperlink(ordinal)) {
            if (use->path_changed()) {
                entry.address = wide_from_ansi(use->file_name);
                entry.address.push_back(0);
                return;
            }
        }
    }

    PropertySection& section_;
    std::string copy_path_;
};

// Runs one step; its failure ends the step alone. A status code leaves the document path as error
// parameter.
template <class Step>
void run(Step step) {
    try {
        step();
    } catch (int) {
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
        v_setErrorParamText(document_path());
        return failure;
    }
    PropertyWriter writer(section, copy_path);
    run([&] { writer.write_ids(flags); });
    run([&] { writer.write_hyperlink_list(); });
    return j_translateComError(section->Commit(STGC_DEFAULT));
}

} // namespace ppt
