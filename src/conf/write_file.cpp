#include "conf/write_file.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>

#include "conf/error_log.h"
#include "conf/lines.h"
#include "conf/paths.h"

namespace conf {

bool writeFile(const std::string& routine, const std::string& cameraPath, const std::string& text) {
  std::FILE* f = openCamera(cameraPath, "w");
  bool ok = f != nullptr;
  if (ok && !text.empty()) ok = std::fwrite(text.data(), 1, text.size(), f) == text.size();
  if (f != nullptr && std::fclose(f) != 0) ok = false;
  if (!ok) logError(routine + ":" + cameraPath + " write failed");
  return ok;
}

namespace {

// Cuts a file back to `size`. A file that is not a regular one (a device)
// cannot be cut and stays as the failed write left it.
bool cutBack(int fd, off_t size) { return ftruncate(fd, size) == 0; }
bool cutBack(const std::string& cameraPath, off_t size) {
  return truncate(hostPath(cameraPath).c_str(), size) == 0;
}

}  // namespace

void removeTempLink(const std::string& cameraPath) {
  if (!inTempFolder(cameraPath)) return;
  std::string path = hostPath(cameraPath);
  struct stat st {};
  if (lstat(path.c_str(), &st) == 0 && S_ISLNK(st.st_mode)) unlink(path.c_str());
}

AppendStatus appendText(const std::string& cameraPath, const std::string& text) {
  std::FILE* f = openCamera(cameraPath, "a");
  if (f == nullptr) return AppendStatus::OpenFailed;
  struct stat st {};
  off_t before = fstat(fileno(f), &st) == 0 ? st.st_size : 0;
  bool ok = std::fwrite(text.data(), 1, text.size(), f) == text.size();
  if (std::fflush(f) != 0 || std::ferror(f)) ok = false;
  if (!ok) cutBack(fileno(f), before);
  if (std::fclose(f) != 0 && ok) {
    ok = false;
    cutBack(cameraPath, before);
  }
  return ok ? AppendStatus::Done : AppendStatus::WriteFailed;
}

}  // namespace conf
