// A temporary camera for integration tests: a copy of examples/camera under a
// fresh ONVIFCTRL_ROOT, a real server block, and a runner for the built
// onvifCtrl and onvif-shm binaries.
//
// Every shell "cp" and "rm" the tool runs is recorded (a wrapper on PATH), so a
// test can check the commands and their order; paths in the record are camera
// paths (the root is stripped).
#pragma once

#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "shm/block.h"
#include "shm/slots.h"

namespace testkit {

using Lines = std::vector<std::string>;
using SlotValues = std::vector<std::pair<shm::Slot, int>>;
using Tree = std::map<std::string, std::string>;  // path -> text

struct RunResult {
  int status = -1;  // exit status, or -1 when the process did not exit
  std::string out;
  std::string err;
};

class Camera {
 public:
  // A copy of the sample camera, with /tmp/onvif/tmp made and the server block
  // started with `slots`. The root folder's name starts with `prefix` (which
  // must not hold a single quote), so a test can give it characters the shell
  // would act on.
  explicit Camera(const SlotValues& slots = {}, const std::string& prefix = "/tmp/onvifctrl-test-");
  ~Camera();
  Camera(const Camera&) = delete;
  Camera& operator=(const Camera&) = delete;

  // Creates a new server block (all slots 0) in place of any earlier one and
  // sets the given slots.
  void startServer(const SlotValues& slots = {});
  void stopServer();                           // the block and the file of its key go
  std::optional<shm::ShmBlock> block() const;  // none without the server
  int slot(shm::Slot s) const;
  void setSlot(int index, int value);
  void setSlot(shm::Slot s, int value) { setSlot(shm::index(s), value); }

  // Runs onvifCtrl (or onvif-shm) with the arguments under this root: the
  // built binary, or the one ONVIFCTRL_TEST_BIN (ONVIF_SHM_TEST_BIN) names.
  RunResult run(const Lines& args) const;
  RunResult runShm(const Lines& args) const;
  // Runs onvifCtrl through a wrapper: the wrapper's program (an absolute path)
  // gets the wrapper's other words, then onvifCtrl's path and `args`; for
  // instance {"/bin/sh", "-c", "ulimit -f 2; exec \"$@\"", "sh"}.
  RunResult runUnder(const Lines& wrapper, const Lines& args) const;

  // Files by camera path.
  std::string host(const std::string& cameraPath) const;
  std::string read(const std::string& cameraPath) const;
  void write(const std::string& cameraPath, const std::string& content) const;
  bool exists(const std::string& cameraPath) const;
  void remove(const std::string& cameraPath) const;

  // The lines of /tmp/onvif_error (empty when it does not exist).
  Lines errorLog() const;
  // The "cp ..." and "rm ..." commands of the last run, with camera paths.
  Lines shellTrace() const;

  const std::string& root() const { return root_; }

 private:
  RunResult exec(const std::string& binary, const Lines& args) const;

  std::string root_;
};

// Serialises tests that use the segments with fixed keys (5678, 3745), which
// every test process shares.
class FixedKeyLock {
 public:
  FixedKeyLock();
  ~FixedKeyLock();
  FixedKeyLock(const FixedKeyLock&) = delete;
  FixedKeyLock& operator=(const FixedKeyLock&) = delete;

 private:
  int fd_;
};

// The text of a host file (empty when it cannot be read).
std::string readFile(const std::string& hostPath);

// Lines of a text (without their newlines).
Lines splitLines(const std::string& text);

// The regular files under a host folder and its subfolders, by their path
// below it ("/a/b"); links are left out, and so are the kit's own folders.
Tree filesUnder(const std::string& hostDir);

}  // namespace testkit
