#include "sync/video/resolution.h"

#include <cstring>

namespace onvif {

using shm::Slot;

namespace {

bool contains(const char* name, const char* pattern) {
  return std::strstr(name, pattern) != nullptr;
}

// A word and its size. Heights depend on the video standard for the
// broadcast formats (pal differs from ntsc) and on the brand for "3m".
struct WordSize {
  const char* pattern;
  int width;  // 0: the width look-up does not know the word
  int ntsc;   // height; 0: the height look-up does not know the word
  int pal;
};

constexpr int kThreeMegaHeight = -1;  // 1152 lines on brand 9, 1536 elsewhere

// The words, in the order they are tested. A word that holds another
// ("qcif" and "4cif" hold "cif", "wsvga" holds "svga" and "vga", "sxga" and
// "uxga" hold "xga") comes before it, so the order must be kept.
const WordSize kWords[] = {
    {"qcif", 176, 120, 144},
    {"4cif", 704, 480, 576},
    {"cif", 352, 240, 288},
    {"640x360", 640, 360, 360},
    {"d1", 720, 480, 576},
    {"720p", 1280, 720, 720},
    {"quadvga", 1280, 960, 960},
    {"wsvga", 1024, 576, 576},
    {"1024x576", 1024, 576, 576},
    {"qvga", 320, 240, 240},
    {"svga", 800, 600, 600},
    {"vga", 640, 480, 480},
    {"sxga", 1280, 1024, 1024},
    {"uxga", 1600, 1200, 1200},
    {"xga", 1024, 768, 768},
    {"1080p", 1920, 1080, 1080},
    {"qHD", 960, 540, 540},
    {"nHD", 640, 360, 360},
    {"3m", 2048, kThreeMegaHeight, kThreeMegaHeight},
    {"3.7m", 2560, 1440, 1440},
    {"5m", 2592, 1944, 1944},
};

// Explicit sizes, tested after the words in this order. The standard sizes
// ("1920x1080", "1280x720", ...) are deliberately absent: only their words
// give a size. "3600x2304" reports a height of 3600, as the encoder expects.
struct ExplicitSize {
  const char* pattern;
  int width;
  int height;
};

const ExplicitSize kSizes[] = {
    {"4000x3000", 4000, 3000}, {"2304x1296", 2304, 1296}, {"3840x2160", 3840, 2160},
    {"3200x1800", 3200, 1800}, {"3072x2048", 3072, 2048}, {"3072x1728", 3072, 1728},
    {"2816x1584", 2816, 1584}, {"2688x1520", 2688, 1520}, {"2688x1512", 2688, 1512},
    {"2560x1440", 2560, 1440}, {"2048x2048", 2048, 2048}, {"2048x1152", 2048, 1152},
    {"1856x1856", 1856, 1856}, {"1408x1408", 1408, 1408}, {"1280x1280", 1280, 1280},
    {"960x960", 960, 960},     {"960x720", 960, 720},     {"960x544", 960, 544},
    {"720x720", 720, 720},     {"1664x936", 1664, 936},   {"480x360", 480, 360},
    {"384x288", 384, 288},     {"384x216", 384, 216},     {"320x192", 320, 192},
    {"2992x2992", 2992, 2992}, {"1984x1488", 1984, 1488}, {"1072x1072", 1072, 1072},
    {"640x640", 640, 640},     {"480x480", 480, 480},     {"384x384", 384, 384},
    {"352x352", 352, 352},     {"1600x896", 1600, 896},   {"2384x1344", 2384, 1344},
    {"1440x1080", 1440, 1080}, {"4000x2400", 4000, 2400}, {"3840x2496", 3840, 2496},
    {"3600x2656", 3600, 2656}, {"3600x2304", 3600, 3600}, {"3312x2896", 3312, 2896},
    {"3312x2496", 3312, 2496},
};

struct CodeRow {
  const char* pattern;
  int code;
};

// Resolution codes, in the order they are tested.
const CodeRow kCodes[] = {
    {"qcif", 1},       {"176x144", 1},    {"176x120", 1},
    {"4cif", 35},      {"704x576", 35},
    {"cif", 2},        {"352x288", 2},    {"352x240", 2},
    {"d1", 5},         {"720x576", 5},    {"720x480", 5},
    {"720p", 8},       {"1280x720", 8},
    {"quadvga", 9},    {"1280x960", 9},
    {"wsvga", 27},     {"1024x576", 27},
    {"qvga", 3},       {"320x240", 3},
    {"svga", 6},       {"800x600", 6},
    {"vga", 4},        {"640x480", 4},
    {"sxga", 10},      {"1280x1024", 10},
    {"uxga", 22},      {"1600x1200", 22},
    {"xga", 7},        {"1024x768", 7},
    {"1080p", 11},     {"1920x1080", 11},
    {"qHD", 28},       {"960x540", 28},
    {"nHD", 21},       {"640x360", 21},
    {"3m", 12},        {"2048x1536", 12},
    {"3.7m", 29},      {"2560x1440", 29},
    {"5m", 13},        {"2592x1944", 13},
    {"4000x3000", 32}, {"2304x1296", 33}, {"3840x2160", 20}, {"3200x1800", 31},
    {"3072x2048", 19}, {"3072x1728", 41}, {"2688x1520", 26}, {"2688x1512", 30},
    {"2048x2048", 18}, {"1856x1856", 17}, {"1408x1408", 16}, {"1280x1280", 15},
    {"960x960", 23},   {"960x720", 24},   {"960x544", 25},   {"720x720", 14},
    {"2816x1584", 34}, {"1664x936", 36},  {"480x360", 40},   {"384x288", 39},
    {"384x216", 37},   {"320x192", 38},   {"2992x2992", 42}, {"1984x1488", 48},
    {"1072x1072", 43}, {"640x640", 44},   {"480x480", 45},   {"384x384", 46},
    {"352x352", 47},   {"1600x896", 49},  {"2384x1344", 50}, {"1440x1080", 51},
    {"4000x2400", 52}, {"3840x2496", 53}, {"3600x2656", 54}, {"3600x2304", 55},
    {"3312x2896", 56}, {"3312x2496", 57},
};

// The legacy per-codec names, compared whole. The index equals the
// resolution code of the same word. Only video type 1 counts as pal here and
// "3m" is always 1536 lines: these older slots were defined that way.
struct LegacyRow {
  const char* name;
  int width;
  int ntsc;
  int pal;
};

const LegacyRow kLegacy[] = {
    {"disable", 0, 0, 0},        {"qcif", 176, 120, 144},     {"cif", 352, 240, 288},
    {"qvga", 320, 240, 240},     {"vga", 640, 480, 480},      {"d1", 720, 480, 576},
    {"svga", 800, 600, 600},     {"xga", 1024, 768, 768},     {"720p", 1280, 720, 720},
    {"quadvga", 1280, 960, 960}, {"sxga", 1280, 1024, 1024},  {"1080p", 1920, 1080, 1080},
    {"3m", 2048, 1536, 1536},    {"5m", 2592, 1944, 1944},
};

}  // namespace

bool IsPalVideoType(int videoType) { return videoType == 1 || videoType == 19 || videoType == 21; }

int GetResolutionWidth(const char* name, int, const shm::ShmBlock&) {
  for (const WordSize& w : kWords)
    if (contains(name, w.pattern)) return w.width;
  for (const ExplicitSize& s : kSizes)
    if (contains(name, s.pattern)) return s.width;
  return 0;
}

int GetResolutionHeight(const char* name, int videoType, const shm::ShmBlock& block) {
  for (const WordSize& w : kWords) {
    if (!contains(name, w.pattern)) continue;
    if (w.ntsc == kThreeMegaHeight) return block.get(Slot::ONVIF_BRAND) == 9 ? 1152 : 1536;
    return IsPalVideoType(videoType) ? w.pal : w.ntsc;
  }
  for (const ExplicitSize& s : kSizes)
    if (contains(name, s.pattern)) return s.height;
  return 0;
}

int GetResolutionCode(const char* name) {
  for (const CodeRow& r : kCodes)
    if (contains(name, r.pattern)) return r.code;
  return 0;
}

LegacyResolution GetLegacyResolutionIndex(const char* name, int videoType) {
  int index = 0;
  for (const LegacyRow& r : kLegacy) {
    if (std::strcmp(name, r.name) == 0)
      return {true, index, r.width, videoType == 1 ? r.pal : r.ntsc};
    ++index;
  }
  return {false, 0, 0, 0};
}

}  // namespace onvif
