#include "shm/block.h"

#include <sys/ipc.h>
#include <sys/shm.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>

#include "conf/paths.h"

namespace shm {

namespace {

std::optional<ShmBlock> fail(const char* what) {
  int err = errno;
  std::printf("[ONVIFCtrl]getShareMemory: %s error\n", what);
  std::printf("[ONVIFCtrl]errno=%d\n", err);
  return std::nullopt;
}

// The attached mapping covers the segment rounded up to whole pages.
std::size_t mappedBytes(int id) {
  struct shmid_ds ds {};
  if (shmctl(id, IPC_STAT, &ds) != 0) return 0;
  long page = sysconf(_SC_PAGESIZE);
  std::size_t p = page > 0 ? static_cast<std::size_t>(page) : 4096;
  return (ds.shm_segsz + p - 1) / p * p;
}

}  // namespace

std::optional<ShmBlock> getShareMemory(const char* path, std::size_t size) {
  key_t key = ftok(conf::hostPath(path).c_str(), 0);
  if (key == -1) return fail("ftok");
  int id = shmget(key, size, 0666);
  if (id == -1) return fail("shmget");
  std::optional<ShmBlock> block = attachBlock(id);
  if (!block) return fail("shmat");
  return block;
}

std::optional<ShmBlock> attachBlock(int id) {
  void* base = shmat(id, nullptr, 0);
  if (base == reinterpret_cast<void*>(-1)) return std::nullopt;
  return ShmBlock(base, mappedBytes(id));
}

}  // namespace shm
