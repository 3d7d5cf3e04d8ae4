#include "plugin/unread_objects.h"

#include "plugin/error_params.h"
#include "plugin/status.h"

#include <string>

namespace ppt {

namespace {

void append(std::basic_string<WCHAR>& text, std::string_view item) {
    text.insert(text.end(), item.begin(), item.end());
}

} // namespace

std::string_view name_of(UnreadKind kind) {
    constexpr std::string_view kNames[] = {"slide", "master", "notes", "hyperlink", "ole",
                                           "movie", "midi",   "sound", "object",    "properties"};
    return kNames[static_cast<std::size_t>(kind)];
}

void UnreadObjects::add(const UnreadObject& object) {
    ++count_;
    if (named_.size() < kMostUnreadNamed) {
        named_.push_back(object);
    }
}

bool b_liesInObject(std::int32_t status) {
    switch (status) {
    case status::kReadFault:
    case status::kDeviceNotReady:
    case status::kTooManyOpenFiles:
    case status::kOutOfMemory:
    case status::kSystemOutOfMemory:
        return false;
    default:
        return true;
    }
}

void v_setErrorParamUnread(const UnreadObjects& unread) {
    std::basic_string<WCHAR> text;
    append(text, std::to_string(unread.count()));
    for (const UnreadObject& object : unread.named()) {
        text.push_back(kErrorParamSeparator);
        append(text, std::to_string(object.status));
        text.push_back(kErrorParamSeparator);
        append(text, name_of(object.kind));
        text.push_back(kErrorParamSeparator);
        append(text, std::to_string(object.number));
    }
    v_setErrorParamWideText(text);
}

} // namespace ppt
