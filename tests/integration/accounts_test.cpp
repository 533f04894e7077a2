// User accounts sync: -u 24 add, -u 26 set, -u 25 remove, -u 34 administrator.
#include <gtest/gtest.h>

#include "transcript.h"

using shm::Slot;

namespace {

const std::string kUsers = "/usr/apache/htdocs/onvif/Users.conf";
const std::string kWork = "/tmp/onvif/tmp/Users.conf";
const std::string kPass = "/etc/appWeb/appweb.pass", kPrivacy = "/etc/appWeb/appweb.privacy";

TEST(Accounts, AddSetRemoveAndAdminUser) {
  // Accounts a to e with the masks 1:1:1:1:1, 1:1:1:1:0, 1:1:0:0:0, 1:1:1:1
  // and 1:1:0:0, for each brand's levels.
  const testkit::Files web = {
      {kUsers, ""},
      {kPrivacy, "a:1:1:1:1:1\nb:1:1:1:1:0\nc:1:1:0:0:0\nd:1:1:1:1\ne:1:1:0:0\n"},
      {kPass, "a:1\nb:2\nc:3\nd:4\ne:5\n"}};
  const Slot brand = Slot::ONVIF_BRAND, region = Slot::BRAND_REGION;
  testkit::Transcript t;
  t.run("An existing account keeps its level; a new one takes the last line's password field",
        "-u 24", {},
        {{kUsers, "admin:Operator:old\nzed:User:zpw\n"},
         {kPrivacy, "admin:1:1:1:1\nop:1:1:0:0\nnopass:1:1:1:1\n"},
         {kPass, "admin:new\nop:pw\n"}});
  t.run("Without the work copy and the passwords, the account is added with none", "-u 24", {},
        {{kWork, {}}, {kUsers, {}}, {kPrivacy, "a:1:1:1:1\n"}, {kPass, {}}});
  t.run("A password line that does not parse gives the last name with no password", "-u 24", {},
        {{kUsers, ""}, {kPrivacy, "a:1:1:1:1\n"}, {kPass, ":oops\n"}});
  t.run("Brand 44 in region 6 has an Extended level", "-u 24", {{brand, 44}, {region, 6}}, web);
  t.run("Brand 48 reads the masks its own way", "-u 24", {{brand, 48}, {region, 0}}, web);
  t.run("Brand 44 in region 5 reads them another way", "-u 24", {{brand, 44}, {region, 5}}, web);
  t.run("Set changes level and password but never adds an account", "-u 26", {},
        {{kUsers, "admin:Administrator:old\nop:User:op\n"},
         {kPrivacy, "op:1:1:0:0\nghost:1:1:1:1\n"},
         {kPass, "op:new\nghost:g"}});
  t.run("Set without the web files", "-u 26", {}, {{kPrivacy, {}}, {kPass, {}}});
  t.run(
      "Remove matches names exactly", "-u 25", {},
      {{kUsers, "admin:Administrator:a\nAdmin:User:b\nold:User:c\n"}, {kPass, "op:y\nadmin:x\n"}});
  t.run("The administrator's password goes to the account named admin exactly", "-u 34", {},
        {{kUsers, "Admin:Administrator:1\nadmin:Administrator:old\nop:Administrator:2\n"},
         {kPass, "admin:new\nop:x\n"}});
  t.run("An admin who is not an administrator keeps the password", "-u 34", {},
        {{kUsers, "admin:Operator:old\n"}});
  t.run("Remove without the passwords removes every account", "-u 25", {},
        {{kUsers, "a:User:1\nb:User:2\n"}, {kPass, {}}});
  t.run("The administrator without the passwords", "-u 34");
  t.run("Remove without the list", "-u 25", {}, {{kUsers, {}}});
  t.run("The administrator without the list either", "-u 34");
  t.expectGolden();
}

}  // namespace
