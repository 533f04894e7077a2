// The host-side block tool: what it creates is what onvifCtrl attaches, and
// slots are set and read by name or index.
#include <gtest/gtest.h>

#include "transcript.h"

namespace {

TEST(OnvifShm, CreatesTheBlockTheToolAttaches) {
  testkit::Transcript t;
  t.cam().stopServer();
  t.run("Slots by name or index", "onvif-shm create ONVIF_BRAND=40 79=6 ONVIF_RESET=300");
  t.run("The block exists already", "onvif-shm create");
  t.run("By name", "onvif-shm get ONVIF_BRAND");
  t.run("The tool attaches it", "-u 98");
  for (const char* slot : {"1000", "0", "ONVIF_RESET", "ONVIF_DEVICE"})
    t.run("By index or name", testkit::format("onvif-shm get %s", slot));
  t.run("Several slots", "onvif-shm set WEB_SYNC_PROTECT 1 998 -5");
  t.run("The named slots", "onvif-shm dump");
  t.run("Every slot", "onvif-shm dump --all");
  for (const char* bad : {"set NO_SUCH_SLOT 1", "set 1001 1", "set ONVIF_BRAND x",
                          "set ONVIF_BRAND 4294967296", "get -1", "bogus"})
    t.run("Rejected", testkit::format("onvif-shm %s", bad));
  t.run("Removed", "onvif-shm remove");
  t.run("Gone", "onvif-shm get ONVIF_BRAND");
  t.run("The tool finds no block", "-u 98");
  t.expectGolden();
}

}  // namespace
