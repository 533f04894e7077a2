// Scan patterns: the scanf-style patterns the routines read values with
// ("root.Network.IPAddress=%s\n", "%[^:]:%[^:]:%s\n", "...=%d\n").
//
// scanLine applies a pattern to a whole line with the semantics of sscanf --
// literal text must match from the line's first character, white space in the
// pattern matches any run of white space, "%s" skips leading white space and
// stops at the next, "%[...]" takes a run of the set, "%d" a signed decimal --
// and returns what sscanf would: the number of values assigned, or -1 when the
// line ends before the first conversion. Unlike sscanf it is safe: a text value
// longer than its field is cut to the field's capacity minus one (the whole
// run is still consumed, so the next conversion starts where sscanf's would),
// and a number too large for an int is clamped instead of being undefined.
#pragma once

#include <cstddef>
#include <initializer_list>
#include <string>

#include "conf/field.h"

namespace conf {

struct ScanSink {
  char* text = nullptr;
  std::size_t capacity = 0;
  int* number = nullptr;
};

inline ScanSink sink(int& v) { return ScanSink{nullptr, 0, &v}; }
template <std::size_t N>
ScanSink sink(Field<N>& f) {
  return ScanSink{f.buf, N, nullptr};
}

int scanLine(const char* line, const char* pattern, std::initializer_list<ScanSink> sinks);

template <class... T>
int scan(const char* line, const char* pattern, T&... outs) {
  return scanLine(line, pattern, {sink(outs)...});
}

// A key as literal pattern text: "%" doubled so it matches itself.
std::string patternText(const std::string& key);

}  // namespace conf
