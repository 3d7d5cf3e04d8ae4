#include "pptlinks/json_output.h"

#include "pptlinks/terminal_text.h"
#include "pptlinks/text_encoding.h"

#include <nlohmann/json.hpp>

#include <cstdio>

namespace pptlinks {

namespace {

using Json = nlohmann::ordered_json;

// The JSON text with escapes for what a terminal would act upon; those below U+0020 have theirs.
std::string escaped(const std::string& json) {
    const WideString text = wide_from_utf8(json);
    std::string out;
    out.reserve(json.size());
    for (std::size_t position = 0; position < text.size();) {
        const std::size_t start = position;
        const std::uint32_t code = take_character(text, position);
        const WideView units = WideView(text).substr(start, position - start);
        if (is_printable(code)) {
            out += utf8_from_wide(units);
            continue;
        }
        for (const WCHAR unit : units) {
            char escape[8];
            std::snprintf(escape, sizeof escape, "\\u%04x", static_cast<unsigned>(unit));
            out += escape;
        }
    }
    return out;
}

std::string dump(const Json& value) {
    return escaped(value.dump(-1, ' ', false, Json::error_handler_t::replace));
}

std::string utf8(const std::string& ansi) {
    return utf8_from_wide(wide_from_ansi(ansi));
}

Json text_or_null(const std::optional<std::string>& text) {
    return text ? Json(*text) : Json(nullptr);
}

Json link_object(const Link& link, std::size_t index) {
    return {{"index", index},          {"kind", name_of(link.kind)},  {"page", link.page},
            {"path", utf8(link.path)}, {"id", text_or_null(link.id)}, {"text", utf8(link.text)}};
}

void add_target(Json& link, const Target& target) {
    link["target"] = name_of(target.state);
    link["found"] = target.state == TargetState::found ? Json(utf8(target.found)) : Json(nullptr);
}

std::string dump(const Unread& unread) {
    Json objects = Json::array();
    for (const UnreadObject& object : unread.objects) {
        objects.push_back(
            {{"object", object.kind}, {"number", object.number}, {"status", object.status}});
    }
    return std::to_string(unread.count) + ",\"unread_objects\":" + dump(objects);
}

} // namespace

void append_json_head(std::string& out, const JsonHead& head) {
    out += "{\"file\":" + dump(head.file);
    out += ",\"status\":" + std::to_string(head.status);
    out += ",\"unread\":" + dump(head.unread);
    out += ",\"target_file_id\":" + dump(text_or_null(head.target_file_id));
    out += ",\"links\":[";
}

void append_json_link(std::string& out, const Link& link, std::size_t index, const Target* target) {
    if (index > 0) {
        out.push_back(',');
    }
    Json object = link_object(link, index);
    if (target != nullptr) {
        add_target(object, *target);
    }
    out += dump(object);
}

void append_json_end(std::string& out) {
    out += "]}\n";
}

} // namespace pptlinks
