// Recording control (-r), the auxiliary segment dumps (-s 6, 7, 8, 10..19) and
// the codec self-tests (-u 99, 100, 101) through the real binary.
#include <gtest/gtest.h>

#include <sys/stat.h>

#include <string>
#include <vector>

#include "camera.h"

using shm::Slot;
using testkit::Camera;
using testkit::hasLine;
using testkit::splitLines;

namespace {

TEST(RecordingControl, StartAndStopRequestsLeaveTheStreamFlags) {
  testkit::FixedKeyLock lock;
  Camera cam;
  cam.startServer();
  cam.runShm({"stream-remove"});
  EXPECT_EQ(cam.run({"-r", "1"}).out,
            "Profile G Start Recording.\nStreamServerSHM: shmget error!!!\nStreamServerSHM: SHMSZ=12\n"
            "StreamServerSHM: key=3745\n");

  ASSERT_EQ(cam.runShm({"stream-create"}).status, 0);
  cam.runShm({"seg-set", "stream", "0", "1"});
  cam.runShm({"seg-set", "stream", "3", "1"});
  struct Case {
    const char* option;
    const char* out;
    const char* request;
  } cases[] = {
      {"1", "Profile G Start Recording.\n", "1 1"},
      {"2", "Profile G Stop Recording.\n", "1 2"},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(cam.run({"-r", c.option}).out, c.out);
    std::vector<std::string> bytes = splitLines(cam.runShm({"stream-dump"}).out);
    ASSERT_EQ(bytes.size(), 12u);
    EXPECT_EQ(bytes[1], c.request);
    EXPECT_EQ(bytes[0], "0 1");
    EXPECT_EQ(bytes[3], "3 1");
  }
  cam.runShm({"stream-remove"});
}

TEST(RecordingControl, SummaryFromTheShippedCopy) {
  Camera cam;
  cam.startServer();
  EXPECT_EQ(cam.run({"-r", "3"}).out,
            "Profile G GetRecordingSummary\nDataFrom = 2026-01-05T08:00:00Z\n"
            "DataUntil = 2026-01-15T09:30:00Z\nNumberRecordings = 2\n\n");
  EXPECT_EQ(cam.shellTrace(), (std::vector<std::string>{"cp /usr/apache/htdocs/onvif/Search_GetRecSum.conf.default "
                                                         "/tmp/onvif/Search_GetRecSum.conf"}));

  cam.remove("/usr/apache/htdocs/onvif/Search_GetRecSum.conf.default");
  cam.write("/tmp/onvif/Search_GetRecSum.conf", "RecordingNumber=9\n");
  EXPECT_EQ(cam.run({"-r", "3"}).out,
            "Profile G GetRecordingSummary\nDataFrom = --T::Z\nDataUntil = --T::Z\nNumberRecordings = \n\n");
  EXPECT_EQ(cam.errorLog(), (std::vector<std::string>{
                                "[GetRecordingSummary]/usr/apache/htdocs/onvif/Search_GetRecSum.conf.default missing"}));
}

TEST(RecordingControl, ReadsTheDatabaseInReadMode) {
  Camera cam("/tmp/onvifctrl test $HOME-");
  cam.startServer();
  cam.write("/usr/sbin/test_db", "#!/bin/sh\necho \"test_db mode=$mode\"\n");
  ASSERT_EQ(chmod(cam.host("/usr/sbin/test_db").c_str(), 0755), 0);
  EXPECT_EQ(cam.run({"-r", "4"}).out, "Read DB file.\ntest_db mode=read\n\n");
  EXPECT_EQ(cam.run({"-r", "0"}).out,
            "---r1: start O1 recording.\n---r2: stop O1 recording.\n---r3: GetRecordingSummary.\n"
            "---r4: Read DB file.\n");
}

TEST(SegmentDumps, EachDumpNamesItsMissingSegment) {
  testkit::FixedKeyLock lock;
  Camera cam;
  cam.startServer();
  cam.runShm({"stream-remove"});
  struct Case {
    const char* request;
    const char* line;
  } cases[] = {
      {"6", "Video analytics shm dump: ftok error, errno=2\n"},
      {"7", "Recording shm dump: ftok error, errno=2\n"},
      {"8", "StreamServer shm dump: shmget error, errno=2\n"},
      {"10", "Wearable hub shm dump: ftok error, errno=2\n"},
      {"11", "Wearable hub shm dump: ftok error, errno=2\n"},
      {"19", "Wearable hub shm dump: ftok error, errno=2\n"},
  };
  for (const Case& c : cases) EXPECT_EQ(cam.run({"-s", c.request}).out, c.line) << c.request;
  // The path is there but the segment is not.
  cam.write("/tmp/ONVIF_SHM/onvifrecord", "");
  EXPECT_EQ(cam.run({"-s", "7"}).out, "Recording shm dump: shmget error, errno=2\n");
}

TEST(SegmentDumps, PrintHeadingAndContents) {
  testkit::FixedKeyLock lock;
  Camera cam;
  cam.startServer();
  for (const char* seg : {"va", "record", "wearable"}) ASSERT_EQ(cam.runShm({"seg-create", seg}).status, 0);
  cam.runShm({"stream-remove"});
  ASSERT_EQ(cam.runShm({"stream-create"}).status, 0);
  cam.runShm({"seg-set", "va", "119", "-2"});
  cam.runShm({"seg-set", "record", "0", "65"});
  cam.runShm({"seg-set", "stream", "1", "2"});
  cam.runShm({"seg-set", "wearable", "15", "7"});
  cam.runShm({"seg-set", "wearable", "16", "11"});   // entry 0, slot 0
  cam.runShm({"seg-set", "wearable", "271", "99"});  // entry 7, last slot
  struct Case {
    const char* request;
    const char* heading;
    std::size_t lines;
    std::vector<std::string> has;
  } cases[] = {
      {"6", "************ Video analytics shm (/tmp/ONVIF_VA_SHM/onvif, 480 bytes) ************", 121,
       {"[  0]\t0\t0x00000000", "[119]\t-2\t0xFFFFFFFE"}},
      {"7", "************ Recording shm (/tmp/ONVIF_SHM/onvifrecord, 50 bytes) ************", 51,
       {"[ 0]\t65\t0x41\t'A'\t", "[49]\t0\t0x00\t'.'\t"}},
      {"8", "************ StreamServer shm (key 3745, 12 bytes) ************", 13,
       {"[ 1]\t2\t0x02\t'.'\trecording 1 request (1 start, 2 stop)", "[ 3]\t0\t0x00\t'.'\tstream 2 recording"}},
      {"10", "************ Wearable hub shm (/tmp/ONVIF_SHM/onvifwearable, 1088 bytes): hub ************", 17,
       {"[ 15]\t7\t0x00000007"}},
      {"11", "************ Wearable hub shm (/tmp/ONVIF_SHM/onvifwearable, 1088 bytes): entries ************",
       1 + 8 * 33, {"------------ entry 0 ------------", "[ 16]\t11\t0x0000000B", "[271]\t99\t0x00000063"}},
      {"12", "************ Wearable hub shm (/tmp/ONVIF_SHM/onvifwearable, 1088 bytes): entry 0 ************",
       34, {"[ 16]\t11\t0x0000000B", "[ 47]\t0\t0x00000000"}},
      {"19", "************ Wearable hub shm (/tmp/ONVIF_SHM/onvifwearable, 1088 bytes): entry 7 ************",
       34, {"------------ entry 7 ------------", "[240]\t0\t0x00000000", "[271]\t99\t0x00000063"}},
  };
  for (const Case& c : cases) {
    std::vector<std::string> out = splitLines(cam.run({"-s", c.request}).out);
    ASSERT_EQ(out.size(), c.lines) << c.request;
    EXPECT_EQ(out[0], c.heading);
    for (const std::string& l : c.has) EXPECT_TRUE(hasLine(out, l)) << c.request << ": " << l;
  }
  for (const char* seg : {"va", "record", "wearable"}) cam.runShm({"seg-remove", seg});
  cam.runShm({"stream-remove"});
}

TEST(CodecSelfTests, PrintTheirVectors) {
  struct Case {
    const char* command;
    const char* out;
  } cases[] = {
      {"99",
       "=== Packbit Decode ===\n------decode data[0]:FF \n------decode data[1]:FF \n------decode data[2]:FF \n"
       "------decode data[3]:0F \n------decode data[4]:F0 \n------decode data[5]:00 \n------decode data[6]:00 \n"
       "------decode data[7]:00 \n------decode data[8]:00 \n------decode length[7]:9 \n"
       "Bin String: 111111111111111111111111000011111111000000000000000000000000000000000000\n"},
      {"100",
       "=== Packbit Encode ===\nBefore Packbit Encode data size = 6\nAfter Packbit Encode data size = 4\n"
       "Packbit Encode data = FE FF FE F0\nPackbit Decode check = OK\n"},
      {"101",
       "=== Hex to Binary ===\n"
       "Output Binary String:0000000100100011010001010110011110001001101010111100110111101111\n"},
  };
  Camera cam;
  cam.startServer({{Slot::WEB_SYNC_PROTECT, 1}});
  for (const Case& c : cases) {
    EXPECT_EQ(cam.run({"-u", c.command}).out, c.out);
    EXPECT_EQ(cam.slot(Slot::ONVIF_CTRL), std::stoi(c.command));
    EXPECT_EQ(cam.slot(Slot::WEB_SYNC_PROTECT), 1);
  }
}

}  // namespace
