#include "plugin/link_table.h"

#include "plugin/error_params.h"
#include "plugin/state.h"
#include "plugin/status.h"
#include "plugin/trace_log.h"
#include "reader/record_types.h"

#include <algorithm>
#include <type_traits>
#include <utility>

namespace ppt {

namespace {

// The least that a link takes in the document stream: a reference to an external object.
constexpr std::uint64_t kSmallestLink = 12;
// A small presentation may name a page twice.
constexpr std::uint64_t kUsualText = std::uint64_t{1} << 20;

std::uint64_t type_and_id(const LinkRecord& object) {
    return std::uint64_t{object.record_type} << 32 | object.external_object_id;
}

// Empties a container and frees its room too.
template <class Container>
void give_back(Container& container) noexcept {
    static_assert(std::is_nothrow_default_constructible_v<Container>);
    Container().swap(container);
}

} // namespace

void LinkTable::set_stream_size(std::uint64_t bytes) {
    most_links_ =
        static_cast<std::size_t>(std::min<std::uint64_t>(bytes / kSmallestLink, kMostLinks));
    most_text_ = bytes + kUsualText;
}

void LinkTable::count_text(std::size_t bytes) {
    text_ += bytes;
    if (text_ > most_text_) {
        throw static_cast<int>(status::kDamaged);
    }
}

LinkRecord& LinkTable::append_link(const LinkRecord& record) {
    if (links_.size() >= most_links_) {
        throw static_cast<int>(status::kDamaged);
    }
    forget_indexes();
    links_.push_back(record);
    links_.back().table_index = static_cast<std::uint32_t>(links_.size() - 1);
    return links_.back();
}

void LinkTable::append_external_object(const LinkRecord& record) {
    const auto first = object_by_id_.find(record.external_object_id);
    const bool id_is_taken = first != object_by_id_.end();
    if (id_is_taken && (first->second->record_type == record.record_type ||
                        later_object_.contains(type_and_id(record)))) {
        return;
    }
    external_objects_.push_back(record);
    LinkRecord& added = external_objects_.back();
    added.table_index = static_cast<std::uint32_t>(external_objects_.size() - 1);
    if (id_is_taken) {
        later_object_.emplace(type_and_id(added), &added);
    } else {
        object_by_id_.emplace(added.external_object_id, &added);
    }
}

void LinkTable::cut_links(std::size_t count) {
    forget_indexes();
    links_.resize(std::min(count, links_.size()));
}

void LinkTable::forget_indexes() {
    for (Index* index : {&by_holder_, &by_object_ordinal_, &hyperlinks_by_ordinal_}) {
        index->is_built = false;
    }
}

void LinkTable::clear() noexcept {
    // Not `*this = LinkTable()`: a new deque allocates.
    links_.clear();
    external_objects_.clear();
    give_back(paths_);
    give_back(object_by_id_);
    give_back(later_object_);
    for (Index* index : {&by_holder_, &by_object_ordinal_, &hyperlinks_by_ordinal_}) {
        give_back(index->order);
        index->is_built = false;
    }
    most_links_ = kMostLinks;
    most_text_ = kNoTextLimit;
    text_ = 0;
    document_persist_id_ = 0;
}

LinkPath LinkTable::shared_path(const std::string& path) {
    return paths_.try_emplace(path, path).first->second;
}

LinkRecord* LinkTable::at(std::int32_t index) {
    if (index < 0 || static_cast<std::size_t>(index) >= links_.size()) {
        return nullptr;
    }
    return &links_[static_cast<std::size_t>(index)];
}

LinkRecord* LinkTable::find_external_object(std::uint32_t record_type,
                                            std::uint32_t external_object_id) {
    const auto first = object_by_id_.find(external_object_id);
    if (first == object_by_id_.end()) {
        return nullptr;
    }
    if (record_type == 0 || first->second->record_type == record_type) {
        return first->second;
    }
    const auto later = later_object_.find(std::uint64_t{record_type} << 32 | external_object_id);
    return later == later_object_.end() ? nullptr : later->second;
}

// The stretch of the index whose links have the value; builds the index when it is asked first.
template <class Field>
LinkTable::Indexes LinkTable::with(Index& index, Field LinkRecord::*field, Field value,
                                   bool only_hyperlinks) {
    std::vector<std::uint32_t>& order = index.order;
    const auto field_of = [this, field](std::uint32_t at) { return links_[at].*field; };
    if (!index.is_built) {
        const auto is_listed = [only_hyperlinks](const LinkRecord& link) {
            return !only_hyperlinks || link.record_type == RT_ExternalHyperlink;
        };
        order.clear();
        order.reserve(
            static_cast<std::size_t>(std::count_if(links_.begin(), links_.end(), is_listed)));
        for (const LinkRecord& link : links_) {
            if (is_listed(link)) {
                order.push_back(link.table_index);
            }
        }
        std::sort(order.begin(), order.end(), [&](std::uint32_t a, std::uint32_t b) {
            return std::pair(field_of(a), a) < std::pair(field_of(b), b);
        });
        index.is_built = true;
    }
    const auto begin =
        std::lower_bound(order.begin(), order.end(), value,
                         [&](std::uint32_t at, Field wanted) { return field_of(at) < wanted; });
    const auto end =
        std::upper_bound(begin, order.end(), value,
                         [&](Field wanted, std::uint32_t at) { return wanted < field_of(at); });
    return {begin, end};
}

bool LinkTable::is_of_document(const LinkRecord& link) const {
    return link.record_type == RT_ExternalHyperlink ||
           link.holder_persist_id == document_persist_id_;
}

LinkRecord* LinkTable::next_of_holder(std::uint32_t persist_id, bool only_changed,
                                      const LinkRecord* after) {
    const std::uint32_t first = after == nullptr ? 0 : after->table_index + 1;
    const auto is_asked_for = [only_changed](const LinkRecord& link) {
        return !only_changed || link.path_changed();
    };
    if (persist_id == document_persist_id_) {
        const auto next = std::find_if(
            links_.begin() + std::min<std::ptrdiff_t>(first, std::ssize(links_)), links_.end(),
            [&](const LinkRecord& link) { return is_of_document(link) && is_asked_for(link); });
        return next == links_.end() ? nullptr : &*next;
    }
    const Indexes held = with(by_holder_, &LinkRecord::holder_persist_id, persist_id);
    const auto next = std::find_if(std::lower_bound(held.begin(), held.end(), first), held.end(),
                                   [&](std::uint32_t at) { return is_asked_for(links_[at]); });
    return next == held.end() ? nullptr : &links_[*next];
}

LinkTable::Indexes LinkTable::uses_of_object(std::int32_t object_list_ordinal) {
    return with(by_object_ordinal_, &LinkRecord::object_list_ordinal, object_list_ordinal);
}

LinkTable::Indexes LinkTable::uses_of_hyperlink(std::int32_t hyperlink_ordinal) {
    return with(hyperlinks_by_ordinal_, &LinkRecord::hyperlink_ordinal, hyperlink_ordinal, true);
}

LinkRecord* ps_addLinkRecord(LinkRecord* link_template) {
    if (link_template == nullptr) {
        throw static_cast<int>(status::kNullArgument);
    }
    const std::string& path = link_template->file_name;
    if (!path.empty()) {
        v_logLine("Adding link to file ", path);
    }
    if (path.size() >= kLinkTextLimit) {
        v_setErrorParamTextAndNumber(path.c_str(), kLinkTextLimit);
        throw static_cast<int>(status::kTextTooLong);
    }
    link_template->initial_file_name = link_template->file_name;
    link_template->change_status = kLinkUnchanged;
    link_template->property_id = 0;
    v_id64Set(&link_template->link_id, 1);
    link_template->box_text = {};
    return &state().links.append_link(*link_template);
}

void v_addExternalObject(LinkRecord* link_template) {
    link_template->change_status = kLinkUnchanged;
    link_template->slide_index = -1;
    link_template->number_on_slide = -1;
    state().links.append_external_object(*link_template);
}

LinkRecord* ps_findExternalObject(std::uint32_t record_type, std::uint32_t external_object_id) {
    return state().links.find_external_object(record_type, external_object_id);
}

LinkRecord* ps_nextLinkOfHolder(std::uint32_t persist_id, bool only_changed,
                                const LinkRecord* after) {
    return state().links.next_of_holder(persist_id, only_changed, after);
}

LinkRecord* ps_findChangedLinkByOrdinal(std::int32_t object_list_ordinal) {
    LinkTable& table = state().links;
    for (const std::uint32_t use : table.uses_of_object(object_list_ordinal)) {
        if (table.links()[use].path_changed()) {
            return &table.links()[use];
        }
    }
    return nullptr;
}

} // namespace ppt
