// The camera paths that more than one file of the tool names. A path that
// only one routine file uses is declared at the top of that file; every other
// path is here, once. conf::hostPath() resolves each under ONVIFCTRL_ROOT.
#pragma once

namespace conf {

// Folders and logs.
inline constexpr const char* kErrorLog = "/tmp/onvif_error";
inline constexpr const char* kDebugLog = "/tmp/onvif/DebugLog";
inline constexpr const char* kTmpDir = "/tmp/onvif/tmp/";
inline constexpr const char* kLockFile = "/tmp/onvif/tmp/onvifCtrl.lock";
inline constexpr const char* kLiveDir = "/tmp/onvif/";
inline constexpr const char* kPersistDir = "/usr/apache/htdocs/onvif/";

// The ONVIF server's files.
inline constexpr const char* kLiveOnvifConf = "/tmp/onvif/onvif.conf";
inline constexpr const char* kPersistOnvifConf = "/usr/apache/htdocs/onvif/onvif.conf";
inline constexpr const char* kProfileList = "/tmp/onvif/Profiles.conf";
inline constexpr const char* kVideoEncoderList = "/usr/apache/htdocs/onvif/VideoEncoder.conf";
inline constexpr const char* kAudioEncoderList = "/usr/apache/htdocs/onvif/AudioEncoder.conf";

// The web side's system files.
inline constexpr const char* kNetworkConf = "/etc/sysconfig/network.conf";
inline constexpr const char* kImageAppearanceConf = "/etc/sysconfig/image_appearance.conf";
inline constexpr const char* kImageSourceConf = "/etc/sysconfig/image_source.conf";

}  // namespace conf
