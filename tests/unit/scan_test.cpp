// Scan patterns against the C library's sscanf, and where they must differ:
// fields cut to their capacity and numbers clamped instead of overflowing.
#include "conf/scan.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <tuple>

using conf::Field;
using conf::scan;

#pragma GCC diagnostic ignored "-Wformat-nonliteral"

namespace {

// Text values must agree with sscanf on the count and on every value.
TEST(ScanLine, TextValuesAgreeWithSscanf) {
  const char* const ip = "root.Network.IPAddress=%s\n";
  const char* const host = "root.Network.HostName=%[^\n]\n";
  const char* const file = "profile filename=%s\n";
  const char* const account = "%[^:]:%[^:]:%s\n";
  const char* const cases[][2] = {
      {"root.Network.IPAddress=192.168.1.10\n", ip},
      {"root.Network.IPAddress=\n", ip},
      {"root.Network.IPAddress=", ip},
      {"xroot.Network.IPAddress=1.2.3.4\n", ip},
      {"root.Network.HostName=my cam  01\n", host},
      {"root.Network.HostName=\n", host},
      {"root.Network.HostName=my cam\r\n", "root.Network.HostName=%s\n"},
      {"profile filename=Profile1.profile\n", file},
      {"profile   filename=P.profile\n", file},
      {"profilefilename=P.profile\n", file},
      {"  VideoEncoder1.VEncoder trailing\n", "%s\n"},
      {"\n", "%s\n"},
      {"", "%s\n"},
      {"100%=x\n", "100%%=%s\n"},
      {"admin:Administrator:secret\n", account},
      {"admin:Administrator:\n", account},
      {"admin::x\n", account},
      {"garbage\n", account},
      {":User:pw\n", account},
      {"a:b:c:d\n", account},
      {"op:Operator:two words\n", account},
      {"", account}};
  for (const auto& [line, pattern] : cases) {
    char a[256] = "A", b[256] = "B", c[256] = "C";
    int expect = std::sscanf(line, pattern, a, b, c);
    Field<256> fa, fb, fc;
    fa = "A";
    fb = "B";
    fc = "C";
    EXPECT_EQ(scan(line, pattern, fa, fb, fc), expect) << line;
    EXPECT_EQ(std::string(fa.c_str()) + "|" + fb.c_str() + "|" + fc.c_str(),
              std::string(a) + "|" + b + "|" + c)
        << line;
  }
}

TEST(ScanLine, NumbersAgreeWithSscanfAndClamp) {
  const std::tuple<const char*, int, int> cases[] = {// line, count, value
                                                     {"root.X=42\n", 1, 42},
                                                     {"root.X=-7\n", 1, -7},
                                                     {"root.X=+3\n", 1, 3},
                                                     {"root.X= 12abc\n", 1, 12},
                                                     {"root.X=abc\n", 0, -1},
                                                     {"root.X=\n", -1, -1},
                                                     {"root.X=99999999999\n", 1, 2147483647},
                                                     {"root.X=-99999999999\n", 1, -2147483647 - 1}};
  for (const auto& [line, count, value] : cases) {
    int v = -1;
    EXPECT_EQ(scan(line, "root.X=%d\n", v), count) << line;
    EXPECT_EQ(v, value) << line;
  }
}

TEST(ScanLine, LongValuesAreCutToCapacityMinusOne) {
  Field<8> shortField;
  EXPECT_EQ(scan("root.Time.DST.Enabled=yesyesyesyes\n", "root.Time.DST.Enabled=%s\n", shortField),
            1);
  EXPECT_STREQ(shortField.c_str(), "yesyesy");

  // The whole run is consumed, so the next field starts where sscanf's would.
  Field<4> name, level, pass;
  EXPECT_EQ(scan("administrator:Administrator:secret\n", "%[^:]:%[^:]:%s\n", name, level, pass), 3);
  EXPECT_STREQ(name.c_str(), "adm");
  EXPECT_STREQ(level.c_str(), "Adm");
  EXPECT_STREQ(pass.c_str(), "sec");
}

TEST(ScanLine, SetsWithQuotesAndCommasSplitResolutions) {
  Field<16> a, b, c, d, e;
  const char* pattern = "%[^','],%[^','],%[^','],%[^','],%[^'\n']";
  EXPECT_EQ(scan("disable,1080p,720p,disable,disable\n", pattern, a, b, c, d, e), 5);
  EXPECT_STREQ(b.c_str(), "1080p");
  EXPECT_STREQ(e.c_str(), "disable");
}

}  // namespace
