#include "sync/network/accounts.h"

#include <functional>
#include <string>

#include "conf/error_log.h"
#include "conf/field.h"
#include "conf/files.h"
#include "conf/lines.h"
#include "conf/paths.h"
#include "conf/rewrite.h"
#include "conf/scan.h"
#include "conf/shell.h"
#include "conf/write_file.h"

namespace onvif {

using conf::Field;
using conf::Out;
using shm::Slot;

namespace {

constexpr const char* kWebPass = "/etc/appWeb/appweb.pass";
constexpr const char* kWebPrivacy = "/etc/appWeb/appweb.privacy";
constexpr const char* kUsers = "/usr/apache/htdocs/onvif/Users.conf";
constexpr const char* kWorkingCopy = "/tmp/onvif/tmp/Users.conf";

// The ONVIF level of a privilege mask: the first row whose mask is the whole
// mask text; "User" when none is.
struct LevelRow {
  const char* mask;
  const char* level;
};
struct BrandMode {
  const LevelRow* rows;
  int count;
};
constexpr LevelRow kFiveFlagsWithExtended[] = {
    {"1:1:1:1:1", "Administrator"}, {"1:1:1:1:0", "Extended"}, {"1:1:0:0:0", "Operator"}};
constexpr LevelRow kFiveFlags[] = {{"1:1:1:1:1", "Administrator"}, {"1:1:0:0:0", "Operator"}};
constexpr LevelRow kFourFlags[] = {{"1:1:1:1", "Administrator"}, {"1:1:0:0", "Operator"}};

BrandMode brandMode(const shm::ShmBlock& block) {
  int brand = block.get(Slot::ONVIF_BRAND);
  if (brand == 44 && block.get(Slot::BRAND_REGION) == 6) return {kFiveFlagsWithExtended, 3};
  if (brand == 48 || brand == 60 || brand == 63) return {kFiveFlags, 2};
  return {kFourFlags, 2};
}

std::string levelOf(const char* mask, const shm::ShmBlock& block) {
  BrandMode mode = brandMode(block);
  for (int i = 0; i < mode.count; ++i)
    if (std::string(mode.rows[i].mask) == mask) return mode.rows[i].level;
  return "User";
}

// One line of the account list. A line that does not parse keeps the fields
// of the line before it.
struct Account {
  Field<32> name, level, password;
  void parse(const char* line) { conf::scan(line, "%[^:]:%[^:]:%s\n", name, level, password); }
};

// One line of a web account file: the name and the rest (password or mask).
struct WebAccount {
  Field<32> name, value;
  void parse(const char* line) { conf::scan(line, "%[^:]:%s\n", name, value); }
};

// The fields both web files are read into: one name, and the mask and the
// password apart, so a password line that does not parse never hands a mask
// on as a password.
struct WebFields {
  Field<32> name, mask, password;
};

std::string accountLine(const std::string& name, const std::string& level,
                        const std::string& password) {
  return name + ":" + level + ":" + password + "\n";
}

// The account files are rewritten without sync, and the temporary file is made
// only once the source has opened.
conf::RewriteJob accountJob(const std::string& routine, const char* path,
                            const std::string& missing) {
  return conf::inPlace(routine, path, missing).unsynced().sourceFirst();
}

// Rewrites the working copy through `temp` and copies it back: the line of
// account `name` becomes what `change` makes of its fields, every other line
// stays.
int changeAccount(const std::string& routine, const std::string& temp, const char* name,
                  const std::function<std::string(const Account&)>& change) {
  Account a;
  return conf::rewrite(accountJob(routine, kWorkingCopy, routine + ":%s missing").through(temp),
                       {conf::rule("",
                                   [&](const char* line) {
                                     a.parse(line);
                                     return a.name.is(name) ? Out::write(change(a)) : Out::keep();
                                   })})
      .shell;
}

using AccountPass = int (*)(int, const char*, const char*, const char*, shm::ShmBlock&);

// Update_AddUser and Update_SetUser: the working copy, the privilege pass over
// the masks, the password pass over the passwords, the copy back. A step that
// could not be written whole ends the chain: the account list stays as it was.
int syncAccounts(const char* routine, AccountPass pass, shm::ShmBlock& block) {
  conf::Chain chain;
  conf::shellCopy(routine, kUsers, kWorkingCopy);
  const std::string missing = std::string(routine) + ":%s missing";
  WebFields w;
  if (chain.intact() && !conf::forEachLine(kWebPrivacy, [&](const char* line) {
        conf::scan(line, "%[^:]:%s\n", w.name, w.mask);
        pass(1, w.name.c_str(), w.mask.c_str(), "", block);
        return chain.intact();
      }))
    conf::logError(missing.c_str(), kWebPrivacy);
  if (chain.intact() && !conf::forEachLine(kWebPass, [&](const char* line) {
        conf::scan(line, "%[^:]:%s\n", w.name, w.password);
        pass(2, w.name.c_str(), "", w.password.c_str(), block);
        return chain.intact();
      }))
    conf::logError(missing.c_str(), kWebPass);
  if (!chain.intact()) return -1;
  return conf::shellCopy(routine, kWorkingCopy, kUsers);
}

}  // namespace

int update_conf_add_user(int pass, const char* name, const char* mask, const char* password,
                         shm::ShmBlock& block) {
  const std::string routine = "update_conf_add_user";
  if (pass == 1) {
    Account last;
    bool exists = false;
    if (!conf::forEachLine(kWorkingCopy, [&](const char* line) {
          last.parse(line);
          exists = last.name.is(name);
          return !exists;
        }))
      conf::logError("update_conf_add_user:%s missing", kWorkingCopy);
    if (exists) return 0;
    // The password field is the last line's until the password pass puts the
    // account's own in: an account with a mask but no password line keeps it.
    std::string line = accountLine(name, levelOf(mask, block), last.password.str());
    if (conf::appendText(kWorkingCopy, line) != conf::AppendStatus::Done)
      return conf::logWriteFailed(routine, kWorkingCopy);
    return 0;
  }
  if (pass == 2)
    return changeAccount(routine, conf::wsTemp(routine), name, [&](const Account& a) {
      return accountLine(name, a.level.str(), password);
    });
  return 0;
}

int update_conf_set_user(int pass, const char* name, const char* mask, const char* password,
                         shm::ShmBlock& block) {
  const std::string routine = "update_conf_set_user";
  if (pass == 1)
    return changeAccount(routine, std::string(conf::kTmpDir) + "OS_" + routine, name,
                         [&](const Account& a) {
                           return accountLine(name, levelOf(mask, block), a.password.str());
                         });
  if (pass == 2)
    return changeAccount(routine, conf::wsTemp(routine), name, [&](const Account& a) {
      return accountLine(name, a.level.str(), password);
    });
  return 0;
}

bool CheckSystemUser(const char* name) {
  WebAccount w;
  bool found = false;
  if (!conf::forEachLine(kWebPass, [&](const char* line) {
        w.parse(line);
        found = w.name.is(name);
        return !found;
      })) {
    conf::logError("CheckSystemUser:%s missing", kWebPass);
    return false;
  }
  return found;
}

int Update_AddUser(shm::ShmBlock& block) {
  return syncAccounts("Update_AddUser", update_conf_add_user, block);
}

int Update_SetUser(shm::ShmBlock& block) {
  return syncAccounts("Update_SetUser", update_conf_set_user, block);
}

int Update_RemoveUser(shm::ShmBlock&) {
  // The missing line names the working copy although the list itself is read.
  const std::string missing = std::string("update_conf_remove_user:") + kWorkingCopy + " missing";
  Account a;
  return conf::rewrite(accountJob("Update_RemoveUser", kUsers, missing),
                       {conf::rule("",
                                   [&](const char* line) {
                                     a.parse(line);
                                     return CheckSystemUser(a.name.c_str()) ? Out::keep()
                                                                            : Out::drop();
                                   })})
      .shell;
}

int Update_AdminUser(shm::ShmBlock&) {
  WebAccount admin;
  if (!conf::forEachLine(kWebPass, [&](const char* line) {
        admin.parse(line);
        return false;  // the first account is the administrator
      }))
    conf::logError("Update_AdminUser:%s missing", kWebPass);

  const std::string missing = std::string("Update_AdminUser:") + kWorkingCopy + " missing";
  Account a;
  return conf::rewrite(
             accountJob("Update_AdminUser", kUsers, missing),
             {conf::rule("",
                         [&](const char* line) {
                           a.parse(line);
                           if (a.name.is(admin.name.c_str()) && a.level.is("Administrator"))
                             return Out::write(
                                 accountLine(a.name.str(), "Administrator", admin.value.str()));
                           return Out::keep();
                         })})
      .shell;
}

}  // namespace onvif
