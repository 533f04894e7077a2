#include "shm/segments.h"

#include <sys/ipc.h>
#include <sys/shm.h>

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

Segment findAuxSegment(const AuxSegment& aux, LookupError* error) {
  key_t key = aux.cameraPath != nullptr ? cameraKey(aux.cameraPath, 0) : aux.key;
  if (key == -1) {
    if (error) *error = LookupError::Key;
    return Segment{};
  }
  return findSegment(key, aux.size, error);
}

}  // namespace shm
