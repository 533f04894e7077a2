# OSD sync, Profile G recording control, the auxiliary segment dumps and the
# codec self-tests.
say "The web page moves the text to the top right in red and shows two subtitles"
web /etc/sysconfig/image_text.conf root.Image.I0.Text.StringPosition topright
web /etc/sysconfig/image_text.conf root.Image.I0.Text.Color red
web /etc/sysconfig/image_text.conf root.Image.I0.Text.SubtitleEnabled yes
web /etc/sysconfig/image_text.conf root.Image.I0.Text.Subtitle1 "Lobby east"
web /etc/sysconfig/image_text.conf root.Image.I0.Text.Subtitle3 "Visitors sign in"
ctl -u 16

say "The web page turns the date off: its record leaves the list, then the folder"
web /etc/sysconfig/image_text.conf root.Image.I0.Text.DateEnabled no
ctl -u 16

say "Profile G recording of the first stream: start, stop, and the streaming server's bytes" \
    "(no slot or file changes)"
# The key-3745 segment is one for the whole host: hold the lock the tests take
# for it, so that a test run beside the demo does not remove it mid-step.
exec 9>/tmp/onvifctrl-fixed-keys.lock
if command -v flock >/dev/null; then flock 9; fi
made_stream=0
if "$shmtool" stream-create 2>/dev/null; then made_stream=1; fi
ctl -r 1
echo "  streaming server bytes 0..3: $("$shmtool" stream-dump | head -4 | awk '{print $2}' | tr '\n' ' ')"
ctl -r 2
ctl -s 8
if [ "$made_stream" = 1 ]; then "$shmtool" stream-remove || true; fi
exec 9>&-

say "Recording summary and the recording database"
ctl -r 3
ctl -r 4

say "Auxiliary segments: video analytics missing (the dump says so and goes on)," \
    "then the wearable hub's first entry"
ctl -s 6
"$shmtool" seg-create wearable
"$shmtool" seg-set wearable 0 1
"$shmtool" seg-set wearable 16 1
"$shmtool" seg-set wearable 17 87
ctl -s 12
"$shmtool" seg-remove wearable

say "Codec self-tests: PackBits decode (\"length[7]\" is the firmware's own label)," \
    "encode, hexadecimal to binary"
ctl -u 99
ctl -u 100
ctl -u 101
