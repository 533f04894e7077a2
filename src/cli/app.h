// The main sequence of one onvifCtrl run.
#pragma once

namespace cli {

// Attaches the server's block, parses and acts on the options, runs the
// post-parse step, restores the saved slots and writes the completion marker.
// Returns the exit status: 0, or -1 for no options or a bad option.
int runOnvifCtrl(int argc, char** argv);

}  // namespace cli
