#include "transcript.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <map>
#include <regex>
#include <sstream>

#include "conf/files.h"

namespace testkit {

namespace {

// The DebugLog's lines start with the time of day: "hh:mm:ss" stands for it.
std::string withoutTimes(const std::string& log) {
  static const std::regex time("^[0-2][0-9]:[0-5][0-9]:[0-6][0-9] ", std::regex::multiline);
  return std::regex_replace(log, time, "hh:mm:ss ");
}

// The build time that -i 0 prints stands as "Mmm dd yyyy hh:mm:ss".
std::string withoutBuildTime(const std::string& out) {
  static const std::regex time("ONVIFCTRL_BuildTime=[A-Z][a-z]{2} [ 1-3][0-9] [0-9]{4} [0-9:]{8}");
  return std::regex_replace(out, time, "ONVIFCTRL_BuildTime=Mmm dd yyyy hh:mm:ss");
}

// The files under the root but the write lock that the first writing command
// leaves (the safety tests show it).
Tree camFiles(const Camera& cam) {
  Tree tree = filesUnder(cam.root());
  tree.erase(conf::kLockFile);
  auto log = tree.find("/tmp/onvif/DebugLog");
  if (log != tree.end()) log->second = withoutTimes(log->second);
  return tree;
}

std::vector<int> camSlots(const Camera& cam) {
  std::optional<shm::ShmBlock> block = cam.block();
  std::vector<int> values;
  for (int i = 0; block && i <= shm::kServerSlotCount; ++i) values.push_back(block->at(i));
  return values;
}

// A line as printable ASCII: other bytes (but tabs) as \xNN.
std::string shown(const std::string& line) {
  std::string out;
  for (unsigned char ch : line) {
    if ((ch >= 0x20 && ch < 0x7f) || ch == '\t') {
      out += static_cast<char>(ch);
    } else {
      char hex[8];
      std::snprintf(hex, sizeof hex, "\\x%02X", ch);
      out += hex;
    }
  }
  return out;
}

Lines textLines(const std::string& text) {
  Lines lines;
  for (const std::string& l : splitLines(text)) lines.push_back(shown(l));
  if (!text.empty() && text.back() != '\n') lines.push_back("\\ no newline at end of file");
  return lines;
}

// The lines of `b` (after) that are not in `a` (before) ("+ ") and the other
// way round ("- "), each run of them headed by its first line number in `b`.
std::string diff(const Lines& a, const Lines& b) {
  std::vector<std::vector<int>> common(a.size() + 1, std::vector<int>(b.size() + 1, 0));
  for (std::size_t i = a.size(); i-- > 0;)
    for (std::size_t j = b.size(); j-- > 0;)
      common[i][j] =
          a[i] == b[j] ? common[i + 1][j + 1] + 1 : std::max(common[i + 1][j], common[i][j + 1]);
  std::string out;
  bool inRun = false;
  for (std::size_t i = 0, j = 0; i < a.size() || j < b.size();) {
    if (i < a.size() && j < b.size() && a[i] == b[j]) {
      ++i, ++j;
      inRun = false;
      continue;
    }
    if (!inRun) out += "  @" + std::to_string(j + 1) + "\n";
    inRun = true;
    if (j == b.size() || (i < a.size() && common[i + 1][j] >= common[i][j + 1])) {
      out += "  - " + a[i++] + "\n";
    } else {
      out += "  + " + b[j++] + "\n";
    }
  }
  return out;
}

// The lines of `text` after `prefix` (without its blanks on empty lines).
std::string prefixed(const std::string& prefix, const std::string& text) {
  std::string out;
  for (const std::string& l : textLines(text))
    out += (l.empty() ? prefix.substr(0, prefix.find_last_not_of(' ') + 1) : prefix + l) + "\n";
  return out;
}

std::string fileChanges(const Tree& before, const Tree& after) {
  std::string out;
  std::map<std::string, std::string> listed;  // text -> the first path listed with it
  for (const auto& [path, text] : after) {
    auto was = before.find(path);
    if (was != before.end() && was->second == text) continue;
    auto same = listed.find(text);
    if (same != listed.end()) {
      out += "= " + path + ": as " + same->second + "\n";
      continue;
    }
    listed.emplace(text, path);
    if (text.empty()) {
      out += (was == before.end() ? "+ " : "~ ") + path + " (empty)\n";
    } else if (was == before.end()) {
      out += "+ " + path + "\n" + prefixed("  ", text);
    } else {
      out += "~ " + path + "\n" + diff(textLines(was->second), textLines(text));
    }
  }
  for (const auto& [path, text] : before)
    if (after.count(path) == 0) out += "- " + path + "\n";
  return out;
}

std::string slotChanges(const std::vector<int>& before, const std::vector<int>& after) {
  std::string out;
  for (std::size_t i = 0; i < before.size() && i < after.size(); ++i) {
    if (before[i] == after[i]) continue;
    const char* name = shm::slotName(static_cast<int>(i));
    out += "slot " +
           (name ? std::string(name) + " (" + std::to_string(i) + ")" : std::to_string(i)) + ": " +
           std::to_string(before[i]) + " -> " + std::to_string(after[i]) + "\n";
  }
  return out;
}

}  // namespace

void put(const Camera& cam, const Files& files) {
  for (const auto& [path, text] : files) text ? cam.write(path, *text) : cam.remove(path);
}

Lines words(const std::string& text) {
  Lines out;
  std::istringstream in(text);
  for (std::string w; in >> w;) out.push_back(w);
  return out;
}

std::string format(const char* pattern, ...) {
  char text[512];
  va_list args;
  va_start(args, pattern);
  std::vsnprintf(text, sizeof text, pattern, args);
  va_end(args);
  return text;
}

std::string golden(const std::string& name) { return readFile(ONVIFCTRL_GOLDEN "/" + name); }

Files fixture(const std::string& name, const Files& more) {
  const Tree tree = filesUnder(ONVIFCTRL_GOLDEN "/" + name);
  Files files(tree.begin(), tree.end());
  files.insert(files.end(), more.begin(), more.end());
  return files;
}

Camera& Transcript::cam() {
  if (cam_ == nullptr) cam_ = (own_ = std::make_unique<Camera>(slots_)).get();
  return *cam_;
}

void Transcript::run(const std::string& title, const std::string& command, const SlotValues& slots,
                     const Files& files) {
  Camera& cam = this->cam();
  for (const auto& [s, v] : slots) cam.setSlot(s, v);
  put(cam, files);
  const Tree filesBefore = camFiles(cam);
  const std::vector<int> slotsBefore = camSlots(cam);
  const Lines args = words(command);
  const bool shm = !args.empty() && args[0] == "onvif-shm";
  RunResult r = shm ? cam.runShm(Lines(args.begin() + 1, args.end())) : cam.run(args);
  const std::string shown = shm || command.empty() ? command : " " + command;
  text_ += "# " + title + "\n$ " + (shm ? "" : "onvifCtrl") + shown + "\n";
  if (r.status != 0) text_ += "exit " + std::to_string(r.status) + "\n";
  text_ += prefixed("> ", withoutBuildTime(r.out));
  text_ += fileChanges(filesBefore, camFiles(cam));
  text_ += slotChanges(slotsBefore, camSlots(cam));
  for (const std::string& line : cam.shellTrace()) text_ += "sh: " + line + "\n";
  text_ += "\n";
}

void Transcript::expectGolden() const {
  const testing::TestInfo* test = testing::UnitTest::GetInstance()->current_test_info();
  const std::string name = std::string(test->test_suite_name()) + "." + test->name() + ".result";
  const char* update = std::getenv("ONVIFCTRL_GOLDEN_UPDATE");
  if (update != nullptr && std::string(update) == "1") {
    std::ofstream(ONVIFCTRL_GOLDEN "/" + name, std::ios::binary) << text_;
    return;
  }
  EXPECT_EQ(golden(name), text_) << "tests/golden/" << name;
}

}  // namespace testkit
