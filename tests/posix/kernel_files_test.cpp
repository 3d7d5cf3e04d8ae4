// Attributes and copies of files, and the error numbers of what goes wrong.
#include "tests/posix/kernel_fixture.h"

#include "platform/posix/errno_table.h"
#include "platform/posix/file_handle.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>

namespace {

using platform::FileHandle;

class Files : public posix_test::KernelFixture {
  protected:
    static DWORD attributes_error(const std::string& path) {
        SetLastError(NO_ERROR);
        return GetFileAttributesA(path.c_str()) == INVALID_FILE_ATTRIBUTES ? GetLastError()
                                                                           : NO_ERROR;
    }

    DWORD copy(const std::string& from, const std::string& to, BOOL fail_if_exists = FALSE) {
        SetLastError(NO_ERROR);
        return CopyFileA(at(from).c_str(), at(to).c_str(), fail_if_exists) ? NO_ERROR
                                                                           : GetLastError();
    }
};

TEST_F(Files, AttributesTellFilesFromFolders) {
    make_folder("Folder");
    make_file("file");
    EXPECT_EQ(GetFileAttributesA("Z:\\folder"), FILE_ATTRIBUTE_DIRECTORY);
    EXPECT_EQ(GetFileAttributesA("Z:\\folder\\"), FILE_ATTRIBUTE_DIRECTORY);
    EXPECT_EQ(GetFileAttributesA("Z:\\FILE"), FILE_ATTRIBUTE_NORMAL);
    chmod(at("file").c_str(), 0444);
    EXPECT_EQ(GetFileAttributesA("Z:\\file"), FILE_ATTRIBUTE_READONLY);
}

TEST_F(Files, AttributesThatCannotBeReadTellWhy) {
    make_file("file");
    EXPECT_EQ(attributes_error("Z:\\gone.doc"), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(attributes_error("Z:\\gone\\a.doc"), ERROR_PATH_NOT_FOUND);
    EXPECT_EQ(attributes_error("Z:\\file\\a.doc"), ERROR_PATH_NOT_FOUND);
    EXPECT_EQ(attributes_error("Z:\\file\\"), ERROR_PATH_NOT_FOUND);
    EXPECT_EQ(attributes_error("C:\\a[1]<.doc"), ERROR_INVALID_NAME);
    EXPECT_EQ(attributes_error("Z:\\" + std::string(300, 'x')), ERROR_FILENAME_EXCED_RANGE);
    if (geteuid() != 0) {
        make_folder("closed");
        chmod(at("closed").c_str(), 0);
        EXPECT_EQ(attributes_error("Z:\\closed\\a.doc"), ERROR_ACCESS_DENIED);
        chmod(at("closed").c_str(), 0700);
    }
}

TEST_F(Files, ErrnoValuesHaveTheirWindowsNumbers) {
    using platform::error_of_errno;
    using platform::Transfer;
    EXPECT_EQ(error_of_errno(ENOSPC), ERROR_DISK_FULL);
    EXPECT_EQ(error_of_errno(EDQUOT), ERROR_DISK_FULL);
    EXPECT_EQ(error_of_errno(EROFS), ERROR_WRITE_PROTECT);
    EXPECT_EQ(error_of_errno(EMFILE), ERROR_TOO_MANY_OPEN_FILES);
    EXPECT_EQ(error_of_errno(EIO, Transfer::reading), ERROR_READ_FAULT);
    EXPECT_EQ(error_of_errno(EIO, Transfer::writing), ERROR_WRITE_FAULT);
    EXPECT_EQ(error_of_errno(0x7FFF), ERROR_GEN_FAILURE);
}

TEST_F(Files, ACopyReplacesTheDestinationWhole) {
    const std::string large(3 << 20, 'x');
    make_file("from", large);
    make_file("to", large + "longer than the source");
    chmod(at("to").c_str(), 0640);
    EXPECT_EQ(copy("from", "to"), NO_ERROR);
    EXPECT_EQ(content_of("to"), large);
    struct stat status {};
    stat(at("to").c_str(), &status);
    EXPECT_EQ(status.st_mode & 0777u, 0640u);

    make_file("empty", "");
    EXPECT_EQ(copy("empty", "new"), NO_ERROR);
    EXPECT_EQ(content_of("new"), "");
    EXPECT_EQ(std::filesystem::last_write_time(at("new")),
              std::filesystem::last_write_time(at("empty")));
}

TEST_F(Files, AFileWhoseSizeIsNotToldIsCopiedToItsEnd) {
    ASSERT_TRUE(CopyFileA("/proc/version", at("version").c_str(), FALSE));
    EXPECT_FALSE(content_of("version").empty());
}

TEST_F(Files, AnExistingDestinationCanBeRefused) {
    make_file("from", "new");
    make_file("to", "old");
    EXPECT_EQ(copy("from", "to", TRUE), ERROR_FILE_EXISTS);
    EXPECT_EQ(content_of("to"), "old");
}

TEST_F(Files, ACopyThatCannotStartLeavesTheDestinationAlone) {
    make_file("from", "new");
    make_file("to", "old");
    make_folder("folder");
    EXPECT_EQ(copy("gone", "to"), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(copy("folder", "to"), ERROR_ACCESS_DENIED);
    EXPECT_EQ(copy("from", "folder"), ERROR_ACCESS_DENIED);
    EXPECT_EQ(copy("from", "gone/to"), ERROR_PATH_NOT_FOUND);
    EXPECT_EQ(copy("to", "to"), ERROR_SHARING_VIOLATION);
    std::filesystem::create_hard_link(at("to"), at("same"));
    EXPECT_EQ(copy("same", "to"), ERROR_SHARING_VIOLATION);
    EXPECT_EQ(content_of("to"), "old");
    chmod(at("to").c_str(), 0444);
    EXPECT_EQ(copy("from", "to"), ERROR_ACCESS_DENIED);
    EXPECT_EQ(content_of("to"), "old");
}

TEST_F(Files, FilesInUseAreNotCopiedOver) {
    make_file("from", "new");
    make_file("to", "old");
    {
        const FileHandle reader(at("to"), O_RDONLY);
        ASSERT_TRUE(reader.lock(FileHandle::Lock::shared));
        EXPECT_EQ(copy("from", "to"), ERROR_SHARING_VIOLATION);
        EXPECT_EQ(content_of("to"), "old");
    }
    {
        const FileHandle writer(at("from"), O_RDWR);
        ASSERT_TRUE(writer.lock(FileHandle::Lock::exclusive));
        EXPECT_EQ(copy("from", "to"), ERROR_SHARING_VIOLATION);
        EXPECT_EQ(content_of("to"), "old");
    }
    const FileHandle reader(at("from"), O_RDONLY);
    ASSERT_TRUE(reader.lock(FileHandle::Lock::shared));
    EXPECT_EQ(copy("from", "to"), NO_ERROR);
    EXPECT_EQ(content_of("to"), "new");
}

TEST_F(Files, ACopyOfAReadOnlyFileCanBeWritten) {
    make_file("from");
    chmod(at("from").c_str(), 0444);
    EXPECT_EQ(copy("from", "new"), NO_ERROR);
    EXPECT_EQ(GetFileAttributesA("Z:\\new") & FILE_ATTRIBUTE_READONLY, 0u);
    EXPECT_EQ(copy("from", "new"), NO_ERROR) << "once more over the copy";
}

TEST_F(Files, ATextLogIsWrittenThroughTheTable) {
    std::FILE* const log = open_text_log("Z:\\trace.log");
    ASSERT_NE(log, nullptr);
    std::fputs("line\r\n", log);
    std::fclose(log);
    EXPECT_EQ(content_of("trace.log"), "line\r\n");
    EXPECT_EQ(open_text_log("Q:\\trace.log"), nullptr);
    std::filesystem::create_symlink(at("trace.log"), at("link.log"));
    EXPECT_EQ(open_text_log("Z:\\link.log"), nullptr);
    EXPECT_EQ(content_of("trace.log"), "line\r\n");
}

} // namespace
