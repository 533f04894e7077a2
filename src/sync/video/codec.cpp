#include "sync/video/codec.h"

#include "conf/error_log.h"
#include "conf/files.h"
#include "conf/keys.h"
#include "conf/paths.h"

namespace onvif {

void check_codec(const std::string& name, conf::Field<64>& out) {
  if (!conf::plainName("check_codec", name)) return;
  std::string path = std::string(conf::kLiveDir) + name + ".VEncoder";
  if (!conf::scanConf(path, {conf::str("Encoding=", out).first()}))
    conf::logError("check_codec: %s missing", path);
}

}  // namespace onvif
