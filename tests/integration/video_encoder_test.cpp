// Video encoder sync through the real binary: stream layout (-u 2), frame
// rates (-u 5, -u 6), H.264 profiles (-u 15) and encoding priority (-u 19).
#include <gtest/gtest.h>

#include <map>

#include "camera.h"

using shm::Slot;
using testkit::Camera;

namespace {

const char* const kApp = "/etc/sysconfig/image_appearance.conf";

std::string encoderPath(int k) { return "/tmp/onvif/VideoEncoder" + std::to_string(k) + ".VEncoder"; }

std::map<std::string, std::string> values(const Camera& cam, const std::string& path) {
  std::map<std::string, std::string> v;
  for (const std::string& l : cam.lines(path))
    if (l.find('=') != std::string::npos) v[l.substr(0, l.find('='))] = l.substr(l.find('=') + 1);
  return v;
}

// "H264 1920x1080 q60 b6144 g60 High u1" of encoder k.
std::string summary(const Camera& cam, int k) {
  auto v = values(cam, encoderPath(k));
  return v["Encoding"] + " " + v["Resolution width"] + "x" + v["Resolution height"] + " q" + v["Quality"] + " b" +
         v["BitrateLimit"] + " g" + v["GovLength"] + " " + v["H264Profile"] + " u" + v["UseCount"];
}

// One key of the four encoders (or of Profile1 to Profile4), joined by blanks.
std::string column(const Camera& cam, const char* key, const char* kind = "VideoEncoder") {
  std::string out;
  for (int k = 1; k <= 4; ++k) {
    std::string path = kind == std::string("Profile") ? "/tmp/onvif/Profile" + std::to_string(k) + ".profile" : encoderPath(k);
    out += (k > 1 ? " " : "") + values(cam, path)[key];
  }
  return out;
}

// Replaces the value of the line that starts with key + "=".
void setKey(const Camera& cam, const std::string& path, const std::string& key, const std::string& value) {
  std::string text;
  for (const std::string& l : cam.lines(path)) text += (l.rfind(key + "=", 0) == 0 ? key + "=" + value : l) + "\n";
  cam.write(path, text);
}

// A line with two keys is decided by the first key of the routine's order it
// holds, also when that key keeps it.
const std::string kTwoKeys = "Quality=3 BitrateLimit=4\n";

const std::string kSample[4] = {"H264 1920x1080 q60 b6144 g60 High u1", "H264 1280x720 q60 b2048 g30 Main u1",
                                "H264 640x360 q60 b512 g30 Baseline u1", "JPEG 1280x720 q50 b4096 g30 Main u1"};

// Gives the stream lines of every record values no run writes, so that a kept
// line shows as such ("MPEG4 1x1 q1 b1 g1 X").
void scramble(const Camera& cam) {
  const char* const lines[][2] = {{"Encoding", "MPEG4"}, {"Resolution width", "1"}, {"Resolution height", "1"},
                                  {"Quality", "1"}, {"BitrateLimit", "1"}, {"GovLength", "1"}, {"H264Profile", "X"}};
  for (int k = 1; k <= 4; ++k)
    for (const auto& l : lines) setKey(cam, encoderPath(k), l[0], l[1]);
}

TEST(VideoAppearance, MultiStreamLayouts) {
  const std::string h1 = "H264 1920x1080 q1 b6144 g60 High u1", h2 = "H264 1280x720 q1 b2048 g30 Main u1",
                    h3 = "H264 640x360 q1 b512 g30 Baseline u1", j = "JPEG 1280x720 q50 b1 g1 X u1",
                    kept = "MPEG4 1x1 q1 b1 g1 X u0", bound = "MPEG4 1x1 q1 b1 g1 X u1";
  struct Case { const char* resolution; int videoType, layout, ch[4]; std::string enc[4]; } cases[] = {
      {"disable,1080p,720p,disable,disable", 0, 2, {11, 8, 0, 0}, {h1, h2, kept, kept}},
      {"720p,1080p,disable,disable,disable", 0, 3, {11, 8, 0, 0}, {h1, j, kept, kept}},
      {"disable,1080p,disable,720p,disable", 0, 4, {77, 77, 77, 77}, {bound, bound, bound, bound}},
      {"disable,1080p,720p,640x360,disable", 0, 5, {11, 8, 21, 0}, {h1, h2, h3, kept}},
      {"disable,1080p,720p,640x360,640x360", 0, 7, {11, 8, 21, 21}, {h1, h2, h3, "H264 640x360 q1 b512 g30 Main u1"}},
      {"720p,1080p,720p,disable,disable", 0, 6, {11, 8, 8, 0}, {h1, h2, j, kept}},
      {"720p,1080p,720p,640x360,disable", 0, 8, {11, 8, 21, 8}, {h1, h2, h3, j}},
      {"qcif,disable,disable,disable,disable", 1, 0, {1, 0, 0, 0}, {"JPEG 176x144 q50 b1 g1 X u1", kept, kept, kept}},
      {"disable,d1,disable,disable,disable", 19, 1, {5, 0, 0, 0}, {"H264 720x576 q1 b6144 g60 High u1", kept, kept, kept}},
  };
  for (const Case& c : cases) {
    Camera cam;
    cam.startServer({{Slot::ONVIF_DEVICE, 6}, {Slot::ONVIF_VIDEO_TYPE, c.videoType}, {Slot::ONVIF_MULTIPLE_STREAM, 4},
                     {Slot::ONVIF_CH1_RESOLUTION, 77}, {Slot::ONVIF_CH2_RESOLUTION, 77},
                     {Slot::ONVIF_CH3_RESOLUTION, 77}, {Slot::ONVIF_CH4_RESOLUTION, 77}});
    setKey(cam, kApp, "root.Image.I0.Appearance.Resolution", c.resolution);
    scramble(cam);
    cam.write(encoderPath(1), kTwoKeys + cam.read(encoderPath(1)));
    cam.run({"-u", "2"});
    SCOPED_TRACE(c.resolution);
    const bool jpeg = c.enc[0].rfind("JPEG", 0) == 0;
    EXPECT_EQ(cam.lines(encoderPath(1))[0], jpeg ? "Quality=50" : "Quality=3 BitrateLimit=4");
    EXPECT_EQ(cam.slot(Slot::ONVIF_MULTIPLE_STREAM), c.layout);
    const Slot chs[4] = {Slot::ONVIF_CH1_RESOLUTION, Slot::ONVIF_CH2_RESOLUTION, Slot::ONVIF_CH3_RESOLUTION,
                         Slot::ONVIF_CH4_RESOLUTION};
    for (int i = 0; i < 4; ++i) EXPECT_EQ(cam.slot(chs[i]), c.ch[i]) << "CH" << i + 1;
    for (int k = 1; k <= 4; ++k) EXPECT_EQ(summary(cam, k), c.enc[k - 1]) << "VideoEncoder" << k;
    EXPECT_TRUE(cam.errorLog().empty());
  }
}

// Layout codes that other parts of the firmware set: the codec table, the
// JPEG qualities (the second JPEG stream has its own factor) and the binding.
TEST(VideoAppearance, LayoutCodesSetElsewhere) {
  const char* kAE1 = "AudioEncoder1 AudioEncoder1 AudioEncoder1 AudioEncoder1";
  // Encoding and Quality of each encoder; VideoEncoder= and AudioEncoder= of Profile1 to Profile4.
  struct Case { int layout, brand; const char *codecs, *video, *audio; } cases[] = {
      {9, 28, "JPEG JPEG MPEG4 MPEG4 / 50 100 1 1", "VideoEncoder1 VideoEncoder2 NONE NONE", "AudioEncoder1 AudioEncoder2 NONE NONE"},
      {10, 0, "JPEG H264 MPEG4 MPEG4 / 50 1 1 1", "VideoEncoder1 VideoEncoder2 NONE NONE", kAE1},
      {11, 28, "H264 JPEG JPEG MPEG4 / 1 50 100 1", "VideoEncoder1 VideoEncoder2 VideoEncoder3 VideoEncoder4", kAE1},
      {13, 0, "JPEG JPEG JPEG MPEG4 / 50 100 100 1", "VideoEncoder1 VideoEncoder2 VideoEncoder3 VideoEncoder4", kAE1},
      {7, 28, "H264 H264 H264 H264 / 1 1 1 1", "VideoEncoder1 VideoEncoder2 VideoEncoder3 VideoEncoder4",
       "AudioEncoder1 AudioEncoder2 AudioEncoder3 AudioEncoder4"},
      {20, 0, "H264 H264 H264 JPEG / 1 1 1 1", "VideoEncoder1 VideoEncoder2 VideoEncoder3 VideoEncoder4", kAE1},
  };
  for (const Case& c : cases) {
    Camera cam;
    cam.startServer({{Slot::ONVIF_DEVICE, 6}, {Slot::ONVIF_BRAND, c.brand}, {Slot::ONVIF_MULTIPLE_STREAM, c.layout}});
    setKey(cam, kApp, "root.Image.I0.Appearance.Resolution", "disable,disable,disable,disable,disable");
    setKey(cam, kApp, "root.Image.I0.Appearance.Mjpeg_2Qfactor", "70");
    scramble(cam);
    cam.run({"-u", "2"});
    EXPECT_EQ(column(cam, "Encoding") + " / " + column(cam, "Quality"), c.codecs) << c.layout;
    EXPECT_EQ(column(cam, "VideoEncoder", "Profile"), c.video) << c.layout;
    EXPECT_EQ(column(cam, "AudioEncoder", "Profile"), c.audio) << c.layout;
  }
}

// Flag 0: each record keeps its codec; an H.264 record on channel 2 is
// passed again with stream 2 (keeping the first pass's size when it is off).
TEST(VideoAppearance, PerCodecAndTwoEncoderPaths) {
  // slots: the MPEG-4, JPEG, H.264 and H.264 2 legacy indices (99: untouched); copies: "cp" commands.
  struct Case { int device, brand, videoType; const char* resolution; int slots[4]; std::string enc[4]; int copies; } cases[] = {
      {1, 0, 1, "d1,720p,cif", {99, 5, 8, 2},
       {"H264 1280x720 q60 b6144 g60 High u1", "H264 352x288 q60 b2048 g30 Main u1",
        "H264 1280x720 q60 b6144 g60 Baseline u1", "JPEG 720x576 q50 b4096 g30 Main u1"}, 5},
      {1, 0, 0, "d1,720p,disable", {99, 5, 8, 0},
       {"H264 1280x720 q60 b6144 g60 High u1", "H264 1280x720 q60 b2048 g30 Main u1",
        "H264 1280x720 q60 b6144 g60 Baseline u1", "JPEG 720x480 q50 b4096 g30 Main u1"}, 5},
      {2, 0, 0, "vga,qcif,720p,4cif", {1, 4, 8, 99},
       {"H264 1280x720 q60 b6144 g60 High u1", "H264 1280x720 q60 b2048 g30 Main u1",
        "MPEG4 176x120 q60 b2048 g30 Baseline u1", "JPEG 640x480 q50 b4096 g30 Main u1"}, 5},
      {1, 12, 0, "720p,1080p,disable", {99, 8, 11, 0},
       {"H264 1920x1080 q60 b6144 g60 High u1", "JPEG 1280x720 q50 b2048 g30 Main u1", kSample[2], kSample[3]}, 2},
      {7, 0, 0, "disable,disable,vga", {99, 0, 0, 4},
       {"H264 1920x1080 q60 b6144 g60 High u1", "H264 1280x720 q60 b6144 g60 Main u1", kSample[2], kSample[3]}, 2},
  };
  for (const Case& c : cases) {
    Camera cam;
    cam.startServer({{Slot::ONVIF_DEVICE, c.device}, {Slot::ONVIF_BRAND, c.brand}, {Slot::ONVIF_VIDEO_TYPE, c.videoType},
                     {Slot::ONVIF_RESOLUTION_MPEG4, 99}, {Slot::ONVIF_RESOLUTION_JPEG, 99},
                     {Slot::ONVIF_RESOLUTION_H264, 99}, {Slot::ONVIF_RESOLUTION_H264_2, 99}});
    setKey(cam, kApp, "root.Image.I0.Appearance.Resolution", c.resolution);
    if (c.device == 2 && c.brand == 0) setKey(cam, encoderPath(3), "Encoding", "MPEG4");
    cam.write(encoderPath(1), kTwoKeys + cam.read(encoderPath(1)));
    cam.run({"-u", "2"});
    SCOPED_TRACE(c.resolution);
    EXPECT_EQ(cam.lines(encoderPath(1))[0], "Quality=3 BitrateLimit=4");  // H.264 keeps its quality
    for (int i = 0; i < 4; ++i) EXPECT_EQ(cam.slot(51 + i), c.slots[i]) << "slot " << 51 + i;
    for (int k = 1; k <= 4; ++k) EXPECT_EQ(summary(cam, k), c.enc[k - 1]) << "VideoEncoder" << k;
    EXPECT_EQ(cam.shellTrace().size(), static_cast<std::size_t>(c.copies));
    EXPECT_EQ(cam.slot(Slot::ONVIF_MULTIPLE_STREAM), 0);
  }
}

// A missing file is one error-log line; a missing list or record ends an
// encoder walk before VideoEncoder3 (third: its record stays as it was), and a
// missing record leaves the routine's temporary file empty (temp).
TEST(VideoSync, MissingFiles) {
  struct Case { int device, brand; const char *cmd, *remove; std::vector<std::string> log; bool third; const char* temp = ""; } cases[] = {
      {6, 0, "2", kApp, {"[Update_Imapge_Appearance]SYSTEM_IMAGE_APP_CONFIG missing"}, false},
      {6, 0, "2", "/usr/apache/htdocs/onvif/VideoEncoder.conf", {"[Update_Imapge_Appearance]ONVIF_VIDEO_ENCODER_CONF missing"}, true},
      {6, 0, "2", "/tmp/onvif/VideoEncoder2.VEncoder", {"[Update_Imapge_Appearance]ONVIF_VIDEO_ENCODER_X missing"}, true},
      {1, 0, "2", "/tmp/onvif/VideoEncoder2.VEncoder", {"[Update_Imapge_Appearance]ONVIF_VIDEO_ENCODER_X missing"}, true, "WS_Update_Imapge_Appearance"},
      {1, 12, "2", "/tmp/onvif/VideoEncoder1.VEncoder", {"[Update_Imapge_Appearance]ONVIF_VIDEO_ENCODER_1 missing"}, true, "WS_Update_Imapge_Appearance"},
      {1, 12, "2", "/usr/apache/htdocs/onvif/VideoEncoder.conf", {"onvifServer:[Update_Imapge_Appearance]ONVIF_VIDEO_ENCODER_CONF missing"}, true},
      {6, 0, "2", "/tmp/onvif/Profiles.conf", {"CheckResolutionToAddOrMinusVideoEncoderInProfile /tmp/onvif/Profiles.conf missing",
       "Sync_VideoEncoderUseCount:/tmp/onvif/Profiles.conf missing", "Sync_VideoEncoderUseCount:/tmp/onvif/Profiles.conf missing",
       "Sync_VideoEncoderUseCount:/tmp/onvif/Profiles.conf missing", "Sync_VideoEncoderUseCount:/tmp/onvif/Profiles.conf missing"}, false},
      {6, 0, "5", "/etc/sysconfig/framerate.conf", {"Update_framerate:/etc/sysconfig/framerate.conf missing"}, false},
      {6, 0, "5", "/tmp/onvif/VideoEncoder2.VEncoder", {"onvifServer:[Update_framerate]ONVIF_VIDEO_ENCODER_X missing"}, true},
      {1, 0, "5", "/tmp/onvif/VideoEncoder2.VEncoder", {"onvifServer:[Update_framerate]ONVIF_VIDEO_ENCODER_X missing"}, true, "WS_Update_framerate"},
      {1, 0, "6", "/usr/apache/htdocs/onvif/VideoEncoder.conf", {"onvifServer:[Update_frameskip]ONVIF_VIDEO_ENCODER_CONF missing"}, true},
      {6, 0, "15", kApp, {"[Update_H264Profile]/etc/sysconfig/image_appearance.conf missing"}, false},
      {6, 0, "15", "/tmp/onvif/VideoEncoder2.VEncoder", {"START_SYNC_H264PROFILE:/tmp/onvif/VideoEncoder2.VEncoder missing"}, true},
      {6, 0, "19", kApp, {"[Update_EncodingPriority]/etc/sysconfig/image_appearance.conf missing"}, true},
      {6, 0, "19", "/tmp/onvif/VideoEncoder2.VEncoder", {"[Update_EncodingPriority]ONVIF_VIDEO_ENCODER_X missing"}, true},
      {6, 0, "13", "/tmp/options.conf", {"Update_AvailableResolutionTable:/tmp/options.conf missing.",
       "Update_AvailableResolutionTable:available_resolution is NULL!!!", "Update_FPS_GOV_BITRATE can't sync Max FPS/GOV/Bitrate."}, true},
      {6, 0, "13", "/usr/apache/htdocs/onvif/H264_2.VEOption", {"Update_FPS_GOV_BITRATE:/usr/apache/htdocs/onvif/H264_2.VEOption missing."}, true},
      {6, 0, "3", "/etc/sysconfig/image_source.conf", {"[Update_Imapge_Source]SYSTEM_IMAGE_CONFIG missing"}, true},
      {6, 0, "3", "/etc/sysconfig/ir.conf", {"[Update_Imapge_Source]SYSTEM_IR_CONFIG missing"}, true},
      {6, 0, "3", "/tmp/onvif/VideoSource1.VSource", {"[Update_Imapge_Source]ONVIF_VIDEO_SOURCE_1 missing"}, true},
      {6, 0, "3", "/usr/apache/htdocs/onvif/VideoSource.conf", {"[Update_Imapge_Source]ONVIF_VIDEO_SOURCE missing"}, true},
      {6, 0, "7", "/tmp/onvif/VideoSource1.VSConf", {"Update_Flip_Vision:/tmp/onvif/VideoSource1.VSConf missing"}, true},
      {6, 0, "7", kApp, {"[Update_Flip_Vision] /etc/sysconfig/image_appearance.conf missing"}, true},
      {6, 0, "10", "/etc/sysconfig/image_source.conf", {"Update_PTZ_Image_Flip /etc/sysconfig/image_source.conf missing"}, true},
  };
  for (const Case& c : cases) {
    Camera cam;
    cam.startServer({{Slot::ONVIF_DEVICE, c.device}, {Slot::ONVIF_BRAND, c.brand}, {Slot::ONVIF_MULTIPLE_STREAM, 8}});
    setKey(cam, kApp, "root.Image.I0.Appearance.Resolution", "disable,1080p,720p,disable,disable");
    const std::string third = cam.read(encoderPath(3)), temp = std::string("/tmp/onvif/tmp/") + c.temp;
    cam.remove(c.remove);
    if (*c.temp) cam.write(temp, "stale\n");
    cam.run({"-u", c.cmd});
    EXPECT_EQ(cam.errorLog(), c.log) << c.remove;
    EXPECT_EQ(cam.read(encoderPath(3)) == third, c.third) << c.cmd << " " << c.remove;
    if (*c.temp) {
      EXPECT_EQ(cam.read(temp), "") << c.cmd << " " << c.remove;
    }
  }
}

TEST(VideoAppearance, ProfileListNamingAMissingProfileIsCountedPast) {
  Camera cam;
  cam.startServer({{Slot::ONVIF_DEVICE, 6}, {Slot::ONVIF_MULTIPLE_STREAM, 8}});
  cam.write("/tmp/onvif/Profiles.conf",
            "profile filename=Profile9.profile\nprofile filename=Profile1.profile\nprofile filename=Profile2.profile\n");
  cam.run({"-u", "2"});
  EXPECT_EQ(column(cam, "UseCount"), "1 1 0 0");
  std::vector<std::string> expect(4, "Sync_VideoEncoderUseCount /tmp/onvif/Profile9.profile missing");  // per UseCount
  expect.insert(expect.begin(), "CheckResolutionToAddOrMinusVideoEncoderInProfile /tmp/onvif/Profile9.profile missing");
  EXPECT_EQ(cam.errorLog(), expect);
}

TEST(VideoFrameRate, ByLayoutCodeOrByCodec) {
  struct Case { int device, layout; const char *cmd, *rates; } cases[] = {
      {6, 3, "5", "25 11 15 10"}, {6, 8, "5", "25 20 14 11"}, {6, 9, "5", "25 20 15 10"},
      {6, 7, "5", "25 20 14 12"}, {6, 4, "5", "30 30 15 10"}, {1, 8, "5", "25 20 12 11"},
      {6, 8, "6", "30 15 1 6"},   {2, 0, "6", "30 15 1 6"},
  };
  for (const Case& c : cases) {
    Camera cam;
    cam.startServer({{Slot::ONVIF_DEVICE, c.device}, {Slot::ONVIF_MULTIPLE_STREAM, c.layout}});
    cam.write("/etc/sysconfig/framerate.conf", "root.Framerate.Mjpeg=11\nroot.Framerate.H264=25\nroot.Framerate.H264_2=20\n"
                                               "root.Framerate.H264_3=14\nroot.Framerate.H264_4=12\n");
    cam.write("/etc/sysconfig/frameskip.conf",
              "root.Frameskip.Mjpeg=2\nroot.Frameskip.H264=\nroot.Frameskip.H264_2=1\nroot.Frameskip.Mpeg4=7\n");
    setKey(cam, encoderPath(3), c.cmd[0] == '6' ? "Encoding" : "Channel", c.cmd[0] == '6' ? "MPEG4" : "4");
    cam.run({"-u", c.cmd});
    EXPECT_EQ(column(cam, "FrameRateLimit"), c.rates) << "-u " << c.cmd << " device " << c.device << " layout " << c.layout;
    EXPECT_TRUE(cam.errorLog().empty());
  }
}

// -u 15 writes the profile of the H.264 streams the layout places ("X": kept);
// -u 19 zeroes the quality of H.264 and H.265 records after their codec line.
TEST(VideoProfiles, H264ProfileAndEncodingPriority) {
  struct Case { int layout; const char* profiles; } cases[] = {{3, "Baseline X X X"}, {6, "Baseline High X X"},
               {7, "Baseline High Main Baseline"}, {8, "Baseline High Main X"}, {10, "X X X X"}};
  Camera cam;
  cam.startServer();
  cam.write(kApp, "root.Image.I0.Appearance.H264Profile=baseline\nroot.Image.I0.Appearance.H264_2Profile=high\n"
                 "root.Image.I0.Appearance.H264_3Profile=High\nroot.Image.I0.Appearance.H264_4Profile=baseline\n");
  for (const Case& c : cases) {
    scramble(cam);
    cam.setSlot(Slot::ONVIF_MULTIPLE_STREAM, c.layout);
    cam.run({"-u", "15"});
    EXPECT_EQ(column(cam, "H264Profile"), c.profiles) << c.layout;
  }
  setKey(cam, encoderPath(2), "Encoding", "H265");  // the others are MPEG4 (quality 1) after scramble
  cam.write(encoderPath(3), "Quality=60\nEncoding=H264\nQuality=70\n");
  cam.run({"-u", "19"});
  EXPECT_EQ(column(cam, "Quality"), "1 0 0 1");
  EXPECT_EQ(cam.read(encoderPath(3)), "Quality=60\nEncoding=H264\nQuality=0\n");
}

}  // namespace
