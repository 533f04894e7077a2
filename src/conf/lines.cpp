#include "conf/lines.h"

#include "conf/field.h"
#include "conf/paths.h"
#include "conf/scan.h"

namespace conf {

std::FILE* openCamera(const std::string& cameraPath, const char* mode) {
  return std::fopen(hostPath(cameraPath).c_str(), mode);
}

bool exists(const std::string& cameraPath) {
  std::FILE* f = openCamera(cameraPath, "r");
  if (f == nullptr) return false;
  std::fclose(f);
  return true;
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

bool forEachName(const std::string& routine, const std::string& listPath, const char* marker,
                 const char* pattern, const std::function<bool(const std::string&)>& fn) {
  return forEachLine(listPath, [&](const char* line) {
    if (!holds(line, marker)) return true;
    Field<64> name;
    if (scan(line, pattern, name) != 1) return true;
    if (!plainName(routine, name.str())) return true;
    return fn(name.str());
  });
}

}  // namespace conf
