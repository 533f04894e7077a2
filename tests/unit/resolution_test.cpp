// The resolution look-ups and the other pure tables of the video routines.
#include "sync/video/resolution.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "sync/video/appearance.h"

using namespace onvif;

namespace {

struct Block {
  std::int32_t mem[1001] = {};
  shm::ShmBlock view{mem, sizeof mem};
  explicit Block(int brand) { view.set(shm::Slot::ONVIF_BRAND, brand); }
};

// Names are looked up by substring in the table's order ("qcif" and "4cif"
// hold "cif", "wsvga" "svga" and "vga"); the height depends on the video type
// and, for "3m", on the brand; a size is its own width and height.
TEST(Resolution, NamedCases) {
  struct Case {
    const char* name;
    int videoType, brand, width, height, code;
  } cases[] = {{"4cif", 1, 0, 704, 576, 35},      {"4cif", 0, 0, 704, 480, 35},
               {"cif", 21, 0, 352, 288, 2},       {"qcif", 19, 0, 176, 144, 1},
               {"d1", 19, 0, 720, 576, 5},        {"d1", 2, 0, 720, 480, 5},
               {"wsvga", 0, 0, 1024, 576, 27},    {"qvga", 0, 0, 320, 240, 3},
               {"vga", 0, 0, 640, 480, 4},        {"svga", 0, 0, 800, 600, 6},
               {"sxga", 0, 0, 1280, 1024, 10},    {"uxga", 0, 0, 1600, 1200, 22},
               {"xga", 0, 0, 1024, 768, 7},       {"quadvga", 0, 0, 1280, 960, 9},
               {"1080p", 1, 0, 1920, 1080, 11},   {"nHD", 0, 0, 640, 360, 21},
               {"3m", 0, 9, 2048, 1152, 12},      {"3m", 0, 0, 2048, 1536, 12},
               {"3.7m", 0, 0, 2560, 1440, 29},    {"640x360", 0, 0, 640, 360, 21},
               {"1024x576", 0, 0, 1024, 576, 27}, {"3600x2304", 0, 0, 3600, 3600, 55},
               {"1920x1080", 0, 0, 0, 0, 11},     {"2048x1152", 0, 0, 2048, 1152, 0},
               {"disable", 0, 0, 0, 0, 0},        {"", 0, 0, 0, 0, 0},
               {"1280x720", 0, 0, 0, 0, 8}};
  for (const Case& c : cases) {
    Block b(c.brand);
    EXPECT_EQ(GetResolutionWidth(c.name, c.videoType, b.view), c.width) << c.name;
    EXPECT_EQ(GetResolutionHeight(c.name, c.videoType, b.view), c.height)
        << c.name << " type " << c.videoType;
    EXPECT_EQ(GetResolutionCode(c.name), c.code) << c.name;
  }
}

// The legacy index compares whole names; only video type 1 is pal here, and
// "3m" is 1536 lines whatever the brand.
TEST(Resolution, LegacyIndexComparesWholeNames) {
  const struct {
    const char* name;
    int videoType;
    bool known;
    int index, height;  // height 0: not checked
  } cases[] = {{"disable", 0, true, 0, 0}, {"qcif", 0, true, 1, 0},  {"5m", 0, true, 13, 0},
               {"3m", 0, true, 12, 1536},  {"d1", 1, true, 5, 576},  {"d1", 19, true, 5, 480},
               {"cif", 1, true, 2, 288},   {"4cif", 0, false, 0, 0}, {"1080p ", 0, false, 0, 0},
               {"wsvga", 0, false, 0, 0},  {"", 0, false, 0, 0},     {"2048x1152", 0, false, 0, 0}};
  for (const auto& c : cases) {
    LegacyResolution r = GetLegacyResolutionIndex(c.name, c.videoType);
    EXPECT_EQ(r.known, c.known) << c.name;
    if (c.known) {
      EXPECT_EQ(r.index, c.index) << c.name;
    }
    if (c.height != 0) {
      EXPECT_EQ(r.height, c.height) << c.name << " type " << c.videoType;
    }
  }
}

// The legacy index of each of the fourteen names is its resolution code.
TEST(Resolution, LegacyIndexIsTheCode) {
  for (const char* name : {"disable", "qcif", "cif", "qvga", "vga", "d1", "svga", "xga", "720p",
                           "quadvga", "sxga", "1080p", "3m", "5m"})
    EXPECT_EQ(GetLegacyResolutionIndex(name, 0).index, GetResolutionCode(name)) << name;
}

TEST(VideoTables, JpegQuality) {
  std::vector<int> qualities;
  for (int q : {0, 1, 35, 50, 70}) qualities.push_back(JpegQuality(q));
  EXPECT_EQ(qualities, (std::vector<int>{1, 2, 50, 72, 100}));
}

}  // namespace
