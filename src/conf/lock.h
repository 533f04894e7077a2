// One writer at a time. Every command that writes files holds an advisory
// lock (flock) on "/tmp/onvif/tmp/onvifCtrl.lock" (under ONVIFCTRL_ROOT like
// every path), so two runs of the tool never mix their rewrites of one file.
// This comes on top of the protect flag of the server block, which the server
// and older copies of the tool go by and which keeps working as it always did.
#pragma once

namespace conf {

// Takes the lock unless this run already holds it, waiting at most as long as
// the protect wait (tried again every 100 ms, 300 times). The lock is held until the
// process ends. When it cannot be had (still busy after 30 s, or no lock file
// can be made), the run goes on without it and does not wait for it again.
void holdWriteLock();

}  // namespace conf
