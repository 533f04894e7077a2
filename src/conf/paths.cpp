#include "conf/paths.h"

#include <cstdlib>

#include "conf/error_log.h"
#include "conf/files.h"

namespace conf {

std::string cameraRoot() {
  const char* root = std::getenv("ONVIFCTRL_ROOT");
  if (root == nullptr) return std::string();
  std::string r(root);
  while (r.size() > 1 && r.back() == '/') r.pop_back();
  if (r == "/") r.clear();
  return r;
}

std::string hostPath(const std::string& cameraPath) {
  std::string root = cameraRoot();
  if (root.empty()) return cameraPath;
  if (!cameraPath.empty() && cameraPath.front() == '/') return root + cameraPath;
  return root + "/" + cameraPath;
}

std::string wsTemp(const std::string& routine) { return std::string(kTmpDir) + "WS_" + routine; }

bool inTempFolder(const std::string& cameraPath) { return cameraPath.rfind(kTmpDir, 0) == 0; }

bool plainName(const std::string& routine, const std::string& name) {
  if (!name.empty() && name != "." && name != ".." && name.find('/') == std::string::npos)
    return true;
  logError(routine + ":" + name + " refused");
  return false;
}

std::optional<std::string> inFolder(const std::string& routine, const std::string& dir,
                                    const std::string& name) {
  if (!plainName(routine, name)) return std::nullopt;
  return dir + name;
}

}  // namespace conf
