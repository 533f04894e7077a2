// The host-side block tool: what it creates is what onvifCtrl attaches, and
// slots are set and read by name or index.
#include <gtest/gtest.h>

#include "camera.h"

using shm::Slot;
using testkit::Camera;
using testkit::splitLines;

namespace {

TEST(OnvifShm, CreatesTheBlockTheToolAttaches) {
  Camera cam;
  ASSERT_EQ(cam.runShm({"create", "ONVIF_BRAND=40", "79=6", "ONVIF_RESET=300"}).status, 0);
  EXPECT_EQ(cam.runShm({"create"}).status, 1);  // exists already
  EXPECT_EQ(cam.runShm({"get", "ONVIF_BRAND"}).out, "40\n");
  EXPECT_EQ(cam.runShm({"get", "ONVIF_DEVICE"}).out, "6\n");

  EXPECT_EQ(cam.run({"-u", "98"}).status, 0);
  EXPECT_EQ(cam.runShm({"get", "1000"}).out, "1\n");
  EXPECT_EQ(cam.runShm({"get", "0"}).out, "78\n");
  EXPECT_EQ(cam.runShm({"get", "ONVIF_RESET"}).out, "44\n");

  ASSERT_EQ(cam.runShm({"set", "WEB_SYNC_PROTECT", "1", "998", "-5"}).status, 0);
  std::vector<std::string> dump = splitLines(cam.runShm({"dump"}).out);
  EXPECT_EQ(dump.size(), shm::kSlotNameCount);
  bool found = false;
  for (const std::string& l : dump)
    found = found || l.find("ONVIF_DEBUG_LOG ") != std::string::npos;
  EXPECT_TRUE(found);
  EXPECT_EQ(cam.runShm({"get", "ONVIF_DEBUG_LOG"}).out, "-5\n");
  EXPECT_EQ(splitLines(cam.runShm({"dump", "--all"}).out).size(), 1001u);

  ASSERT_EQ(cam.runShm({"remove"}).status, 0);
  EXPECT_EQ(cam.runShm({"get", "ONVIF_BRAND"}).status, 1);
  EXPECT_EQ(splitLines(cam.run({"-u", "98"}).out)[0], "[ONVIFCtrl]getShareMemory: shmget error");
}

TEST(OnvifShm, RejectsWhatItCannotSet) {
  Camera cam;
  cam.startServer();
  for (const std::vector<std::string>& args :
       std::vector<std::vector<std::string>>{{"set", "NO_SUCH_SLOT", "1"},
                                             {"set", "1001", "1"},
                                             {"set", "ONVIF_BRAND", "x"},
                                             {"set", "ONVIF_BRAND", "4294967296"},
                                             {"get", "-1"},
                                             {"bogus"}}) {
    EXPECT_NE(cam.runShm(args).status, 0) << args[0] << " " << args[1];
  }
  EXPECT_EQ(cam.slot(Slot::ONVIF_BRAND), 0);
}

}  // namespace
