// The rewrite engine's guarantees, through a routine that uses it (-a 1
// rewrites onvif.conf into both copies): hostile content is copied safely,
// long lines come out whole, and a temporary file that cannot be written
// whole never replaces a configuration file.
#include <gtest/gtest.h>

#include "transcript.h"

using shm::Slot;
using testkit::Camera;

namespace {

const std::string kLive = "/tmp/onvif/onvif.conf", kPersist = "/usr/apache/htdocs/onvif/onvif.conf";

TEST(Rewrite, UnchangedLinesAndWritesThatFail) {
  const std::string off = "ONVIF_CheckPassword=false\n";
  testkit::Transcript t({{Slot::ONVIF_CHECK_PASSWORD, 0}});
  t.run("A line is written as its own format", "-a 1", {}, {{kLive, off + "Name=%s\n"}});
  t.run("One conversion yields at most 255 characters", "-a 1", {},
        {{kLive, off + "W=%999999999d|\n"}});
  t.run("A carriage return stays", "-a 1", {}, {{kLive, off + "CR=value\r\n"}});
  t.run("An incomplete conversion at the end stays", "-a 1", {}, {{kLive, off + "End=50%"}});
  t.cam().write(kPersist, "persistent\n");
  t.run("Without the temporary folder the targets stay", "-a 1", {},
        {{kLive, off}, {"/tmp/onvif/tmp", {}}});
  t.expectGolden();
}

TEST(Rewrite, LongLinesAndBinaryContent) {
  Camera cam;
  // The key in the second piece of a long line is matched by that piece alone.
  std::string longLine(300, 'a'), huge(10000, 'b'), lead(255, 'c');
  cam.write(kLive, longLine + "\n" + huge + "\n" + lead + "ONVIF_CheckPassword=false\n");
  cam.run({"-a", "1"});
  EXPECT_EQ(cam.read(kLive), longLine + "\n" + huge + "\n" + lead + "ONVIF_CheckPassword=true\n");

  std::string garbage;
  for (int i = 1; i < 256; ++i) garbage += static_cast<char>(i == '%' ? 'x' : i);
  cam.write(kLive, garbage + "\nONVIF_CheckPassword=false\n" + std::string("A\0B\n", 4));
  EXPECT_EQ(cam.run({"-a", "1"}).status, 0);
  // A piece ends at a NUL byte, as any C string does.
  EXPECT_EQ(cam.read(kLive), garbage + "\nONVIF_CheckPassword=true\nA");
}

TEST(Rewrite, RootWithShellCharactersIsPassedAsOneWord) {
  Camera cam({}, "/tmp/onvifctrl test;$(touch pwned)`touch pwned2`\"&-");
  testkit::Transcript t(cam);
  t.run("Both copies are written", "-a 1", {}, {{kLive, "ONVIF_CheckPassword=false\n"}});
  t.run("The missing file is logged", "-a 1", {}, {{kLive, {}}});
  t.expectGolden();
  EXPECT_EQ(access("pwned", F_OK), -1);
  EXPECT_EQ(access("pwned2", F_OK), -1);
}

}  // namespace
