#include "sync/video/imaging.h"

#include <cstdio>
#include <cstring>
#include <memory>
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

constexpr const char* kRoutine = "Update_Imapge_Source";
constexpr const char* kIrConf = "/etc/sysconfig/ir.conf";
constexpr const char* kVideoSourceList = "/usr/apache/htdocs/onvif/VideoSource.conf";

// The sensor settings from image_source.conf (and the IR mode of ir.conf).
struct Sensor {
  Field<32> whiteBalance, rgain, bgain, backlight, brightness, sharpness, contrast, colorLevel;
  Field<32> wdr, shutterWdr, icr, exposure, detectedType, agcGain;
};

bool readSensor(Sensor& s) {
  const std::string p = "root.ImageSource.I0.";
  return conf::scanConf(conf::kImageSourceConf,
                        {
                            conf::rest(p + "Sensor.WhiteBalance=", s.whiteBalance),
                            conf::rest(p + "Sensor.WhiteBalance.Rgain=", s.rgain),
                            conf::rest(p + "Sensor.WhiteBalance.Bgain=", s.bgain),
                            conf::rest(p + "Sensor.Backlight=", s.backlight),
                            conf::rest(p + "Sensor.Brightness=", s.brightness),
                            conf::rest(p + "Sensor.Sharpness=", s.sharpness),
                            conf::rest(p + "Sensor.Contrast=", s.contrast),
                            conf::rest(p + "Sensor.ColorLevel=", s.colorLevel),
                            conf::rest(p + "Sensor.Wdr=", s.wdr),
                            conf::rest(p + "Sensor.ShutterWdr=", s.shutterWdr),
                            conf::rest(p + "Sensor.ICR=", s.icr),
                            conf::rest(p + "Sensor.Exposure=", s.exposure),
                            conf::rest(p + "Video.DetectedType=", s.detectedType),
                            conf::rest(p + "Sensor.Exposure.ManualPreset.AGCGain=", s.agcGain),
                        });
}

using Words = std::vector<const char*>;

bool oneOf(const Field<32>& word, const Words& words) {
  for (const char* w : words)
    if (word.is(w)) return true;
  return false;
}

// The 0-100 scales: (x - offset) / divisor * 100, or the line kept.
struct Scale {
  bool kept;
  double offset;
  double divisor;
};
constexpr Scale kKept{true, 0, 0};

// The three sharpness scales (0-255, 1-15, 0-15) belong to three sensor
// families. A marker slot of -1 means the sensor has no such control.
struct ScaleRule {
  const char* key;
  Slot marker;
  Field<32> Sensor::*value;
  Scale device2, device4, others;
};

const ScaleRule kScales[] = {
    // clang-format off
    {"Brightness=",      Slot::IMAGE_BRIGHTNESS, &Sensor::brightness,
     {false, 0, 63},  kKept,          {false, 0, 255}},
    {"ColorSaturation=", Slot::IMAGE_COLORLEVEL, &Sensor::colorLevel,
     {false, 0, 255}, kKept,          {false, 0, 255}},
    {"Contrast=",        Slot::IMAGE_CONTRAST,   &Sensor::contrast,
     {false, 0, 255}, kKept,          {false, 0, 255}},
    {"Sharpness=",       Slot::IMAGE_SHARPNESS,  &Sensor::sharpness,
     {false, 0, 255}, {false, 1, 14}, {false, 0, 15}},
    // clang-format on
};

// The white-balance gains, written in manual white balance only.
struct GainRule {
  const char* key;
  Field<32> Sensor::*value;
};
const GainRule kGains[] = {{"WhiteBalance.CrGain=", &Sensor::rgain},
                           {"WhiteBalance.CbGain=", &Sensor::bgain}};

// White-balance words per device type.
struct WhiteBalanceRow {
  int device;  // 0: every other device type
  Words automatic;
  Words manual;
};

const WhiteBalanceRow kWhiteBalance[] = {
    {2,
     {"auto", "fixed_indoor", "fixed_outdoor"},
     {"manual", "manual25", "manual30", "manual33", "manual37", "manual41", "manual45",
      "manual48", "manual51", "manual54", "manual57", "manual60"}},
    {4, {"auto", "fixed_indoor", "fixed_outdoor", "ATW"}, {"manual"}},
    {0,
     {"auto", "indoor", "outdoor", "fixed_indoor", "fixed_outdoor", "ATW", "auto_noboundary"},
     {"manual", "onepush"}},
};

const WhiteBalanceRow& whiteBalanceRow(int device) {
  for (const WhiteBalanceRow& r : kWhiteBalance)
    if (r.device == device) return r;
  return kWhiteBalance[2];
}

