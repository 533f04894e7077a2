#include "sync/video/orientation.h"

#include <cstring>
#include <optional>
#include <vector>

#include "conf/error_log.h"
#include "conf/files.h"
#include "conf/keys.h"
#include "conf/lines.h"
#include "conf/rewrite.h"
#include "sync/video/encoders.h"

namespace onvif {

using conf::Field;
using conf::Out;
using shm::Slot;

namespace {

constexpr const char* kVideoSourceConfig = "/tmp/onvif/VideoSource1.VSConf";

// Rotation words, their ONVIF_ROTATE_MODE code and what the video source
// configuration shows. An unrotated image ("0") is written as RotateMode=ON
// with 0 degrees: the server expects it that way.
struct RotationRow {
  const char* word;
  int code;
  const char* mode;    // "RotateMode=" line
  const char* degree;  // "RotateDegree=" line, nullptr: kept
};

const RotationRow kRotations[] = {
    {"0", 0, "RotateMode=ON\n", "RotateDegree=0\n"},
    {"flip", 1, "RotateMode=OFF\n", nullptr},
    {"mirror", 2, "RotateMode=OFF\n", nullptr},
    {"clockwise", 3, "RotateMode=ON\n", "RotateDegree=90\n"},
    {"rotate", 4, "RotateMode=ON\n", "RotateDegree=180\n"},
    {"counterclockwise", 5, "RotateMode=ON\n", "RotateDegree=270\n"},
    {"clockwise_mirror", 6, "RotateMode=ON\n", "RotateDegree=90\n"},
    {"clockwise_flip", 7, "RotateMode=ON\n", "RotateDegree=270\n"},
};

// The row of a code; any code not listed shows as "0".
const RotationRow& rotationOf(int code) {
  for (const RotationRow& r : kRotations)
    if (r.code == code) return r;
  return kRotations[0];
}

// How many encoders (VideoEncoder1 up) carry an H.264 stream whose profile is
// written, by layout code; the k-th of them carries H.264 stream k. Layouts
// that start with JPEG (0, 9 to 13) and 4 keep every profile line.
int profiledEncoders(int code) {
  static const int kCount[14] = {0, 1, 2, 1, 0, 3, 2, 4, 3, 0, 0, 0, 0, 0};
  return code >= 0 && code <= 13 ? kCount[code] : 0;
}

}  // namespace

int RotationCode(const char* word) {
  for (const RotationRow& r : kRotations)
    if (std::strcmp(word, r.word) == 0) return r.code;
  return 0;
}

int Update_Flip_Vision(shm::ShmBlock& block) {
  Field<32> word;
  if (conf::scanConf(conf::kImageAppearanceConf,
                     {conf::str("root.Image.I0.Appearance.Rotation=", word)}))
    block.set(Slot::ONVIF_ROTATE_MODE, RotationCode(word.c_str()));
  else
    conf::logError("[Update_Flip_Vision] %s missing", conf::kImageAppearanceConf);

  // Without the web file the configuration follows the code the slot keeps.
  const RotationRow& row = rotationOf(block.get(Slot::ONVIF_ROTATE_MODE));
  return conf::rewrite(conf::inPlace("Update_Flip_Vision", kVideoSourceConfig,
                                     "Update_Flip_Vision:%s missing")
                           .wPlus(),
                       {conf::fixed("RotateMode=", row.mode),
                        row.degree ? conf::fixed("RotateDegree=", row.degree)
                                   : conf::keepLine("RotateDegree=")})
      .shell;
}

int Update_PTZ_Image_Flip(shm::ShmBlock& block) {
  Field<32> flip;
  if (!conf::scanConf(conf::kImageSourceConf,
                      {conf::str("root.ImageSource.I0.Sensor.Flip=", flip).first()}))
    return conf::logError("Update_PTZ_Image_Flip %s missing", conf::kImageSourceConf);
  block.set(Slot::ONVIF_IMAGE_FLIP, flip.is("Image") ? 1 : 0);
  return 0;
}

int Update_H264Profile(shm::ShmBlock& block) {
  Field<16> words[4];
  const std::string p = "root.Image.I0.Appearance.";
  if (!conf::scanConf(
          conf::kImageAppearanceConf,
          {conf::str(p + "H264Profile=", words[0]), conf::str(p + "H264_2Profile=", words[1]),
           conf::str(p + "H264_3Profile=", words[2]), conf::str(p + "H264_4Profile=", words[3])}))
    conf::logError("[Update_H264Profile]%s missing", conf::kImageAppearanceConf);
  return START_SYNC_H264PROFILE(block, words);
}

int START_SYNC_H264PROFILE(shm::ShmBlock& block, const Field<16> (&words)[4]) {
  const std::string routine = "START_SYNC_H264PROFILE";
  int profiled = profiledEncoders(block.get(Slot::ONVIF_MULTIPLE_STREAM));
  int shell = 0;
  bool listed = forEachEncoder(routine, 4, false, [&](const std::string& name, int k) {
    std::optional<std::string> profile;
    if (k >= 1 && k <= profiled) profile = MapH264ProfileName(words[k - 1].c_str());
    shell = rewriteEncoder(routine, name, "START_SYNC_H264PROFILE:%s missing",
                           {conf::setOr("H264Profile=", profile)})
                .shell;
    return true;
  });
  return listed ? shell
                : conf::logError("START_SYNC_H264PROFILE:%s missing", conf::kVideoEncoderList);
}

int Update_EncodingPriority(shm::ShmBlock&) {
  const std::string routine = "Update_EncodingPriority";
  if (!conf::exists(conf::kImageAppearanceConf))
    return conf::logError("[Update_EncodingPriority]%s missing", conf::kImageAppearanceConf);
  int shell = 0;
  bool listed = forEachEncoder(routine, 0, false, [&](const std::string& name, int) {
    Field<16> codec;  // the "Encoding=" value seen so far in this record
    conf::Result r = rewriteEncoder(
        routine, name, "[Update_EncodingPriority]ONVIF_VIDEO_ENCODER_X missing",
        {conf::rule("Encoding=",
                    [&](const char* line) {
                      conf::scan(line, "Encoding=%s\n", codec);
                      return Out::keep();
                    }),
         conf::rule("Quality=", [&](const char*) {
           return codec.is("H264") || codec.is("H265") ? Out::write("Quality=0\n") : Out::keep();
         })});
    shell = r.shell;
    return r.status != conf::Status::SourceMissing;
  });
  return listed ? shell
                : conf::logError("[Update_EncodingPriority]%s missing", conf::kVideoEncoderList);
}

}  // namespace onvif
