// The PackBits and hexadecimal codecs, the summary time split and the OSD
// colour conversion.
#include <gtest/gtest.h>

#include <random>

#include "recording/packbits.h"
#include "recording/recording.h"
#include "recording/selftest.h"
#include "sync/osd/osd.h"

using rec::Bytes;

namespace {

Bytes fill(std::size_t n, std::uint8_t b) { return Bytes(n, b); }

Bytes distinct(std::size_t n) {
  Bytes out;
  for (std::size_t i = 0; i < n; ++i) out.push_back(static_cast<std::uint8_t>(i % 2 ? i : 255 - i));
  return out;
}

Bytes join(std::initializer_list<Bytes> parts) {
  Bytes out;
  for (const Bytes& p : parts) out.insert(out.end(), p.begin(), p.end());
  return out;
}

TEST(PackBits, EncodesPacketsAtTheirLimits) {
  struct Case {
    const char* what;
    Bytes data;
    Bytes packed;
  } cases[] = {
      {"empty", {}, {}},
      {"one byte", {7}, {0, 7}},
      {"a pair stays literal", {7, 7}, {1, 7, 7}},
      {"three equal bytes repeat", {7, 7, 7}, {254, 7}},
      {"literal then run", {1, 7, 7, 7}, {0, 1, 254, 7}},
      {"pair then run", {1, 1, 7, 7, 7}, {1, 1, 1, 254, 7}},
      {"run of 128 is one packet", fill(128, 9), {129, 9}},
      {"run of 129 leaves a literal", fill(129, 9), {129, 9, 0, 9}},
      {"run of 130 leaves a pair", fill(130, 9), {129, 9, 1, 9, 9}},
      {"run of 131 is two repeats", fill(131, 9), {129, 9, 254, 9}},
  };
  for (const Case& c : cases) EXPECT_EQ(rec::packBitsEncode(c.data), c.packed) << c.what;
}

TEST(PackBits, SplitsLongLiteralsAt128Bytes) {
  Bytes packed = rec::packBitsEncode(distinct(129));
  ASSERT_EQ(packed.size(), 1 + 128 + 1 + 1u);
  EXPECT_EQ(packed[0], 127);
  EXPECT_EQ(packed[129], 0);
  // A pair that straddles the limit is split between the two packets.
  Bytes straddle = join({distinct(127), fill(2, 0xAA)});
  packed = rec::packBitsEncode(straddle);
  EXPECT_EQ(packed[0], 127);
  EXPECT_EQ(packed[129], 0);
}

TEST(PackBits, DecodesHeadersByTheirRules) {
  struct Case {
    const char* what;
    Bytes packed;
    Bytes data;
    bool whole;
  } cases[] = {
      {"literal", {2, 1, 2, 3}, {1, 2, 3}, true},
      {"repeat 2", {255, 5}, {5, 5}, true},
      {"header 128 repeats 129 times", {128, 5}, fill(129, 5), true},
      {"repeat without its byte", {3, 1, 2, 3, 4, 200}, {1, 2, 3, 4}, false},
      {"literal cut short", {4, 1, 2}, {1, 2}, false},
  };
  for (const Case& c : cases) {
    Bytes out;
    EXPECT_EQ(rec::packBitsDecode(c.packed, out), c.whole) << c.what;
    EXPECT_EQ(out, c.data) << c.what;
  }
}

TEST(PackBits, RoundTripsArbitraryData) {
  std::mt19937 gen(20180208);
  for (int i = 0; i < 500; ++i) {
    std::size_t n = gen() % 700;
    unsigned alphabet = 1 + gen() % 4 * 80;  // few symbols give long runs
    Bytes data;
    while (data.size() < n) data.insert(data.end(), 1 + gen() % 200 % (gen() % 3 ? 3 : 200),
                                        static_cast<std::uint8_t>(gen() % alphabet));
    Bytes packed = rec::packBitsEncode(data);
    Bytes back;
    ASSERT_TRUE(rec::packBitsDecode(packed, back));
    ASSERT_EQ(back, data) << "case " << i;
    for (std::size_t at = 0; at < packed.size();) {  // no header 128, no repeat shorter than 3
      ASSERT_NE(packed[at], 128);
      if (packed[at] > 128) {
        ASSERT_LE(packed[at], 254);
        at += 2;
      } else {
        at += packed[at] + 2u;
      }
    }
  }
}

TEST(HexToBinary, ConvertsOrReportsTheText) {
  struct Case {
    const char* hex;
    const char* line;
  } cases[] = {
      {"", "bits:\n"},
      {"0", "bits:0000\n"},
      {"F0a5", "bits:1111000010100101\n"},
      {"9Bc", "bits:100110111100\n"},
      {"12G4", "error, hex_str=12G4\n"},
      {"0x1F", "error, hex_str=0x1F\n"},
      {"AB ", "error, hex_str=AB \n"},
  };
  for (const Case& c : cases) EXPECT_EQ(rec::bitsLine("bits:", c.hex), c.line) << c.hex;
}

TEST(BitsToBytes, PacksCellMasks) {
  Bytes out;
  EXPECT_TRUE(rec::bitsToBytes(rec::kEncodeBits, out));
  EXPECT_EQ(out, (Bytes{0xFF, 0xFF, 0xFF, 0xF0, 0xF0, 0xF0}));
  EXPECT_FALSE(rec::bitsToBytes("1111000", out));
  EXPECT_FALSE(rec::bitsToBytes("11112000", out));
}

TEST(RecordingSummary, SplitsTheStamp) {
  using A = std::array<std::string, 6>;
  EXPECT_EQ(rec::splitStamp("20260115093000"), (A{"2026", "01", "15", "09", "30", "00"}));
  EXPECT_EQ(rec::splitStamp("2026011509"), (A{"2026", "01", "15", "09", "", ""}));
  EXPECT_EQ(rec::splitStamp(""), (A{"", "", "", "", "", ""}));
}

TEST(OsdColour, NamedColoursInFullRangeYCbCr) {
  struct Case {
    const char* name;
    const char* ycbcr;
  } cases[] = {
      {"black", "0.0 128.0 128.0"},   {"white", "255.0 128.0 128.0"}, {"red", "76.2 85.0 255.0"},
      {"green", "149.7 43.5 21.2"},   {"blue", "29.1 255.0 107.3"},   {"yellow", "225.9 0.5 148.7"},
      {"cyan", "178.8 171.0 0.5"},    {"magenta", "105.3 212.5 234.8"},
  };
  for (const Case& c : cases) {
    std::optional<onvif::YCbCr> v = onvif::osdColour(c.name);
    ASSERT_TRUE(v.has_value()) << c.name;
    char buf[64];
    std::snprintf(buf, sizeof buf, "%.1f %.1f %.1f", v->y, v->cb, v->cr);
    EXPECT_STREQ(buf, c.ycbcr) << c.name;
  }
  EXPECT_FALSE(onvif::osdColour("White").has_value());
  EXPECT_FALSE(onvif::osdColour("").has_value());
}

}  // namespace