// The IR words describe the lamp: lamp on (night) means the cut filter is out.
struct IrRow {
  Words words;
  const char* line;
};
const IrRow kIrCut[] = {
    {{"auto", "lightsensor", "smart"}, "IrCutFilter=AUTO\n"},
    {{"lighton", "off", "manualoff"}, "IrCutFilter=ON\n"},
    {{"lightoff", "on", "manualon"}, "IrCutFilter=OFF\n"},
};

std::string oneDecimal(float v) {
  char buf[64];
  std::snprintf(buf, sizeof buf, "%.1f", static_cast<double>(v));
  return buf;
}

// What the rules work from, read before the rewrite.
struct Imaging {
  Sensor sensor;
  int device = 0;
  int ioType = 0;
  // The exposure's "no control" marker, taken before the exposure mode is
  // written into the same slot.
  bool noExposureControl = false;

  bool manualExposure() const { return oneOf(sensor.exposure, {"manual", "manualpreset"}); }
  double gainDivisor() const { return ioType == 2 || ioType == 3 ? 255 : 127; }
};

// The sensor settings and, below I/O type 3, the IR mode; missing files are
// logged and leave their values empty.
void readImaging(Imaging& in) {
  if (!readSensor(in.sensor)) conf::logError("[Update_Imapge_Source]SYSTEM_IMAGE_CONFIG missing");
  if (in.ioType < 3 && !conf::scanConf(kIrConf, {conf::on("root.IR.Mode", [&](const char* line) {
                                         conf::scan(line, "root.IR.Mode=%s\n", in.sensor.icr);
                                       })}))
    conf::logError("[Update_Imapge_Source]SYSTEM_IR_CONFIG missing");
}

conf::Rule backlightRule(const Imaging& in) {
  return conf::rule("BacklightCompensation.Mode=", [&in](const char*) {
    if (in.sensor.backlight.is("on")) return Out::write("BacklightCompensation.Mode=ON\n");
    if (in.sensor.backlight.is("off")) return Out::write("BacklightCompensation.Mode=OFF\n");
    return Out::keep();
  });
}

conf::Rule scaleRule(const ScaleRule& r, const Imaging& in, const shm::ShmBlock& block) {
  return conf::rule(r.key, [&r, &in, &block](const char*) {
    if (block.get(r.marker) == -1) return Out::write(std::string(r.key) + "NONE\n");
    const Scale& sc = in.device == 2 ? r.device2 : in.device == 4 ? r.device4 : r.others;
    if (sc.kept) return Out::keep();
    double x = textNumber((in.sensor.*r.value).c_str());
    return Out::write(r.key + ScaledSetting(x - sc.offset, sc.divisor) + "\n");
  });
}

// A level word ("1" to "4") turns WDR on and gives the level of a later
// "WideDynamicRange.Level=" line.
conf::Rule wdrModeRule(const Imaging& in, const std::shared_ptr<int>& level) {
  return conf::rule("WideDynamicRange.Mode=", [&in, level](const char*) {
    const Field<32>& wdr = in.sensor.wdr;
    if (wdr.is("off")) return Out::write("WideDynamicRange.Mode=OFF\n");
    if (wdr.is("on")) return Out::write("WideDynamicRange.Mode=ON\n");
    if (in.device != 4 && oneOf(wdr, {"1", "2", "3", "4"})) {
      *level = wdr.c_str()[0] - '0';
      return Out::write("WideDynamicRange.Mode=ON\n");
    }
    return Out::keep();
  });
}

conf::Rule wdrLevelRule(const Imaging& in, const std::shared_ptr<int>& level) {
  return conf::rule("WideDynamicRange.Level=", [&in, level](const char*) {
    if (in.device == 4 || *level == 0) return Out::keep();
    return Out::write("WideDynamicRange.Level=" + std::to_string(*level) + ".0\n");
  });
}

conf::Rule whiteBalanceRule(const Imaging& in, shm::ShmBlock& block) {
  return conf::rule("WhiteBalance.Mode=", [&in, &block](const char*) {
    const WhiteBalanceRow& row = whiteBalanceRow(in.device);
    if (oneOf(in.sensor.whiteBalance, row.automatic)) {
      block.set(Slot::IMAGE_WBC_MODE, 2);
      return Out::write("WhiteBalance.Mode=AUTO\n");
    }
    if (oneOf(in.sensor.whiteBalance, row.manual)) {
      block.set(Slot::IMAGE_WBC_MODE, 3);
      return Out::write("WhiteBalance.Mode=MANUAL\n");
    }
    return Out::keep();
  });
}

