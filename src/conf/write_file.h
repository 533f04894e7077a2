// Writing a whole file that the tool generates (not rewritten from a source),
// with the rewrite engine's guarantee: when the file cannot be created, or a
// write or its close fails, "<routine>:<path> write failed" goes to the error
// log and the caller is told.
#pragma once

#include <string>

namespace conf {

// Creates or truncates the file at a camera path and writes `text` to it.
// Returns false (after logging) when any step failed.
bool writeFile(const std::string& routine, const std::string& cameraPath, const std::string& text);

}  // namespace conf
