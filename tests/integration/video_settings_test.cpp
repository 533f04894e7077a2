// Imaging (-u 3), rotation and flip (-u 7, -u 10) and the encoder's option
// ranges (-u 13) through the real binary.
#include <gtest/gtest.h>

#include <sstream>

#include "camera.h"

using shm::Slot;
using testkit::Camera;
using testkit::hasLine;

namespace {

const char* const kSource = "/tmp/onvif/VideoSource1.VSource";
const char* const kVSConf = "/tmp/onvif/VideoSource1.VSConf";
const char* const kApp = "/etc/sysconfig/image_appearance.conf";
const char* const kImageSource = "/etc/sysconfig/image_source.conf";
const char* const kOptions = "/tmp/options.conf";
const char* const kAvailable = "/tmp/onvif/available_resolution";

// The sensor file read by -u 3 (imaging) and -u 10 (PTZ image flip).
TEST(VideoImaging, ScalesModesAndSlotsPerDeviceType) {
  struct Case {
    int device, io, brand, marker;  // marker: the value of slots 36 and 45 to 48
    const char* settings;           // sensor keys, blank-separated
    const char* ir;
    const char* lines;  // lines of the video source, blank-separated
    int exposureSlot, whiteBalanceSlot, flip;
  } cases[] = {
      {1, 1, 0, 0,
       "WhiteBalance=manual WhiteBalance.Rgain=255 WhiteBalance.Bgain=127 Backlight=on Brightness=128 "
       "Sharpness=15 Contrast=255 ColorLevel=0 Wdr=3 ICR=on Exposure=manual Exposure.ManualPreset.AGCGain=50 Flip=Image",
       "root.IR.Mode=lightoff\n",
       "BacklightCompensation.Mode=ON Brightness=50.2 ColorSaturation=0.0 Contrast=100.0 Sharpness=100.0 "
       "WideDynamicRange.Mode=ON WideDynamicRange.Level=3.0 WhiteBalance.Mode=MANUAL WhiteBalance.CrGain=200.8 "
       "WhiteBalance.CbGain=100.0 IrCutFilter=OFF Exposure.Mode=MANUAL PreviousAE.Mode=NONE Exposure.Gain=25.0",
       3, 3, 1},
      {2, 3, 0, 0,
       "WhiteBalance=manual25 WhiteBalance.Rgain=255 Backlight=off Brightness=63 Sharpness=8 Contrast=128 "
       "ColorLevel=255 Wdr=on ICR=off Exposure=auto Exposure.ManualPreset.AGCGain=0 Flip=image",
       "root.IR.Mode=auto\n",
       "BacklightCompensation.Mode=OFF Brightness=100.0 ColorSaturation=100.0 Contrast=50.2 Sharpness=3.1 "
       "WideDynamicRange.Mode=ON WideDynamicRange.Level=1.0 WhiteBalance.Mode=MANUAL WhiteBalance.CrGain=50.0 "
       "IrCutFilter=ON Exposure.Mode=AUTO PreviousAE.Mode=auto Exposure.Gain=0.0",
       2, 3, 0},
      {4, 3, 42, 0,
       "Flip=Image WhiteBalance=ATW Backlight=dim Brightness=10 Sharpness=8 Contrast=10 ColorLevel=10 Wdr=3 ICR=smart "
       "Exposure=shutter Exposure.ManualPreset.AGCGain=10 Flip=None",
       "",
       "BacklightCompensation.Mode=OFF Brightness=50.2 ColorSaturation=50.2 Contrast=50.2 Sharpness=50.0 "
       "WideDynamicRange.Mode=OFF WideDynamicRange.Level=1.0 WhiteBalance.Mode=AUTO IrCutFilter=AUTO "
       "Exposure.Mode=AUTO PreviousAE.Mode=shutter Exposure.Gain=9.0",
       2, 2, 1},
      {1, 2, 0, -1,
       "WhiteBalance=manual WhiteBalance.Rgain=255 Brightness=10 ICR=off Exposure=manualpreset "
       "Exposure.ManualPreset.AGCGain=50 Wdr=7",
       "root.IR.Mode=on\n",
       "Brightness=NONE ColorSaturation=NONE Contrast=NONE Sharpness=NONE WideDynamicRange.Mode=OFF "
       "WhiteBalance.Mode=MANUAL WhiteBalance.CrGain=100.0 IrCutFilter=OFF Exposure.Mode=MANUAL Exposure.Gain=0.0",
       3, 3, 0},
  };
  for (const Case& c : cases) {
    Camera cam;
    cam.startServer({{Slot::ONVIF_DEVICE, c.device}, {Slot::ONVIF_IO_TYPE, c.io}, {Slot::ONVIF_BRAND, c.brand},
                     {Slot::IMAGE_EXPOSURE_GAIN_MAX, 200}, {Slot::IMAGE_EXPOSURE_MODE, c.marker},
                     {Slot::IMAGE_BRIGHTNESS, c.marker}, {Slot::IMAGE_SHARPNESS, c.marker},
                     {Slot::IMAGE_CONTRAST, c.marker}, {Slot::IMAGE_COLORLEVEL, c.marker}, {Slot::ONVIF_IMAGE_FLIP, 5}});
    std::istringstream settings(c.settings), expected(c.lines);
    std::string text, word;
    while (settings >> word) text += "root.ImageSource.I0.Sensor." + word + "\n";
    cam.write(kImageSource, text);
    cam.write("/etc/sysconfig/ir.conf", c.ir);
    cam.run({"-u", "3"});
    std::vector<std::string> lines = cam.lines(kSource);
    while (expected >> word) EXPECT_TRUE(hasLine(lines, word)) << "device " << c.device << ": " << word;
    EXPECT_EQ(lines.size(), 25u);
    EXPECT_EQ(cam.slot(Slot::IMAGE_EXPOSURE_MODE), c.exposureSlot);
    EXPECT_EQ(cam.slot(Slot::IMAGE_WBC_MODE), c.whiteBalanceSlot);
    cam.run({"-u", "10"});  // "Image" exactly, on the first Flip line
    EXPECT_EQ(cam.slot(Slot::ONVIF_IMAGE_FLIP), c.flip);
    EXPECT_TRUE(cam.errorLog().empty());
  }
}

TEST(VideoOrientation, RotationTable) {
  struct Case { const char* word; int code; const char* mode; const char* degree; } cases[] = {
      {"clockwise", 3, "ON", "90"},        {"0", 0, "ON", "0"},               {"rotate", 4, "ON", "180"},
      {"flip", 1, "OFF", "180"},           {"mirror", 2, "OFF", "180"},       {"counterclockwise", 5, "ON", "270"},
      {"clockwise_mirror", 6, "ON", "90"}, {"clockwise_flip", 7, "ON", "270"}, {"upside_down", 0, "ON", "0"},
  };
  Camera cam;
  cam.startServer();
  for (const Case& c : cases) {
    cam.write(kApp, std::string("root.Image.I0.Appearance.Rotation=") + c.word + "\n");
    cam.run({"-u", "7"});
    EXPECT_EQ(cam.slot(Slot::ONVIF_ROTATE_MODE), c.code) << c.word;
    std::vector<std::string> lines = cam.lines(kVSConf);
    EXPECT_TRUE(hasLine(lines, std::string("RotateMode=") + c.mode)) << c.word;
    EXPECT_TRUE(hasLine(lines, std::string("RotateDegree=") + c.degree)) << c.word;
  }
  cam.setSlot(Slot::ONVIF_ROTATE_MODE, 5);  // without the web file the slot's code is shown
  cam.remove(kApp);
  cam.run({"-u", "7"});
  EXPECT_EQ(cam.slot(Slot::ONVIF_ROTATE_MODE), 5);
  EXPECT_TRUE(hasLine(cam.lines(kVSConf), "RotateDegree=270"));
}

// options.conf with a resolution list, a frame-rate ceiling and, per H.264
// stream, a bitrate ceiling and a key-frame ceiling of a tenth of it.
std::string options(const std::string& list, int fps) {
  std::string out = list.empty() ? "" : "root.Image.I0.Appearance.Resolution=" + list + "\n";
  out += "root.Framerate.H264=1-" + std::to_string(fps) + "\n";
  const std::pair<const char*, int> streams[] = {{"", 6000}, {"_2", 3000}, {"_3", 900}, {"_4", 500}};
  for (auto [s, b] : streams)
    out += std::string("root.Image.I0.Appearance.H264") + s + "Bitrate=64-" + std::to_string(b) +
           "\nroot.Image.I0.Appearance.H264" + s + "VideoKeyFrameInterval=2-" + std::to_string(b / 10) + "\n";
  return out;
}

// The ".Max=" values of the given ranges in an option file.
std::string ceilings(const Camera& cam, const char* file, const char* ranges) {
  std::istringstream in(ranges);
  std::string range, out;
  while (in >> range)
    for (const std::string& l : cam.lines(std::string("/usr/apache/htdocs/onvif/") + file + ".VEOption"))
      if (l.rfind(range + ".Max=", 0) == 0) out += (out.empty() ? "" : " ") + l.substr(l.find('=') + 1);
  return out;
}

TEST(VideoLimits, AvailableResolutionsAndChannelFiles) {
  struct Case { int brand; const char* list; const char* available; const char* channels[4]; } cases[] = {
      {9, "720p,1080p,disable&vga,d1,disable", "720p,1080p,disable,disable,disable\n",
       {"", "720p,1080p,disable,disable,disable\n", "", ""}},
      {30, "1080p,1080p,disable,disable,disable&disable,720p,1080p,disable,disable&720p,720p,720p,disable,disable",
       "1080p,1080p,disable,disable,disable\ndisable,720p,1080p,disable,disable\n720p,720p,720p,disable,disable\n",
       {"", "1080p,1080p,disable,disable,disable\ndisable,720p,1080p,disable,disable\ndisable,1080p,1080p,disable,disable\n",
        "720p,720p,720p,disable,disable\n1080p,1080p,1080p,disable,disable\ndisable,1080p,1080p,1080p,disable\n", ""}},
      {0, "vga,disable,disable,disable,disable&cif,vga,disable,disable,disable&a&vga,cif,vga,cif,disable",
       "vga,disable,disable,disable,disable\ncif,vga,disable,disable,disable\na\nvga,cif,vga,cif,disable\n",
       {"vga,disable,disable,disable,disable\n", "cif,vga,disable,disable,disable\n", "", "vga,cif,vga,cif,disable\n"}},
  };
  for (const Case& c : cases) {
    Camera cam;
    cam.startServer({{Slot::ONVIF_BRAND, c.brand}});
    cam.write(kOptions, options(c.list, 25));
    EXPECT_EQ(cam.run({"-u", "13"}).out, "[Main] A5S sdk310 Parse available resolution done!\n");
    EXPECT_EQ(cam.read(kAvailable), c.available);
    for (int n = 1; n <= 4; ++n)
      EXPECT_EQ(cam.read(kAvailable + std::string("_with_") + std::to_string(n) + "_channel"), c.channels[n - 1])
          << c.list << " " << n;
    EXPECT_TRUE(cam.errorLog().empty());
    // JPEG keeps its bitrate; brand 30 keeps the third and fourth streams' bitrates.
    EXPECT_EQ(ceilings(cam, "JPEG", "FrameRateRange EncodingIntervalRange BitrateRange"), "25 25 8000");
    EXPECT_EQ(ceilings(cam, "H264", "BitrateRange GovLengthRange FrameRateRange"), "6000 600 25");
    EXPECT_EQ(ceilings(cam, "H264_2", "BitrateRange GovLengthRange"), "3000 300");
    EXPECT_EQ(ceilings(cam, "H264_3", "BitrateRange GovLengthRange"), c.brand == 30 ? "2000 90" : "900 90");
    EXPECT_EQ(ceilings(cam, "H264_4", "BitrateRange EncodingIntervalRange"), c.brand == 30 ? "1000 25" : "500 25");
  }
}

TEST(VideoLimits, NothingToSync) {
  Camera cam;
  cam.startServer();
  cam.write(kOptions, options("", 0));
  EXPECT_EQ(cam.run({"-u", "13"}).out, "");
  EXPECT_EQ(ceilings(cam, "H264", "BitrateRange FrameRateRange"), "8000 30");
  cam.write(kOptions, options("720p,disable,disable,disable,disable", 30));
  cam.write(kAvailable + std::string("/blocked"), "");  // a folder where the list goes: the write fails
  cam.run({"-u", "13"});
  EXPECT_EQ(ceilings(cam, "H264", "BitrateRange"), "6000");
  EXPECT_EQ(cam.errorLog(), (std::vector<std::string>{
                                "Update_AvailableResolutionTable:available_resolution is NULL!!!",
                                "Update_FPS_GOV_BITRATE can't sync Max FPS/GOV/Bitrate.",
                                "Update_AvailableResolutionTable:/tmp/onvif/available_resolution write failed"}));
}

}  // namespace
