// Fixed-capacity text values, as the routines hold them: a value longer than
// its field is cut to the capacity minus one (a 32-character field keeps 31).
#pragma once

#include <cstddef>
#include <cstring>
#include <string>

namespace conf {

template <std::size_t N>
struct Field {
  static_assert(N >= 1, "a field holds at least its terminator");
  static constexpr std::size_t capacity = N;
  char buf[N] = {};

  const char* c_str() const { return buf; }
  std::string str() const { return std::string(buf); }
  bool empty() const { return buf[0] == '\0'; }
  void clear() { std::memset(buf, 0, N); }
  // Exact comparison of the whole text.
  bool is(const char* s) const { return std::strcmp(buf, s) == 0; }
  // Substring test.
  bool holds(const char* s) const { return std::strstr(buf, s) != nullptr; }
  void assign(const char* s, std::size_t n) {
    if (n > N - 1) n = N - 1;
    std::memcpy(buf, s, n);
    buf[n] = '\0';
  }
  void assign(const std::string& s) { assign(s.data(), s.size()); }
  Field& operator=(const char* s) {
    assign(s, std::strlen(s));
    return *this;
  }
};

}  // namespace conf
