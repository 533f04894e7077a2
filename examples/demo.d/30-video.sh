# Video: a stream change on the web page reaches the encoder records, the
# profiles and the layout slots; then frame rates, imaging, rotation, H.264
# profiles and the encoder's option ranges.
"$shmtool" set IMAGE_EXPOSURE_GAIN_MAX 100 >/dev/null

say "The sample's streams (JPEG 720p, H.264 1080p, 720p, 640x360) give layout 8" \
    "(slots only: the files already agree)"
ctl -u 2

say "The web page turns H.264 stream 3 off and puts the JPEG stream at VGA: layout 6;" \
    "Profile4 is left without a video encoder (NONE)"
web /etc/sysconfig/image_appearance.conf root.Image.I0.Appearance.Resolution vga,1080p,720p,disable,disable
web /etc/sysconfig/image_appearance.conf root.Image.I0.Appearance.MjpegQfactor 50
ctl -u 2

say "Frame rates follow the new layout (the JPEG rate goes to VideoEncoder3)"
ctl -u 5

say "H.264 profiles: stream 2 becomes baseline"
web /etc/sysconfig/image_appearance.conf root.Image.I0.Appearance.H264_2Profile baseline
ctl -u 15

say "Imaging: brighter, sharper, manual white balance"
web /etc/sysconfig/image_source.conf root.ImageSource.I0.Sensor.Brightness 200
web /etc/sysconfig/image_source.conf root.ImageSource.I0.Sensor.Sharpness 12
web /etc/sysconfig/image_source.conf root.ImageSource.I0.Sensor.WhiteBalance manual
ctl -u 3

say "The image is turned clockwise"
web /etc/sysconfig/image_appearance.conf root.Image.I0.Appearance.Rotation clockwise
ctl -u 7

say "The encoder's option ranges by channel count; \"[Main] A5S sdk310 ...\" is the" \
    "firmware's own progress line, not an error"
web /tmp/options.conf root.Framerate.H264 1-25
ctl -u 13

"$shmtool" set IMAGE_EXPOSURE_GAIN_MAX 0 >/dev/null
