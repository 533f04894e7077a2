// Option parsing without a server block, on fuzzed command lines.
//
// The harness is linked with system(), shmget() and perror() wrapped
// (-Wl,--wrap), so the actions some options take (the recording requests, the
// database tool, the clock's zone segment) run against nothing: no shell, no
// segment, no message. It
// checks that every stored value is in its option's accepted set, that a
// parse is repeatable, and, for command lines made only of "-<letter><value>"
// words, the outcome against a model of the option table.
#include <getopt.h>
#include <sys/shm.h>

#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "check.h"
#include "cli/options.h"

namespace {
bool gInRun = false;  // inside one input's run (libFuzzer uses system() too)
}  // namespace

extern "C" int __real_system(const char* command);
extern "C" int __wrap_system(const char* command) { return gInRun ? 0 : __real_system(command); }
extern "C" void __real_perror(const char* s);
extern "C" void __wrap_perror(const char* s) {
  if (!gInRun) __real_perror(s);
}
extern "C" int __wrap_shmget(key_t, std::size_t, int) {
  errno = ENOENT;
  return -1;
}

namespace {

// The accepted values of each letter, written out independently.
bool accepted(char letter, long v) {
  switch (letter) {
    case 'u': return (v >= 0 && v <= 36) || (v >= 98 && v <= 101);
    case 's': return v >= 0 && v <= 19;
    case 't': case 'r': return v >= 0 && v <= 4;
    case 'p': case 'q': return v >= 1 && v <= 256;
    case 'i': return v == 0;
    case 'a': case 'd': return v >= 0 && v <= 2;
    default: return false;
  }
}

bool inRange(int stored, char letter) { return stored == -1 || accepted(letter, stored); }

struct Outcome {
  bool ok;
  cli::Requests req;
  bool operator==(const Outcome& o) const {
    return ok == o.ok && req.serverState == o.req.serverState &&
           req.checkPassword == o.req.checkPassword && req.debug == o.req.debug;
  }
};

Outcome parse(const std::vector<std::string>& args) {
  std::vector<std::string> copies(args);  // getopt_long reorders argv
  std::vector<char*> argv;
  for (std::string& a : copies) argv.push_back(&a[0]);
  argv.push_back(nullptr);
  optind = 0;  // a full restart of getopt's state
  Outcome o{false, {}};
  o.ok = cli::parseOptions(static_cast<int>(args.size()), argv.data(), nullptr, o.req);
  return o;
}

// Lines of "-<letter><value>" words only: parsed left to right, the first
// unknown letter or refused value stops with false, each accepted one stores.
bool modelled(const std::vector<std::string>& args, Outcome& want) {
  want = Outcome{true, {}};
  for (std::size_t i = 1; i < args.size(); ++i) {
    const std::string& a = args[i];
    if (a.size() < 3 || a[0] != '-' || a[1] == '-' || a[1] == ':') return false;
    if (std::strchr("adipqrstu", a[1]) == nullptr || a[1] == '\0') return want.ok = false, true;
    long v = std::strtol(a.c_str() + 2, nullptr, 10);
    if (!accepted(a[1], v)) return want.ok = false, true;
    int value = static_cast<int>(v);
    switch (a[1]) {
      case 's': want.req.serverState = value; break;
      case 'a': want.req.checkPassword = value; break;
      case 'd': want.req.debug = value; break;
    }
  }
  return true;
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  if (std::freopen("/dev/null", "w", stdout) == nullptr) std::abort();
  setenv("ONVIFCTRL_ROOT", "/nonexistent-onvifctrl-fuzz", 1);
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  // The command line: words separated by NUL bytes, at most 8.
  std::vector<std::string> args{"onvifCtrl"};
  std::string all(reinterpret_cast<const char*>(data), size);
  for (std::size_t at = 0; at <= all.size() && args.size() < 9;) {
    std::size_t end = all.find('\0', at);
    if (end == std::string::npos) end = all.size();
    args.push_back(all.substr(at, end - at));
    at = end + 1;
  }

  gInRun = true;
  Outcome got = parse(args);
  FUZZ_CHECK(inRange(got.req.serverState, 's'));
  FUZZ_CHECK(inRange(got.req.checkPassword, 'a') && inRange(got.req.debug, 'd'));
  FUZZ_CHECK(parse(args) == got);
  Outcome want{};
  if (modelled(args, want)) FUZZ_CHECK(got == want);
  gInRun = false;
  return 0;
}
