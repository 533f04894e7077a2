// Transcripts of runs, compared with golden files.
//
// Each run sets slots and files, runs onvifCtrl and records what it did: its
// exit status when not 0, what it printed on stdout ("> "), every file under
// the root it created ("+"), changed ("~", as a line diff) or removed ("-"),
// the slots whose values changed and the cp and rm commands it ran ("sh: ").
// A file with the same text as one listed before it in the run is shown as
// "= path: as other". Times of day in the DebugLog and the build time are
// shown as their formats. The expected transcript of a test is the file
// tests/golden/<Suite>.<Test>.result.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "camera.h"

namespace testkit {

using Files = std::vector<std::pair<std::string, std::optional<std::string>>>;  // no text: no file

// Writes each file, or removes it when its text is absent.
void put(const Camera& cam, const Files& files);

// The blank-separated words of a text.
Lines words(const std::string& text);

// printf into a string.
std::string format(const char* pattern, ...) __attribute__((format(printf, 1, 2)));

// The text of tests/golden/<name>.
std::string golden(const std::string& name);

// The files under the folder tests/golden/<name>, by camera path, then `more`.
Files fixture(const std::string& name, const Files& more = {});

// Runs on `cam`, or on a camera of its own (started with `slots`, made at
// its first use) until on() names another.
class Transcript {
 public:
  explicit Transcript(SlotValues slots = {}) : slots_(std::move(slots)) {}
  explicit Transcript(Camera& cam) : cam_(&cam) {}

  Camera& cam();
  // Later runs use `cam`.
  Transcript& on(Camera& cam) {
    cam_ = &cam;
    return *this;
  }

  // Sets the slots and files, then runs onvifCtrl with the blank-separated
  // arguments of `command` (onvif-shm when they start with "onvif-shm");
  // `title` says what the run shows.
  void run(const std::string& title, const std::string& command, const SlotValues& slots = {},
           const Files& files = {});

  // Expects the transcript to be the running test's golden file. With
  // ONVIFCTRL_GOLDEN_UPDATE=1 in the environment it writes the file instead.
  void expectGolden() const;

 private:
  SlotValues slots_;
  std::unique_ptr<Camera> own_;
  Camera* cam_ = nullptr;
  std::string text_;
};

}  // namespace testkit
