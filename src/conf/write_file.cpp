#include "conf/write_file.h"

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>

#include "conf/error_log.h"
#include "conf/lines.h"
#include "conf/paths.h"

namespace conf {

namespace {

std::string parentOf(const std::string& path) {
  std::string::size_type slash = path.rfind('/');
  if (slash == std::string::npos) return ".";
  return slash == 0 ? "/" : path.substr(0, slash);
}

// The host path a camera file really lives at: links outside the temporary
// folder are followed, also to a target that does not exist yet.
std::string realFile(const std::string& cameraPath) {
  std::string path = hostPath(cameraPath);
  if (inTempFolder(cameraPath)) return path;
  for (int hops = 0; hops < 16; ++hops) {
    char target[4096];
    ssize_t n = readlink(path.c_str(), target, sizeof target - 1);
    if (n <= 0) break;
    target[n] = '\0';
    path = target[0] == '/' ? std::string(target) : parentOf(path) + "/" + target;
  }
  return path;
}

bool writeAll(int fd, const std::string& text) {
  std::size_t done = 0;
  while (done < text.size()) {
    ssize_t n = write(fd, text.data() + done, text.size() - done);
    if (n < 0 && errno == EINTR) continue;
    if (n <= 0) return false;
    done += static_cast<std::size_t>(n);
  }
  return true;
}

// The new file takes the mode (and, where allowed, the owner) of the file it
// replaces.
void keepMode(int fd, const std::string& path) {
  struct stat st {};
  if (lstat(path.c_str(), &st) != 0 || !S_ISREG(st.st_mode)) return;
  if (fchmod(fd, st.st_mode & 07777) != 0) return;
  if (fchown(fd, st.st_uid, st.st_gid) != 0) return;  // another owner takes root
}

// True when a regular, non-empty file's last byte is not a newline.
bool lacksFinalNewline(const std::string& hostFile) {
  int fd = open(hostFile.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
  if (fd < 0) return false;
  struct stat st {};
  char last = '\n';
  if (fstat(fd, &st) == 0 && S_ISREG(st.st_mode) && st.st_size > 0 &&
      pread(fd, &last, 1, st.st_size - 1) != 1)
    last = '\n';
  close(fd);
  return last != '\n';
}

// Cuts a file back to `size`. A file that is not a regular one (a device)
// cannot be cut and stays as the failed write left it.
bool cutBack(int fd, off_t size) { return ftruncate(fd, size) == 0; }
bool cutBack(const std::string& cameraPath, off_t size) {
  return truncate(hostPath(cameraPath).c_str(), size) == 0;
}

}  // namespace

bool syncToDisk(int fd) {
  if (fsync(fd) == 0) return true;
  if (errno != EINVAL) return false;
  return fdatasync(fd) == 0 || errno == EINVAL;
}

void removeTempLink(const std::string& cameraPath) {
  if (!inTempFolder(cameraPath)) return;
  std::string path = hostPath(cameraPath);
  struct stat st {};
  if (lstat(path.c_str(), &st) == 0 && S_ISLNK(st.st_mode)) unlink(path.c_str());
}

bool writeFile(const std::string& routine, const std::string& cameraPath,
               const std::string& text) {
  const std::string target = realFile(cameraPath);
  const std::string staging = target + ".new";
  unlink(staging.c_str());
  int fd = open(staging.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0666);
  bool ok = fd >= 0;
  if (ok) {
    keepMode(fd, target);
    ok = writeAll(fd, text) && syncToDisk(fd);
    if (close(fd) != 0) ok = false;
  }
  if (ok) ok = rename(staging.c_str(), target.c_str()) == 0;
  if (!ok) {
    if (fd >= 0) unlink(staging.c_str());
    logWriteFailed(routine, cameraPath);
  }
  return ok;
}

bool endLastLine(const std::string& cameraPath) {
  const std::string path = hostPath(cameraPath);
  if (!lacksFinalNewline(path)) return true;
  int fd = open(path.c_str(), O_WRONLY | O_APPEND | O_CLOEXEC | O_NONBLOCK);
  if (fd < 0) return false;
  bool ended = write(fd, "\n", 1) == 1;
  close(fd);
  return ended;
}

AppendStatus appendText(const std::string& cameraPath, const std::string& text) {
  std::FILE* f = openCamera(cameraPath, "a");
  if (f == nullptr) return AppendStatus::OpenFailed;
  struct stat st {};
  off_t before = fstat(fileno(f), &st) == 0 ? st.st_size : 0;
  const std::string whole = lacksFinalNewline(hostPath(cameraPath)) ? "\n" + text : text;
  bool ok = std::fwrite(whole.data(), 1, whole.size(), f) == whole.size();
  if (std::fflush(f) != 0 || std::ferror(f)) ok = false;
  if (!ok) cutBack(fileno(f), before);
  if (std::fclose(f) != 0 && ok) {
    ok = false;
    cutBack(cameraPath, before);
  }
  return ok ? AppendStatus::Done : AppendStatus::WriteFailed;
}

bool roomForCopy(const std::string& from, const std::string& to) {
  struct stat src {};
  if (stat(hostPath(from).c_str(), &src) != 0 || !S_ISREG(src.st_mode)) return true;
  const unsigned long long size = static_cast<unsigned long long>(src.st_size);
  struct rlimit limit {};
  if (getrlimit(RLIMIT_FSIZE, &limit) == 0 && limit.rlim_cur != RLIM_INFINITY &&
      size > limit.rlim_cur)
    return false;

  // A link in the temporary folder is removed before the copy, so it takes
  // no room; elsewhere the copy goes where the link points.
  const std::string target = realFile(to);
  struct stat dst {};
  const bool replaced = lstat(target.c_str(), &dst) == 0 && S_ISREG(dst.st_mode);
  struct statvfs fs {};
  if (statvfs(parentOf(target).c_str(), &fs) != 0) return true;  // the copy reports it
  const unsigned long long unit = fs.f_frsize != 0 ? fs.f_frsize : fs.f_bsize;
  if (unit == 0) return true;
  if (!replaced && fs.f_files != 0 && fs.f_favail == 0) return false;
  const unsigned long long blocks = geteuid() == 0 ? fs.f_bfree : fs.f_bavail;
  const unsigned long long freed =
      replaced && dst.st_nlink == 1 ? static_cast<unsigned long long>(dst.st_blocks) * 512 : 0;
  const unsigned long long needed = (size + unit - 1) / unit * unit;
  return blocks * unit + freed >= needed;
}

}  // namespace conf
