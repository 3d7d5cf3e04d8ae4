#include "plugin/document_path.h"

namespace ppt {

namespace {

std::string& stored_path() {
    static std::string path;
    return path;
}

} // namespace

const std::string& document_path() {
    return stored_path();
}

void set_document_path(std::string_view path) {
    stored_path() = path;
}

} // namespace ppt
