#include "pptlinks/output_file.h"

#include "common_new/SafeFunc/paths.h"
#include "pptlinks/failure.h"
#include "pptlinks/machine.h"

#include <filesystem>
#include <utility>

namespace pptlinks {

namespace {

constexpr const char* kTemporaryName = ".pptlinks-XXXXXX"; // for create_temporary_file

std::string reason(const std::error_code& error) {
    return " (" + error.message() + ")";
}

// The file that OUT names through symbolic links, if there are any. A Windows path stays as it is:
// the plug-in knows the copy by its folder there.
FileName follow_links(FileName out) {
    std::error_code missing;
    if (!std::filesystem::is_symlink(fs_path(out.native), missing)) {
        return out;
    }
    const std::filesystem::path target = std::filesystem::canonical(fs_path(out.native), missing);
    if (missing) {
        throw FileFailure(out.typed, "this is a symbolic link that leads to nothing; remove it or "
                                     "choose another name");
    }
    if (!out.is_windows_path) {
        out.native = native_name(target);
    }
    return out;
}

} // namespace

OutputFile::OutputFile(const FileName& source, const FileName& out)
    : out_(follow_links(out)) {
    // The plug-in finds the source as Windows does, whatever the letter case and the separators.
    if (is_same_file(native_path(source.ansi), out_.native)) {
        fail("this is the presentation itself, which is never written; give the copy another name");
    }
    require_folder();
    look_at_old_file();
}

OutputFile::~OutputFile() {
    if (exists_) {
        remove_temporary_file(temporary_.native);
    }
}

void OutputFile::fail(const std::string& problem) const {
    throw FileFailure(out_.typed, problem);
}

void OutputFile::require_folder() const {
    if (out_.native.empty()) {
        fail("its drive or share is not known; name it with --drive");
    }
    std::error_code error;
    const std::filesystem::path folder = fs_path(out_.native).parent_path();
    if (!std::filesystem::is_directory(folder, error)) {
        fail("its folder does not exist; create the folder or choose another");
    }
}

void OutputFile::look_at_old_file() const {
    std::error_code error;
    const std::filesystem::file_status old = std::filesystem::status(fs_path(out_.native), error);
    if (!std::filesystem::exists(old)) {
        return;
    }
    if (std::filesystem::is_directory(old)) {
        fail("this is a folder; give the name of a file in it");
    }
    if (!std::filesystem::is_regular_file(old)) {
        fail("this is not a plain file; choose another name");
    }
    if (!is_writable(out_.native)) {
        fail("the file that is there may not be replaced; remove its write protection or choose "
             "another name");
    }
}

bool OutputFile::is_beside(const FileName& file) const {
    return ppt::ascii_lower(folder_as_named(file)) == ppt::ascii_lower(folder_as_named(out_));
}

const std::string& OutputFile::create() {
    std::string path = beside(out_, kTemporaryName).native;
    if (const std::error_code error = create_temporary_file(path)) {
        fail("no file can be created in its folder" + reason(error) +
             "; check the folder's permissions and the free space");
    }
    temporary_.native = path;
    exists_ = true;
    temporary_ = beside(out_, native_name(fs_path(path).filename()));
    return temporary_.ansi;
}

void OutputFile::publish() {
    if (const std::error_code error = finish_temporary_file(temporary_.native, out_.native)) {
        fail("the copy could not be finished" + reason(error) + "; check the disk and try again");
    }
    if (const std::error_code error = rename_temporary_file(temporary_.native, out_.native)) {
        fail("the finished copy could not be given this name" + reason(error) +
             "; choose another name");
    }
    exists_ = false;
}

} // namespace pptlinks
