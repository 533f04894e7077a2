// Profile G recording control (-r 1..4): the first recording's start and stop
// requests to the streaming server, the recording summary and the database
// read.
#pragma once

#include <array>
#include <string>

namespace rec {

// -r 1 / -r 2: writes the start (1) or stop (2) request of the first recording
// into the streaming server's key-3745 segment. Returns 0, or -1 when the
// segment cannot be found or attached (after printing why).
int requestRecording(bool start);

// -r 3: copies the shipped summary into /tmp/onvif and prints its period and
// recording count.
int GetRecordingSummary();

// -r 4: runs the camera's database tool in read mode.
int readDbFile();

// "YYYYMMDDhhmmss" split into year, month, day, hours, minutes and seconds;
// missing digits leave their fields empty.
std::array<std::string, 6> splitStamp(const std::string& digits);

}  // namespace rec
