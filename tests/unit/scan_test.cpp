// Scan patterns against the C library's sscanf, and where they must differ:
// fields cut to their capacity and numbers clamped instead of overflowing.
#include "conf/scan.h"

#include <gtest/gtest.h>

#include <cstdio>

using conf::Field;
using conf::scan;

#pragma GCC diagnostic ignored "-Wformat-nonliteral"

namespace {

struct TextCase {
  const char* line;
  const char* pattern;
};

// One text value: must agree with sscanf on the count and on the value.
TEST(ScanLine, OneTextValueAgreesWithSscanf) {
  const TextCase cases[] = {
      {"root.Network.IPAddress=192.168.1.10\n", "root.Network.IPAddress=%s\n"},
      {"root.Network.IPAddress=\n", "root.Network.IPAddress=%s\n"},
      {"root.Network.IPAddress=", "root.Network.IPAddress=%s\n"},
      {"xroot.Network.IPAddress=1.2.3.4\n", "root.Network.IPAddress=%s\n"},
      {"root.Network.HostName=my cam  01\n", "root.Network.HostName=%[^\n]\n"},
      {"root.Network.HostName=my cam\r\n", "root.Network.HostName=%s\n"},
      {"root.Network.HostName=\n", "root.Network.HostName=%[^\n]\n"},
      {"profile filename=Profile1.profile\n", "profile filename=%s\n"},
      {"profile   filename=P.profile\n", "profile filename=%s\n"},
      {"profilefilename=P.profile\n", "profile filename=%s\n"},
      {"  VideoEncoder1.VEncoder trailing\n", "%s\n"},
      {"\n", "%s\n"},
      {"", "%s\n"},
      {"100%=x\n", "100%%=%s\n"}};
  for (const TextCase& c : cases) {
    char expect[256] = {};
    int expectCount = std::sscanf(c.line, c.pattern, expect);
    Field<256> got;
    EXPECT_EQ(scan(c.line, c.pattern, got), expectCount) << c.line;
    EXPECT_STREQ(got.c_str(), expect) << c.line;
  }
}

TEST(ScanLine, AccountPatternsAgreeWithSscanf) {
  const char* lines[] = {"admin:Administrator:secret\n",
                         "admin:Administrator:\n",
                         "admin::x\n",
                         "garbage\n",
                         ":User:pw\n",
                         "a:b:c:d\n",
                         "op:Operator:two words\n",
                         ""};
  for (const char* line : lines) {
    char n[256] = "N", l[256] = "L", p[256] = "P";
    int expect = std::sscanf(line, "%[^:]:%[^:]:%s\n", n, l, p);
    Field<256> gn, gl, gp;
    gn = "N";
    gl = "L";
    gp = "P";
    EXPECT_EQ(scan(line, "%[^:]:%[^:]:%s\n", gn, gl, gp), expect) << line;
    EXPECT_STREQ(gn.c_str(), n) << line;
    EXPECT_STREQ(gl.c_str(), l) << line;
    EXPECT_STREQ(gp.c_str(), p) << line;
  }
}

TEST(ScanLine, NumbersAgreeWithSscanfAndClamp) {
  struct Case {
    const char* line;
    int count;
    int value;
  } cases[] = {{"root.X=42\n", 1, 42},
               {"root.X=-7\n", 1, -7},
               {"root.X=+3\n", 1, 3},
               {"root.X= 12abc\n", 1, 12},
               {"root.X=abc\n", 0, -1},
               {"root.X=\n", -1, -1},
               {"root.X=99999999999\n", 1, 2147483647},
               {"root.X=-99999999999\n", 1, -2147483647 - 1}};
  for (const Case& c : cases) {
    int v = -1;
    EXPECT_EQ(scan(c.line, "root.X=%d\n", v), c.count) << c.line;
    EXPECT_EQ(v, c.value) << c.line;
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
