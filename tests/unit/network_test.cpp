// The time-zone look-up, the prefix length of a subnet mask, whole-or-nothing
// appends.
#include "sync/network/network.h"

#include <gtest/gtest.h>

#include <cstdlib>

#include "conf/write_file.h"
#include "sync/network/timezone.h"

namespace {

// Rows are tested in order, a whole name or a name held in the text, the
// first passing row decides; "GMT-10" to "GMT-14" stop at the row holding
// "GMT-1".
TEST(TimeZone, FirstPassingRowDecides) {
  const char* const cases[][2] = {
      {"GMT+3,5", "GMT-3:30:00"},      {"GMT-10", "GMT+1:00:00"},
      {"GMT-14", "GMT+1:00:00"},       {"WAT-1", "GMT+1:00:00"},
      {"WAT-1WAST", "GMT+2:00:00"},    {"WST-8x", "GMT+0:00:00"},
      {"CST6CDT", "GMT-6:00:00"},      {"EST5EDT,M3.2.0,M11.1.0", "GMT-5:00:00"},
      {"NZST-12NZDT", "GMT+12:00:00"}, {"AEST-10AEDT,M10.1.0,M4.1.0/3", "GMT+10:00:00"},
      {"UTC", "GMT+0:00:00"},          {"", "GMT+0:00:00"},
      {"gmt+1", "GMT+0:00:00"}};
  for (const auto& c : cases) EXPECT_STREQ(onvif::onvifTimeZone(c[0]), c[1]) << c[0];
}

TEST(PrefixLength, SumsPartsWithoutTestingContiguity) {
  const std::pair<const char*, int> cases[] = {{"255.255.255.0", 24},       {"255.255.252.0", 22},
                                               {"255.255.255.1", 24},       {"255.0.255.0", 16},
                                               {"255.255.253.0", 16},       {"128.192.224.240", 10},
                                               {"254.248.0.0", 12},         {"", 0},
                                               {"255.255.255", 0},          {"255..255.0", 16},
                                               {"255.255.255.255.255", 32}, {"0000255.255.0.0", 16},
                                               {"00000255.255.0.0", 8},     {"255x.255.0.0", 16}};
  for (const auto& [mask, prefix] : cases) EXPECT_EQ(onvif::prefixLength(mask), prefix) << mask;
}

TEST(AppendText, WholeOrNothing) {
  char dir[] = "/tmp/onvifctrl-append-XXXXXX";
  ASSERT_NE(mkdtemp(dir), nullptr);
  const std::string file = std::string(dir) + "/list";
  EXPECT_EQ(conf::appendText(file, "a\n"), conf::AppendStatus::Done);
  EXPECT_EQ(conf::appendText(std::string(dir) + "/no/list", "x"), conf::AppendStatus::OpenFailed);
  EXPECT_EQ(conf::appendText("/dev/full", std::string(10000, 'x')),
            conf::AppendStatus::WriteFailed);
  EXPECT_EQ(std::system(("test \"$(cat " + file + ")\" = a && rm -r " + dir).c_str()), 0);
}

}  // namespace
