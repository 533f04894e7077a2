// The codec of a video encoder record.
#pragma once

#include <string>

#include "conf/field.h"

namespace onvif {

// Reads the value of the first "Encoding=" line of "/tmp/onvif/<name>.VEncoder"
// into `out`. A missing record is logged ("check_codec: %s missing") and, like
// a record without the line or a name that is refused (not a plain file
// name), leaves `out` as it was.
void check_codec(const std::string& name, conf::Field<64>& out);

}  // namespace onvif
