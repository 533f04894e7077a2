#include "conf/lines.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "conf/field.h"
#include "conf/paths.h"
#include "conf/scan.h"
#include "conf/write_file.h"

namespace conf {

namespace {

bool writes(const char* mode) { return std::strpbrk(mode, "wa+") != nullptr; }

// fopen's mode as open() flags, never following a link and never waiting on
// a FIFO.
int tempFlags(const char* mode) {
  int flags = O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK;
  flags |= std::strchr(mode, '+') != nullptr ? O_RDWR : O_WRONLY;
  if (mode[0] == 'w') flags |= O_CREAT | O_TRUNC;
  if (mode[0] == 'a') flags |= O_CREAT | O_APPEND;
  return flags;
}

std::FILE* openTemp(const std::string& cameraPath, const char* mode) {
  removeTempLink(cameraPath);
  int fd = open(hostPath(cameraPath).c_str(), tempFlags(mode), 0666);
  if (fd < 0) return nullptr;
  struct stat st {};
  int flags = fcntl(fd, F_GETFL);
  if (fstat(fd, &st) != 0 || !S_ISREG(st.st_mode) || flags < 0 ||
      fcntl(fd, F_SETFL, flags & ~O_NONBLOCK) != 0) {
    close(fd);
    return nullptr;
  }
  std::FILE* f = fdopen(fd, mode);
  if (f == nullptr) close(fd);
  return f;
}

}  // namespace

std::FILE* openCamera(const std::string& cameraPath, const char* mode) {
  if (writes(mode) && inTempFolder(cameraPath)) return openTemp(cameraPath, mode);
  return std::fopen(hostPath(cameraPath).c_str(), mode);
}

bool exists(const std::string& cameraPath) {
  std::FILE* f = openCamera(cameraPath, "r");
  if (f == nullptr) return false;
  std::fclose(f);
  return true;
}

bool forEachLine(const std::string& cameraPath, const std::function<bool(const char*)>& fn) {
  std::FILE* f = openCamera(cameraPath, "r");
  if (f == nullptr) return false;
  LineReader r(f);
  while (r.next())
    if (!fn(r.line())) break;
  std::fclose(f);
  return true;
}

bool forEachName(const std::string& routine, const std::string& listPath, const char* marker,
                 const char* pattern, const std::function<bool(const std::string&)>& fn) {
  return forEachLine(listPath, [&](const char* line) {
    if (!holds(line, marker)) return true;
    Field<64> name;
    if (scan(line, pattern, name) != 1) return true;
    if (!plainName(routine, name.str())) return true;
    return fn(name.str());
  });
}

}  // namespace conf
