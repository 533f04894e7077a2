// Unchanged lines written as their own format, without printf ever seeing
// file content.
#include "conf/self_format.h"

#include <gtest/gtest.h>

#include <string>

namespace {

TEST(SelfFormat, ExpandsAsAFormatWithZeroArguments) {
  struct Case {
    const char* line;
    std::string expect;
  } cases[] = {{"Name=Camera\n", "Name=Camera\n"},
               {"Rate=100%%\n", "Rate=100%\n"},
               {"Text=%s\n", "Text=(null)\n"},
               {"Text=%10s|\n", "Text=    (null)|\n"},
               {"Text=%-8s|\n", "Text=(null)  |\n"},
               {"Text=%.3s|\n", "Text=|\n"},
               {"Text=%.8s|\n", "Text=(null)|\n"},
               {"N=%d %i %u %x %o\n", "N=0 0 0 0 0\n"},
               {"N=%05d|%+d|%-3d|\n", "N=00000|+0|0  |\n"},
               {"N=%ld %lld %hhd %zu\n", "N=0 0 0 0\n"},
               {"F=%f %.2e %g\n", "F=0.000000 0.00e+00 0\n"},
               {"P=%p\n", "P=(nil)\n"},
               {"W=%*d|%.*s|\n", "W=0||\n"},
               {"Pos=%2$s\n", "Pos=(null)\n"},
               {"Store=%n!\n", "Store=!\n"},
               {"C=%c|\n", std::string("C=") + '\0' + "|\n"},
               {"Odd=%y%k\n", "Odd=%y%k\n"},
               {"Tail=50%", "Tail=50%"},
               {"Tail=%08", "Tail=%08"},
               {"Tail=%-", "Tail=%-"}};
  for (const auto& c : cases) EXPECT_EQ(conf::selfFormat(c.line), c.expect) << c.line;
}

TEST(SelfFormat, OneConversionNeverExceeds255Characters) {
  EXPECT_EQ(conf::selfFormat("%99999999999d").size(), 255u);
  EXPECT_EQ(conf::selfFormat("%.99999f").size(), 255u);
  EXPECT_EQ(conf::selfFormat("%300s|%300d").size(), 511u);
  std::string many;
  for (int i = 0; i < 40; ++i) many += "%255s";
  EXPECT_EQ(conf::selfFormat(many.c_str()).size(), 40u * 255u);
}

}  // namespace
