// Reading: the document properties become ids and addresses of the loaded links.
#include "linkid/link_properties.h"

#include "common_new/SafeFunc/paths.h"
#include "common_new/SafeFunc/split_path.h"
#include "common_new/common/conversion.h"
#include "linkid/hyperlink_list.h"
#include "linkid/link_id_tag.h"
#include "linkid/property_section.h"
#include "linkid/stored_path.h"
#include "plugin/document_path.h"
#include "plugin/error_params.h"
#include "plugin/failure.h"
#include "plugin/state.h"
#include "plugin/status.h"
#include "plugin/trace_log.h"
#include "reader/record_types.h"

#include <algorithm>
#include <map>
#include <new>
#include <unordered_map>

namespace ppt {

namespace {

// Matches the values of link id properties to the records of the link table. A value matches every
// record whose file name is the same address, and every record whose path the writer would store as
// that value. Of several properties that match a record the last one counts, so the matches are
// collected first and given to the records in one pass.
class IdMatches {
  public:
    void add(const std::string& value, const std::string& id_text, PROPID property_id) {
        const Match match{++order_, id_text, property_id};
        auto& addresses = has_drive(value) ? with_drive_ : without_drive_;
        addresses[link_address_key(value)] = match;
        stored_[value] = match;
    }

    void give_to_links() {
        if (order_ == 0) {
            return;
        }
        // The uses of an object share its path, and there may be very many of them.
        std::unordered_map<const std::string*, const Match*> by_path;
        for (LinkRecord& link : state().links.links()) {
            const auto [known, is_new] = by_path.try_emplace(&link.file_name.text());
            if (is_new) {
                known->second = last_match(link.file_name);
            }
            if (const Match* match = known->second) {
                v_id64FromStr(&link.link_id, match->id_text.c_str());
                link.property_id = match->property_id;
            }
        }
        *this = IdMatches();
    }

  private:
    struct Match {
        std::size_t order = 0;
        std::string id_text;
        PROPID property_id = 0;
    };
    using Matches = std::map<std::string, Match>;

    static void choose(const Match*& best, const Matches& matches, const std::string& key) {
        const auto found = matches.find(key);
        if (found != matches.end() && (best == nullptr || best->order < found->second.order)) {
            best = &found->second;
        }
    }

    const Match* last_match(const std::string& file_name) const {
        const Match* best = nullptr;
        const std::string_view name = file_name;
        choose(best, with_drive_, link_address_key(name));
        choose(best, without_drive_, link_address_key(has_drive(name) ? name.substr(2) : name));
        if (!stored_.empty()) {
            choose(best, stored_, stored_path(file_name, document_path()));
        }
        return best;
    }

    std::size_t order_ = 0;
    Matches with_drive_;    // by address key, of values with a drive
    Matches without_drive_; // by address key, of values without
    Matches stored_;        // by value
};

bool any_target_is_empty() {
    const std::deque<LinkRecord>& links = state().links.links();
    return std::any_of(links.begin(), links.end(), [](const LinkRecord& link) {
        return link.record_type == RT_ExternalHyperlink && link.file_name.empty();
    });
}

// Fills the target of hyperlinks whose own records carry none. Only the first use of a hyperlink is
// looked at.
void fill_empty_targets(bytes::View value) {
    if (!any_target_is_empty()) {
        return;
    }
    const HyperlinkList list = parse_hyperlink_list(value);
    for (std::size_t k = 0; k < list.entries.size(); ++k) {
        LinkTable& table = state().links;
        const LinkTable::Indexes uses = table.uses_of_hyperlink(static_cast<std::int32_t>(k));
        if (uses.empty() || !table.links()[uses.front()].file_name.empty()) {
            continue;
        }
        const std::string target = ansi_from_wide(list.entries[k].target());
        if (!b_checkLength(target, static_cast<std::int32_t>(kLinkTextLimit))) {
            throw static_cast<int>(status::kTextTooLong);
        }
        table.links()[uses.front()].file_name = target;
    }
}

class PropertyReader {
  public:
    PropertyReader(PropertySection& section, std::int32_t flags)
        : section_(section)
        , flags_(flags) {}

    void read_all() {
        most_bytes_ = kBytesOfAByte * section_.stream_size();
        section_.for_each(
            [this](const PropertySection::Name& name, PROPID id) { return read(name, id); });
        matches_.give_to_links();
    }

  private:
    // What one stored byte can become in a text of the ANSI code page.
    static constexpr std::uint64_t kBytesOfAByte = 3;

    // False ends the enumeration.
    bool read(const PropertySection::Name& full_name, PROPID property_id) {
        const std::string& name = full_name.ansi;
        const bool is_list = name == kHyperlinkListName;
        // Of several properties with the name of the list the first one is read, and that once.
        const bool is_wanted = is_list ? !list_is_read_ : name.starts_with(kTargetFileIdName);
        if (!is_wanted) {
            return true;
        }
        PropertyValue value;
        section_.read(full_name.wide, value);
        count_bytes(value);
        if (is_list) {
            return read_list(value);
        }
        std::string text;
        if (!value.get_text(text)) {
            return true;
        }
        if ((flags_ & kFlagTargetFileId) != 0 && name == kTargetFileIdName) {
            v_id64FromStr(&state().target_file_id, text.c_str());
        } else if ((flags_ & kFlagLinks) != 0 && name.starts_with(kLinkIdTag)) {
            matches_.add(text, name.substr(kLinkIdTag.size()), property_id);
        }
        return true;
    }

    // Ids from the document's own records take precedence over the properties behind the list.
    bool read_list(const PropertyValue& value) {
        list_is_read_ = true;
        if (!value.is_blob()) {
            throw static_cast<int>(status::kNullArgument);
        }
        matches_.give_to_links();
        fill_empty_targets(value.blob());
        return !state().ids_in_document;
    }

    // Properties of a damaged stream may share one large value.
    void count_bytes(const PropertyValue& value) {
        bytes_read_ += value.size();
        if (bytes_read_ > most_bytes_) {
            throw static_cast<int>(status::kDamaged);
        }
    }

    PropertySection& section_;
    std::int32_t flags_;
    IdMatches matches_;
    bool list_is_read_ = false;
    std::uint64_t bytes_read_ = 0;
    std::uint64_t most_bytes_ = 0;
};

// Whether the load ends although it leaves out what is damaged: a disk that cannot be read is no
// damage, but a stream that ends before its size looks like one to the calls that read it.
bool ends_every_load(std::int32_t failure, const PropertySection& section) {
    if (!state().keeps_going() || b_liesInObject(failure)) {
        return false;
    }
    bool is_cut = false;
    if (failure == status::kReadFault) {
        status_or(status::kDamaged, [&] {
            is_cut = section.stream_is_cut();
            return status::kSuccess;
        });
    }
    return !is_cut;
}

} // namespace

std::int32_t j_readLinkIdsFromProperties(IStorage* root, std::int32_t flags) {
    v_logLine("Retrieving linkIDs from Document Properties");
    PropertySection section;
    try {
        if (section.open_for_reading(root)) {
            PropertyReader(section, flags).read_all();
        }
        return status::kSuccess;
    } catch (int failure) {
        if (is_out_of_memory(failure) || ends_every_load(failure, section)) {
            return failure;
        }
        v_setErrorParamText(document_path());
        return status::kPropertiesFailed;
    } catch (const std::bad_alloc&) {
        return status::kOutOfMemory;
    } catch (...) {
        return status::kDamaged;
    }
}

} // namespace ppt
