#include "conf/error_log.h"

#include "conf/files.h"
#include "conf/paths.h"
#include "conf/shell.h"
#include "conf/write_file.h"

namespace conf {

namespace {

long writeFailures = 0;

}  // namespace

int logError(const std::string& text) {
  endLastLine(kErrorLog);
  return runShell("/bin/echo \"" + quotedText(text) + "\" >> " + shellWord(hostPath(kErrorLog)));
}

std::string fill(const char* shape, const std::string& arg) {
  std::string s(shape);
  std::string::size_type at = s.find("%s");
  if (at != std::string::npos) s.replace(at, 2, arg);
  return s;
}

int logError(const char* shape, const std::string& arg) { return logError(fill(shape, arg)); }

int logWriteFailed(const std::string& routine, const std::string& path) {
  ++writeFailures;
  return logError(routine + ":" + path + " write failed");
}

Chain::Chain() : failures_(writeFailures) {}

bool Chain::intact() const { return failures_ == writeFailures; }

}  // namespace conf
