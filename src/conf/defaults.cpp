#include "conf/defaults.h"

#include <functional>
#include <string>

#include "conf/error_log.h"
#include "conf/field.h"
#include "conf/files.h"
#include "conf/keys.h"
#include "conf/lines.h"
#include "conf/paths.h"
#include "conf/rewrite.h"
#include "conf/scan.h"
#include "conf/shell.h"
#include "conf/write_file.h"

namespace onvif {

using conf::Field;

namespace {

constexpr const char* kDir = conf::kPersistDir;
constexpr const char* kBrandConf = "/etc/sysconfig/brand.conf";
constexpr const char* kNameScope = "ConfigurableScopes=onvif://www.onvif.org/name/";

// A list file, the text that marks a record line in it, the pattern that
// reads the record's name from that line, and the tag of its missing-file line.
struct RecordList {
  const char* list;
  const char* marker;
  const char* pattern;
  const char* tag;
};

const RecordList kProfiles = {"Profiles.conf", "profile filename=", "profile filename=%s\n",
                              "ONVIF_LODING_PROFILE_FILE"};
const RecordList kRecordLists[] = {
    {"VideoEncoder.conf", ".VEncoder", "%s\n", "ONVIF_VIDEO_ENCODER_CONF"},
    {"AudioEncoder.conf", ".AEncoder", "%s\n", "ONVIF_AUDIO_ENCODER_CONF"},
    {"MetaData.conf", ".MetaData", "%s\n", "ONVIF_METADATA_CONF"},
    {"VideoSource.conf", ".VSource", "%s\n", "ONVIF_VIDEO_SOURCE"},
    {"VideoSourceConf.conf", ".VSConf", "%s\n", "ONVIF_VIDEO_SOURCE_CONF"},
    {"AudioSourceConf.conf", ".ASConf", "%s\n", "ONVIF_AUDIO_SOURCE_CONF"},
    {"PTZ.conf", ".PTZConf", "%s\n", "ONVIF_PTZ_CONF"},
};
const char* const kRecordWildcards[] = {"*.profile", "*.VEncoder", "*.AEncoder", "*.MetaData",
                                        "*.VSource", "*.VSConf",   "*.ASConf",   "*.PTZConf"};
const char* const kRemovedAndRestored[] = {"H264.VEOption",   "H264_2.VEOption", "H264_3.VEOption",
                                           "H264_4.VEOption", "JPEG.VEOption",   "MPEG4.VEOption",
                                           "AudioOutput1.conf", "AudioDecoder1.ADecoder"};

std::string inDir(const std::string& name) { return std::string(kDir) + name; }

// "cp <dir>X.default <dir>X".
int copyDefault(const char* routine, const std::string& name) {
  return conf::shellCopy(routine, inDir(name) + ".default", inDir(name));
}

// "rm <dir>X" then "cp <dir>X.default <dir>X". When the copy could not be
// written whole, neither is run and X stays as it is.
int restore(const char* routine, const std::string& name) {
  if (!conf::roomForCopy(inDir(name) + ".default", inDir(name)))
    return conf::logWriteFailed(routine, inDir(name));
  conf::shellRemove(inDir(name));
  return copyDefault(routine, name);
}

int logListMissing(const char* routine, const RecordList& l) {
  return conf::logError(std::string("onvifServer:[") + routine + "]" + l.tag + " missing");
}

// Calls `each` once for every line of a list file with the record name held:
// the name of the last record line seen so far, empty before the first. A
// record line whose name is refused (not a plain file name) runs nothing and
// leaves the name held as it was.
bool walkList(const char* routine, const std::string& listPath, const RecordList& l,
              const std::function<void(const std::string&)>& each) {
  Field<64> held;
  return conf::forEachLine(listPath, [&](const char* line) {
    Field<64> name;
    if (conf::holds(line, l.marker) && conf::scan(line, l.pattern, name) == 1) {
      if (!conf::plainName(routine, name.str())) return true;
      held = name;
    }
    each(held.str());
    return true;
  });
}

// Stamps the brand word into the name scope of onvif.conf.default and marks
// the initial synchronisation as done. When the stamped copy cannot be
// written whole, onvif.conf is not restored from the default either.
void stampScopes(const char* routine) {
  Field<64> brand;
  if (!conf::scanConf(kBrandConf, {conf::str("root.Brand.Brand=", brand).first()})) {
    conf::logError("onvifServer: %s missing", kBrandConf);
    return;
  }
  const conf::RewriteJob job =
      conf::inPlace(routine, inDir("onvif.conf.default"), "onvifServer:sync %s missing")
          .through(std::string(conf::kTmpDir) + routine)
          .unsynced()
          .sourceFirst()
          .wPlus();
  conf::rewrite(job, {conf::set(kNameScope, brand.str()),
                      conf::fixed("Initial_Sync_Data=", "Initial_Sync_Data=true\n")});
}

// The fixed files both resets restore, in their order. The soft reset also
// restores Users.conf right after the audio decoder.
int restoreFixedFiles(const char* routine, shm::ShmBlock& block, bool withUsers) {
  int shell = 0;
  for (const char* name : kRemovedAndRestored) restore(routine, name);
  if (withUsers) restore(routine, "Users.conf");
  copyDefault(routine, "PresetTourCreate.conf");
  for (int k = 1; k <= 8; ++k) copyDefault(routine, "presettour" + std::to_string(k) + ".conf");
  int brand = block.get(shm::Slot::ONVIF_BRAND);
  if (brand == 42) copyDefault(routine, "PTZ_Move.PTZConf");
  copyDefault(routine, "OSDs.conf");
  copyDefault(routine, "OSD.osdconf");
  if (brand == 16 || brand == 62) copyDefault(routine, "Preset.conf");
  for (int k = 1; k <= 4; ++k)
    shell = copyDefault(routine, "VideoAnalytics" + std::to_string(k) + ".VAnalytic");
  return shell;
}

}  // namespace

int Soft_Default_All_Conf(shm::ShmBlock& block) {
  const char* routine = "Soft_Default_All_Conf";
  conf::Chain stamped;
  stampScopes(routine);
  if (stamped.intact()) restore(routine, "onvif.conf");

  if (!walkList(routine, inDir(kProfiles.list), kProfiles,
                [](const std::string& name) { conf::shellRemove(inDir(name)); }))
    logListMissing(routine, kProfiles);
  if (!walkList(routine, inDir(kProfiles.list) + ".default", kProfiles,
                [&](const std::string& name) { copyDefault(routine, name); }))
    logListMissing(routine, kProfiles);
  restore(routine, kProfiles.list);

  for (const RecordList& l : kRecordLists) {
    if (!walkList(routine, inDir(l.list), l, [&](const std::string& name) {
          conf::shellRemove(inDir(name));
          copyDefault(routine, name);
        }))
      logListMissing(routine, l);
  }
  return restoreFixedFiles(routine, block, true);
}

int Hard_Default_All_Conf(shm::ShmBlock& block) {
  const char* routine = "Hard_Default_All_Conf";
  conf::Chain stamped;
  stampScopes(routine);
  if (stamped.intact()) restore(routine, "onvif.conf");
  for (const char* name : {"Profiles.conf", "Users.conf", "Subscription.conf"})
    restore(routine, name);
  for (const char* pattern : kRecordWildcards) conf::shellRemoveGlob(kDir, pattern);

  auto copy = [&](const std::string& name) { copyDefault(routine, name); };
  if (!walkList(routine, inDir(kProfiles.list), kProfiles, copy))
    logListMissing(routine, kProfiles);
  for (const RecordList& l : kRecordLists)
    if (!walkList(routine, inDir(l.list), l, copy)) logListMissing(routine, l);
  return restoreFixedFiles(routine, block, false);
}

}  // namespace onvif
