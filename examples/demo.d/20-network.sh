# Network, time, scopes, accounts and device settings carried from the web
# side into the ONVIF files (the block runs as brand 40, device type 6).
say "The web page switches the camera to DHCP and to Indian time"
web /etc/sysconfig/network.conf root.Network.BootProto dhcp
web /etc/sysconfig/systime.conf root.Time.TimeZone IST-5:30
ctl -u 1

say "Back to a static address in a /23 network (the address page: live copy only)"
web /etc/sysconfig/network.conf root.Network.BootProto none
web /etc/sysconfig/network.conf root.Network.IPAddress 192.168.2.40
web /etc/sysconfig/network.conf root.Network.SubnetMask 255.255.254.0
ctl -u 29

say "New host name and location in the scopes (the persistent copy is made from the live one:" \
    "it gets -u 29's address too)"
web /etc/sysconfig/network.conf root.Network.HostName lobby-cam02
web /etc/sysconfig/location.conf root.Orvane.Location "Lobby East"
ctl -u 8

say "A viewer account is added on the web side" \
    "(its work copy in /tmp/onvif/tmp stays, as all temporary files do)"
printf 'viewer:View2026\n' >> "$root/etc/appWeb/appweb.pass"
printf 'viewer:1:0:0:0\n' >> "$root/etc/appWeb/appweb.privacy"
echo "web: /etc/appWeb: viewer added (mask 1:0:0:0)"
ctl -u 24

say "Pan and tilt switched off on the RS-485 page: PTZ scope and profile binding go"
"$shmtool" set ONVIF_ZF_SUPPORT 3
web /etc/sysconfig/rs485protocol.conf root.RS485Control.Switch 0
ctl -u 11
web /etc/sysconfig/rs485protocol.conf root.RS485Control.Switch 1
ctl -u 11
"$shmtool" set ONVIF_ZF_SUPPORT 0
"$shmtool" set ONVIF_ZF_SUPPORT_BAKEUP 0 ONVIF_PT_SUPPORT 0

say "Relay 1 becomes active when open; smart compression set to high"
web /etc/sysconfig/outputs.conf root.Output.O0.Active open
ctl -u 12
web /etc/sysconfig/image_ratecontrol.conf root.Image.I0.RateControl.H264Mode.LBR.Auto high
ctl -u 36
