// Table-driven runs of sync commands: each case sets slots and files, runs one
// "-u" command and checks files, slots, error-log lines, output and the
// recorded shell commands.
#pragma once

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "camera.h"

namespace testkit {

using Lines = std::vector<std::string>;
using Files = std::vector<std::pair<std::string, std::optional<std::string>>>;  // no text: no file
using SlotValues = std::vector<std::pair<shm::Slot, int>>;

// Writes each file, or removes it when its text is absent.
inline void put(const Camera& cam, const Files& files) {
  for (const auto& [path, text] : files) text ? cam.write(path, *text) : cam.remove(path);
}

struct SyncCase {
  std::string command;
  SlotValues slots = {};  // set before the run
  Files before = {};
  Files after = {};
  SlotValues slotsAfter = {};
  Lines log = {};  // the error-log lines the run appends
  std::string out = {};
  std::optional<Lines> trace = {};  // the cp and rm commands of the run
};

// Runs the cases in order on one camera.
inline void runCases(Camera& cam, const std::vector<SyncCase>& cases) {
  for (std::size_t i = 0; i < cases.size(); ++i) {
    const SyncCase& c = cases[i];
    for (const auto& [s, v] : c.slots) cam.setSlot(s, v);
    put(cam, c.before);
    cam.clearTrace();
    const std::size_t logged = cam.errorLog().size();
    EXPECT_EQ(cam.run({"-u", c.command}).out, c.out) << "case " << i;
    for (const auto& [path, text] : c.after)
      EXPECT_EQ(cam.exists(path) ? std::optional(cam.read(path)) : std::nullopt, text) << "case " << i << ": " << path;
    for (const auto& [s, v] : c.slotsAfter) EXPECT_EQ(cam.slot(s), v) << "case " << i << ": slot " << shm::index(s);
    const Lines log = cam.errorLog();
    EXPECT_EQ(Lines(log.begin() + static_cast<long>(logged), log.end()), c.log) << "case " << i;
    if (c.trace) {
      EXPECT_EQ(cam.shellTrace(), *c.trace) << "case " << i;
    }
  }
}

}  // namespace testkit
