// The PTZ device scope of onvif.conf and the PTZ binding of the media
// profiles, which follow whether pan and tilt are present (RS-485 control).
#pragma once

namespace onvif {

// Adds (ptz 1) or removes (any other value) the fixed scope line
// "FixedScopes=onvif://www.onvif.org/type/ptz" of "/tmp/onvif/onvif.conf",
// then copies the file to its persistent copy. A file already in the asked
// state is left untouched.
void update_onvif_conf_file_ptzscopes(int ptz);

// Sets "PTZ=" of every profile record that "/tmp/onvif/Profiles.conf" lists:
// "PTZ=PTZConf1" for ptz 1, "PTZ=NONE" otherwise.
void update_onvif_profile_ptzconf(int ptz);

}  // namespace onvif
