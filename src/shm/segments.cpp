#include "shm/segments.h"

#include <sys/ipc.h>
#include <sys/shm.h>

#include <cerrno>

#include "conf/paths.h"

namespace shm {

Segment findSegment(key_t key, std::size_t size, LookupError* error) {
  Segment seg;
  int id = shmget(key, size, 0666);
  if (id == -1) {
    if (error) *error = LookupError::Get;
    return seg;
  }
  void* p = shmat(id, nullptr, 0);
  if (p == reinterpret_cast<void*>(-1)) {
    if (error) *error = LookupError::Attach;
    return seg;
  }
  if (error) *error = LookupError::None;
  seg.bytes = static_cast<std::uint8_t*>(p);
  seg.size = size;
  return seg;
}

key_t cameraKey(const std::string& cameraPath, int projectId) {
  return ftok(conf::hostPath(cameraPath).c_str(), projectId);
}

Segment findCameraSegment(const std::string& cameraPath, std::size_t size, LookupError* error) {
  key_t key = cameraKey(cameraPath, 0);
  if (key == -1) {
    if (error) *error = LookupError::Key;
    return Segment{};
  }
  return findSegment(key, size, error);
}

bool createSegment(key_t key, std::size_t size) {
  return shmget(key, size, IPC_CREAT | IPC_EXCL | 0666) != -1;
}

bool removeSegment(key_t key) {
  int id = shmget(key, 0, 0666);
  if (id == -1) return false;
  return shmctl(id, IPC_RMID, nullptr) == 0;
}

}  // namespace shm

#include <sys/stat.h>

#include <cstdio>
#include <cstring>

namespace shm {

namespace {

bool makeParents(const std::string& path) {
  for (std::size_t at = path.find('/', 1); at != std::string::npos; at = path.find('/', at + 1)) {
    std::string dir = path.substr(0, at);
    if (mkdir(dir.c_str(), 0755) != 0 && errno != EEXIST) return false;
  }
  return true;
}

}  // namespace

bool createServerBlock(std::string* error) {
  return createCameraSegment(kServerShmPath, kServerSlotCount * sizeof(std::int32_t), error);
}

bool createCameraSegment(const std::string& cameraPath, std::size_t size, std::string* error) {
  std::string path = conf::hostPath(cameraPath);
  if (!makeParents(path)) {
    if (error) *error = "cannot create the folder of " + path + ": " + std::strerror(errno);
    return false;
  }
  if (std::FILE* f = std::fopen(path.c_str(), "a")) {
    std::fclose(f);
  } else {
    if (error) *error = "cannot create " + path + ": " + std::strerror(errno);
    return false;
  }
  key_t key = cameraKey(cameraPath, 0);
  if (key == -1 || !createSegment(key, size)) {
    if (error) *error = "cannot create the segment of " + cameraPath + ": " + std::strerror(errno);
    return false;
  }
  return true;
}

bool removeCameraSegment(const std::string& cameraPath) {
  key_t key = cameraKey(cameraPath, 0);
  return key != -1 && removeSegment(key);
}

std::optional<ShmBlock> attachServerBlock() {
  key_t key = cameraKey(kServerShmPath, 0);
  if (key == -1) return std::nullopt;
  int id = shmget(key, 0, 0666);
  if (id == -1) return std::nullopt;
  return attachBlock(id);
}

bool removeServerBlock() {
  key_t key = cameraKey(kServerShmPath, 0);
  return key != -1 && removeSegment(key);
}

}  // namespace shm
