// The error log "/tmp/onvif_error": one line per entry, appended only through
// the shell as "/bin/echo \"...\" >> /tmp/onvif_error". Entries carry no time
// stamp and the log is never truncated here. A log whose last line lacks its
// newline gets one first, so an entry never glues onto it.
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

// "<routine>:<path> write failed": a file could not be written whole, so the
// work it belongs to stops there.
int logWriteFailed(const std::string& routine, const std::string& path);

// The steps that build one result (a working copy, the passes over it, the
// copy back): the chain is intact while no "write failed" line has been
// logged since it began, and a step that follows a broken chain is not taken.
class Chain {
 public:
  Chain();
  bool intact() const;

 private:
  long failures_;
};

}  // namespace conf
