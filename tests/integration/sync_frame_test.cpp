// The frame around sync commands: the protect flag, the command number, the
// DebugLog line (appended when ONVIF_DEBUG_LOG is 1), and the commands that
// only raise slots.
#include <gtest/gtest.h>

#include "transcript.h"

using shm::Slot;

namespace {

TEST(SyncFrame, ProtectFlagCommandNumberAndDebugLog) {
  const Slot protect = Slot::WEB_SYNC_PROTECT, debug = Slot::ONVIF_DEBUG_LOG;
  const testkit::SlotValues raised = {{protect, 1},
                                      {Slot::ONVIF_CTRL, 0},
                                      {Slot::ONVIF_AUDIO_SUPPORT, 5},
                                      {Slot::ONVIF_AUDIO_OUTPUT_SUPPORT, 5}};
  testkit::Transcript t;
  t.run("PTZ control clears the flag and logs nothing", "-u 17", raised);
  t.run("Audio off", "-u 27", raised);
  t.run("Audio on", "-u 28", raised);
  t.run("Firmware upgrade", "-u 30", raised);
  t.run("Discovery", "-u 98", raised);
  t.run("Event search waits, then clears the flag", "-u 33", {{protect, 0}});
  t.run("Standard commands raise the flag, record the number, log and clear the flag",
        "-u 22 -u 21", {{protect, 0}, {debug, 1}}, {{"/tmp/onvif/DebugLog", "00:00:00 earlier\n"}});
  t.run("Debug 0 logs nothing", "-u 27 -u 23", {{debug, 0}}, {{"/tmp/onvif/DebugLog", {}}});
  t.run("Nor does debug 2", "-u 28 -u 30", {{debug, 2}});
  t.run("Commands without a label log nothing", "-u 17 -u 33", {{debug, 1}});
  t.run("Commands that do not wait log too", "-u 98 -u 28", {{debug, 1}});
  t.run("Twice", "-u 30 -u 27", {{debug, 1}});
  t.expectGolden();
}

}  // namespace
