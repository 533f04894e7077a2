# Version, password checking, the web's ONVIF switches, debug logging and the
# factory defaults.
say "Version"
ctl -i 0

say "Password checking off, then the administrator's name exported"
ctl -a 0
ctl -a 2

say "The web page turns ONVIF discovery off"
web /etc/sysconfig/network.conf root.Network.ONVIF.Discovery.Enabled no
ctl -u 21

say "Debug logging on; the API switches audio off (logged to /tmp/onvif/DebugLog)"
ctl -d 1
ctl -u 27

say "Server stop request and image-quality flags"
ctl -s 0
ctl -s 9

say "Factory defaults (soft)"
ctl -s 3
