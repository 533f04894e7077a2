// Factory defaults (-s 3 soft, -s 4 hard): the scope stamping of
// onvif.conf.default and the exact order of shell removals and copies.
#include <gtest/gtest.h>
#include <unistd.h>

#include "transcript.h"

using shm::Slot;
using testkit::Files;

namespace {

const std::string D = "/usr/apache/htdocs/onvif/";

// A small persistent folder with known lists and records, and no temporary
// files of earlier resets.
Files persistent(const Files& more = {}) {
  Files files = {{D, {}},
                 {"/tmp/onvif/tmp/Soft_Default_All_Conf", {}},
                 {"/tmp/onvif/tmp/Hard_Default_All_Conf", {}}};
  for (const auto& f : testkit::fixture("Defaults.persistent.data", more)) files.push_back(f);
  return files;
}

// The brand's name is stamped into the name scopes; the records the lists
// name are removed and their defaults copied back; a few brands have more
// files.
TEST(Defaults, SoftResetRunsItsCommandsInOrder) {
  const Slot brand = Slot::ONVIF_BRAND;
  testkit::Transcript t;
  t.run("Brand 0", "-s 3", {{brand, 0}}, persistent());
  t.run("Brand 42 restores the PTZ moves", "-s 3", {{brand, 42}}, persistent());
  t.run("Brand 16 restores the presets", "-s 3", {{brand, 16}}, persistent());
  t.run("Brand 62 too", "-s 3", {{brand, 62}}, persistent());
  t.run("Without the brand file the default keeps its scopes", "-s 3", {{brand, 0}},
        persistent({{"/etc/sysconfig/brand.conf", {}}}));
  t.run(
      "Record names from the list are one shell word each", "-s 3", {},
      persistent({{D + "Profiles.conf",
                   "profile filename=x;touch${IFS}pwned\nprofile filename=$(touch${IFS}pwned2)\n"},
                  {D + "x;touch${IFS}pwned", "gone\n"}}));
  t.expectGolden();
  EXPECT_EQ(access("pwned", F_OK), -1);
  EXPECT_EQ(access("pwned2", F_OK), -1);
}

TEST(Defaults, HardResetRemovesEveryRecordThenRestoresTheShippedOnes) {
  testkit::Transcript t({{Slot::ONVIF_BRAND, 62}});
  t.run(
      "Records no list names go too", "-s 4", {},
      persistent({{D + "Stray.VEncoder", "not listed\n"}, {D + "Stray.PTZConf", "not listed\n"}}));
  t.run("Without the default file nothing is stamped", "-s 4", {},
        persistent({{D + "onvif.conf.default", {}}}));
  t.expectGolden();
}

}  // namespace
