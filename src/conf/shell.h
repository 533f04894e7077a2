// Shell commands. Copies, removals and error-log lines go through the system
// shell as the rest of the firmware expects ("cp %s %s", "rm %s",
// "/bin/echo \"...\" >> /tmp/onvif_error"). Paths are given as camera paths and
// run as host paths (see paths.h).
//
// A name that comes from a file is always passed as one shell word: a word made
// only of ordinary characters is written as it is (so the command is the same
// text as before), any other word is single-quoted.
#pragma once

#include <string>

namespace conf {

// One shell word for `s` (unchanged when it is made of ordinary characters).
std::string shellWord(const std::string& s);

// Text placed between double quotes with '"', '\\', '$' and '`' escaped, so
// the shell passes it on literally.
std::string quotedText(const std::string& s);

// Runs a command through the system shell (standard output is flushed first
// so that what the tool printed stays in order). Returns system()'s status.
int runShell(const std::string& command);

// "cp %s %s" of two camera paths, one step of `routine`'s work. A copy that
// cannot be written whole is not started (no room for it, see roomForCopy()),
// a link standing at a destination in the temporary folder is removed first,
// and a copy of an existing file that fails is reported: either way
// "<routine>:<to> write failed" goes to the error log. Returns the shell's
// status, or -1 when the copy was not started.
int shellCopy(const std::string& routine, const std::string& from, const std::string& to);
// "rm %s" of a camera path.
int shellRemove(const std::string& path);
// "rm <dir><pattern>" where the pattern (such as "*.profile") is left to the
// shell to expand.
int shellRemoveGlob(const std::string& dir, const std::string& pattern);

}  // namespace conf
