// Update_OSD (-u 16): the OSD list and records follow the text settings.
#include <gtest/gtest.h>

#include "transcript.h"

using shm::Slot;

namespace {

const std::string kText = "/etc/sysconfig/image_text.conf";
const std::string kList = "/usr/apache/htdocs/onvif/OSDs.conf";
const std::string kTemp = "/tmp/onvif/tmp/WS_Update_OSD";

// The sample's text settings with some "Key=value" changed.
std::string settings(const std::string& sample, const testkit::Lines& changes) {
  std::string text;
  for (std::string l : testkit::splitLines(sample)) {
    for (const std::string& c : changes)
      if (l.rfind("root.Image.I0.Text." + c.substr(0, c.find('=') + 1), 0) == 0)
        l = "root.Image.I0.Text." + c;
    text += l + "\n";
  }
  return text;
}

// Records whose setting is off are unlisted, then removed; enabled subtitles
// get records made from the template.
TEST(UpdateOsd, SampleThenDisabledRecordsAndSubtitles) {
  testkit::Transcript t;
  const std::string sample = t.cam().read(kText);
  t.run("The sample rewrites the same files", "-u 16");
  t.run("Date off, subtitles on", "-u 16", {},
        {{kText,
          settings(sample, {"DateEnabled=no", "SubtitleEnabled=yes", "SubtitlePosition=bottomright",
                            "Subtitle2=Gate 2", "Subtitle5=Exit"})}});
  t.expectGolden();
}

// The text record (OSDtoken3): positions, BT.601 colours, sizes, brands.
TEST(UpdateOsd, PositionsColoursSizesAndBrands) {
  const std::pair<int, testkit::Lines> cases[] = {{0, {"StringPosition=topright"}},
                                                  {0, {"StringPosition=0.5,-0.25"}},
                                                  {0, {"StringPosition=nan,0.5"}},
                                                  {0, {"Color=red", "Size=48"}},
                                                  {0, {"Color=purple", "Size=big"}},
                                                  {0, {"String=Hall B; rm -rf /"}},
                                                  {16, {"Color=blue", "StringPosition=topleft"}},
                                                  {42, {"Color=blue"}}};
  testkit::Transcript t;
  const std::string sample = t.cam().read(kText);
  for (const auto& [brand, changes] : cases) {
    std::string title = testkit::format("Brand %d:", brand);
    for (const std::string& c : changes) title += " " + c;
    t.run(title, "-u 16", {{Slot::ONVIF_BRAND, brand}}, {{kText, settings(sample, changes)}});
  }
  t.expectGolden();
}

// A token that is not a record name (nor the template) is replaced, never
// removed; a temporary file that cannot be written stops every copy and
// removal.
TEST(UpdateOsd, Failures) {
  testkit::Transcript t;
  const std::string sample = t.cam().read(kText);
  t.run("No text settings", "-u 16", {}, {{kText, {}}});
  t.run("The temporary file cannot be written", "-u 16", {},
        {{kText, settings(sample, {"DateEnabled=no"})}, {kTemp + "/x", ""}});
  t.run("Tokens that are no record names", "-u 16", {},
        {{kTemp, {}},
         {kText, settings(sample, {"ClockEnabled=no"})},
         {"/etc/keep.osdconf", "x\n"},
         {kList, "OSDToken=../../../../etc/keep\nOSDToken=OSD\nOSDToken=NULL\n"}});
  t.expectGolden();
}

}  // namespace
