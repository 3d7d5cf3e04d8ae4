// The drive Q: and the share \\srv\pub, which are one empty folder of a test. Elsewhere a new
// folder is made and mapped; on Windows both have to be there and are emptied (scripts/windows
// makes them).
#pragma once

#include "platform/posix/settings.h"
#include "tests/support/temporary_folder.h"

#include <gtest/gtest.h>

inline std::filesystem::path make_drive_folder(const std::string& name) {
#if defined(_WIN32)
    const std::filesystem::path folder = "Q:\\";
    EXPECT_TRUE(std::filesystem::is_directory(folder)) << name << " needs a drive Q:";
    EXPECT_TRUE(std::filesystem::is_directory("\\\\srv\\pub\\")) << name << " needs a share";
    remove_folder(folder);
#else
    const std::filesystem::path folder = make_temporary_folder(name);
    EXPECT_TRUE(platform::map_drive("Q:=" + folder.string()));
    EXPECT_TRUE(platform::map_drive("\\\\srv\\pub=" + folder.string()));
#endif
    return folder;
}
