// The web interface's time zone ("GMT+5,5", "CET-1CEST,M3.5.0,M10.5.0/3") in
// the form the ONVIF device configuration keeps in "Time.TimeZone="
// ("GMT-5:30:00").
#pragma once

namespace onvif {

// The ONVIF form of a web time zone: the first row of the zone table whose
// test holds, "GMT+0:00:00" when none does. The web names follow the POSIX
// sign (hours added to local time give UTC), the ONVIF form the ISO 8601 sign,
// so every result has the opposite sign of its name.
const char* onvifTimeZone(const char* web);

}  // namespace onvif
