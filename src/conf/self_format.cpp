#include "conf/self_format.h"

#include <cctype>
#include <cstdio>
#include <cstring>

namespace conf {

namespace {

constexpr int kMaxConversion = 255;

int clampInt(long v) { return v > kMaxConversion ? kMaxConversion : static_cast<int>(v); }

// Pads `body` to `width` as printf would (left-justified with '-').
std::string pad(const std::string& body, int width, bool left) {
  if (static_cast<int>(body.size()) >= width) return body;
  std::string fill(static_cast<std::size_t>(width) - body.size(), ' ');
  return left ? body + fill : fill + body;
}

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
// Renders one numeric conversion of a zero argument through snprintf with a
// format rebuilt from validated pieces only.
std::string number(const std::string& flags, int width, int precision, char conv) {
  std::string fmt = "%" + flags;
  if (width >= 0) fmt += std::to_string(width);
  if (precision >= 0) fmt += "." + std::to_string(precision);
  char buf[2 * kMaxConversion + 64];
  int n;
  switch (conv) {
    case 'f': case 'F': case 'e': case 'E': case 'g': case 'G': case 'a': case 'A':
      fmt += conv;
      n = std::snprintf(buf, sizeof buf, fmt.c_str(), 0.0);
      break;
    case 'd': case 'i':
      fmt += conv;
      n = std::snprintf(buf, sizeof buf, fmt.c_str(), 0);
      break;
    default:  // o u x X
      fmt += conv;
      n = std::snprintf(buf, sizeof buf, fmt.c_str(), 0u);
      break;
  }
  if (n < 0) return std::string();
  return std::string(
      buf, static_cast<std::size_t>(n < static_cast<int>(sizeof buf) ? n : sizeof buf - 1));
}
#pragma GCC diagnostic pop

}  // namespace

std::string selfFormat(const char* line) {
  std::string out;
  const char* p = line;
  while (*p != '\0') {
    if (*p != '%') {
      out += *p++;
      continue;
    }
    const char* start = p++;
    if (*p == '%') {
      out += '%';
      ++p;
      continue;
    }
    // Positional argument "n$": every argument is zero anyway.
    const char* q = p;
    while (std::isdigit(static_cast<unsigned char>(*q))) ++q;
    if (q != p && *q == '$') p = q + 1;

    std::string flags;
    while (*p != '\0' && std::strchr("-+ #0'I", *p) != nullptr) {
      if (std::strchr(flags.c_str(), *p) == nullptr) flags += *p;
      ++p;
    }
    bool left = flags.find('-') != std::string::npos;
    int width = -1;
    if (*p == '*') {  // reads a zero argument
      width = 0;
      ++p;
      while (std::isdigit(static_cast<unsigned char>(*p))) ++p;
      if (*p == '$') ++p;
    } else if (std::isdigit(static_cast<unsigned char>(*p))) {
      long w = 0;
      while (std::isdigit(static_cast<unsigned char>(*p))) {
        if (w <= kMaxConversion) w = w * 10 + (*p - '0');
        ++p;
      }
      width = clampInt(w);
    }
    int precision = -1;
    if (*p == '.') {
      ++p;
      precision = 0;
      if (*p == '*') {  // a zero argument: precision 0
        ++p;
        while (std::isdigit(static_cast<unsigned char>(*p))) ++p;
        if (*p == '$') ++p;
      } else {
        long v = 0;
        while (std::isdigit(static_cast<unsigned char>(*p))) {
          if (v <= kMaxConversion) v = v * 10 + (*p - '0');
          ++p;
        }
        precision = clampInt(v);
      }
    }
    while (*p != '\0' && std::strchr("hlLqjzZt", *p) != nullptr) ++p;
    char conv = *p;
    if (conv == '\0') {  // incomplete at the end of the line
      out.append(start, static_cast<std::size_t>(p - start));
      break;
    }
    ++p;
    std::string piece;
    switch (conv) {
      case 's': case 'S': {
        const char* text = (precision >= 0 && precision < 6) ? "" : "(null)";
        piece = pad(text, width, left);
        break;
      }
      case 'c': case 'C':
        piece = pad(std::string(1, '\0'), width, left);
        break;
      case 'p':
        piece = pad("(nil)", width, left);
        break;
      case 'm': {
        std::string text = std::strerror(0);
        if (precision >= 0 && text.size() > static_cast<std::size_t>(precision))
          text.resize(static_cast<std::size_t>(precision));
        piece = pad(text, width, left);
        break;
      }
      case 'n':
        break;
      case 'd': case 'i': case 'o': case 'u': case 'x': case 'X':
      case 'f': case 'F': case 'e': case 'E': case 'g': case 'G': case 'a': case 'A':
        piece = number(flags, width, precision, conv);
        break;
      default:  // not a conversion: written as it stands
        out.append(start, static_cast<std::size_t>(p - start));
        continue;
    }
    if (piece.size() > static_cast<std::size_t>(kMaxConversion)) piece.resize(kMaxConversion);
    out += piece;
  }
  return out;
}

}  // namespace conf
