#include "sync/ptz/presets.h"

#include <vector>

#include "conf/error_log.h"
#include "conf/field.h"
#include "conf/files.h"
#include "conf/keys.h"
#include "conf/lines.h"
#include "conf/rewrite.h"
#include "conf/scan.h"
#include "conf/shell.h"

namespace onvif {

using conf::Field;
using conf::Out;
using shm::Slot;

namespace {

constexpr const char* kPresetList = "/usr/apache/htdocs/onvif/Preset.conf";
constexpr const char* kTourStates = "/etc/dynamic/guardtourstate.conf";
constexpr const char* kTourList = "/tmp/onvif/PresetTourCreate.conf";
constexpr int kTours = 8;
constexpr std::size_t kSteps = 64;

// Where the camera keeps preset N's label: the line holding
// prefix + N + suffix, read with the pattern (preset number, label).
struct PresetSource {
  const char* file;
  const char* prefix;
  const char* suffix;
  const char* pattern;
};

const PresetSource kPtzConf = {"/etc/dynamic/ptz.conf", "P",
                               ".Label=", "root.PTZ.PresetPos.P%d.Label=%s\n"};
const PresetSource kPresetPtz = {"/etc/sysconfig/preset_ptz.conf", "root.preset.position",
                                 ".set=", "root.preset.position%d.set=%s\n"};
const PresetSource kPresetListConf = {"/etc/sysconfig/presetlist.conf", "root.preset.position",
                                      ".set=", "root.preset.position%d.set=%s\n"};

// These brands store each label in a frame of four leading characters and
// one trailing character ("set,Gate;").
bool framedBrand(int brand) { return brand == 40 || brand == 16 || brand == 62; }

const PresetSource& presetSource(int ioType, int brand) {
  if (ioType >= 2 && ioType <= 5) return kPtzConf;
  return framedBrand(brand) ? kPresetPtz : kPresetListConf;
}

// "preset%d.token.name=": the "=" keeps preset 1 from matching preset 11.
std::string presetKey(int n) { return "preset" + std::to_string(n) + ".token.name="; }

void rewritePresetList(const char* routine, int n, const std::string& line) {
  conf::rewrite(conf::inPlace(routine, kPresetList, ""), {conf::fixed(presetKey(n), line)});
}

std::string tourName(int k) { return "presettour" + std::to_string(k) + ".conf"; }

// A guard tour's steps: preset numbers, speeds and dwell times in file order,
// each kept in one byte, at most 64 of each.
struct GuardTour {
  std::vector<unsigned char> presets, speeds, dwells;
};

conf::Key stepValue(const char* key, std::vector<unsigned char>& list) {
  return conf::on(key, [&list](const char* line) {
    Field<64> name;
    int value = 0;
    conf::scan(line, "%[^=]=%d\n", name, value);
    if (list.size() < kSteps) list.push_back(static_cast<unsigned char>(value));
  });
}

int stepAt(const std::vector<unsigned char>& list, std::size_t i) {
  return i < list.size() ? list[i] : 0;
}

// The five lines of each step, "T1.PresetToken=" to "T1.StayTime=PT10S".
std::string stepGroups(const GuardTour& tour) {
  std::string out;
  for (std::size_t i = 0; i < tour.presets.size(); ++i) {
    std::string t = "T" + std::to_string(i + 1) + ".";
    std::string speed = std::to_string(stepAt(tour.speeds, i));
    out += t + "PresetToken=" + std::to_string(tour.presets[i]) + "\n";
    out += t + "PanSpeed=" + speed + "\n" + t + "TiltSpeed=" + speed + "\n" + t +
           "ZoomSpeed=" + speed + "\n";
    out += t + "StayTime=PT" + std::to_string(stepAt(tour.dwells, i)) + "S\n";
  }
  return out;
}

}  // namespace

void Update_SetPreset(shm::ShmBlock& block, int preset) {
  int brand = block.get(Slot::ONVIF_BRAND);
  const PresetSource& src = presetSource(block.get(Slot::ONVIF_IO_TYPE), brand);
  std::string key = src.prefix + std::to_string(preset) + src.suffix;
  int number = 0;
  Field<64> label;
  bool found = false;
  conf::forEachLine(src.file, [&](const char* line) {
    if (!conf::holds(line, key)) return true;
    // The number read, not N, names the preset.
    found = conf::scan(line, src.pattern, number, label) >= 1;
    return false;
  });
  if (!found) return;
  std::string text = label.str();
  // A framed value shorter than its frame is passed through as it is.
  if (framedBrand(brand) && text.size() >= 5) text = text.substr(4, text.size() - 5);
  rewritePresetList("Update_SetPreset", number,
                    presetKey(number) + "YES," + std::to_string(number) + "," + text + "\n");
}

void Update_DeletePreset(shm::ShmBlock&, int preset) {
  rewritePresetList("Update_DeletePreset", preset, presetKey(preset) + "\n");
}

void CHECK_PRESET_TOUR_CREATE_STATE(TourStates& states) {
  int k = 0;
  if (!conf::forEachLine(kTourStates, [&](const char* line) {
        if (!conf::holds(line, "Guard")) return true;
        Field<64> name;
        Field<16> state;
        conf::scan(line, "%[^:]:%s\n", name, state);
        if (k < kTours) states[k] = state.is("set") ? 1 : 0;  // more tours than 8 are ignored
        ++k;
        return true;
      }))
    conf::logError("CHECK_PRESET_TOUR_CREATE_STATE:%s missing.", kTourStates);
}

void UPDATE_PRESET_TOUR_CREATE_CONF(const TourStates& states) {
  const char* routine = "UPDATE_PRESET_TOUR_CREATE_CONF";
  int k = 0;
  // The position of a line, not its content, says which tour it describes.
  conf::rewrite(conf::inPlace(routine, kTourList, "UPDATE_PRESET_TOUR_CREATE_CONF:%s missing."),
                {conf::rule("", [&](const char* line) {
                  ++k;
                  if (k > kTours || !conf::holds(line, tourName(k))) return Out::keep();
                  return Out::write(tourName(k) + (states[k - 1] == 1 ? "=true\n" : "=false\n"));
                })});
}

void UPDATE_PRESET_TOUR_FILES(const TourStates& states) {
  for (int k = 1; k <= kTours; ++k) {
    std::string onvifTour = conf::kLiveDir + tourName(k);
    if (states[k - 1] == 1)
      UPDATE_PRESET_TOUR_X_CONF(onvifTour, "/etc/dynamic/guardtour" + std::to_string(k) + ".conf");
    else
      conf::shellCopy("UPDATE_PRESET_TOUR_FILES", conf::kPersistDir + tourName(k) + ".default",
                      onvifTour);
  }
}

void UPDATE_PRESET_TOUR_X_CONF(const std::string& onvifTour, const std::string& guardTour) {
  const char* missing = "UPDATE_PRESET_TOUR_X_CONF:%s missing.";
  GuardTour tour;
  if (!conf::scanConf(guardTour,
                      {stepValue("PresetNbr=", tour.presets), stepValue("MoveSpeed=", tour.speeds),
                       stepValue("WaitTime=", tour.dwells)}))
    conf::logError(missing, guardTour);  // the tour then loses all its steps
  conf::rewrite(
      conf::inPlace("UPDATE_PRESET_TOUR_X_CONF", onvifTour, missing),
      {conf::dropLine("PresetToken="), conf::dropLine("PanSpeed="), conf::dropLine("TiltSpeed="),
       conf::dropLine("ZoomSpeed="), conf::dropLine("StayTime="),
       conf::rule("Direction=", [&tour](const char*) { return Out::keepThen(stepGroups(tour)); })});
}

int Update_PresetTour(shm::ShmBlock&) {
  TourStates states{};
  CHECK_PRESET_TOUR_CREATE_STATE(states);
  UPDATE_PRESET_TOUR_CREATE_CONF(states);
  UPDATE_PRESET_TOUR_FILES(states);
  return 0;
}

}  // namespace onvif
