// See record_finder.h. The walks keep their own stack, so that no depth of nesting matters.
#include "tests/support/record_finder.h"

#include <algorithm>
#include <stdexcept>

namespace presentation_builder {

RecordAt record_at(View stream, std::size_t offset) {
    bytes::Cursor cursor(stream);
    cursor.seek(offset);
    const std::uint16_t version_and_instance = cursor.u16();
    RecordAt record;
    record.offset = offset;
    record.version = version_and_instance & 0xF;
    record.instance = static_cast<std::uint16_t>(version_and_instance >> 4);
    record.type = cursor.u16();
    record.length = cursor.u32();
    if (!cursor.ok() || record.length > cursor.remaining()) {
        throw std::out_of_range("record at " + std::to_string(offset) + " of a stream of " +
                                std::to_string(stream.size()));
    }
    return record;
}

std::vector<RecordAt> children_of(View stream, const RecordAt& parent) {
    std::vector<RecordAt> children;
    for (std::size_t at = parent.body(); parent.is_container() && at < parent.end();) {
        children.push_back(record_at(stream, at));
        at = children.back().end();
    }
    return children;
}

RecordAt find_record(View stream, std::size_t offset, std::initializer_list<Step> path) {
    RecordAt found = record_at(stream, offset);
    for (const Step step : path) {
        std::vector<RecordAt> children = children_of(stream, found);
        std::erase_if(children, [&](const RecordAt& child) { return child.type != step.type; });
        found = children.at(step.nth);
    }
    return found;
}

std::vector<RecordAt> find_all(View stream, std::size_t offset, std::uint16_t type) {
    std::vector<RecordAt> found;
    std::vector<RecordAt> open{record_at(stream, offset)};
    while (!open.empty()) {
        const RecordAt record = open.back();
        open.pop_back();
        if (record.type == type) {
            found.push_back(record);
        }
        const std::vector<RecordAt> children = children_of(stream, record);
        open.insert(open.end(), children.rbegin(), children.rend());
    }
    return found;
}

std::vector<std::string> structure_faults(View stream, std::size_t offset) {
    std::vector<std::string> faults;
    std::vector<RecordAt> open{record_at(stream, offset)};
    while (!open.empty()) {
        const RecordAt record = open.back();
        open.pop_back();
        try {
            const std::vector<RecordAt> children = children_of(stream.first(record.end()), record);
            open.insert(open.end(), children.begin(), children.end());
        } catch (const std::out_of_range&) {
            faults.push_back("container of type " + std::to_string(record.type) + " at " +
                             std::to_string(record.offset) + " ends at " +
                             std::to_string(record.end()) + ", inside its last child");
        }
    }
    return faults;
}

} // namespace presentation_builder
