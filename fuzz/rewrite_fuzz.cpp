// The rewrite engine on fuzzed source files and rule sets, under a temporary
// ONVIFCTRL_ROOT, against a small model: the file read in 255-character
// pieces (each a C string), the first rule whose key the piece holds decides,
// a piece no rule claims is kept, and a kept piece is written self-formatted.
// The rewritten file is copied back over the source and the temporary file is
// left in place; a missing source logs its line and leaves the temporary file
// empty.
//
// system() is wrapped (-Wl,--wrap): each command the engine runs is split by
// the harness's sh tokenizer, a copy must be exactly "cp <word> <word>" and is
// done in process, an error-log line is recorded.
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "check.h"
#include "conf/rewrite.h"
#include "conf/self_format.h"
#include "sh_words.h"

namespace {

std::string gRoot;                  // the temporary ONVIFCTRL_ROOT
std::vector<std::string> gLogged;   // error-log commands run
bool gInRun = false;                // inside one input's run (libFuzzer uses system() too)

const char* const kSource = "/tmp/onvif/fuzz.conf";
const char* const kTemp = "/tmp/onvif/tmp/WS_FuzzRewrite";

std::string readFile(const std::string& path, bool* exists = nullptr) {
  std::ifstream in(path, std::ios::binary);
  if (exists != nullptr) *exists = static_cast<bool>(in);
  std::ostringstream all;
  all << in.rdbuf();
  return all.str();
}

void writeFile(const std::string& path, const std::string& text) {
  std::ofstream out(path, std::ios::binary | std::ios::trunc);
  out << text;
  FUZZ_CHECK(out.good());
}

enum Action { kKeep, kDrop, kWrite, kKeepThen };

struct FuzzRule {
  Action action;
  std::string key, text;
};

// What the model expects: the output and, in order, each rule's calls.
struct Expected {
  std::string output;
  std::vector<std::pair<std::size_t, std::string>> calls;
};

Expected model(const std::string& file, const std::vector<FuzzRule>& rules) {
  Expected e;
  for (std::size_t at = 0; at < file.size();) {
    std::size_t end = at;
    while (end < file.size() && end - at < 255 && file[end] != '\n') ++end;
    if (end < file.size() && end - at < 255) ++end;  // the newline ends its piece
    std::string piece = file.substr(at, end - at);
    piece.resize(std::strlen(piece.c_str()));
    at = end;
    Action act = kKeep;
    std::string text;
    for (std::size_t i = 0; i < rules.size(); ++i) {
      if (piece.find(rules[i].key) == std::string::npos) continue;
      e.calls.emplace_back(i, piece);
      act = rules[i].action;
      text = rules[i].text;
      break;
    }
    if (act == kKeep || act == kKeepThen) e.output += conf::selfFormat(piece.c_str());
    if (act == kWrite || act == kKeepThen) e.output += text;
  }
  return e;
}

// The engine's side: the only place that names its API.
conf::Result runEngine(const std::vector<FuzzRule>& rules,
                       std::vector<std::pair<std::size_t, std::string>>& calls) {
  std::vector<conf::Rule> engineRules;
  for (std::size_t i = 0; i < rules.size(); ++i) {
    const FuzzRule& r = rules[i];
    engineRules.push_back(conf::rule(r.key, [i, r, &calls](const char* line) {
      calls.emplace_back(i, line);
      switch (r.action) {
        case kKeep: return conf::Out::keep();
        case kDrop: return conf::Out::drop();
        case kWrite: return conf::Out::write(r.text);
        default: return conf::Out::keepThen(r.text);
      }
    }));
  }
  conf::RewriteJob job = conf::inPlace("FuzzRewrite", kSource, "[FuzzRewrite] %s missing");
  return conf::rewrite(job, engineRules);
}

// Splits the input: a flags byte (rule count, missing source), then per rule an
// action byte, its key and its text each ended by '\x01', then the file.
std::vector<FuzzRule> readRules(const std::uint8_t* data, std::size_t size, std::size_t& at) {
  std::vector<FuzzRule> rules;
  std::size_t count = data[at++] % 5;
  auto field = [&]() {
    std::string s;
    while (at < size && data[at] != 1) s += static_cast<char>(data[at++]);
    if (at < size) ++at;
    return s;
  };
  for (std::size_t i = 0; i < count && at < size; ++i) {
    FuzzRule r{static_cast<Action>(data[at++] % 4), field(), field()};
    r.key.resize(std::strlen(r.key.c_str()));  // a key is a C string
    rules.push_back(r);
  }
  return rules;
}

}  // namespace

extern "C" int __real_system(const char* command);
extern "C" int __wrap_system(const char* command) {
  if (!gInRun) return __real_system(command);
  std::string cmd(command);
  if (cmd.compare(0, 10, "/bin/echo ") == 0) {
    gLogged.push_back(cmd);
    return 0;
  }
  fuzz::Words w = fuzz::tokenize(cmd);
  FUZZ_CHECK(w.literal && w.words.size() == 3 && w.words[0] == "cp");
  writeFile(w.words[2], readFile(w.words[1]));
  return 0;
}

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  // In memory where there is a memory file system: the engine syncs every
  // temporary file it writes.
  char shm[] = "/dev/shm/onvifctrl-fuzz-XXXXXX", tmp[] = "/tmp/onvifctrl-fuzz-XXXXXX";
  const char* dir = mkdtemp(shm);
  if (dir == nullptr) dir = mkdtemp(tmp);
  FUZZ_CHECK(dir != nullptr);
  gRoot = dir;
  for (const char* sub : {"/tmp", "/tmp/onvif", "/tmp/onvif/tmp"})
    FUZZ_CHECK(mkdir((gRoot + sub).c_str(), 0755) == 0);
  setenv("ONVIFCTRL_ROOT", gRoot.c_str(), 1);
  std::atexit([] {
    for (const char* f : {kSource, kTemp}) unlink((gRoot + f).c_str());
    for (const char* d : {"/tmp/onvif/tmp", "/tmp/onvif", "/tmp", ""}) rmdir((gRoot + d).c_str());
  });
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size < 1) return 0;
  bool missing = (data[0] & 0x80) != 0;
  std::size_t at = 0;
  std::vector<FuzzRule> rules = readRules(data, size, at);
  std::string file(reinterpret_cast<const char*>(data + at), size - at);

  const std::string source = gRoot + kSource, temp = gRoot + kTemp;
  writeFile(temp, "stale");
  if (missing) unlink(source.c_str());
  else writeFile(source, file);
  gLogged.clear();

  std::vector<std::pair<std::size_t, std::string>> calls;
  gInRun = true;
  conf::Result result = runEngine(rules, calls);
  gInRun = false;
  bool exists = false;
  std::string after = readFile(source, &exists);
  if (missing) {
    FUZZ_CHECK(result.status == conf::Status::SourceMissing && !exists && calls.empty());
    FUZZ_CHECK(gLogged.size() == 1 && gLogged[0].find(kSource) != std::string::npos);
    FUZZ_CHECK(readFile(temp).empty());
    return 0;
  }
  Expected want = model(file, rules);
  FUZZ_CHECK(result.status == conf::Status::Done && gLogged.empty());
  FUZZ_CHECK(calls == want.calls);
  FUZZ_CHECK(after == want.output);
  FUZZ_CHECK(readFile(temp) == want.output);
  return 0;
}
