#include "conf/shell.h"

#include <sys/stat.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "conf/error_log.h"
#include "conf/paths.h"
#include "conf/write_file.h"

namespace conf {

std::string shellWord(const std::string& s) {
  static const char kPlain[] =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789_./-+:=,@%";
  bool plain = !s.empty();
  for (char c : s)
    if (c == '\0' || std::strchr(kPlain, c) == nullptr) plain = false;
  if (plain) return s;
  std::string out = "'";
  for (char c : s) {
    if (c == '\'')
      out += "'\\''";
    else
      out += c;
  }
  return out + "'";
}

std::string quotedText(const std::string& s) {
  std::string out;
  for (char c : s) {
    if (c == '"' || c == '\\' || c == '$' || c == '`') out += '\\';
    out += c;
  }
  return out;
}

int runShell(const std::string& command) {
  std::fflush(stdout);
  return std::system(command.c_str());
}

int shellCopy(const std::string& routine, const std::string& from, const std::string& to) {
  if (!roomForCopy(from, to)) {
    logWriteFailed(routine, to);
    return -1;
  }
  removeTempLink(to);
  struct stat st {};
  const bool source = stat(hostPath(from).c_str(), &st) == 0;
  int status = runShell("cp " + shellWord(hostPath(from)) + " " + shellWord(hostPath(to)));
  if (status != 0 && source) logWriteFailed(routine, to);
  return status;
}

int shellRemove(const std::string& path) { return runShell("rm " + shellWord(hostPath(path))); }

int shellRemoveGlob(const std::string& dir, const std::string& pattern) {
  return runShell("rm " + shellWord(hostPath(dir)) + pattern);
}

}  // namespace conf
