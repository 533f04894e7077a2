#include "host_shm.h"

#include <sys/ipc.h>
#include <sys/shm.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstring>

#include "conf/paths.h"
#include "shm/segments.h"

namespace host {

namespace {

bool makeParents(const std::string& path) {
  for (std::size_t at = path.find('/', 1); at != std::string::npos; at = path.find('/', at + 1)) {
    std::string dir = path.substr(0, at);
    if (mkdir(dir.c_str(), 0755) != 0 && errno != EEXIST) return false;
  }
  return true;
}

}  // namespace

bool createSegment(key_t key, std::size_t size) {
  return shmget(key, size, IPC_CREAT | IPC_EXCL | 0666) != -1;
}

bool removeSegment(key_t key) {
  int id = shmget(key, 0, 0666);
  if (id == -1) return false;
  return shmctl(id, IPC_RMID, nullptr) == 0;
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
  key_t key = shm::cameraKey(cameraPath, 0);
  if (key == -1 || !createSegment(key, size)) {
    if (error) *error = "cannot create the segment of " + cameraPath + ": " + std::strerror(errno);
    return false;
  }
  return true;
}

bool removeCameraSegment(const std::string& cameraPath) {
  key_t key = shm::cameraKey(cameraPath, 0);
  return key != -1 && removeSegment(key);
}

bool createServerBlock(std::string* error) {
  constexpr std::size_t kSize = shm::kServerSlotCount * sizeof(std::int32_t);
  return createCameraSegment(shm::kServerShmPath, kSize, error);
}

bool removeServerBlock() { return removeCameraSegment(shm::kServerShmPath); }

std::optional<shm::ShmBlock> attachServerBlock() {
  key_t key = shm::cameraKey(shm::kServerShmPath, 0);
  if (key == -1) return std::nullopt;
  int id = shmget(key, 0, 0666);
  if (id == -1) return std::nullopt;
  return shm::attachBlock(id);
}

}  // namespace host
