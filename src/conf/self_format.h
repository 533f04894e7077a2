// Unchanged lines are written "as their own format": the line is the format of
// a formatted write with no arguments, so a "%" sequence in it is expanded, not
// copied. selfFormat renders that result without ever handing file content to
// printf:
//   "%%" gives "%";
//   every other conversion reads a zero argument ("%s" gives "(null)", "%d"
//   gives "0", "%c" a NUL byte, "%p" "(nil)", "%f" "0.000000"), with its flags,
//   width and precision applied;
//   "%n" stores nothing and writes nothing; "%m" writes the text of errno 0;
//   one conversion never yields more than 255 characters;
//   a conversion that is not complete, or whose letter is unknown, is written
//   as it stands.
#pragma once

#include <string>

namespace conf {

std::string selfFormat(const char* line);

}  // namespace conf
