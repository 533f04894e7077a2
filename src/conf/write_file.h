// Files written directly rather than rewritten from a source, with the rewrite
// engine's guarantee that a failed write never leaves a half-written file for
// the firmware to read.
#pragma once

#include <string>

namespace conf {

// A whole file the tool generates: creates or truncates the file at a camera
// path and writes `text` to it. When it cannot be created, or a write or its
// close fails, "<routine>:<path> write failed" goes to the error log and false
// is returned.
bool writeFile(const std::string& routine, const std::string& cameraPath, const std::string& text);

// Appending in place (an account to the working copy of the account list,
// missing lines to the recordings list): the text goes in whole or not at all.
// When a write, flush or close fails, the file is cut back to the size it had,
// so a later copy never spreads a half-written line.
enum class AppendStatus { Done, OpenFailed, WriteFailed };

// Appends `text` to the file at a camera path (created when missing).
AppendStatus appendText(const std::string& cameraPath, const std::string& text);

// Removes a link that stands at a camera path in the temporary folder, so
// that what is made there next is a file of its own (nothing elsewhere).
void removeTempLink(const std::string& cameraPath);

}  // namespace conf
