// The eighteen exported functions: the only door to the plug-in.
//
// Calling order: j_initDLL once; for each presentation j_loadFile, any number of link-table calls,
// then j_rewriteFile (which unloads by itself) or j_unLoadFile; at the end j_termDLL. Calls must
// not overlap and belong on the thread that called j_initDLL.
//
// Strings are in the ANSI code page and end with a zero byte; buffers belong to the caller. Results
// named "status" are the codes of plugin/status.h: 0 is success; on failure the error parameters
// explain it. A null pointer gives 8300, a text of 1024 bytes or more 7140, a link index out of
// range 8250 with the index and the number of links, memory that ran out 8800. No exception leaves
// a function.
#pragma once

#include "hostapi/hostapi.h"
#include "plugin/error_params.h"

#include <cstdint>

#if defined(_WIN32)
#define PPT_CALL __stdcall
#define PPT_EXPORT
#else
#define PPT_CALL
#define PPT_EXPORT [[gnu::visibility("default")]]
#endif

extern "C" {

// Raises the version ceiling to `ceiling`, keeps `options` when not null (letters, cut at 259: "h",
// "e" and "t" steer hyperlinks in text, "k" keeps going where an object cannot be read, "w" tells
// which links were not written), initialises COM on this thread and opens the trace log. 8800 when
// COM is out of memory; a log that cannot be opened is no failure.
PPT_EXPORT std::int32_t PPT_CALL j_initDLL(std::int32_t ceiling, std::int32_t reserved,
                                           const char* options);

// Uninitialises COM and empties the options. Always 0; unloads nothing.
PPT_EXPORT std::int32_t PPT_CALL j_termDLL(std::int32_t reserved1, std::int32_t reserved2);

// Makes a failing allocation leave the size asked for and the available physical memory in the
// error parameters.
PPT_EXPORT void PPT_CALL v_setNewMode();

// Opens the presentation at `path` read-only and gathers, by the bits of `flags`, its links and
// their ids (1) and its own id (2). After a status other than 0 nothing is loaded; only when the
// file could not be opened, what was loaded before is still there but can no longer be rewritten,
// so unload it first. With the letter "k" an object, page or property set that cannot be read is
// left out; the error parameters of a load that gives 0 then are the number of those left out and,
// for each of the first hundred, its status, its kind and its number (unread_objects.h). Cost: one
// pass over the records of the document stream.
PPT_EXPORT std::int32_t PPT_CALL j_loadFile(const char* path, std::int32_t flags);

// Forgets the loaded presentation. Always 0; needs no memory.
PPT_EXPORT std::int32_t PPT_CALL j_unLoadFile();

// Copies the loaded file to `path`, replacing what is there, and rewrites in the copy, by the bits
// of `flags`, the changed links and their ids (1) and the presentation's own id (2); then unloads.
// With the letter "w" the error parameters of a rewrite that gives 0 are the number of changed
// links that it could not write where they stand and the index of each: pictures and OLE objects
// that keep their paths, texts that still show the old one. Trailing blanks of `path` are cut in
// the caller's buffer. The loaded file is never written; after a failure the copy stays as far as
// it was written. A failure before the copy was opened leaves the presentation loaded. With nothing
// loaded 8300, and the error parameters stay.
PPT_EXPORT std::int32_t PPT_CALL j_rewriteFile(char* path, std::int32_t flags);

// The number of links in the table; 0 when nothing is loaded.
PPT_EXPORT std::int32_t PPT_CALL n_getLinkCount();

// Copies the link's target into `buffer` (1024 bytes).
PPT_EXPORT std::int32_t PPT_CALL j_getLinkFileName(std::int32_t index, std::int32_t reserved,
                                                   char* buffer);

// Changes the link's target. A name that differs only in the case of ASCII letters changes nothing;
// a name that is too long marks the link as changed all the same.
PPT_EXPORT std::int32_t PPT_CALL j_setLinkFileName(std::int32_t index, const char* name,
                                                   std::int32_t reserved);

// The link's id. Setting it marks the link as changed, also when the id is the same.
PPT_EXPORT std::int32_t PPT_CALL j_getLinkId(std::int32_t index, std::int32_t reserved, id64* id);
PPT_EXPORT std::int32_t PPT_CALL j_setLinkId(std::int32_t index, std::int32_t reserved,
                                             const id64* id);

// Copies the text that carries the hyperlink into `buffer` (1024 bytes); empty for other links and
// after a failure.
PPT_EXPORT std::int32_t PPT_CALL j_getHyperlinkText(std::int32_t index, char* buffer);

// The presentation's own id. Setting it marks no link.
PPT_EXPORT std::int32_t PPT_CALL j_getTargetFileId(std::int32_t reserved, id64* id);
PPT_EXPORT std::int32_t PPT_CALL j_setTargetFileId(std::int32_t reserved, const id64* id);

// Where the target of a link lies as seen from the presentation `pc_masterFile`: the absolute path,
// without an item behind "!", fills all 260 bytes of `pc_foundFile`. See target_access.h for the
// statuses. Changes the process's current directory to the presentation's folder.
PPT_EXPORT std::int32_t PPT_CALL j_accessTargetFile(const char* pc_targetFile,
                                                    const char* pc_masterFile, char* pc_foundFile,
                                                    std::int32_t reserved);

// The parameters of the last failure. The structure stays the plug-in's and is valid for its life;
// the text in it until the next failure.
PPT_EXPORT ppt::ErrorParamArray* PPT_CALL ps_getErrorParamArray();

// Copies entry `index` of the tables of file extensions into `buffer` (at least 7 bytes). The host
// counts up from 0 and stops at the empty string; an index beyond it is the caller's error.
PPT_EXPORT void PPT_CALL v_getStandardMasterFileExtension(std::int32_t index, char* buffer);
PPT_EXPORT void PPT_CALL v_getStandardTargetFileExtension(std::int32_t index, char* buffer);
}
