#include "sync/video/encoders.h"

#include <cstring>
#include <string>

#include "conf/files.h"
#include "conf/keys.h"
#include "conf/lines.h"
#include "conf/paths.h"
#include "conf/scan.h"

namespace onvif {

int encoderNumber(const char* text, int maxK) {
  for (int k = 1; k <= maxK; ++k)
    if (conf::holds(text, "VideoEncoder" + std::to_string(k) + ".")) return k;
  return 0;
}

bool forEachEncoder(const std::string& routine, int maxK, bool onlyNumbered,
                    const std::function<bool(const std::string&, int)>& fn) {
  return conf::forEachLine(conf::kVideoEncoderList, [&](const char* line) {
    int k = encoderNumber(line, maxK);
    if (onlyNumbered && k == 0) return true;
    conf::Field<64> name;
    if (conf::scan(line, "%s\n", name) != 1 || !conf::plainName(routine, name.str())) return true;
    return fn(name.str(), k);
  });
}

std::string encoderPath(const std::string& name) { return std::string(conf::kLiveDir) + name; }

bool readEncoderFacts(const std::string& name, EncoderFacts& facts) {
  bool encoding = false;
  bool channel = false;
  return conf::scanConf(encoderPath(name), {
      conf::on("Encoding=", [&](const char* line) {
        if (!encoding) conf::scan(line, "Encoding=%s\n", facts.encoding);
        encoding = true;
      }),
      conf::on("Channel=", [&](const char* line) {
        if (!channel) conf::scan(line, "Channel=%s\n", facts.channel);
        channel = true;
      }),
  });
}

conf::Result rewriteEncoder(const std::string& routine, const std::string& name,
                            const std::string& missing, const std::vector<conf::Rule>& rules) {
  return conf::rewrite(conf::inPlace(routine, encoderPath(name), missing), rules);
}

int textNumber(const char* text) {
  int v = 0;
  conf::scan(text, "%d", v);
  return v;
}

std::string MapH264ProfileName(const char* word) {
  if (std::strcmp(word, "baseline") == 0) return "Baseline";
  if (std::strcmp(word, "high") == 0) return "High";
  return "Main";
}

}  // namespace onvif
