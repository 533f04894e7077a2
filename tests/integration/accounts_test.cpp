// User accounts sync: -u 24 add, -u 26 set, -u 25 remove, -u 34 administrator.
#include <gtest/gtest.h>

#include "sync_helpers.h"

using shm::Slot;
using testkit::Camera;
using V = testkit::Lines;

namespace {

const std::string kUsers = "/usr/apache/htdocs/onvif/Users.conf", kWork = "/tmp/onvif/tmp/Users.conf";
const std::string kPass = "/etc/appWeb/appweb.pass", kPrivacy = "/etc/appWeb/appweb.privacy";

TEST(Accounts, AddSetRemoveAndAdminUser) {
  const std::string add = "cp /tmp/onvif/tmp/WS_update_conf_add_user " + kWork, os = "cp /tmp/onvif/tmp/OS_update_conf_set_user " + kWork;
  const std::string set = "cp /tmp/onvif/tmp/WS_update_conf_set_user " + kWork, in = "cp " + kUsers + " " + kWork;
  const std::string out = "cp " + kWork + " " + kUsers;
  const std::string noPass = "CheckSystemUser:" + kPass + " missing", admin = "Update_AdminUser:";
  // Accounts a to e with the masks 1:1:1:1:1, 1:1:1:1:0, 1:1:0:0:0, 1:1:1:1 and 1:1:0:0 in each brand mode.
  const testkit::Files web = {{kUsers, ""}, {kPrivacy, "a:1:1:1:1:1\nb:1:1:1:1:0\nc:1:1:0:0:0\nd:1:1:1:1\ne:1:1:0:0\n"},
                              {kPass, "a:1\nb:2\nc:3\nd:4\ne:5\n"}};
  Camera cam;
  cam.startServer();
  testkit::runCases(cam, {
      // An existing account keeps its level; a new one starts with the password field of the list's last line.
      {"24", {}, {{kUsers, "admin:Operator:old\nzed:User:zpw\n"}, {kPrivacy, "admin:1:1:1:1\nop:1:1:0:0\nnopass:1:1:1:1\n"},
                  {kPass, "admin:new\nop:pw\n"}},
       {{kUsers, "admin:Operator:new\nzed:User:zpw\nop:Operator:pw\nnopass:Administrator:zpw\n"}}, {}, {}, "", V{in, add, add, out}},
      {"24", {}, {{kWork, {}}, {kUsers, {}}, {kPrivacy, "a:1:1:1:1\n"}, {kPass, {}}}, {{kUsers, "a:Administrator:\n"}}, {},
       {"update_conf_add_user:" + kWork + " missing", "Update_AddUser:" + kPass + " missing"}},
      // A password line that does not parse gives the last name with no password, never its mask.
      {"24", {}, {{kUsers, ""}, {kPrivacy, "a:1:1:1:1\n"}, {kPass, ":oops\n"}}, {{kUsers, "a:Administrator:\n"}}},
      {"24", {{Slot::ONVIF_BRAND, 44}, {Slot::BRAND_REGION, 6}}, web,
       {{kUsers, "a:Administrator:1\nb:Extended:2\nc:Operator:3\nd:User:4\ne:User:5\n"}}},
      {"24", {{Slot::ONVIF_BRAND, 48}, {Slot::BRAND_REGION, 0}}, web,
       {{kUsers, "a:Administrator:1\nb:User:2\nc:Operator:3\nd:User:4\ne:User:5\n"}}},
      {"24", {{Slot::ONVIF_BRAND, 44}, {Slot::BRAND_REGION, 5}}, web,
       {{kUsers, "a:User:1\nb:User:2\nc:User:3\nd:Administrator:4\ne:Operator:5\n"}}},
      // Set never adds an account.
      {"26", {}, {{kUsers, "admin:Administrator:old\nop:User:op\n"}, {kPrivacy, "op:1:1:0:0\nghost:1:1:1:1\n"}, {kPass, "op:new\nghost:g"}},
       {{kUsers, "admin:Administrator:old\nop:Operator:new\n"}}, {}, {}, "", V{in, os, os, set, set, out}},
      {"26", {}, {{kPrivacy, {}}, {kPass, {}}}, {}, {},
       {"Update_SetUser:" + kPrivacy + " missing", "Update_SetUser:" + kPass + " missing"}},
      // Remove and the administrator's password match names exactly.
      {"25", {}, {{kUsers, "admin:Administrator:a\nAdmin:User:b\nold:User:c\n"}, {kPass, "op:y\nadmin:x\n"}},
       {{kUsers, "admin:Administrator:a\n"}}, {}, {}, "", V{"cp /tmp/onvif/tmp/WS_Update_RemoveUser " + kUsers}},
      {"34", {}, {{kUsers, "Admin:Administrator:1\nadmin:Administrator:old\nop:Administrator:2\n"}, {kPass, "admin:new\nop:x\n"}},
       {{kUsers, "Admin:Administrator:1\nadmin:Administrator:new\nop:Administrator:2\n"}}},
      {"34", {}, {{kUsers, "admin:Operator:old\n"}}, {{kUsers, "admin:Operator:old\n"}}},
      {"25", {}, {{kUsers, "a:User:1\nb:User:2\n"}, {kPass, {}}}, {{kUsers, ""}}, {}, {noPass, noPass}},
      {"34", {}, {}, {}, {}, {admin + kPass + " missing"}},
      {"25", {}, {{kUsers, {}}}, {}, {}, {"update_conf_remove_user:" + kWork + " missing"}},
      {"34", {}, {}, {}, {}, {admin + kPass + " missing", admin + kWork + " missing"}},
  });
}

}  // namespace
