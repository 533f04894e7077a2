#include "conf/error_log.h"

#include <cstring>

#include "conf/files.h"
#include "conf/paths.h"
#include "conf/shell.h"

namespace conf {

int logError(const std::string& text) {
  return runShell("/bin/echo \"" + quotedText(text) + "\" >> " + shellWord(hostPath(kErrorLog)));
}

std::string fill(const char* shape, const std::string& arg) {
  std::string s(shape);
  std::string::size_type at = s.find("%s");
  if (at != std::string::npos) s.replace(at, 2, arg);
  return s;
}

int logError(const char* shape, const std::string& arg) { return logError(fill(shape, arg)); }

}  // namespace conf
