// The real protect wait: a flag that stays raised is waited out for 30 s
// (300 steps of 100 ms), then the command runs and clears it. Label "slow".
#include <gtest/gtest.h>

#include <chrono>

#include "camera.h"

using shm::Slot;

namespace {

TEST(SyncFrame, StuckProtectFlagIsWaitedOutForThirtySeconds) {
  testkit::Camera cam({{Slot::WEB_SYNC_PROTECT, 1}});
  auto start = std::chrono::steady_clock::now();
  EXPECT_EQ(cam.run({"-u", "22"}).status, 0);
  std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - start;
  EXPECT_GE(seconds.count(), 29.5);
  EXPECT_LT(seconds.count(), 45.0);
  EXPECT_EQ(cam.slot(Slot::ONVIF_CTRL), 22);
  EXPECT_EQ(cam.slot(Slot::WEB_SYNC_PROTECT), 0);
}

}  // namespace
