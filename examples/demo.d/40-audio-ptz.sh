# Audio, multicast, PTZ presets and preset tours.
"$shmtool" set ONVIF_MULTIPLE_STREAM 8 >/dev/null  # the sample's layout: H.264 streams 1 to 3 and JPEG

say "Audio to G.726 at 32 kbit/s: encoder, profiles, use counts and back channel follow;" \
    "Profile4's NONE encoder is logged as a missing file"
web /etc/sysconfig/audio_source.conf root.AudioSource.A0.BitRate 32000
ctl -u 4

say "The web page moves the main stream's multicast group and port"
web /etc/sysconfig/network.conf root.Network.RTP.R0.H264VideoAddress 239.128.2.100
web /etc/sysconfig/network.conf root.Network.RTP.R0.H264VideoPort 6000
ctl -u 9

say "Preset 5 is stored on the camera as \"Lift\" (framed, brand 40), then preset 4 is deleted"
web /etc/sysconfig/preset_ptz.conf root.preset.position5.set 'set,Lift;'
ctl -p 5
ctl -q 4

say "Guard tour 3 is switched on and becomes ONVIF preset tour 3"
sed -i 's/^GuardTour3:unset$/GuardTour3:set/' "$root/etc/dynamic/guardtourstate.conf"
echo "web: /etc/dynamic/guardtourstate.conf: GuardTour3:set"
ctl -u 14

"$shmtool" set ONVIF_MULTIPLE_STREAM 0 >/dev/null
