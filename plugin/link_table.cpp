#include "plugin/link_table.h"

#include "plugin/error_params.h"
#include "plugin/state.h"
#include "plugin/status.h"
#include "plugin/trace_log.h"
#include "reader/record_types.h"

#include <algorithm>

namespace ppt {

namespace {

template <class Field>
void sort_by(std::vector<LinkRecord*>& links, Field LinkRecord::*field) {
    std::stable_sort(links.begin(), links.end(), [field](const LinkRecord* a, const LinkRecord* b) {
        return a->*field < b->*field;
    });
}

// The stretch of links whose field has the value.
template <class Field>
std::span<LinkRecord* const> with(const std::vector<LinkRecord*>& links, Field LinkRecord::*field,
                                  Field value) {
    const auto begin = std::lower_bound(
        links.begin(), links.end(), value,
        [field](const LinkRecord* link, Field wanted) { return link->*field < wanted; });
    const auto end =
        std::upper_bound(begin, links.end(), value, [field](Field wanted, const LinkRecord* link) {
            return wanted < link->*field;
        });
    return {begin, end};
}

} // namespace

LinkRecord& LinkTable::append_link(const LinkRecord& record) {
    indexed_ = false;
    links_.push_back(record);
    links_.back().table_index = links_.size() - 1;
    return links_.back();
}

void LinkTable::append_external_object(const LinkRecord& record) {
    external_objects_.push_back(record);
    LinkRecord& added = external_objects_.back();
    added.table_index = external_objects_.size() - 1;
    const auto [first, is_first] = object_by_id_.try_emplace(added.external_object_id, &added);
    if (!is_first && first->second->record_type != added.record_type) {
        later_object_.try_emplace({added.record_type, added.external_object_id}, &added);
    }
}

void LinkTable::clear() {
    *this = LinkTable();
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
    const auto later = later_object_.find({record_type, external_object_id});
    return later == later_object_.end() ? nullptr : later->second;
}

void LinkTable::build_indexes() {
    if (indexed_) {
        return;
    }
    by_holder_.clear();
    hyperlinks_by_ordinal_.clear();
    of_document_.clear();
    for (LinkRecord& link : links_) {
        by_holder_.push_back(&link);
        const bool hyperlink = link.record_type == RT_ExternalHyperlink;
        if (hyperlink) {
            hyperlinks_by_ordinal_.push_back(&link);
        }
        if (hyperlink || link.holder_persist_id == document_persist_id_) {
            of_document_.push_back(&link);
        }
    }
    by_object_ordinal_ = by_holder_;
    sort_by(by_holder_, &LinkRecord::holder_persist_id);
    sort_by(by_object_ordinal_, &LinkRecord::object_list_ordinal);
    sort_by(hyperlinks_by_ordinal_, &LinkRecord::hyperlink_ordinal);
    indexed_ = true;
}

LinkRecord* LinkTable::next_of_holder(std::uint32_t persist_id, bool only_changed,
                                      const LinkRecord* after) {
    build_indexes();
    const std::span<LinkRecord* const> held =
        persist_id == document_persist_id_
            ? std::span<LinkRecord* const>(of_document_)
            : with(by_holder_, &LinkRecord::holder_persist_id, persist_id);
    auto next = held.begin();
    if (after != nullptr) {
        next = std::upper_bound(
            held.begin(), held.end(), after->table_index,
            [](std::size_t index, const LinkRecord* link) { return index < link->table_index; });
    }
    if (only_changed) {
        next = std::find_if(next, held.end(),
                            [](const LinkRecord* link) { return link->path_changed(); });
    }
    return next == held.end() ? nullptr : *next;
}

std::span<LinkRecord* const> LinkTable::uses_of_object(std::int32_t object_list_ordinal) {
    build_indexes();
    return with(by_object_ordinal_, &LinkRecord::object_list_ordinal, object_list_ordinal);
}

std::span<LinkRecord* const> LinkTable::uses_of_hyperlink(std::int32_t hyperlink_ordinal) {
    build_indexes();
    return with(hyperlinks_by_ordinal_, &LinkRecord::hyperlink_ordinal, hyperlink_ordinal);
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
    link_template->initial_file_name = path;
    link_template->change_status = kLinkUnchanged;
    link_template->property_id = 0;
    v_id64Set(&link_template->link_id, 1);
    link_template->hyperlink_text.clear();
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
    for (LinkRecord* use : state().links.uses_of_object(object_list_ordinal)) {
        if (use->path_changed()) {
            return use;
        }
    }
    return nullptr;
}

} // namespace ppt
