// Update_OSD (-u 16): the web's overlay settings into OSDs.conf and the
// OSDtoken records, the shell commands and their order, and the failures.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "camera.h"

using shm::Slot;
using testkit::Camera;
using testkit::hasLine;

namespace {

const std::string D = "/usr/apache/htdocs/onvif/";
const std::string kText = "/etc/sysconfig/image_text.conf";
const std::string kList = D + "OSDs.conf";
const std::string kTemp = "/tmp/onvif/tmp/WS_Update_OSD";

// The sample settings with some keys replaced ("key=value" lines).
std::string settings(const std::vector<std::string>& changes) {
  std::vector<std::string> lines = {
      "root.Image.I0.Text.DateEnabled=yes",      "root.Image.I0.Text.DatePosition=topleft",
      "root.Image.I0.Text.ClockEnabled=yes",     "root.Image.I0.Text.TextEnabled=yes",
      "root.Image.I0.Text.Size=32",              "root.Image.I0.Text.Color=white",
      "root.Image.I0.Text.StringPosition=bottomleft", "root.Image.I0.Text.String=Lobby",
      "root.Image.I0.Text.SubtitleEnabled=no",   "root.Image.I0.Text.SubtitlePosition=topright",
      "root.Image.I0.Text.Subtitle1=",           "root.Image.I0.Text.Subtitle2=",
      "root.Image.I0.Text.Subtitle3=",           "root.Image.I0.Text.Subtitle4=",
      "root.Image.I0.Text.Subtitle5=",
  };
  for (const std::string& c : changes) {
    std::string key = "root.Image.I0.Text." + c.substr(0, c.find('=') + 1);
    for (std::string& l : lines)
      if (l.rfind(key, 0) == 0) l = "root.Image.I0.Text." + c;
  }
  std::string text;
  for (const std::string& l : lines) text += l + "\n";
  return text;
}

std::string line(const Camera& cam, const std::string& path, const std::string& key) {
  for (const std::string& l : cam.lines(path))
    if (l.rfind(key, 0) == 0) return l;
  return "";
}

TEST(UpdateOsd, UnchangedSampleRewritesTheSameFiles) {
  Camera cam;
  cam.startServer();
  std::vector<std::string> before;
  for (const char* f : {"OSDs.conf", "OSDtoken1.osdconf", "OSDtoken2.osdconf", "OSDtoken3.osdconf"})
    before.push_back(cam.read(D + f));
  cam.run({"-u", "16"});
  int i = 0;
  for (const char* f : {"OSDs.conf", "OSDtoken1.osdconf", "OSDtoken2.osdconf", "OSDtoken3.osdconf"})
    EXPECT_EQ(cam.read(D + f), before[i++]) << f;
  EXPECT_EQ(cam.shellTrace(), (std::vector<std::string>{
                                  "cp " + kTemp + " " + D + "OSDtoken1.osdconf",
                                  "cp " + kTemp + " " + D + "OSDtoken2.osdconf",
                                  "cp " + kTemp + " " + D + "OSDtoken3.osdconf",
                                  "cp " + kTemp + " " + kList,
                              }));
  EXPECT_TRUE(cam.errorLog().empty());
  EXPECT_EQ(cam.slot(Slot::ONVIF_CTRL), 16);
}

TEST(UpdateOsd, DisabledDateIsUnlistedThenRemoved) {
  Camera cam;
  cam.startServer();
  cam.write(kText, settings({"DateEnabled=no"}));
  cam.run({"-u", "16"});
  EXPECT_EQ(cam.lines(kList)[0], "OSDToken=NULL");
  EXPECT_EQ(cam.lines(kList)[1], "OSDToken=OSDtoken2");
  EXPECT_FALSE(cam.exists(D + "OSDtoken1.osdconf"));
  std::vector<std::string> trace = cam.shellTrace();
  ASSERT_EQ(trace.size(), 4u);
  EXPECT_EQ(trace[2], "cp " + kTemp + " " + kList);
  EXPECT_EQ(trace[3], "rm " + D + "OSDtoken1.osdconf");
}

TEST(UpdateOsd, SubtitlesGetRecordsFromTheTemplate) {
  Camera cam;
  cam.startServer();
  cam.write(kText, settings({"SubtitleEnabled=yes", "SubtitlePosition=bottomright", "Subtitle2=Gate 2",
                             "Subtitle5=Exit"}));
  cam.run({"-u", "16"});
  EXPECT_EQ(cam.lines(kList), (std::vector<std::string>{
                                  "OSDToken=OSDtoken1", "OSDToken=OSDtoken2", "OSDToken=OSDtoken3",
                                  "OSDToken=NULL", "OSDToken=OSDtoken5", "OSDToken=NULL", "OSDToken=NULL",
                                  "OSDToken=OSDtoken8"}));
  EXPECT_TRUE(hasLine(cam.shellTrace(), "cp " + D + "OSD.osdconf " + D + "OSDtoken5.osdconf"));
  EXPECT_EQ(cam.lines(D + "OSDtoken5.osdconf"),
            (std::vector<std::string>{"OSDToken=OSDtoken5", "VideoSourceToken=VideoSource1", "OSDType=Text",
                                      "PositionType=LowerRight", "Position_X=1.0", "Position_Y=-1.0",
                                      "TextType=Plain", "DateFormat=yyyy/MM/dd", "TimeFormat=HH:mm:ss",
                                      "FontSize=32", "FontColor_X=255.0", "FontColor_Y=128.0",
                                      "FontColor_Z=128.0", "PlainText=Gate 2", "PlainTextNo=2"}));
  EXPECT_EQ(line(cam, D + "OSDtoken8.osdconf", "PlainTextNo="), "PlainTextNo=5");
  EXPECT_FALSE(cam.exists(D + "OSDtoken4.osdconf"));
}

TEST(UpdateOsd, PositionsColoursAndSizes) {
  struct Case {
    std::vector<std::string> changes;
    std::vector<std::string> text;  // lines of OSDtoken3 (the text record)
  } cases[] = {
      {{"StringPosition=topright"}, {"PositionType=UpperRight", "Position_X=1.0", "Position_Y=1.0"}},
      {{"StringPosition=topleft"}, {"PositionType=UpperLeft", "Position_X=-1.0", "Position_Y=1.0"}},
      {{"StringPosition=0.5,-0.25"}, {"PositionType=Custom", "Position_X=0.50", "Position_Y=-0.25"}},
      {{"StringPosition=3,-7"}, {"PositionType=Custom", "Position_X=1.00", "Position_Y=-1.00"}},
      {{"StringPosition=middle"}, {"PositionType=Custom", "Position_X=-1.0", "Position_Y=-1.0"}},
      {{"Color=red"}, {"FontColor_X=76.2", "FontColor_Y=85.0", "FontColor_Z=255.0"}},
      {{"Color=black"}, {"FontColor_X=0.0", "FontColor_Y=128.0", "FontColor_Z=128.0"}},
      {{"Color=purple"}, {"FontColor_X=255.0", "FontColor_Y=128.0", "FontColor_Z=128.0"}},
      {{"Size=48"}, {"FontSize=48"}},
      {{"Size=big"}, {"FontSize=32"}},
      {{"String=Hall B; rm -rf /"}, {"PlainText=Hall B; rm -rf /", "TextType=Plain"}},
  };
  for (const Case& c : cases) {
    Camera cam;
    cam.startServer();
    cam.write(kText, settings(c.changes));
    cam.run({"-u", "16"});
    std::vector<std::string> record = cam.lines(D + "OSDtoken3.osdconf");
    for (const std::string& want : c.text) EXPECT_TRUE(hasLine(record, want)) << c.changes[0] << ": " << want;
  }
}

TEST(UpdateOsd, BrandVariantsWriteWhatTheGenericPathWrites) {
  for (int brand : {16, 62, 23, 42, 5}) {
    Camera cam;
    cam.startServer({{Slot::ONVIF_BRAND, brand}});
    cam.write(kText, settings({"ClockEnabled=no", "Color=blue"}));
    cam.run({"-u", "16"});
    EXPECT_EQ(cam.lines(kList)[1], "OSDToken=NULL") << brand;
    EXPECT_EQ(line(cam, D + "OSDtoken1.osdconf", "FontColor_Z="), "FontColor_Z=107.3") << brand;
  }
}

TEST(UpdateOsd, Failures) {
  {  // no settings: logged, nothing touched
    Camera cam;
    cam.startServer();
    cam.remove(kText);
    std::string list = cam.read(kList);
    cam.run({"-u", "16"});
    EXPECT_EQ(cam.errorLog(), (std::vector<std::string>{"[Update_OSD]" + kText + " missing"}));
    EXPECT_EQ(cam.read(kList), list);
    EXPECT_TRUE(cam.shellTrace().empty());
  }
  {  // the temporary file cannot be written: no copy, no removal
    Camera cam;
    cam.startServer();
    cam.write(kTemp + "/x", "");
    cam.write(kText, settings({"DateEnabled=no"}));
    cam.run({"-u", "16"});
    EXPECT_TRUE(hasLine(cam.errorLog(), "Update_OSD:" + kTemp + " write failed"));
    EXPECT_TRUE(cam.exists(D + "OSDtoken1.osdconf"));
    EXPECT_EQ(cam.lines(kList)[0], "OSDToken=OSDtoken1");
    EXPECT_TRUE(cam.shellTrace().empty());
  }
  {  // a token that is not a record name is replaced, never removed
    Camera cam;
    cam.startServer();
    cam.write("/etc/keep.osdconf", "x\n");
    cam.write(kList, "OSDToken=../../../../etc/keep\nOSDToken=OSDtoken2\nOSDToken=NULL\n");
    cam.write(kText, settings({"ClockEnabled=no"}));
    cam.run({"-u", "16"});
    EXPECT_EQ(cam.lines(kList), (std::vector<std::string>{"OSDToken=OSDtoken1", "OSDToken=NULL",
                                                          "OSDToken=OSDtoken3"}));
    EXPECT_TRUE(cam.exists("/etc/keep.osdconf"));
    EXPECT_FALSE(cam.exists(D + "OSDtoken2.osdconf"));
  }
}

}  // namespace
