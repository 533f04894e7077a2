// Factory defaults (-s 3 soft, -s 4 hard): the scope stamping of
// onvif.conf.default and the exact order of shell removals and copies.
#include <gtest/gtest.h>

#include <unistd.h>

#include <string>
#include <vector>

#include "camera.h"

using shm::Slot;
using testkit::Camera;

namespace {

const std::string D = "/usr/apache/htdocs/onvif/";

// A small persistent folder with known lists and records.
void writePersistent(const Camera& cam) {
  cam.remove(D);
  cam.write("/etc/sysconfig/brand.conf", "root.Brand.Model=X\nroot.Brand.Brand=Acme\nroot.Brand.Brand=Late\n");
  cam.write(D + "onvif.conf.default",
            "Name=%s\nConfigurableScopes=onvif://www.onvif.org/name/Old\n"
            "ConfigurableScopes=onvif://www.onvif.org/name/Older\n"
            "ConfigurableScopes=onvif://www.onvif.org/location/here\nInitial_Sync_Data=false\n");
  cam.write(D + "onvif.conf", "changed\n");
  cam.write(D + "Profiles.conf", "# list\nprofile filename=P1.profile\nprofile filename=P2.profile\n");
  cam.write(D + "Profiles.conf.default", "profile filename=P1.profile\n");
  cam.write(D + "P1.profile", "changed\n");
  cam.write(D + "P1.profile.default", "Name=first\n");
  cam.write(D + "P2.profile", "added later\n");
  cam.write(D + "VideoEncoder.conf", "VideoEncoder1.VEncoder\n");
  cam.write(D + "VideoEncoder1.VEncoder", "changed\n");
  cam.write(D + "VideoEncoder1.VEncoder.default", "Encoding=H264\n");
  cam.write(D + "Users.conf", "admin:Administrator:new\n");
  cam.write(D + "Users.conf.default", "admin:Administrator:admin\n");
}

std::vector<std::string> fixedFiles(int brand, bool users) {
  std::vector<std::string> t;
  for (const char* f : {"H264.VEOption", "H264_2.VEOption", "H264_3.VEOption", "H264_4.VEOption", "JPEG.VEOption",
                        "MPEG4.VEOption", "AudioOutput1.conf", "AudioDecoder1.ADecoder"}) {
    t.push_back("rm " + D + f);
    t.push_back("cp " + D + f + ".default " + D + f);
  }
  if (users) {
    t.push_back("rm " + D + "Users.conf");
    t.push_back("cp " + D + "Users.conf.default " + D + "Users.conf");
  }
  std::vector<std::string> copies = {"PresetTourCreate.conf"};
  for (int k = 1; k <= 8; ++k) copies.push_back("presettour" + std::to_string(k) + ".conf");
  if (brand == 42) copies.push_back("PTZ_Move.PTZConf");
  copies.push_back("OSDs.conf");
  copies.push_back("OSD.osdconf");
  if (brand == 16 || brand == 62) copies.push_back("Preset.conf");
  for (int k = 1; k <= 4; ++k) copies.push_back("VideoAnalytics" + std::to_string(k) + ".VAnalytic");
  for (const std::string& f : copies) t.push_back("cp " + D + f + ".default " + D + f);
  return t;
}

std::vector<std::string> missingLists(const char* routine) {
  std::vector<std::string> log;
  for (const char* tag : {"ONVIF_AUDIO_ENCODER_CONF", "ONVIF_METADATA_CONF", "ONVIF_VIDEO_SOURCE",
                          "ONVIF_VIDEO_SOURCE_CONF", "ONVIF_AUDIO_SOURCE_CONF", "ONVIF_PTZ_CONF"})
    log.push_back(std::string("onvifServer:[") + routine + "]" + tag + " missing");
  return log;
}

const char* const kStamped =
    "Name=(null)\nConfigurableScopes=onvif://www.onvif.org/name/Acme\n"
    "ConfigurableScopes=onvif://www.onvif.org/name/Acme\n"
    "ConfigurableScopes=onvif://www.onvif.org/location/here\nInitial_Sync_Data=true\n";

TEST(Defaults, SoftResetRunsItsCommandsInOrder) {
  for (int brand : {0, 42, 16, 62}) {
    Camera cam;
    cam.startServer({{Slot::ONVIF_BRAND, brand}});
    writePersistent(cam);
    EXPECT_EQ(cam.run({"-s", "3"}).out, "");
    std::vector<std::string> expect = {
        "cp /tmp/onvif/tmp/Soft_Default_All_Conf " + D + "onvif.conf.default",
        "rm " + D + "onvif.conf",
        "cp " + D + "onvif.conf.default " + D + "onvif.conf",
        "rm " + D,  // the line before the first record: no name held yet
        "rm " + D + "P1.profile",
        "rm " + D + "P2.profile",
        "cp " + D + "P1.profile.default " + D + "P1.profile",
        "rm " + D + "Profiles.conf",
        "cp " + D + "Profiles.conf.default " + D + "Profiles.conf",
        "rm " + D + "VideoEncoder1.VEncoder",
        "cp " + D + "VideoEncoder1.VEncoder.default " + D + "VideoEncoder1.VEncoder",
    };
    for (const std::string& t : fixedFiles(brand, true)) expect.push_back(t);
    EXPECT_EQ(cam.shellTrace(), expect) << brand;
    EXPECT_EQ(cam.errorLog(), missingLists("Soft_Default_All_Conf"));

    EXPECT_EQ(cam.read(D + "onvif.conf.default"), kStamped);
    EXPECT_EQ(cam.read(D + "onvif.conf"), kStamped);
    EXPECT_EQ(cam.read(D + "P1.profile"), "Name=first\n");
    EXPECT_FALSE(cam.exists(D + "P2.profile"));
    EXPECT_EQ(cam.read(D + "VideoEncoder1.VEncoder"), "Encoding=H264\n");
    EXPECT_EQ(cam.read(D + "Users.conf"), "admin:Administrator:admin\n");
    EXPECT_TRUE(cam.exists("/tmp/onvif/tmp/Soft_Default_All_Conf"));
    EXPECT_EQ(cam.slot(shm::kMarkerSlot), 78);
  }
}

TEST(Defaults, HardResetRemovesEveryRecordThenRestoresTheShippedOnes) {
  Camera cam;
  cam.startServer({{Slot::ONVIF_BRAND, 62}});
  writePersistent(cam);
  cam.write(D + "Stray.VEncoder", "not listed\n");
  cam.write(D + "Stray.PTZConf", "not listed\n");
  cam.run({"-s", "4"});
  std::vector<std::string> trace = cam.shellTrace();
  ASSERT_GE(trace.size(), 9u);
  EXPECT_EQ(trace[0], "cp /tmp/onvif/tmp/Hard_Default_All_Conf " + D + "onvif.conf.default");
  std::vector<std::string> head(trace.begin() + 1, trace.begin() + 9);
  std::vector<std::string> expectHead;
  for (const char* f : {"onvif.conf", "Profiles.conf", "Users.conf", "Subscription.conf"}) {
    expectHead.push_back("rm " + D + f);
    expectHead.push_back("cp " + D + f + ".default " + D + f);
  }
  EXPECT_EQ(head, expectHead);
  std::vector<std::string> tail(trace.end() - static_cast<long>(fixedFiles(62, false).size()), trace.end());
  EXPECT_EQ(tail, fixedFiles(62, false));

  EXPECT_EQ(cam.read(D + "onvif.conf"), kStamped);
  EXPECT_EQ(cam.read(D + "Profiles.conf"), "profile filename=P1.profile\n");
  EXPECT_EQ(cam.read(D + "P1.profile"), "Name=first\n");
  EXPECT_EQ(cam.read(D + "VideoEncoder1.VEncoder"), "Encoding=H264\n");
  EXPECT_FALSE(cam.exists(D + "P2.profile"));
  EXPECT_FALSE(cam.exists(D + "Stray.VEncoder"));
  EXPECT_FALSE(cam.exists(D + "Stray.PTZConf"));
  EXPECT_EQ(cam.read(D + "Users.conf"), "admin:Administrator:admin\n");
  EXPECT_EQ(cam.errorLog(), missingLists("Hard_Default_All_Conf"));
}

TEST(Defaults, WithoutBrandFileTheDefaultKeepsItsScopes) {
  Camera cam;
  cam.startServer();
  writePersistent(cam);
  cam.remove("/etc/sysconfig/brand.conf");
  std::string before = cam.read(D + "onvif.conf.default");
  cam.run({"-s", "3"});
  EXPECT_EQ(cam.read(D + "onvif.conf.default"), before);
  EXPECT_EQ(cam.read(D + "onvif.conf"), before);
  EXPECT_EQ(cam.errorLog().front(), "onvifServer: /etc/sysconfig/brand.conf missing");
  EXPECT_FALSE(cam.exists("/tmp/onvif/tmp/Soft_Default_All_Conf"));
}

TEST(Defaults, WithoutTheDefaultFileNothingIsStamped) {
  Camera cam;
  cam.startServer();
  writePersistent(cam);
  cam.remove(D + "onvif.conf.default");
  cam.run({"-s", "4"});
  EXPECT_EQ(cam.errorLog().front(), "onvifServer:sync " + D + "onvif.conf.default missing");
  EXPECT_FALSE(cam.exists("/tmp/onvif/tmp/Hard_Default_All_Conf"));
}

TEST(Defaults, HostileRecordNamesAreOneShellWord) {
  Camera cam;
  cam.startServer();
  writePersistent(cam);
  cam.write(D + "Profiles.conf", "profile filename=x;touch${IFS}pwned\nprofile filename=$(touch${IFS}pwned2)\n");
  cam.write(D + "x;touch${IFS}pwned", "gone\n");
  cam.run({"-s", "3"});
  EXPECT_FALSE(cam.exists(D + "x;touch${IFS}pwned"));
  EXPECT_EQ(access("pwned", F_OK), -1);
  EXPECT_EQ(access("pwned2", F_OK), -1);
  std::vector<std::string> trace = cam.shellTrace();
  EXPECT_EQ(trace[3], "rm " + D + "x;touch${IFS}pwned");
  EXPECT_EQ(trace[4], "rm " + D + "$(touch${IFS}pwned2)");
}

}  // namespace
