// Appending to a file in place (an account to the working copy of the account
// list, missing lines to the recordings list). The text goes in whole or not
// at all: when a write, flush or close fails, the file is cut back to the size
// it had, so a later copy never spreads a half-written line.
#pragma once

#include <string>

namespace conf {

enum class AppendStatus { Done, OpenFailed, WriteFailed };

// Appends `text` to the file at a camera path (created when missing).
AppendStatus appendText(const std::string& cameraPath, const std::string& text);

}  // namespace conf
