// The server family's compiled feature switches, printed by the full dump.
#pragma once

#include <cstddef>

namespace shm {

struct FeatureSwitch {
  const char* name;
  int value;
  bool profileGSub;  // printed with "------" under ONVIF_PROFILE_G
};

extern const FeatureSwitch kFeatureSwitches[];
extern const std::size_t kFeatureSwitchCount;

// The thread switches, printed under their own heading.
extern const FeatureSwitch kThreadSwitches[];
extern const std::size_t kThreadSwitchCount;

}  // namespace shm
