// The error log "/tmp/onvif_error": one line per entry, appended only through
// the shell as "/bin/echo \"...\" >> /tmp/onvif_error". Entries carry no time
// stamp and the log is never truncated here.
#pragma once

#include <string>

namespace conf {

// Appends one line. Returns the shell's status.
int logError(const std::string& text);

// Appends `shape` with its "%s" replaced by `arg` ("Update_AddUser:%s missing"
// and a path). A shape without "%s" is logged as it is.
int logError(const char* shape, const std::string& arg);

// The text of `shape` with its first "%s" replaced by `arg`.
std::string fill(const char* shape, const std::string& arg);

}  // namespace conf
