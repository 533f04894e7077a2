// Transcripts of runs, compared with golden files.
//
// A step sets slots and files, runs onvifCtrl and records what the run did:
// its exit status when not 0, what it printed on stdout ("> "), every
// file under the root it created ("+"), changed ("~", as a line diff) or
// removed ("-"), the slots whose values changed and the cp and rm commands it
// ran ("sh: "). A file with the same text as one listed before it in the step
// is shown as "= path: as other". Times of day in the DebugLog and the build
// time are shown as their formats. The expected transcript of a test is the
// file tests/golden/<Suite>.<Test>.result.
#pragma once

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
void put(const Camera& cam, const Files& files);

struct Step {
  std::string title;      // what the run shows, as a sentence
  std::string command;    // the arguments, separated by blanks
  SlotValues slots = {};  // set before the run
  Files files = {};       // written or removed before the run
};

// Sets up and runs one step; returns its part of the transcript.
std::string record(Camera& cam, const Step& step);

// The steps in order on one camera.
std::string transcript(Camera& cam, const std::vector<Step>& steps);

// The text of tests/golden/<name>.
std::string golden(const std::string& name);

// Expects `actual` to be the running test's golden transcript. With
// ONVIFCTRL_GOLDEN_UPDATE=1 in the environment it writes the file instead.
void expectGolden(const std::string& actual);

}  // namespace testkit