conf::Rule gainRule(const GainRule& g, const Imaging& in) {
  return conf::rule(g.key, [&g, &in](const char*) {
    if (in.device == 2 || !in.sensor.whiteBalance.is("manual")) return Out::keep();
    double x = textNumber((in.sensor.*g.value).c_str());
    return Out::write(g.key + ScaledSetting(x, in.gainDivisor()) + "\n");
  });
}

conf::Rule irCutRule(const Imaging& in) {
  return conf::rule("IrCutFilter=", [&in](const char*) {
    for (const IrRow& r : kIrCut)
      if (oneOf(in.sensor.icr, r.words)) return Out::write(r.line);
    return Out::keep();
  });
}

conf::Rule exposureModeRule(const Imaging& in, shm::ShmBlock& block) {
  return conf::rule("Exposure.Mode=", [&in, &block](const char*) {
    block.set(Slot::IMAGE_EXPOSURE_MODE, in.manualExposure() ? 3 : 2);
    return Out::write(in.manualExposure() ? "Exposure.Mode=MANUAL\n" : "Exposure.Mode=AUTO\n");
  });
}

conf::Rule previousAeRule(const Imaging& in) {
  return conf::rule("PreviousAE.Mode=", [&in](const char*) {
    std::string mode = in.manualExposure() ? "NONE" : in.sensor.exposure.str();
    return Out::write("PreviousAE.Mode=" + mode + "\n");
  });
}

conf::Rule exposureGainRule(const Imaging& in, const shm::ShmBlock& block) {
  return conf::rule("Exposure.Gain=", [&in, &block](const char*) {
    if (in.noExposureControl) return Out::keep();
    int agc = textNumber(in.sensor.agcGain.c_str());
    if (block.get(Slot::ONVIF_BRAND) == 42 && in.ioType >= 2 && in.ioType <= 4)
      return Out::write("Exposure.Gain=" + oneDecimal(static_cast<float>(agc - 1.0)) + "\n");
    int max = block.get(Slot::IMAGE_EXPOSURE_GAIN_MAX);
    if (max == 0) return Out::keep();  // no gain scale: nothing to convert with
    float gain = static_cast<float>(agc) / static_cast<float>(max) * 100.0f;
    return Out::write("Exposure.Gain=" + oneDecimal(gain) + "\n");
  });
}

// The rules of the video source record, in their order. They read `in` and
// `block` when the rewrite runs, so both must outlive it.
std::vector<conf::Rule> imagingRules(const Imaging& in, shm::ShmBlock& block) {
  auto wdrLevel = std::make_shared<int>(0);  // 0: no level word seen
  return {
      backlightRule(in),
      scaleRule(kScales[0], in, block),  // brightness
      scaleRule(kScales[1], in, block),  // colour saturation
      scaleRule(kScales[2], in, block),  // contrast
      scaleRule(kScales[3], in, block),  // sharpness
      wdrModeRule(in, wdrLevel),
      wdrLevelRule(in, wdrLevel),
      whiteBalanceRule(in, block),
      gainRule(kGains[0], in),
      gainRule(kGains[1], in),
      irCutRule(in),
      exposureModeRule(in, block),
      previousAeRule(in),
      exposureGainRule(in, block),
  };
}

// The first record the list names on a "VideoSource1." line, or "" when
// there is none; `listed` is false when the list is missing.
std::string videoSource(bool& listed) {
  std::string source;
  listed = conf::forEachName(kRoutine, kVideoSourceList, "VideoSource1.", "%s\n",
                             [&](const std::string& name) {
                               source = name;
                               return false;
                             });
  return source;
}

}  // namespace

std::string ScaledSetting(double x, double divisor) {
  return oneDecimal(static_cast<float>(x / divisor * 100.0));
}

int Update_Imapge_Source(int, int device, int ioType, shm::ShmBlock& block) {
  Imaging in;
  in.device = device;
  in.ioType = ioType;
  readImaging(in);
  bool listed = false;
  const std::string source = videoSource(listed);
  if (!listed) return conf::logError("[Update_Imapge_Source]ONVIF_VIDEO_SOURCE missing");
  const std::string missing = "[Update_Imapge_Source]ONVIF_VIDEO_SOURCE_1 missing";
  if (source.empty()) return conf::logError(missing);
  in.noExposureControl = block.get(Slot::IMAGE_EXPOSURE_MODE) == -1;
  return conf::rewrite(conf::inPlace(kRoutine, conf::kLiveDir + source, missing),
                       imagingRules(in, block))
      .shell;
}

}  // namespace onvif
