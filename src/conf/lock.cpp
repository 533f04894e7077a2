#include "conf/lock.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>

#include "conf/files.h"
#include "conf/paths.h"
#include "conf/write_file.h"

namespace conf {

namespace {

constexpr useconds_t kStep = 100000;  // 100 ms
constexpr int kSteps = 300;           // 30 s

enum class LockState { NotTaken, Held, GaveUp };
LockState state = LockState::NotTaken;

int openLockFile() {
  removeTempLink(kLockFile);
  const int flags = O_RDONLY | O_CREAT | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK;
  return open(hostPath(kLockFile).c_str(), flags, 0644);
}

bool takeLock(int fd) {
  for (int slept = 0;; ++slept) {
    if (flock(fd, LOCK_EX | LOCK_NB) == 0) return true;
    if ((errno != EWOULDBLOCK && errno != EINTR) || slept == kSteps) return false;
    usleep(kStep);
  }
}

}  // namespace

void holdWriteLock() {
  if (state != LockState::NotTaken) return;
  int fd = openLockFile();
  // The descriptor stays open while the lock is held: the lock goes with it
  // when the process ends.
  if (fd >= 0 && takeLock(fd)) {
    state = LockState::Held;
    return;
  }
  if (fd >= 0) close(fd);
  state = LockState::GaveUp;
}

}  // namespace conf
