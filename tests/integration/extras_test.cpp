// Update_OSD (-u 16), recording control (-r), the auxiliary segment dumps
// (-s 6, 7, 8, 10..19) and the codec self-tests (-u 99..101), as run.
#include <gtest/gtest.h>

#include <sys/stat.h>

#include <string>
#include <vector>

#include "camera.h"

using shm::Slot;
using testkit::Camera;
using testkit::hasLine;
using testkit::splitLines;
using Lines = std::vector<std::string>;

namespace {

const std::string D = "/usr/apache/htdocs/onvif/";
const std::string kText = "/etc/sysconfig/image_text.conf";
const std::string kList = D + "OSDs.conf";
const std::string kTemp = "/tmp/onvif/tmp/WS_Update_OSD";

// A camera whose web settings are the sample's with some "Key=value" changed.
void setUp(Camera& cam, const Lines& changes, int brand = 0) {
  cam.startServer({{Slot::ONVIF_BRAND, brand}});
  std::string text;
  for (std::string l : changes.empty() ? Lines{} : cam.lines(kText)) {
    for (const std::string& c : changes)
      if (l.rfind("root.Image.I0.Text." + c.substr(0, c.find('=') + 1), 0) == 0) l = "root.Image.I0.Text." + c;
    text += l + "\n";
  }
  if (!changes.empty()) cam.write(kText, text);
  cam.run({"-u", "16"});
}

TEST(UpdateOsd, UnchangedSampleRewritesTheSameFiles) {
  Camera cam;
  std::string before = cam.read(kList) + cam.read(D + "OSDtoken1.osdconf") + cam.read(D + "OSDtoken3.osdconf");
  setUp(cam, {});
  EXPECT_EQ(cam.read(kList) + cam.read(D + "OSDtoken1.osdconf") + cam.read(D + "OSDtoken3.osdconf"), before);
  EXPECT_EQ(cam.shellTrace(), (Lines{"cp " + kTemp + " " + D + "OSDtoken1.osdconf",
                                     "cp " + kTemp + " " + D + "OSDtoken2.osdconf",
                                     "cp " + kTemp + " " + D + "OSDtoken3.osdconf", "cp " + kTemp + " " + kList}));
  EXPECT_TRUE(cam.errorLog().empty());
}

TEST(UpdateOsd, DisabledRecordsAreUnlistedThenRemovedAndSubtitlesCreated) {
  Camera cam;
  setUp(cam, {"DateEnabled=no", "SubtitleEnabled=yes", "SubtitlePosition=bottomright", "Subtitle2=Gate 2",
              "Subtitle5=Exit"});
  EXPECT_EQ(cam.lines(kList), (Lines{"OSDToken=NULL", "OSDToken=OSDtoken2", "OSDToken=OSDtoken3", "OSDToken=NULL",
                                     "OSDToken=OSDtoken5", "OSDToken=NULL", "OSDToken=NULL", "OSDToken=OSDtoken8"}));
  Lines trace = cam.shellTrace();
  ASSERT_EQ(trace.size(), 8u);
  EXPECT_EQ(trace[2], "cp " + D + "OSD.osdconf " + D + "OSDtoken5.osdconf");
  EXPECT_EQ(trace[6], "cp " + kTemp + " " + kList);
  EXPECT_EQ(trace[7], "rm " + D + "OSDtoken1.osdconf");
  EXPECT_FALSE(cam.exists(D + "OSDtoken1.osdconf"));
  EXPECT_EQ(cam.lines(D + "OSDtoken5.osdconf"),
            (Lines{"OSDToken=OSDtoken5", "VideoSourceToken=VideoSource1", "OSDType=Text", "PositionType=LowerRight",
                   "Position_X=1.0", "Position_Y=-1.0", "TextType=Plain", "DateFormat=yyyy/MM/dd",
                   "TimeFormat=HH:mm:ss", "FontSize=32", "FontColor_X=255.0", "FontColor_Y=128.0",
                   "FontColor_Z=128.0", "PlainText=Gate 2", "PlainTextNo=2"}));
}

TEST(UpdateOsd, PositionsColoursSizesAndBrands) {
  struct Case {
    Lines changes;
    Lines text;  // lines of OSDtoken3, the text record
    int brand;
  } cases[] = {
      {{"StringPosition=topright"}, {"PositionType=UpperRight", "Position_X=1.0", "Position_Y=1.0"}, 0},
      {{"StringPosition=0.5,-0.25"}, {"PositionType=Custom", "Position_X=0.50", "Position_Y=-0.25"}, 0},
      {{"StringPosition=nan,0.5"}, {"PositionType=Custom", "Position_X=-1.0", "Position_Y=-1.0"}, 0},
      {{"Color=red", "Size=48"}, {"FontColor_X=76.2", "FontColor_Y=85.0", "FontColor_Z=255.0", "FontSize=48"}, 0},
      {{"Color=purple", "Size=big"}, {"FontColor_X=255.0", "FontColor_Z=128.0", "FontSize=32"}, 0},
      {{"String=Hall B; rm -rf /"}, {"PlainText=Hall B; rm -rf /", "TextType=Plain"}, 0},
      {{"Color=blue", "StringPosition=topleft"}, {"FontColor_Z=107.3", "PositionType=UpperLeft"}, 16},
      {{"Color=blue"}, {"FontColor_Z=107.3"}, 42},
  };
  for (const Case& c : cases) {
    Camera cam;
    setUp(cam, c.changes, c.brand);
    Lines record = cam.lines(D + "OSDtoken3.osdconf");
    for (const std::string& want : c.text) EXPECT_TRUE(hasLine(record, want)) << c.changes[0] << ": " << want;
  }
}

TEST(UpdateOsd, Failures) {
  {  // no settings: logged, nothing touched
    Camera cam;
    cam.remove(kText);
    std::string list = cam.read(kList);
    setUp(cam, {});
    EXPECT_EQ(cam.errorLog(), (Lines{"[Update_OSD]" + kText + " missing"}));
    EXPECT_EQ(cam.read(kList), list);
    EXPECT_TRUE(cam.shellTrace().empty());
  }
  {  // the temporary file cannot be written: no copy, no removal
    Camera cam;
    cam.write(kTemp + "/x", "");
    setUp(cam, {"DateEnabled=no"});
    EXPECT_TRUE(hasLine(cam.errorLog(), "Update_OSD:" + kTemp + " write failed"));
    EXPECT_TRUE(cam.exists(D + "OSDtoken1.osdconf"));
    EXPECT_TRUE(cam.shellTrace().empty());
  }
  {  // a token that is not a record name (nor the template) is replaced, never removed
    Camera cam;
    cam.write("/etc/keep.osdconf", "x\n");
    cam.write(kList, "OSDToken=../../../../etc/keep\nOSDToken=OSD\nOSDToken=NULL\n");
    setUp(cam, {"ClockEnabled=no"});
    EXPECT_EQ(cam.lines(kList), (Lines{"OSDToken=OSDtoken1", "OSDToken=NULL", "OSDToken=OSDtoken3"}));
    EXPECT_TRUE(cam.exists("/etc/keep.osdconf"));
    EXPECT_TRUE(cam.exists(D + "OSD.osdconf"));
  }
}

TEST(RecordingControl, StartAndStopRequestsLeaveTheStreamFlags) {
  testkit::FixedKeyLock lock;
  Camera cam;
  cam.startServer();
  cam.runShm({"stream-remove"});
  EXPECT_EQ(cam.run({"-r", "1"}).out, "Profile G Start Recording.\nStreamServerSHM: shmget error!!!\n"
                                      "StreamServerSHM: SHMSZ=12\nStreamServerSHM: key=3745\n");
  ASSERT_EQ(cam.runShm({"stream-create"}).status, 0);
  cam.runShm({"seg-set", "stream", "0", "1"});
  cam.runShm({"seg-set", "stream", "3", "1"});
  for (const char* option : {"1", "2"}) {
    EXPECT_EQ(cam.run({"-r", option}).out,
              option[0] == '1' ? "Profile G Start Recording.\n" : "Profile G Stop Recording.\n");
    Lines bytes = splitLines(cam.runShm({"stream-dump"}).out);
    ASSERT_EQ(bytes.size(), 12u);
    EXPECT_EQ(bytes[1], std::string("1 ") + option);
    EXPECT_EQ(bytes[0] + "," + bytes[3], "0 1,3 1");
  }
  cam.runShm({"stream-remove"});
}

TEST(RecordingControl, SummaryAndDatabase) {
  Camera cam("/tmp/onvifctrl test $HOME-");
  cam.startServer();
  EXPECT_EQ(cam.run({"-r", "3"}).out,
            "Profile G GetRecordingSummary\nDataFrom = 2026-01-05T08:00:00Z\n"
            "DataUntil = 2026-01-15T09:30:00Z\nNumberRecordings = 2\n\n");
  EXPECT_EQ(cam.shellTrace(),
            (Lines{"cp /usr/apache/htdocs/onvif/Search_GetRecSum.conf.default /tmp/onvif/Search_GetRecSum.conf"}));
  cam.remove("/usr/apache/htdocs/onvif/Search_GetRecSum.conf.default");
  EXPECT_EQ(cam.run({"-r", "3"}).out,
            "Profile G GetRecordingSummary\nDataFrom = --T::Z\nDataUntil = --T::Z\nNumberRecordings = \n\n");
  EXPECT_EQ(cam.errorLog(),
            (Lines{"[GetRecordingSummary]/usr/apache/htdocs/onvif/Search_GetRecSum.conf.default missing"}));

  cam.write("/usr/sbin/test_db", "#!/bin/sh\necho \"test_db mode=$mode\"\n");
  ASSERT_EQ(chmod(cam.host("/usr/sbin/test_db").c_str(), 0755), 0);
  EXPECT_EQ(cam.run({"-r", "4"}).out, "Read DB file.\ntest_db mode=read\n\n");
}

TEST(SegmentDumps, MissingSegmentsThenTheirContents) {
  testkit::FixedKeyLock lock;
  Camera cam;
  cam.startServer();
  cam.runShm({"stream-remove"});
  EXPECT_EQ(cam.run({"-s", "6"}).out, "Video analytics shm dump: ftok error, errno=2\n");
  EXPECT_EQ(cam.run({"-s", "8"}).out, "StreamServer shm dump: shmget error, errno=2\n");
  EXPECT_EQ(cam.run({"-s", "10"}).out, "Wearable hub shm dump: ftok error, errno=2\n");

  for (const char* seg : {"va", "record", "wearable"}) ASSERT_EQ(cam.runShm({"seg-create", seg}).status, 0);
  ASSERT_EQ(cam.runShm({"stream-create"}).status, 0);
  for (Lines set : {Lines{"va", "119", "-2"}, {"record", "0", "65"}, {"stream", "1", "2"},
                    {"wearable", "16", "11"}, {"wearable", "271", "99"}}) {
    set.insert(set.begin(), "seg-set");
    cam.runShm(set);
  }
  const std::string hub = "************ Wearable hub shm (/tmp/ONVIF_SHM/onvifwearable, 1088 bytes)";
  struct Case {
    const char* request;
    std::string heading;
    std::size_t lines;
    Lines has;
  } cases[] = {
      {"6", "************ Video analytics shm (/tmp/ONVIF_VA_SHM/onvif, 480 bytes) ************", 121,
       {"[119]\t-2\t0xFFFFFFFE"}},
      {"7", "************ Recording shm (/tmp/ONVIF_SHM/onvifrecord, 50 bytes) ************", 51,
       {"[ 0]\t65\t0x41\t'A'\t", "[49]\t0\t0x00\t'.'\t"}},
      {"8", "************ StreamServer shm (key 3745, 12 bytes) ************", 13,
       {"[ 1]\t2\t0x02\t'.'\trecording 1 request (1 start, 2 stop)", "[ 3]\t0\t0x00\t'.'\tstream 2 recording"}},
      {"11", hub + ": entries ************", 1 + 8 * 33, {"------------ entry 0 ------------", "[271]\t99\t0x00000063"}},
      {"19", hub + ": entry 7 ************", 34, {"[240]\t0\t0x00000000", "[271]\t99\t0x00000063"}},
  };
  for (const Case& c : cases) {
    Lines out = splitLines(cam.run({"-s", c.request}).out);
    ASSERT_EQ(out.size(), c.lines) << c.request;
    EXPECT_EQ(out[0], c.heading);
    for (const std::string& l : c.has) EXPECT_TRUE(hasLine(out, l)) << c.request << ": " << l;
  }
  for (const char* seg : {"va", "record", "wearable"}) cam.runShm({"seg-remove", seg});
  cam.runShm({"stream-remove"});
}

TEST(CodecSelfTests, PrintTheirVectors) {
  const char* cases[][2] = {
      {"99",
       "=== Packbit Decode ===\n------decode data[0]:FF \n------decode data[1]:FF \n------decode data[2]:FF \n"
       "------decode data[3]:0F \n------decode data[4]:F0 \n------decode data[5]:00 \n------decode data[6]:00 \n"
       "------decode data[7]:00 \n------decode data[8]:00 \n------decode length[7]:9 \n"
       "Bin String: 111111111111111111111111000011111111000000000000000000000000000000000000\n"},
      {"100",
       "=== Packbit Encode ===\nBefore Packbit Encode data size = 6\nAfter Packbit Encode data size = 4\n"
       "Packbit Encode data = FE FF FE F0\nPackbit Decode check = OK\n"},
      {"101",
       "=== Hex to Binary ===\nOutput Binary String:0000000100100011010001010110011110001001101010111100110111101111\n"},
  };
  Camera cam;
  cam.startServer({{Slot::WEB_SYNC_PROTECT, 1}});
  for (const auto& c : cases) {
    EXPECT_EQ(cam.run({"-u", c[0]}).out, c[1]);
    EXPECT_EQ(cam.slot(Slot::ONVIF_CTRL), std::stoi(c[0]));
    EXPECT_EQ(cam.slot(Slot::WEB_SYNC_PROTECT), 1);
  }
}

}  // namespace
