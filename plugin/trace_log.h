// The trace log: a plain-text file "PPT.log" in the folder of the host executable, with one line
// for each step of loading and rewriting and one for each link added. Created or emptied by the
// first start of the process and neither closed nor flushed until the library is unloaded. Lines
// end with CR LF.
//
// Logging never changes a status: where the file could not be opened, or its path would exceed 259
// characters, nothing is written, and a failed write is passed over.
#pragma once

#include <string>
#include <string_view>

namespace ppt {

// Opens the log unless it is open already.
void v_openLog();

// Writes one line: the text and, directly behind it, the argument.
void v_logLine(std::string_view text, std::string_view argument = "");

// The log's path for an executable: "\PPT.log" in place of the last separator and what follows it.
// Empty when the path would exceed 259 characters.
std::string log_path_for(const std::string& executable);

} // namespace ppt
