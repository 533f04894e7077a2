#include "conf/write_file.h"

#include <cstdio>

#include "conf/error_log.h"
#include "conf/lines.h"

namespace conf {

bool writeFile(const std::string& routine, const std::string& cameraPath, const std::string& text) {
  std::FILE* f = openCamera(cameraPath, "w");
  bool ok = f != nullptr;
  if (ok && !text.empty()) ok = std::fwrite(text.data(), 1, text.size(), f) == text.size();
  if (f != nullptr && std::fclose(f) != 0) ok = false;
  if (!ok) logError(routine + ":" + cameraPath + " write failed");
  return ok;
}

}  // namespace conf
