// PTZ presets (-p N, -q N) and preset tours (-u 14).
#include <gtest/gtest.h>

#include "transcript.h"

using shm::Slot;

namespace {

const std::string kPresets = "/usr/apache/htdocs/onvif/Preset.conf";
const std::string kPtz = "/etc/dynamic/ptz.conf", kFramed = "/etc/sysconfig/preset_ptz.conf";
const std::string kList = "/etc/sysconfig/presetlist.conf";

// Each run starts from the sample's sources and the same preset list; the I/O
// type and the brand choose the source. Failures are silent.
TEST(Presets, SetAndDeleteSourcesLabelsAndSilentFailures) {
  const struct {
    int io, brand;
    const char* why;
    std::string path;
    std::optional<std::string> text;
    const char* command;
  } cases[] = {
      {3, 0, "the PTZ settings", kPtz, "root.PTZ.PresetPos.P5.Label=Gate\n", "-p 5"},
      {1, 40, "a framed label", kFramed, "root.preset.position5.set=ABCDGate;\n", "-p 5"},
      {1, 16, "a framed label shorter than its frame", kFramed, "root.preset.position5.set=set;\n",
       "-p 5"},
      {6, 0, "the preset list, one word", kList, "root.preset.position5.set=Side Door\n", "-p 5"},
      {5, 0, "the number read from the line names the preset", kPtz,
       "root.PTZ.PresetPos.P15.Label=Far P5.Label=x\n", "-p 5"},
      {2, 0, "the first line found wins; \"%s\" stays text", kPtz,
       "root.PTZ.PresetPos.P1.Label=50%s\nroot.PTZ.PresetPos.P1.Label=B\n", "-p 1"},
      {2, 0, "delete: preset 11 stays", kPtz, "x\n", "-q 1"},
      {2, 0, "no label for the preset", kPtz, "root.PTZ.PresetPos.P5.Label=Gate\n", "-p 15"},
      {2, 0, "no PTZ settings", kPtz, std::nullopt, "-p 5"},
      {2, 0, "no preset list", kPresets, std::nullopt, "-p 5"}};
  testkit::Transcript t;
  testkit::Files start = {{kPresets,
                           "preset1.token.name=YES,1,A\npreset5.token.name=\n"
                           "preset11.token.name=YES,11,B\npreset15.token.name=\n"}};
  for (const std::string& path : {kPtz, kFramed, kList})
    start.push_back({path, t.cam().read(path)});
  for (const auto& c : cases) {
    testkit::Files files = start;
    files.push_back({c.path, c.text});
    t.run(testkit::format("I/O type %d, brand %d: %s", c.io, c.brand, c.why), c.command,
          {{Slot::ONVIF_IO_TYPE, c.io}, {Slot::ONVIF_BRAND, c.brand}}, files);
  }
  t.expectGolden();
}

// The state file says which tours are set; the create list is matched by
// position (its second line names tour 3 and is kept). A tour holds 64 steps,
// the i-th speed and dwell belong to step i, one byte each (300 is 44).
TEST(Presets, ToursFollowTheGuardTours) {
  const std::string state = "/etc/dynamic/guardtourstate.conf";
  testkit::Transcript t;
  t.run("Tours 1, 3 and 4 set", "-u 14", {},
        testkit::fixture("Presets.tours.data", {{"/etc/dynamic/guardtour3.conf", {}}}));
  t.run("Without the create list and tour 1's record", "-u 14", {},
        {{state, "GuardTour1:set\n"},
         {"/tmp/onvif/PresetTourCreate.conf", {}},
         {"/tmp/onvif/presettour1.conf", {}}});
  t.run("Without the state file", "-u 14", {}, {{state, {}}});
  t.expectGolden();
}

}  // namespace
