#include "sync/ptz/ptz_scopes.h"

#include <string>

#include "conf/error_log.h"
#include "conf/files.h"
#include "conf/lines.h"
#include "conf/rewrite.h"

namespace onvif {

namespace {

constexpr const char* kStreamingScope = "FixedScopes=onvif://www.onvif.org/Profile/Streaming";
constexpr const char* kPtzScope = "FixedScopes=onvif://www.onvif.org/type/ptz";

}  // namespace

void update_onvif_conf_file_ptzscopes(int ptz) {
  const std::string routine = "update_onvif_conf_file_ptzscopes";
  const std::string missing = routine + ":%s missing";
  bool present = false;
  if (!conf::forEachLine(conf::kLiveOnvifConf, [&](const char* line) {
        present = conf::holds(line, kPtzScope);
        return !present;
      })) {
    conf::logError(missing.c_str(), conf::kLiveOnvifConf);
    return;
  }
  const bool on = ptz == 1;
  if (on == present) return;

  // Two different rewrites of one rule each. On: the PTZ scope follows each
  // Streaming profile scope (none, none added). Off: every PTZ scope line goes.
  const conf::Rule add = conf::rule(kStreamingScope, [](const char*) {
    return conf::Out::keepThen(std::string(kPtzScope) + "\n");
  });
  conf::rewrite(conf::onvifConf(routine, missing), {on ? add : conf::dropLine(kPtzScope)});
}

void update_onvif_profile_ptzconf(int ptz) {
  const std::string routine = "update_onvif_profile_ptzconf";
  const std::string missing = routine + ":%s missing";
  const char* binding = ptz == 1 ? "PTZ=PTZConf1\n" : "PTZ=NONE\n";
  if (!conf::forEachName(routine, conf::kProfileList, "profile filename=", "profile filename=%s\n",
                         [&](const std::string& name) {
                           // A missing record is logged; the next profile is processed.
                           conf::rewrite(conf::inPlace(routine, conf::kLiveDir + name, missing),
                                         {conf::fixed("PTZ=", binding)});
                           return true;
                         }))
    conf::logError(missing.c_str(), conf::kProfileList);
}

}  // namespace onvif
