#include "pptlinks/listing.h"

#include "pptlinks/file_names.h"
#include "pptlinks/json_output.h"
#include "pptlinks/messages.h"
#include "pptlinks/output.h"

namespace pptlinks {

namespace {

void tell_of_failure(const StatusFailure& failure, const std::string& file, bool json) {
    complain(sentence(failure, {file, {}}));
    std::string out;
    if (json) {
        append_json_head(out, {file, failure.status, {}, std::nullopt});
        append_json_end(out);
    }
    print(out);
}

} // namespace

std::unique_ptr<LoadedPresentation> load_to_list(const Session& session, const std::string& file,
                                                 const std::string& name, bool json) {
    try {
        auto presentation = std::make_unique<LoadedPresentation>(session, file_name(name).ansi);
        complain_of(presentation->unread(), file);
        for (std::int32_t i = 0; i < presentation->link_count(); ++i) {
            static_cast<void>(presentation->link(i));
        }
        return presentation;
    } catch (const StatusFailure& failure) {
        tell_of_failure(failure, file, json);
        return nullptr;
    }
}

std::string counted(std::size_t count, const std::string& noun) {
    return std::to_string(count) + ' ' + noun + (count == 1 ? "" : "s");
}

} // namespace pptlinks
