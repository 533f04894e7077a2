// The look-up tables: time zones, resolutions, prefix lengths, OSD colours and
// frame-skip codes, on fuzzed names and numbers. Each is checked against the
// shape of its results and, where the answer follows from a rule, the rule.
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>

#include "check.h"
#include "sync/network/network.h"
#include "sync/network/timezone.h"
#include "sync/ptz/osd.h"
#include "sync/video/framerate.h"
#include "sync/video/resolution.h"

namespace {

bool allDigits(const std::string& s) {
  return !s.empty() && s.find_first_not_of("0123456789") == std::string::npos;
}

// "GMT+5:30:00": sign, hours, minutes.
void checkZone(const std::string& web) {
  std::string onvif = onvif::onvifTimeZone(web.c_str());
  char sign = 0;
  int hours = -1, minutes = -1, seconds = -1, used = 0;
  int n = std::sscanf(onvif.c_str(), "GMT%c%d:%d:%d%n", &sign, &hours, &minutes, &seconds, &used);
  FUZZ_CHECK(n == 4);
  FUZZ_CHECK(static_cast<std::size_t>(used) == onvif.size() && (sign == '+' || sign == '-'));
  FUZZ_CHECK(hours >= 0 && hours <= 14 && seconds == 0);
  FUZZ_CHECK(minutes == 0 || minutes == 30 || minutes == 45);

  // The plain names "GMT+5", "GMT-3,5", "GMT+5,75" give the opposite sign and
  // the same offset; "GMT-1..." all stop at the row of "GMT-1".
  if (web.size() < 5 || web.compare(0, 3, "GMT") != 0 || (web[3] != '+' && web[3] != '-')) return;
  std::string number = web.substr(4), fraction;
  if (number.find(',') != std::string::npos) {
    fraction = number.substr(number.find(','));
    number.resize(number.find(','));
  }
  if (!allDigits(number) || number.size() > 2 || number[0] == '0') return;
  if (fraction != "" && fraction != ",5" && fraction != ",75") return;
  if (onvif == "GMT+0:00:00") return;  // a name the table does not list
  FUZZ_CHECK(sign != web[3]);
  if (web[3] == '-' && number[0] == '1') {
    FUZZ_CHECK(onvif == "GMT+1:00:00");
    return;
  }
  FUZZ_CHECK(hours == std::atoi(number.c_str()));
  FUZZ_CHECK(minutes == (fraction == ",5" ? 30 : fraction == ",75" ? 45 : 0));
}

void checkResolution(const std::string& name, int videoType, const shm::ShmBlock& block) {
  int width = onvif::GetResolutionWidth(name.c_str(), videoType, block);
  int height = onvif::GetResolutionHeight(name.c_str(), videoType, block);
  int code = onvif::GetResolutionCode(name.c_str());
  FUZZ_CHECK((width == 0) == (height == 0));
  FUZZ_CHECK(width >= 0 && width <= 4000 && height >= 0 && height <= 3600);
  FUZZ_CHECK(code >= 0 && code <= 57);
  // Names are found by substring: a part of a name nothing matches matches
  // nothing either.
  for (std::size_t cut : {name.size() / 2, name.size() / 3}) {
    std::string part = name.substr(cut, name.size() - 2 * cut);
    if (width == 0) FUZZ_CHECK(onvif::GetResolutionWidth(part.c_str(), videoType, block) == 0);
    if (code == 0) FUZZ_CHECK(onvif::GetResolutionCode(part.c_str()) == 0);
  }
  // A legacy name agrees with the general tables (the legacy table counts only
  // video type 1 as pal and always gives "3m" 1536 lines).
  onvif::LegacyResolution legacy = onvif::GetLegacyResolutionIndex(name.c_str(), videoType);
  if (!legacy.known) return;
  FUZZ_CHECK(legacy.index >= 0 && legacy.index < 14);
  FUZZ_CHECK(legacy.index == code && legacy.width == width);
  std::int32_t slots[1000] = {};
  shm::ShmBlock otherBrand{slots, sizeof slots};
  int legacyType = videoType == 1 ? 1 : 0;
  FUZZ_CHECK(legacy.height == onvif::GetResolutionHeight(name.c_str(), legacyType, otherBrand));
}

// The bits of one mask byte: k for k leading ones and nothing after them.
int maskBits(unsigned byte) {
  for (int k = 8; k >= 1; --k)
    if (byte == ((0xFFu << (8 - k)) & 0xFFu)) return k;
  return 0;
}

void checkPrefix(const std::string& text, const std::uint8_t* bytes) {
  int n = onvif::prefixLength(text.c_str());
  FUZZ_CHECK(n >= 0 && n <= 32);
  if (std::count(text.begin(), text.end(), '.') < 3) FUZZ_CHECK(n == 0);
  char mask[32];
  std::snprintf(mask, sizeof mask, "%u.%u.%u.%u", bytes[0], bytes[1], bytes[2], bytes[3]);
  int want = maskBits(bytes[0]) + maskBits(bytes[1]) + maskBits(bytes[2]) + maskBits(bytes[3]);
  FUZZ_CHECK(onvif::prefixLength(mask) == want);
}

bool inRange(double v) { return std::isfinite(v) && v >= 0.0 && v <= 255.0; }

void checkColour(const std::string& name, const std::uint8_t* bytes) {
  static const char* const kNames[] = {"black", "white", "red",  "green",
                                       "blue",  "yellow", "cyan", "magenta"};
  bool listed = false;
  for (const char* n : kNames) listed = listed || name == n;
  std::optional<onvif::YCbCr> c = onvif::osdColour(name);
  FUZZ_CHECK(c.has_value() == listed);
  if (c) FUZZ_CHECK(inRange(c->y) && inRange(c->cb) && inRange(c->cr));

  // Any red, green and blue, even outside 0..255, stays in range; a grey has
  // no colour difference.
  int r = bytes[0] - 64, g = bytes[1] * 2 - 128, b = bytes[2];
  onvif::YCbCr any = onvif::ycbcrFromRgb(r, g, b);
  FUZZ_CHECK(inRange(any.y) && inRange(any.cb) && inRange(any.cr));
  onvif::YCbCr grey = onvif::ycbcrFromRgb(b, b, b);
  FUZZ_CHECK(std::fabs(grey.y - b) < 0.01 && std::fabs(grey.cb - 128) < 0.01 &&
             std::fabs(grey.cr - 128) < 0.01);
}

void checkSkip(int code) {
  int rate = onvif::FrameRateOfSkip(code);
  FUZZ_CHECK(rate == (code == 0 ? 30 : code == 1 ? 15 : code == 2 ? 6 : 1));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  // Layout: video type, brand, four number bytes, then the name.
  if (size < 6) return 0;
  int videoType = data[0] % 24;
  std::int32_t slots[1000] = {};
  shm::ShmBlock block{slots, sizeof slots};
  block.set(shm::Slot::ONVIF_BRAND, data[1] % 2 == 0 ? 9 : data[1]);
  std::string name(reinterpret_cast<const char*>(data + 6), size - 6);
  name.resize(std::strlen(name.c_str()));  // names are C strings

  checkZone(name);
  checkResolution(name, videoType, block);
  checkPrefix(name, data + 2);
  checkColour(name, data + 2);
  int code = 0;
  std::memcpy(&code, data + 2, sizeof code);
  checkSkip(code);
  return 0;
}
