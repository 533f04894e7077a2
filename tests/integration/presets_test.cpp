// PTZ presets (-p N, -q N) and preset tours (-u 14).
#include <gtest/gtest.h>

#include <tuple>

#include "camera.h"

using shm::Slot;
using testkit::Camera;
using Lines = std::vector<std::string>;

namespace {

const char* const kPresets = "/usr/apache/htdocs/onvif/Preset.conf";
const std::string kBase =
    "preset1.token.name=YES,1,A\npreset5.token.name=\npreset11.token.name=YES,11,B\npreset15.token.name=\n";

TEST(Presets, SetAndDeleteSourcesLabelsAndSilentFailures) {
  const char *ptz = "/etc/dynamic/ptz.conf", *framed = "/etc/sysconfig/preset_ptz.conf",
             *list = "/etc/sysconfig/presetlist.conf";
  struct Case {
    int io, brand;
    const char *file, *content, *option, *preset;
    const char* line;  // the changed line of Preset.conf; nullptr: nothing changes
  } cases[] = {
      {3, 0, ptz, "root.PTZ.PresetPos.P5.Label=Gate\n", "-p", "5", "preset5.token.name=YES,5,Gate"},
      {1, 40, framed, "root.preset.position5.set=ABCDGate;\n", "-p", "5", "preset5.token.name=YES,5,Gate"},
      {1, 16, framed, "root.preset.position5.set=set;\n", "-p", "5",
       "preset5.token.name=YES,5,set;"},  // shorter than its frame
      {6, 0, list, "root.preset.position5.set=Side Door\n", "-p", "5", "preset5.token.name=YES,5,Side"},
      // The number read from the line names the preset; the first line found wins; "%s" stays text.
      {5, 0, ptz, "root.PTZ.PresetPos.P15.Label=Far P5.Label=x\n", "-p", "5", "preset15.token.name=YES,15,Far"},
      {2, 0, ptz, "root.PTZ.PresetPos.P1.Label=50%s\nroot.PTZ.PresetPos.P1.Label=B\n", "-p", "1",
       "preset1.token.name=YES,1,50%s"},
      {2, 0, ptz, "x\n", "-q", "1", "preset1.token.name="},  // preset 11 stays
      {2, 0, ptz, "root.PTZ.PresetPos.P5.Label=Gate\n", "-p", "15", nullptr},
      {2, 0, ptz, nullptr, "-p", "5", nullptr},
      {2, 0, kPresets, nullptr, "-p", "5", nullptr},
  };
  for (const Case& c : cases) {
    Camera cam;
    cam.startServer({{Slot::ONVIF_IO_TYPE, c.io}, {Slot::ONVIF_BRAND, c.brand}});
    cam.write(kPresets, kBase);
    c.content ? cam.write(c.file, c.content) : cam.remove(c.file);
    cam.run({c.option, c.preset});
    std::string expect = kBase, line = c.line ? c.line : "", key = "\n" + line.substr(0, line.find('=') + 1);
    std::size_t at = ("\n" + expect).find(key);
    if (c.line) expect.replace(at, expect.find('\n', at) - at, line);
    EXPECT_EQ(cam.read(kPresets), c.file == kPresets ? "" : expect) << c.option << " " << (c.content ? c.content : "");
    EXPECT_TRUE(cam.errorLog().empty());
    std::string temp = std::string("/tmp/onvif/tmp/WS_Update_") + (c.option[1] == 'p' ? "SetPreset " : "DeletePreset ");
    EXPECT_EQ(cam.shellTrace(), c.line ? Lines{"cp " + temp + kPresets} : Lines{});
  }
}

TEST(Presets, ToursFollowTheGuardTours) {
  const std::string tour = "/tmp/onvif/presettour";
  Camera cam;
  cam.startServer();
  cam.write("/etc/dynamic/guardtourstate.conf",
            "GuardTour1:set\nnoise\nGuardTour2:unset\nGuardTour3:set\nGuard4:set\n"
            "Guard5:x\nGuard6:x\nGuard7:x\nGuard8:x\nGuard9:set\n");
  std::string list;  // by position: the second line names tour 3 and is kept
  for (int k : {1, 3, 3, 4, 5, 6, 7, 8, 9})
    list += "presettour" + std::to_string(k) + ".conf=" + (k > 4 ? "true\n" : "false\n");
  cam.write("/tmp/onvif/PresetTourCreate.conf", list);
  cam.write("/etc/dynamic/guardtour1.conf",
            "PresetNbr=1\nMoveSpeed=5\nWaitTime=300\nPresetNbr=2\nWaitTime=15\nPresetNbr=3\nMoveSpeed=7\n");
  cam.remove("/etc/dynamic/guardtour3.conf");
  std::string many;  // more steps than a tour holds
  for (int i = 1; i <= 70; ++i) many += "PresetNbr=" + std::to_string(i) + "\n";
  cam.write("/etc/dynamic/guardtour4.conf", many);
  for (int k : {1, 3, 4})
    cam.write(tour + std::to_string(k) + ".conf",
              "Name=T\nT1.PresetToken=9\nDirection=Forward\nT1.StayTime=PT9S\nA=1\n");
  cam.run({"-u", "14"});

  EXPECT_EQ(cam.read("/tmp/onvif/PresetTourCreate.conf"),
            "presettour1.conf=true\npresettour3.conf=false\npresettour3.conf=true\npresettour4.conf=true\n"
            "presettour5.conf=false\npresettour6.conf=false\npresettour7.conf=false\npresettour8.conf=false\n"
            "presettour9.conf=true\n");
  std::string steps;  // the i-th speed and dwell belong to step i; one byte each (300 is 44)
  for (auto [i, speed, dwell] : {std::tuple{1, 5, 44}, {2, 7, 15}, {3, 0, 0}}) {
    std::string t = "T" + std::to_string(i), s = std::to_string(speed);
    steps += t + ".PresetToken=" + std::to_string(i) + "\n" + t + ".PanSpeed=" + s + "\n" + t + ".TiltSpeed=" + s +
             "\n" + t + ".ZoomSpeed=" + s + "\n" + t + ".StayTime=PT" + std::to_string(dwell) + "S\n";
  }
  EXPECT_EQ(cam.read(tour + "1.conf"), "Name=T\nDirection=Forward\n" + steps + "A=1\n");
  EXPECT_EQ(cam.read(tour + "3.conf"), "Name=T\nDirection=Forward\nA=1\n");
  Lines tour4 = cam.lines(tour + "4.conf");
  EXPECT_EQ(tour4.size(), 3u + 64 * 5);
  EXPECT_EQ(tour4[tour4.size() - 6], "T64.PresetToken=64");
  Lines trace = cam.shellTrace();  // the list, then tours 1 to 8 in order; unset tours get their default
  ASSERT_EQ(trace.size(), 9u);
  EXPECT_EQ(trace[2], "cp /usr/apache/htdocs/onvif/presettour2.conf.default /tmp/onvif/presettour2.conf");
  EXPECT_EQ(trace[4], "cp /tmp/onvif/tmp/WS_UPDATE_PRESET_TOUR_X_CONF /tmp/onvif/presettour4.conf");

  cam.write("/etc/dynamic/guardtourstate.conf", "GuardTour1:set\n");
  for (const std::string& path : {std::string("/tmp/onvif/PresetTourCreate.conf"), tour + "1.conf"}) cam.remove(path);
  cam.run({"-u", "14"});
  cam.remove("/etc/dynamic/guardtourstate.conf");
  cam.run({"-u", "14"});
  EXPECT_EQ(cam.errorLog(), Lines({"UPDATE_PRESET_TOUR_X_CONF:/etc/dynamic/guardtour3.conf missing.",
                                   "UPDATE_PRESET_TOUR_CREATE_CONF:/tmp/onvif/PresetTourCreate.conf missing.",
                                   "UPDATE_PRESET_TOUR_X_CONF:/tmp/onvif/presettour1.conf missing.",
                                   "CHECK_PRESET_TOUR_CREATE_STATE:/etc/dynamic/guardtourstate.conf missing.",
                                   "UPDATE_PRESET_TOUR_CREATE_CONF:/tmp/onvif/PresetTourCreate.conf missing."}));
}

}  // namespace
