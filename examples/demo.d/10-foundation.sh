# Version, password checking, the web's ONVIF switches, debug logging and the
# factory defaults.
say "Version and build time; every run with a server sets slot 0 to 78" \
    "and keeps the low byte of ONVIF_RESET (300 becomes 44)"
ctl -i 0

say "Password checking off (both onvif.conf copies), then the administrator's name exported"
ctl -a 0
ctl -a 2

say "The web page turns ONVIF discovery off: -u 21 sets slots only" \
    "(no DebugLog line: debugging is still off)"
web /etc/sysconfig/network.conf root.Network.ONVIF.Discovery.Enabled no
ctl -u 21

say "Debug logging on; the API switches audio off (logged to /tmp/onvif/DebugLog)"
ctl -d 1
ctl -u 27

say "Server stop request (SERVER_STATE 0 drops out of the slot list) and image-quality flags"
ctl -s 0
ctl -s 9

say "Factory defaults (soft): the persistent ONVIF files go back to their .default copies"
ctl -s 3
