// The rewrite engine's guarantees, through a routine that uses it (-a 1
// rewrites onvif.conf into both copies): hostile content is copied safely,
// long lines come out whole, and a temporary file that cannot be written
// whole never replaces a configuration file.
#include <gtest/gtest.h>

#include <unistd.h>

#include "camera.h"

using shm::Slot;
using testkit::Camera;

namespace {

const char* const kLive = "/tmp/onvif/onvif.conf";
const char* const kPersist = "/usr/apache/htdocs/onvif/onvif.conf";
const char* const kTemp = "/tmp/onvif/tmp/WS_Update_Onvif_Check_Password";

TEST(Rewrite, UnchangedLinesAreWrittenAsTheirOwnFormat) {
  struct Case {
    std::string in;
    std::string out;
  } cases[] = {
      {"Name=%s\n", "Name=(null)\n"},
      {"W=%999999999d|\n", "W=" + std::string(254, ' ') + "0|\n"},
      {"CR=value\r\n", "CR=value\r\n"},
      {"End=50%", "End=50%"},
  };
  Camera cam;
  cam.startServer();
  for (const Case& c : cases) {
    cam.write(kLive, "ONVIF_CheckPassword=false\n" + c.in);
    cam.run({"-a", "1"});
    EXPECT_EQ(cam.read(kLive), "ONVIF_CheckPassword=true\n" + c.out) << c.in;
  }
}

TEST(Rewrite, LongLinesArePiecesThatComeOutWhole) {
  Camera cam;
  cam.startServer();
  std::string longLine(300, 'a');
  std::string huge(10000, 'b');
  // The key in the second piece of a long line is matched by that piece alone.
  std::string keyInPiece = std::string(255, 'c') + "ONVIF_CheckPassword=false\n";
  cam.write(kLive, longLine + "\n" + huge + "\n" + keyInPiece);
  cam.run({"-a", "1"});
  EXPECT_EQ(cam.read(kLive), longLine + "\n" + huge + "\n" + std::string(255, 'c') + "ONVIF_CheckPassword=true\n");
}

TEST(Rewrite, BinaryGarbageDoesNotBreakTheCopy) {
  Camera cam;
  cam.startServer();
  std::string garbage;
  for (int i = 1; i < 256; ++i) garbage += static_cast<char>(i == '%' ? 'x' : i);
  cam.write(kLive, garbage + "\nONVIF_CheckPassword=false\n" + std::string("A\0B\n", 4));
  EXPECT_EQ(cam.run({"-a", "1"}).status, 0);
  // A piece ends at a NUL byte, as any C string does.
  EXPECT_EQ(cam.read(kLive), garbage + "\nONVIF_CheckPassword=true\nA");
}

TEST(Rewrite, MissingTemporaryFolderKeepsTheTargets) {
  Camera cam;
  cam.startServer({{Slot::ONVIF_CHECK_PASSWORD, 0}});
  cam.write(kLive, "ONVIF_CheckPassword=false\n");
  cam.write(kPersist, "persistent\n");
  cam.remove("/tmp/onvif/tmp");
  EXPECT_EQ(cam.run({"-a", "1"}).status, 0);
  EXPECT_EQ(cam.read(kLive), "ONVIF_CheckPassword=false\n");
  EXPECT_EQ(cam.read(kPersist), "persistent\n");
  EXPECT_EQ(cam.slot(Slot::ONVIF_CHECK_PASSWORD), 0);
  EXPECT_EQ(cam.errorLog(), std::vector<std::string>{std::string("Update_Onvif_Check_Password:") + kTemp + " write failed"});
  EXPECT_TRUE(cam.shellTrace().empty());
  EXPECT_EQ(cam.slot(shm::kMarkerSlot), 78);
}

TEST(Rewrite, RootWithShellCharactersIsPassedAsOneWord) {
  Camera cam("/tmp/onvifctrl test;$(touch pwned)`touch pwned2`\"&-");
  cam.startServer();
  cam.write(kLive, "ONVIF_CheckPassword=false\n");
  cam.remove("/tmp/onvif_error");
  ASSERT_EQ(cam.run({"-a", "1"}).status, 0);
  EXPECT_EQ(cam.read(kLive), "ONVIF_CheckPassword=true\n");
  EXPECT_EQ(cam.read(kPersist), "ONVIF_CheckPassword=true\n");
  EXPECT_EQ(access("pwned", F_OK), -1);
  EXPECT_EQ(access("pwned2", F_OK), -1);

  cam.remove(kLive);
  cam.run({"-a", "1"});
  EXPECT_EQ(cam.errorLog(), std::vector<std::string>{"Update_Onvif_Check_Password /tmp/onvif/onvif.conf missing"});
}

}  // namespace
