// The resolution look-ups and the other pure tables of the video routines.
#include <gtest/gtest.h>

#include <cstdint>
#include <sstream>
#include <string>
#include <vector>

#include "sync/video/appearance.h"
#include "sync/video/resolution.h"

using namespace onvif;

namespace {

struct Block {
  std::int32_t mem[1001] = {};
  shm::ShmBlock view{mem, sizeof mem};
  explicit Block(int brand) { view.set(shm::Slot::ONVIF_BRAND, brand); }
};

TEST(Resolution, NamedCases) {
  struct Case { const char* name; int videoType, brand, width, height, code; } cases[] = {
      {"4cif", 1, 0, 704, 576, 35},     {"4cif", 0, 0, 704, 480, 35},    {"cif", 21, 0, 352, 288, 2},
      {"qcif", 19, 0, 176, 144, 1},     {"d1", 19, 0, 720, 576, 5},      {"d1", 2, 0, 720, 480, 5},
      {"wsvga", 0, 0, 1024, 576, 27},   {"qvga", 0, 0, 320, 240, 3},     {"vga", 0, 0, 640, 480, 4},
      {"svga", 0, 0, 800, 600, 6},      {"sxga", 0, 0, 1280, 1024, 10},  {"uxga", 0, 0, 1600, 1200, 22},
      {"xga", 0, 0, 1024, 768, 7},      {"quadvga", 0, 0, 1280, 960, 9}, {"720p", 0, 0, 1280, 720, 8},
      {"1080p", 1, 0, 1920, 1080, 11},  {"qHD", 0, 0, 960, 540, 28},     {"nHD", 0, 0, 640, 360, 21},
      {"3m", 0, 9, 2048, 1152, 12},     {"3m", 0, 0, 2048, 1536, 12},    {"3.7m", 0, 0, 2560, 1440, 29},
      {"5m", 0, 0, 2592, 1944, 13},     {"640x360", 0, 0, 640, 360, 21}, {"1024x576", 0, 0, 1024, 576, 27},
      {"3600x2304", 0, 0, 3600, 3600, 55}, {"1920x1080", 0, 0, 0, 0, 11}, {"2048x1152", 0, 0, 2048, 1152, 0},
      {"disable", 0, 0, 0, 0, 0},       {"", 0, 0, 0, 0, 0},             {"1280x720", 0, 0, 0, 0, 8},
  };
  for (const Case& c : cases) {
    Block b(c.brand);
    EXPECT_EQ(GetResolutionWidth(c.name, c.videoType, b.view), c.width) << c.name;
    EXPECT_EQ(GetResolutionHeight(c.name, c.videoType, b.view), c.height) << c.name << " type " << c.videoType;
    EXPECT_EQ(GetResolutionCode(c.name), c.code) << c.name;
  }
}

// Every explicit size gives its own width and height (one exception) and
// its code; the codes are the server's format.
TEST(Resolution, EveryExplicitSize) {
  const char* sizes =
      "4000x3000:32 2304x1296:33 3840x2160:20 3200x1800:31 3072x2048:19 3072x1728:41 2816x1584:34 "
      "2688x1520:26 2688x1512:30 2560x1440:29 2048x2048:18 2048x1152:0 1856x1856:17 1408x1408:16 "
      "1280x1280:15 960x960:23 960x720:24 960x544:25 720x720:14 1664x936:36 480x360:40 384x288:39 "
      "384x216:37 320x192:38 2992x2992:42 1984x1488:48 1072x1072:43 640x640:44 480x480:45 384x384:46 "
      "352x352:47 1600x896:49 2384x1344:50 1440x1080:51 4000x2400:52 3840x2496:53 3600x2656:54 "
      "3600x2304:55 3312x2896:56 3312x2496:57";
  std::istringstream in(sizes);
  std::string item;
  Block b(0);
  int count = 0;
  while (in >> item) {
    std::string name = item.substr(0, item.find(':'));
    int w = std::stoi(name);
    int h = std::stoi(name.substr(name.find('x') + 1));
    if (name == "3600x2304") h = 3600;
    EXPECT_EQ(GetResolutionWidth(name.c_str(), 1, b.view), w) << name;
    EXPECT_EQ(GetResolutionHeight(name.c_str(), 1, b.view), h) << name;
    EXPECT_EQ(GetResolutionCode(name.c_str()), std::stoi(item.substr(item.find(':') + 1))) << name;
    ++count;
  }
  EXPECT_EQ(count, 40);
}

TEST(Resolution, LegacyIndexComparesWholeNames) {
  const char* names[] = {"disable", "qcif", "cif", "qvga", "vga", "d1", "svga",
                         "xga", "720p", "quadvga", "sxga", "1080p", "3m", "5m"};
  for (int i = 0; i < 14; ++i) {
    LegacyResolution r = GetLegacyResolutionIndex(names[i], 0);
    EXPECT_TRUE(r.known);
    EXPECT_EQ(r.index, i);
    EXPECT_EQ(r.index, GetResolutionCode(names[i])) << names[i];
  }
  // Only video type 1 is pal here, and "3m" is 1536 lines whatever the brand.
  EXPECT_EQ((std::vector<int>{GetLegacyResolutionIndex("3m", 0).height, GetLegacyResolutionIndex("d1", 1).height,
                              GetLegacyResolutionIndex("d1", 19).height, GetLegacyResolutionIndex("cif", 1).height}),
            (std::vector<int>{1536, 576, 480, 288}));
  for (const char* other : {"4cif", "1080p ", "wsvga", "", "2048x1152"}) EXPECT_FALSE(GetLegacyResolutionIndex(other, 0).known);
}

TEST(VideoTables, JpegQuality) {
  std::vector<int> qualities;
  for (int q : {0, 1, 35, 50, 70}) qualities.push_back(JpegQuality(q));
  EXPECT_EQ(qualities, (std::vector<int>{1, 2, 50, 72, 100}));
}

}  // namespace
