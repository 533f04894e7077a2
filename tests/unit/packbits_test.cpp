// The PackBits and hexadecimal codecs and the OSD colour conversion.
#include "recording/packbits.h"

#include <gtest/gtest.h>

#include <random>

#include "recording/selftest.h"
#include "sync/ptz/osd.h"

using rec::Bytes;

namespace {

Bytes fill(std::size_t n, std::uint8_t b) { return Bytes(n, b); }

TEST(PackBits, EncodesPacketsAtTheirLimits) {
  Bytes distinct129, literal129 = {127};
  for (std::uint8_t i = 0; i < 129; ++i) distinct129.push_back(i);
  for (std::uint8_t i = 0; i < 128; ++i) literal129.push_back(i);
  literal129.push_back(0);
  literal129.push_back(128);
  struct Case {
    const char* what;
    Bytes data, packed;
  } cases[] = {{"empty", {}, {}},
               {"a pair stays literal", {7, 7}, {1, 7, 7}},
               {"a run of 3", {7, 7, 7}, {254, 7}},
               {"pair then run", {1, 1, 7, 7, 7}, {1, 1, 1, 254, 7}},
               {"run of 128", fill(128, 9), {129, 9}},
               {"run of 129", fill(129, 9), {129, 9, 0, 9}},
               {"run of 131", fill(131, 9), {129, 9, 254, 9}},
               {"129 literals are two packets", distinct129, literal129}};
  for (const Case& c : cases) EXPECT_EQ(rec::packBitsEncode(c.data), c.packed) << c.what;
}

TEST(PackBits, DecodesHeadersByTheirRules) {
  struct Case {
    const char* what;
    Bytes packed, data;
    bool whole;
  } cases[] = {{"literal", {2, 1, 2, 3}, {1, 2, 3}, true},
               {"header 128 repeats 129 times", {128, 5}, fill(129, 5), true},
               {"repeat without its byte", {0, 4, 200}, {4}, false},
               {"literal cut short", {4, 1, 2}, {1, 2}, false}};
  for (const Case& c : cases) {
    Bytes out;
    EXPECT_EQ(rec::packBitsDecode(c.packed, out), c.whole) << c.what;
    EXPECT_EQ(out, c.data) << c.what;
  }
}

TEST(PackBits, RoundTripsArbitraryData) {
  std::mt19937 gen(20180208);
  for (int i = 0; i < 500; ++i) {
    Bytes data(gen() % 700);
    unsigned alphabet = 1 + gen() % 4 * 80;  // few symbols give long runs
    for (std::size_t at = 0; at < data.size();) {
      std::size_t run = 1 + gen() % (gen() % 3 ? 3 : 200);
      for (std::uint8_t b = static_cast<std::uint8_t>(gen() % alphabet);
           run-- > 0 && at < data.size();)
        data[at++] = b;
    }
    Bytes packed = rec::packBitsEncode(data), back;
    ASSERT_TRUE(rec::packBitsDecode(packed, back));
    ASSERT_EQ(back, data) << "case " << i;
    for (std::size_t at = 0; at < packed.size(); at += (packed[at] > 128 ? 2 : packed[at] + 2u))
      ASSERT_NE(packed[at], 128);
  }
}

TEST(HexToBinary, ConvertsOrReportsTheText) {
  EXPECT_EQ(rec::bitsLine("bits:", ""), "bits:\n");
  EXPECT_EQ(rec::bitsLine("bits:", "F0a5"), "bits:1111000010100101\n");
  EXPECT_EQ(rec::bitsLine("bits:", "12G4"), "error, hex_str=12G4\n");
}

TEST(OsdColour, NamedColoursInFullRangeYCbCr) {
  const char* cases[][2] = {{"black", "0.0 128.0 128.0"}, {"white", "255.0 128.0 128.0"},
                            {"red", "76.2 85.0 255.0"},   {"green", "149.7 43.5 21.2"},
                            {"blue", "29.1 255.0 107.3"}, {"yellow", "225.9 0.5 148.7"},
                            {"cyan", "178.8 171.0 0.5"},  {"magenta", "105.3 212.5 234.8"}};
  for (const auto& c : cases) {
    std::optional<onvif::YCbCr> v = onvif::osdColour(c[0]);
    ASSERT_TRUE(v.has_value()) << c[0];
    char buf[64];
    std::snprintf(buf, sizeof buf, "%.1f %.1f %.1f", v->y, v->cb, v->cr);
    EXPECT_STREQ(buf, c[1]) << c[0];
  }
  EXPECT_FALSE(onvif::osdColour("White").has_value());
}

}  // namespace
