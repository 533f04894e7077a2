// Camera paths and where they lie on the host (the paths the tool shares are
// listed in files.h).
//
// Every file the tool touches is named by its path on the camera. When the
// environment variable ONVIFCTRL_ROOT is set (host demos and tests), each such
// path is resolved under that folder instead; messages keep showing the
// camera path. On the camera the variable is unset and paths are used as is.
#pragma once

#include <string>

namespace conf {

// The host path of a camera path ("/etc/sysconfig/network.conf").
std::string hostPath(const std::string& cameraPath);

// The ONVIFCTRL_ROOT folder, or an empty string when unset.
std::string cameraRoot();

// "/tmp/onvif/tmp/WS_" followed by the routine's name.
std::string wsTemp(const std::string& routine);

}  // namespace conf
