// Files written directly rather than rewritten from a source, and the checks
// every write of the file store shares: nothing is copied back, renamed or
// appended from work that did not complete, and the tool never writes through
// a link in its own temporary folder.
#pragma once

#include <string>

namespace conf {

// A whole file the tool generates: `text` is written to "<file>.new" beside
// the file (beside the file a link points to, so a linked file stays linked;
// in the temporary folder the link itself is replaced), synced, and renamed
// over it. When any step fails, the file stays as it was, the ".new" file is
// removed, "<routine>:<path> write failed" goes to the error log and false is
// returned. An existing file's mode is kept.
bool writeFile(const std::string& routine, const std::string& cameraPath,
               const std::string& text);

// Appending in place (an account to the working copy of the account list,
// missing lines to the recordings list, the DebugLog): the text goes in whole
// or not at all. When a write, flush or close fails, the file is cut back to
// the size it had, so a later copy never spreads a half-written line. A file
// whose last line lacks its newline gets one before the text.
enum class AppendStatus { Done, OpenFailed, WriteFailed };

// Appends `text` to the file at a camera path (created when missing).
AppendStatus appendText(const std::string& cameraPath, const std::string& text);

// Ends the last line of a non-empty regular file that lacks its newline.
// False when that newline could not be written.
bool endLastLine(const std::string& cameraPath);

// True when a copy of `from` over `to` can be written whole: `from` is
// missing (the copy itself reports that), or its size is within this
// process's file-size limit (which "cp" inherits) and within the free space
// of the file system `to` really lives on, counting the space `to` takes now.
bool roomForCopy(const std::string& from, const std::string& to);

// Removes a link that stands at a camera path in the temporary folder, so
// that what is made there next is a file of its own (nothing elsewhere).
void removeTempLink(const std::string& cameraPath);

// fsync, or fdatasync where fsync answers EINVAL (a file system that cannot
// sync); false when the data may not have reached the disk.
bool syncToDisk(int fd);

}  // namespace conf
