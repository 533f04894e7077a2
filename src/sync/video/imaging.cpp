#include "sync/video/imaging.h"

#include <cstdio>
#include <cstring>
#include <vector>

#include "conf/error_log.h"
#include "conf/keys.h"
#include "conf/lines.h"
#include "conf/paths.h"
#include "conf/rewrite.h"
#include "sync/video/encoders.h"

namespace onvif {

using conf::Field;
using conf::Out;
using shm::Slot;

namespace {

constexpr const char* kRoutine = "Update_Imapge_Source";
constexpr const char* kImageSourceConf = "/etc/sysconfig/image_source.conf";
constexpr const char* kIrConf = "/etc/sysconfig/ir.conf";
constexpr const char* kVideoSourceList = "/usr/apache/htdocs/onvif/VideoSource.conf";

// The sensor settings from image_source.conf (and the IR mode of ir.conf).
struct Sensor {
  Field<32> whiteBalance, rgain, bgain, backlight, brightness, sharpness, contrast, colorLevel;
  Field<32> wdr, shutterWdr, icr, exposure, detectedType, agcGain;
};

bool readSensor(Sensor& s) {
  const std::string p = "root.ImageSource.I0.";
  return conf::scanConf(kImageSourceConf, {
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
    {"Brightness=", Slot::IMAGE_BRIGHTNESS, &Sensor::brightness, {false, 0, 63}, kKept, {false, 0, 255}},
    {"ColorSaturation=", Slot::IMAGE_COLORLEVEL, &Sensor::colorLevel, {false, 0, 255}, kKept, {false, 0, 255}},
    {"Contrast=", Slot::IMAGE_CONTRAST, &Sensor::contrast, {false, 0, 255}, kKept, {false, 0, 255}},
    {"Sharpness=", Slot::IMAGE_SHARPNESS, &Sensor::sharpness, {false, 0, 255}, {false, 1, 14}, {false, 0, 15}},
};

// The white-balance gains, written in manual white balance only.
struct GainRule {
  const char* key;
  Field<32> Sensor::*value;
};
const GainRule kGains[] = {{"WhiteBalance.CrGain=", &Sensor::rgain}, {"WhiteBalance.CbGain=", &Sensor::bgain}};

// White-balance words per device type.
struct WhiteBalanceRow {
  int device;  // 0: every other device type
  Words automatic;
  Words manual;
};

const WhiteBalanceRow kWhiteBalance[] = {
    {2,
     {"auto", "fixed_indoor", "fixed_outdoor"},
     {"manual", "manual25", "manual30", "manual33", "manual37", "manual41", "manual45", "manual48", "manual51",
      "manual54", "manual57", "manual60"}},
    {4, {"auto", "fixed_indoor", "fixed_outdoor", "ATW"}, {"manual"}},
    {0, {"auto", "indoor", "outdoor", "fixed_indoor", "fixed_outdoor", "ATW", "auto_noboundary"}, {"manual", "onepush"}},
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

}  // namespace

std::string ScaledSetting(double x, double divisor) {
  return oneDecimal(static_cast<float>(x / divisor * 100.0));
}

int Update_Imapge_Source(int, int device, int ioType, shm::ShmBlock& block) {
  Sensor s;
  if (!readSensor(s)) conf::logError("[Update_Imapge_Source]SYSTEM_IMAGE_CONFIG missing");
  if (ioType < 3 &&
      !conf::scanConf(kIrConf, {conf::on("root.IR.Mode", [&](const char* line) {
                        conf::scan(line, "root.IR.Mode=%s\n", s.icr);
                      })}))
    conf::logError("[Update_Imapge_Source]SYSTEM_IR_CONFIG missing");

  std::string source;
  if (!conf::forEachName(kVideoSourceList, "VideoSource1.", "%s\n", [&](const std::string& name) {
        source = name;
        return false;
      }))
    return conf::logError("[Update_Imapge_Source]ONVIF_VIDEO_SOURCE missing");
  if (source.empty()) return conf::logError("[Update_Imapge_Source]ONVIF_VIDEO_SOURCE_1 missing");

  // The "no control" marker of the exposure is taken before the exposure
  // mode is written into the same slot.
  const bool noExposureControl = block.get(Slot::IMAGE_EXPOSURE_MODE) == -1;
  const double gainDivisor = (ioType == 2 || ioType == 3) ? 255 : 127;
  const bool manualExposure = oneOf(s.exposure, {"manual", "manualpreset"});
  int wdrLevel = 0;  // remembered from a Mode line, for a later Level line

  std::vector<conf::Rule> rules;
  rules.push_back(conf::rule("BacklightCompensation.Mode=", [&](const char*) {
    if (s.backlight.is("on")) return Out::write("BacklightCompensation.Mode=ON\n");
    if (s.backlight.is("off")) return Out::write("BacklightCompensation.Mode=OFF\n");
    return Out::keep();
  }));
  for (const ScaleRule& r : kScales) {
    rules.push_back(conf::rule(r.key, [&, r](const char*) {
      if (block.get(r.marker) == -1) return Out::write(std::string(r.key) + "NONE\n");
      const Scale& sc = device == 2 ? r.device2 : device == 4 ? r.device4 : r.others;
      if (sc.kept) return Out::keep();
      double x = textNumber((s.*r.value).c_str());
      return Out::write(r.key + ScaledSetting(x - sc.offset, sc.divisor) + "\n");
    }));
  }
  rules.push_back(conf::rule("WideDynamicRange.Mode=", [&](const char*) {
    if (s.wdr.is("off")) return Out::write("WideDynamicRange.Mode=OFF\n");
    if (s.wdr.is("on")) return Out::write("WideDynamicRange.Mode=ON\n");
    if (device != 4 && oneOf(s.wdr, {"1", "2", "3", "4"})) {
      wdrLevel = s.wdr.c_str()[0] - '0';
      return Out::write("WideDynamicRange.Mode=ON\n");
    }
    return Out::keep();
  }));
  rules.push_back(conf::rule("WideDynamicRange.Level=", [&](const char*) {
    if (device == 4 || wdrLevel == 0) return Out::keep();
    return Out::write("WideDynamicRange.Level=" + std::to_string(wdrLevel) + ".0\n");
  }));
  rules.push_back(conf::rule("WhiteBalance.Mode=", [&](const char*) {
    const WhiteBalanceRow& row = whiteBalanceRow(device);
    if (oneOf(s.whiteBalance, row.automatic)) {
      block.set(Slot::IMAGE_WBC_MODE, 2);
      return Out::write("WhiteBalance.Mode=AUTO\n");
    }
    if (oneOf(s.whiteBalance, row.manual)) {
      block.set(Slot::IMAGE_WBC_MODE, 3);
      return Out::write("WhiteBalance.Mode=MANUAL\n");
    }
    return Out::keep();
  }));
  for (const GainRule& g : kGains) {
    rules.push_back(conf::rule(g.key, [&, g](const char*) {
      if (device == 2 || !s.whiteBalance.is("manual")) return Out::keep();
      return Out::write(g.key + ScaledSetting(textNumber((s.*g.value).c_str()), gainDivisor) + "\n");
    }));
  }
  rules.push_back(conf::rule("IrCutFilter=", [&](const char*) {
    for (const IrRow& r : kIrCut)
      if (oneOf(s.icr, r.words)) return Out::write(r.line);
    return Out::keep();
  }));
  rules.push_back(conf::rule("Exposure.Mode=", [&](const char*) {
    block.set(Slot::IMAGE_EXPOSURE_MODE, manualExposure ? 3 : 2);
    return Out::write(manualExposure ? "Exposure.Mode=MANUAL\n" : "Exposure.Mode=AUTO\n");
  }));
  rules.push_back(conf::rule("PreviousAE.Mode=", [&](const char*) {
    return Out::write("PreviousAE.Mode=" + (manualExposure ? std::string("NONE") : s.exposure.str()) + "\n");
  }));
  rules.push_back(conf::rule("Exposure.Gain=", [&](const char*) {
    if (noExposureControl) return Out::keep();
    int agc = textNumber(s.agcGain.c_str());
    if (block.get(Slot::ONVIF_BRAND) == 42 && ioType >= 2 && ioType <= 4)
      return Out::write("Exposure.Gain=" + oneDecimal(static_cast<float>(agc - 1.0)) + "\n");
    int max = block.get(Slot::IMAGE_EXPOSURE_GAIN_MAX);
    if (max == 0) return Out::keep();  // no gain scale: nothing to convert with
    return Out::write("Exposure.Gain=" + oneDecimal(static_cast<float>(agc) / static_cast<float>(max) * 100.0f) +
                      "\n");
  }));

  return conf::rewrite(conf::inPlace(kRoutine, conf::kLiveDir + source,
                                     "[Update_Imapge_Source]ONVIF_VIDEO_SOURCE_1 missing"),
                       rules)
      .shell;
}

}  // namespace onvif
