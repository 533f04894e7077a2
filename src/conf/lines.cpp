#include "conf/lines.h"

#include "conf/paths.h"

namespace conf {

std::FILE* openCamera(const std::string& cameraPath, const char* mode) {
  return std::fopen(hostPath(cameraPath).c_str(), mode);
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

}  // namespace conf
