// Shell words and error-log text survive the real shell unchanged.
#include "conf/shell.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <string>

namespace {

std::string viaShell(const std::string& command) {
  std::FILE* p = popen(command.c_str(), "r");
  std::string out;
  char buf[256];
  while (std::fgets(buf, sizeof buf, p) != nullptr) out += buf;
  pclose(p);
  return out;
}

const char* const kHostile[] = {"plain/path.conf", "a b",         "x;touch /tmp/pwned",
                                "$(id)",           "`id`",        "it's",
                                "\"q\"",           "back\\slash", "*.conf",
                                "~root",           "new\nline",   "",
                                "a'b'c",           "$HOME",       "100%"};

TEST(ShellWord, IsOneWordThatTheShellPassesOnLiterally) {
  for (const char* s : kHostile)
    EXPECT_EQ(viaShell("printf '%s|' " + conf::shellWord(s)), std::string(s) + "|") << s;
}

TEST(ShellWord, OrdinaryNamesStayAsTheyAre) {
  for (const char* s :
       {"/tmp/onvif/tmp/WS_Update_Network", "/usr/apache/htdocs/onvif/Profile1.profile",
        "VideoEncoder1.VEncoder", "a-b_c+d:e=f,g@h%i"})
    EXPECT_EQ(conf::shellWord(s), s);
}

TEST(QuotedText, InsideDoubleQuotesIsEchoedLiterally) {
  for (const char* s : kHostile) {
    if (std::string(s).find('\n') != std::string::npos) continue;
    EXPECT_EQ(viaShell("/bin/echo \"" + conf::quotedText(s) + "\""), std::string(s) + "\n") << s;
  }
}

}  // namespace
