#include "conf/keys.h"

#include "conf/lines.h"

namespace conf {

Key num(const std::string& key, int& v) {
  std::string pattern = patternText(key) + "%d\n";
  return Key{key, [pattern, &v](const char* line) { scan(line, pattern.c_str(), v); }};
}

Key on(const std::string& key, std::function<void(const char* line)> fn) {
  return Key{key, std::move(fn)};
}

bool scanConf(const std::string& cameraPath, const std::vector<Key>& keys) {
  return forEachLine(cameraPath, [&keys](const char* line) {
    for (const Key& k : keys) {
      if (!holds(line, k.key)) continue;
      k.read(line);
      return !k.stop;
    }
    return true;
  });
}

}  // namespace conf
