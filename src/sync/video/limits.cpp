#include "sync/video/limits.h"

#include <algorithm>
#include <cstdio>
#include <functional>
#include <set>

#include "conf/error_log.h"
#include "conf/field.h"
#include "conf/files.h"
#include "conf/keys.h"
#include "conf/lines.h"
#include "conf/rewrite.h"
#include "conf/scan.h"
#include "conf/write_file.h"

namespace onvif {

using conf::Field;
using shm::Slot;

namespace {

constexpr const char* kOptions = "/tmp/options.conf";
constexpr const char* kAvailable = "/tmp/onvif/available_resolution";
constexpr const char* kFiveFields = "%[^','],%[^','],%[^','],%[^','],%[^'\n']";
constexpr const char* kShared[] = {"1080p", "sxga", "720p", "xga", "svga",
                                   "d1",    "vga",  "cif",  "qcif"};

std::string channelFile(int n) {
  return "/tmp/onvif/available_resolution_with_" + std::to_string(n) + "_channel";
}

// key + low + "%d\n": the upper end of a "low-high" range.
conf::Key rangeMax(const std::string& key, const char* low, int& v) {
  std::string pattern = conf::patternText(key) + low + "%d\n";
  return conf::on(key, [pattern, &v](const char* line) { conf::scan(line, pattern.c_str(), v); });
}

// A combination line of five fields, its text without the newline.
struct Combination {
  Field<16> field[5];
  std::string text;
};

// Calls fn with each five-field line of the list; false when it is missing.
bool forEachCombination(const std::function<void(const Combination&)>& fn) {
  return conf::forEachLine(kAvailable, [&](const char* line) {
    Combination c;
    if (conf::scan(line, kFiveFields, c.field[0], c.field[1], c.field[2], c.field[3], c.field[4]) !=
        5)
      return true;
    c.text = line;
    if (!c.text.empty() && c.text.back() == '\n') c.text.pop_back();
    fn(c);
    return true;
  });
}

// Adds the lines that a channel file does not hold yet.
void addLines(const std::string& routine, const std::string& path,
              const std::vector<std::string>& lines) {
  std::vector<std::string> have;
  conf::forEachLine(path, [&](const char* line) {
    std::string l(line);
    if (!l.empty() && l.back() == '\n') l.pop_back();
    have.push_back(l);
    return true;
  });
  std::string text;
  for (const std::string& l : have) text += l + "\n";
  bool added = false;
  for (const std::string& l : lines) {
    if (std::find(have.begin(), have.end(), l) != have.end()) continue;
    text += l + "\n";
    added = true;
  }
  if (added) conf::writeFile(routine, path, text);
}

}  // namespace

std::vector<std::string> SplitAvailableResolutions(const std::string& list) {
  std::vector<std::string> out;
  std::string::size_type amp = list.find('&');
  out.push_back(list.substr(0, amp));
  if (amp == std::string::npos) return out;
  std::string rest = list.substr(amp + 1);
  bool split = false;
  while ((amp = rest.find('&')) != std::string::npos) {
    out.push_back(rest.substr(0, amp));
    rest = rest.substr(amp + 1);
    split = true;
  }
  if (split) out.push_back(rest);
  return out;
}

int Update_AvailableResolutionTable(shm::ShmBlock& block) {
  const std::string routine = "Update_AvailableResolutionTable";
  const std::string p = "root.Image.I0.Appearance.";
  Field<256> list;
  EncoderLimits l;
  if (!conf::scanConf(kOptions, {conf::str(p + "Resolution=", list),
                                 rangeMax("root.Framerate.H264=", "1-", l.fps),
                                 rangeMax(p + "H264Bitrate=", "64-", l.bitrate[0]),
                                 rangeMax(p + "H264_2Bitrate=", "64-", l.bitrate[1]),
                                 rangeMax(p + "H264_3Bitrate=", "64-", l.bitrate[2]),
                                 rangeMax(p + "H264_4Bitrate=", "64-", l.bitrate[3]),
                                 rangeMax(p + "H264VideoKeyFrameInterval=", "2-", l.gov[0]),
                                 rangeMax(p + "H264_2VideoKeyFrameInterval=", "2-", l.gov[1]),
                                 rangeMax(p + "H264_3VideoKeyFrameInterval=", "2-", l.gov[2]),
                                 rangeMax(p + "H264_4VideoKeyFrameInterval=", "2-", l.gov[3])}))
    conf::logError("Update_AvailableResolutionTable:%s missing.", kOptions);

  if (list.empty()) {
    conf::logError("Update_AvailableResolutionTable:available_resolution is NULL!!!");
  } else {
    std::string text;
    for (const std::string& entry : SplitAvailableResolutions(list.str()))
      text += entry + (block.get(Slot::ONVIF_BRAND) == 9 ? ",disable,disable\n" : "\n");
    // The channel files are made from the list only once it is written whole,
    // and the shared lines added only once they are.
    bool written = conf::writeFile(routine, kAvailable, text);
    std::printf("[Main] A5S sdk310 Parse available resolution done!\n");
    if (written && SAVE_MANY_CHANNELS_AVAILABLE_RESOLUTION() == 0)
      FindSameMaxResolutionWithManyChannel();
  }
  return Update_FPS_GOV_BITRATE(block, l);
}

int Update_FPS_GOV_BITRATE(shm::ShmBlock& block, const EncoderLimits& l) {
  const std::string routine = "Update_FPS_GOV_BITRATE";
  bool usable = l.fps >= 1;
  for (int n = 0; n < 4; ++n) usable = usable && l.bitrate[n] >= 1 && l.gov[n] >= 1;
  if (!usable) return conf::logError("Update_FPS_GOV_BITRATE can't sync Max FPS/GOV/Bitrate.");

  struct OptionFile {
    const char* path;
    int stream;  // H.264 stream 0..3, or -1 for JPEG
  };
  const OptionFile files[] = {{"/usr/apache/htdocs/onvif/JPEG.VEOption", -1},
                              {"/usr/apache/htdocs/onvif/H264.VEOption", 0},
                              {"/usr/apache/htdocs/onvif/H264_2.VEOption", 1},
                              {"/usr/apache/htdocs/onvif/H264_3.VEOption", 2},
                              {"/usr/apache/htdocs/onvif/H264_4.VEOption", 3}};
  // Brand 30 sets the bitrate ceilings of the third and fourth stream itself.
  const bool ownLowStreamBitrates = block.get(Slot::ONVIF_BRAND) == 30;
  int shell = 0;
  for (const OptionFile& f : files) {
    // The JPEG file keeps its GOP and bit-rate lines.
    const bool h264 = f.stream >= 0;
    const int gov = h264 ? l.gov[f.stream] : 0;
    const int bitrate = h264 ? l.bitrate[f.stream] : 0;
    const std::vector<conf::Rule> rules = {
        conf::set("FrameRateRange.Max=", std::to_string(l.fps)),
        conf::set("EncodingIntervalRange.Max=", std::to_string(l.fps)),
        conf::when(h264, conf::set("GovLengthRange.Max=", std::to_string(gov))),
        conf::when(h264 && !(ownLowStreamBitrates && f.stream >= 2),
                   conf::set("BitrateRange.Max=", std::to_string(bitrate))),
    };
    const conf::RewriteJob job =
        conf::inPlace(routine, f.path, "Update_FPS_GOV_BITRATE:%s missing.")
            .through(std::string(conf::kTmpDir) + "OS_" + routine);
    shell = conf::rewrite(job, rules).shell;
  }
  return shell;
}

int SAVE_MANY_CHANNELS_AVAILABLE_RESOLUTION() {
  const std::string routine = "SAVE_MANY_CHANNELS_AVAILABLE_RESOLUTION";
  std::string byChannels[4];
  if (!forEachCombination([&](const Combination& c) {
        int enabled = 0;
        for (const Field<16>& f : c.field) enabled += f.is("disable") ? 0 : 1;
        if (enabled >= 1 && enabled <= 4) byChannels[enabled - 1] += c.text + "\n";
      }))
    return conf::logError("SAVE_MANY_CHANNELS_AVAILABLE_RESOLUTION File: %s missing!!!",
                          kAvailable);
  bool written = true;
  for (int n = 1; n <= 4 && written; ++n)
    written = conf::writeFile(routine, channelFile(n), byChannels[n - 1]);
  return written ? 0 : -1;
}

int FindSameMaxResolutionWithManyChannel() {
  const std::string routine = "FindSameMaxResolutionWithManyChannel";
  std::set<std::string> usable[5];
  bool used[5] = {};
  if (!forEachCombination([&](const Combination& c) {
        for (int f = 0; f < 5; ++f) {
          if (c.field[f].is("disable")) continue;
          used[f] = true;
          usable[f].insert(c.field[f].str());
        }
      }))
    return conf::logError("FindSameMaxResolutionWithManyChannel File: %s missing!!!", kAvailable);

  for (const char* name : kShared) {
    bool everyChannel = false;
    for (int f = 0; f < 5; ++f) {
      if (!used[f]) continue;
      everyChannel = usable[f].count(name) > 0;
      if (!everyChannel) break;
    }
    if (!everyChannel) continue;
    const std::string s(name);
    addLines(
        routine, channelFile(2),
        {s + "," + s + ",disable,disable,disable", "disable," + s + "," + s + ",disable,disable"});
    addLines(routine, channelFile(3),
             {s + "," + s + "," + s + ",disable,disable",
              "disable," + s + "," + s + "," + s + ",disable"});
    return 0;
  }
  return 0;
}

}  // namespace onvif
