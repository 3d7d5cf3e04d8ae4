#include "pptlinks/unread_report.h"

#include "pptlinks/messages.h"
#include "pptlinks/number_parameter.h"
#include "pptlinks/output.h"
#include "pptlinks/text_encoding.h"

#include <string_view>

namespace pptlinks {

namespace {

bool is_page(std::string_view kind) {
    return kind == "slide" || kind == "master" || kind == "notes";
}

std::string name_of(const UnreadObject& object) {
    if (object.kind == "properties") {
        return "the document properties";
    }
    const std::string number = std::to_string(object.number);
    if (is_page(object.kind)) {
        return object.number == 0 ? "a part of the " + object.kind + " list"
                                  : object.kind + ' ' + number;
    }
    return "external object " + number + (object.kind == "object" ? "" : " (" + object.kind + ')');
}

} // namespace

Unread unread_from(const std::vector<WideString>& parameters) {
    Unread unread;
    unread.count = number_from<std::size_t>(parameters.empty() ? WideString() : parameters[0]);
    for (std::size_t i = 1; i + 3 <= parameters.size(); i += 3) {
        unread.objects.push_back({number_from<std::int32_t>(parameters[i]),
                                  utf8_from_wide(parameters[i + 1]),
                                  number_from<std::int32_t>(parameters[i + 2])});
    }
    return unread;
}

void complain_of(const Unread& unread, const std::string& file) {
    for (const UnreadObject& object : unread.objects) {
        complain(sentence(FileFailure(
            file, name_of(object) + " could not be read: " + problem_of({object.status, {}}) +
                      " (status " + std::to_string(object.status) + ')')));
    }
    if (unread.count > unread.objects.size()) {
        complain(sentence(FileFailure(file, std::to_string(unread.count - unread.objects.size()) +
                                                " more objects could not be read")));
    }
}

std::string summary_of(const Unread& unread) {
    if (unread.count == 0) {
        return {};
    }
    return ", " + std::to_string(unread.count) + (unread.count == 1 ? " object" : " objects") +
           " could not be read";
}

} // namespace pptlinks
