// Recording control (-r 1..4) and the codec self-tests (-u 99..101).
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "transcript.h"

using shm::Slot;

namespace {

// Byte 1 of the streaming server's segment is the request; bytes 0 and 3,
// the stream recording flags, stay.
TEST(RecordingControl, StartAndStopRequestsLeaveTheStreamFlags) {
  testkit::FixedKeyLock lock;
  testkit::Transcript t;
  t.cam().runShm({"stream-remove"});  // one an interrupted run left
  t.run("Start without the segment", "-r 1");
  t.run("The segment", "onvif-shm stream-create");
  t.run("Stream 1 records", "onvif-shm seg-set stream 0 1");
  t.run("Stream 2 records", "onvif-shm seg-set stream 3 1");
  t.run("Start", "-r 1");
  t.run("The request", "onvif-shm stream-dump");
  t.run("Stop", "-r 2");
  t.run("The request", "onvif-shm stream-dump");
  t.run("Removed", "onvif-shm stream-remove");
  t.expectGolden();
}

TEST(RecordingControl, SummaryAndDatabase) {
  testkit::Camera cam({}, "/tmp/onvifctrl test $HOME-");
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
  testkit::Transcript t({{Slot::WEB_SYNC_PROTECT, 1}});
  t.run("PackBits decoding", "-u 99");
  t.run("PackBits encoding", "-u 100");
  t.run("Hexadecimal to binary", "-u 101");
  t.expectGolden();
}

}  // namespace
