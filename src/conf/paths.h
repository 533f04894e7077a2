// Camera paths and where they lie on the host (the paths the tool shares are
// listed in files.h).
//
// Every file the tool touches is named by its path on the camera. When the
// environment variable ONVIFCTRL_ROOT is set (host demos and tests), each such
// path is resolved under that folder instead; messages keep showing the
// camera path. On the camera the variable is unset and paths are used as is.
//
// A name read from a file (a record a list names, a token) reaches a path only
// through inFolder() or plainName(), or as forEachName() hands it over: it must
// be a plain file name, so that no list can make the tool write outside the
// camera's folders.
#pragma once

#include <optional>
#include <string>

namespace conf {

// The host path of a camera path ("/etc/sysconfig/network.conf").
std::string hostPath(const std::string& cameraPath);

// The ONVIFCTRL_ROOT folder, or an empty string when unset.
std::string cameraRoot();

// "/tmp/onvif/tmp/WS_" followed by the routine's name.
std::string wsTemp(const std::string& routine);

// True when a camera path lies in the tool's temporary folder
// ("/tmp/onvif/tmp/"), where a link is never written through.
bool inTempFolder(const std::string& cameraPath);

// True when `name` is a plain file name: not empty, no "/", not "." or "..".
// Any other name is refused: "<routine>:<name> refused" goes to the error log.
bool plainName(const std::string& routine, const std::string& name);

// `dir` + `name` for a plain file name; nothing (refused, logged) otherwise.
std::optional<std::string> inFolder(const std::string& routine, const std::string& dir,
                                    const std::string& name);

}  // namespace conf
