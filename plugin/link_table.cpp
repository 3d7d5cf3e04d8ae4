#include "plugin/link_table.h"

#include "plugin/error_params.h"
#include "plugin/state.h"
#include "plugin/status.h"
#include "plugin/trace_log.h"
#include "reader/record_types.h"

#include <algorithm>

namespace ppt {

namespace {

const std::vector<LinkRecord*>& uses_at(const std::map<std::int32_t, std::vector<LinkRecord*>>& map,
                                        std::int32_t ordinal) {
    static const std::vector<LinkRecord*> none;
    const auto found = map.find(ordinal);
    return found == map.end() ? none : found->second;
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
    object_by_id_.try_emplace(added.external_object_id, &added);
    object_by_type_and_id_.try_emplace({added.record_type, added.external_object_id}, &added);
}

void LinkTable::clear() { *this = LinkTable(); }

LinkRecord* LinkTable::at(std::int32_t index) {
    if (index < 0 || static_cast<std::size_t>(index) >= links_.size()) {
        return nullptr;
    }
    return &links_[static_cast<std::size_t>(index)];
}

LinkRecord* LinkTable::find_external_object(std::uint32_t record_type,
                                            std::uint32_t external_object_id) {
    if (record_type == 0) {
        const auto found = object_by_id_.find(external_object_id);
        return found == object_by_id_.end() ? nullptr : found->second;
    }
    const auto found = object_by_type_and_id_.find({record_type, external_object_id});
    return found == object_by_type_and_id_.end() ? nullptr : found->second;
}

void LinkTable::build_indexes() {
    if (indexed_) {
        return;
    }
    by_holder_.clear();
    by_object_ordinal_.clear();
    by_hyperlink_ordinal_.clear();
    for (LinkRecord& link : links_) {
        by_holder_[link.holder_persist_id].push_back(&link);
        const bool hyperlink = link.record_type == RT_ExternalHyperlink;
        if (hyperlink && link.holder_persist_id != document_persist_id_) {
            by_holder_[document_persist_id_].push_back(&link);
        }
        by_object_ordinal_[link.object_list_ordinal].push_back(&link);
        if (hyperlink) {
            by_hyperlink_ordinal_[link.hyperlink_ordinal].push_back(&link);
        }
    }
    indexed_ = true;
}

LinkRecord* LinkTable::next_of_holder(std::uint32_t persist_id, bool only_changed,
                                      const LinkRecord* after) {
    build_indexes();
    const auto holder = by_holder_.find(persist_id);
    if (holder == by_holder_.end()) {
        return nullptr;
    }
    const std::vector<LinkRecord*>& held = holder->second;
    auto next = held.begin();
    if (after != nullptr) {
        next = std::upper_bound(held.begin(), held.end(), after->table_index,
                                [](std::size_t index, const LinkRecord* link) {
                                    return index < link->table_index;
                                });
    }
    if (only_changed) {
        next = std::find_if(next, held.end(),
                            [](const LinkRecord* link) { return link->path_changed(); });
    }
    return next == held.end() ? nullptr : *next;
}

const std::vector<LinkRecord*>& LinkTable::uses_of_object(std::int32_t object_list_ordinal) {
    build_indexes();
    return uses_at(by_object_ordinal_, object_list_ordinal);
}

const std::vector<LinkRecord*>& LinkTable::uses_of_hyperlink(std::int32_t hyperlink_ordinal) {
    build_indexes();
    return uses_at(by_hyperlink_ordinal_, hyperlink_ordinal);
}

LinkRecord* ps_addLinkRecord(LinkRecord* link_template) {
    if (link_template == nullptr) {
        throw static_cast<int>(status::kNullArgument);
    }
    const std::string& path = link_template->file_name;
    if (!path.empty()) {
        v_logLine("Adding link to file %s\n", path.c_str());
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
