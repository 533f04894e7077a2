// The rewrite engine: the one procedure by which every routine rebuilds an
// ONVIF configuration file.
//
// A routine states its job (source, temporary file, copy-back targets, the
// error-log text for a missing source, the flush policy) and an ordered list
// of rules {key, what to write}. The engine reads the source in 255-character
// pieces; for each piece the first rule whose key occurs in it decides what is
// written in its place, also when its decision is to keep the piece as it is,
// and a piece that no rule claims is written as its own format (self_format.h).
// It then syncs the temporary file (fsync, or fdatasync where fsync answers
// EINVAL), closes it and copies it over each target with "cp %s %s" in the
// order given. The temporary file is left in place.
//
// A rule's condition (a brand, a mode, a value that may be unset) lives in its
// action -- when(), setOr(), rule() -- never in whether the rule is in the
// list: a routine passes the same keys in the same order every time, so a line
// that holds two keys is always decided by the earlier one.
//
// Nothing is copied back unless the temporary file was written whole: when it
// cannot be created, or a write, its sync or its close fails, the targets stay
// as they were and "<routine>:<temporary path> write failed" goes to the error
// log. Each copy back is checked as shellCopy() checks it; one that cannot be
// made whole is logged with its target and stops the copies after it.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace conf {

// What a rule writes in place of a line.
struct Out {
  bool keepLine = true;  // the line itself, written as its own format
  std::string text;      // then this text, verbatim

  static Out keep() { return Out{true, {}}; }
  static Out drop() { return Out{false, {}}; }
  static Out write(std::string t) { return Out{false, std::move(t)}; }
  static Out keepThen(std::string t) { return Out{true, std::move(t)}; }
};

struct Rule {
  std::string key;  // found anywhere in the line; "" claims every line
  std::function<Out(const char* line)> apply;
};

// key + value + "\n" (the "key%s\n" replacement).
Rule set(const std::string& key, const std::string& value);
// A whole literal line ("Network.IPv4.Config.DHCP=true\n").
Rule fixed(const std::string& key, const std::string& line);
// The line is kept / dropped.
Rule keepLine(const std::string& key);
Rule dropLine(const std::string& key);
// A rule computed from the line.
Rule rule(const std::string& key, std::function<Out(const char* line)> apply);
// `r` when `active`, else a rule of the same key that keeps the line.
Rule when(bool active, Rule r);
// key + value + "\n" when there is a value, else the line is kept.
Rule setOr(const std::string& key, const std::optional<std::string>& value);

struct RewriteJob {
  std::string routine;               // names the routine in the "write failed" line
  std::string source;                // camera path of the file read
  std::string temp;                  // camera path of the temporary file
  std::vector<std::string> targets;  // copy-back targets, in order
  std::string missing;  // error-log shape for a missing source ("%s": its path); "" logs nothing
  bool sync = true;                  // fsync/fdatasync before closing the temporary file
  const char* tempMode = "w";
  bool tempFirst = true;  // create the temporary file before testing the source

  // The variants a few routines need, chained onto inPlace() or onvifConf():
  RewriteJob unsynced() const;                 // closed and copied at once, without fsync
  RewriteJob sourceFirst() const;              // the temporary file is made once the source opened
  RewriteJob wPlus() const;                    // the temporary file is opened "w+"
  RewriteJob through(std::string temp) const;  // another temporary file than "WS_<routine>"
};

// The usual job: rewrite `path` through "/tmp/onvif/tmp/WS_<routine>" and copy
// it back onto `path` alone; `missing` is the error-log shape for a missing
// `path` ("" logs nothing).
RewriteJob inPlace(const std::string& routine, const std::string& path, const std::string& missing);

// The live onvif.conf, rewritten like inPlace() and copied back onto itself
// and then onto the persistent copy.
RewriteJob onvifConf(const std::string& routine, const std::string& missing);

enum class Status { Done, SourceMissing, WriteFailed };

struct Result {
  Status status;
  int shell;  // status of the last shell command run (0 when none ran)
  bool done() const { return status == Status::Done; }
};

Result rewrite(const RewriteJob& job, const std::vector<Rule>& rules);

}  // namespace conf
