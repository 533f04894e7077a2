// Recording control (-r 1..4) and the codec self-tests (-u 99..101).
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "transcript.h"

using shm::Slot;
using testkit::Camera;

namespace {

// Byte 1 of the streaming server's segment is the request; bytes 0 and 3,
// the stream recording flags, stay.
TEST(RecordingControl, StartAndStopRequestsLeaveTheStreamFlags) {
  testkit::FixedKeyLock lock;
  Camera cam;
  cam.startServer();
  cam.runShm({"stream-remove"});
  EXPECT_EQ(cam.run({"-r", "1"}).out,
            "Profile G Start Recording.\nStreamServerSHM: shmget error!!!\n"
            "StreamServerSHM: SHMSZ=12\nStreamServerSHM: key=3745\n");
  ASSERT_EQ(cam.runShm({"stream-create"}).status, 0);
  cam.runShm({"seg-set", "stream", "0", "1"});
  cam.runShm({"seg-set", "stream", "3", "1"});
  for (const char* option : {"1", "2"}) {
    EXPECT_EQ(cam.run({"-r", option}).out,
              option[0] == '1' ? "Profile G Start Recording.\n" : "Profile G Stop Recording.\n");
    testkit::Lines bytes = testkit::splitLines(cam.runShm({"stream-dump"}).out);
    ASSERT_EQ(bytes.size(), 12u);
    EXPECT_EQ(bytes[0] + "," + bytes[1] + "," + bytes[3], "0 1,1 " + std::string(option) + ",3 1");
  }
  cam.runShm({"stream-remove"});
}

TEST(RecordingControl, SummaryAndDatabase) {
  Camera cam("/tmp/onvifctrl test $HOME-");
  cam.startServer();
  cam.write("/usr/sbin/test_db", "#!/bin/sh\necho \"test_db mode=$mode\"\n");
  ASSERT_EQ(chmod(cam.host("/usr/sbin/test_db").c_str(), 0755), 0);
  testkit::Transcript t(cam);
  t.run("The summary", "-r 3");
  t.run("Without the summary's default file", "-r 3", {},
        {{"/usr/apache/htdocs/onvif/Search_GetRecSum.conf.default", {}}});
  t.run("The database is read by the camera's program", "-r 4");
  t.expectGolden();
}

// The self-tests run with the protect flag raised and record their number.
TEST(CodecSelfTests, PrintTheirVectors) {
  Camera cam;
  cam.startServer({{Slot::WEB_SYNC_PROTECT, 1}});
  testkit::Transcript t(cam);
  t.run("PackBits decoding", "-u 99");
  t.run("PackBits encoding", "-u 100");
  t.run("Hexadecimal to binary", "-u 101");
  t.expectGolden();
}

}  // namespace
