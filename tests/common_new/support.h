// What the tests of the common library share: the error parameters as texts, an ANSI code page for
// one test, and a folder of its own.
#pragma once

#include "platform/platform.h"
#include "platform/posix/settings.h"
#include "plugin/document_path.h"
#include "plugin/error_params.h"
#include "tests/support/temporary_folder.h"

#include <array>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>
#include <vector>

namespace ppt::test {

using Texts = std::vector<std::string>;

// The current error parameters in UTF-8; empty when there are none.
inline Texts error_params() {
    const ErrorParamArray& array = *error_param_array();
    if (array.text == nullptr) {
        return {};
    }
    std::vector<char> utf8(static_cast<std::size_t>(array.capacity) * 3 + 1);
    WideCharToMultiByte(CP_UTF8, 0, array.text, -1, utf8.data(), static_cast<int>(utf8.size()),
                        nullptr, nullptr);
    Texts texts(1);
    for (const char* at = utf8.data(); *at != 0; ++at) {
        if (*at == static_cast<char>(kErrorParamSeparator)) {
            texts.emplace_back();
        } else {
            texts.back() += *at;
        }
    }
    return texts;
}

// Makes "the parameters stayed as they were" visible.
inline void mark_error_params() {
    v_setErrorParamText("as before");
}
inline const Texts kUnchanged = {"as before"};

inline std::string user_name() {
    std::array<char, UNLEN + 1> name{};
    DWORD size = static_cast<DWORD>(name.size());
    return GetUserNameA(name.data(), &size) != FALSE ? name.data() : "";
}

// The status code that `call` throws; 0 when it throws none.
template <class Call>
int thrown_by(Call call) {
    try {
        call();
    } catch (int status) {
        return status;
    }
    return 0;
}

class CodePage {
  public:
    explicit CodePage(UINT page)
        : before_(GetACP())
        , known_(platform::set_ansi_code_page(page)) {}
    ~CodePage() { platform::set_ansi_code_page(before_); }
    CodePage(const CodePage&) = delete;
    CodePage& operator=(const CodePage&) = delete;

    bool known() const { return known_; }

  private:
    UINT before_;
    bool known_;
};

class DocumentPath {
  public:
    explicit DocumentPath(std::string_view path) { set_document_path(path); }
    ~DocumentPath() { set_document_path(""); }
    DocumentPath(const DocumentPath&) = delete;
    DocumentPath& operator=(const DocumentPath&) = delete;
};

class TempFolder {
  public:
    explicit TempFolder(std::filesystem::path path = make_temporary_folder("common_new"))
        : path_(std::move(path)) {}
    ~TempFolder() { remove_folder(path_); }
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;

    std::string path() const { return path_.string(); }
    std::string file(const std::string& name) const { return (path_ / name).string(); }

    std::string write(const std::string& name, std::string_view content) const {
        std::ofstream(file(name), std::ios::binary) << content;
        return file(name);
    }
    std::string read(const std::string& name) const {
        std::ifstream in(file(name), std::ios::binary);
        return {std::istreambuf_iterator<char>(in), {}};
    }

  private:
    std::filesystem::path path_;
};

} // namespace ppt::test
