#include "conf/scan.h"

#include <cctype>
#include <climits>
#include <cstring>
#include <vector>

namespace conf {

namespace {

bool isSpace(char c) { return std::isspace(static_cast<unsigned char>(c)) != 0; }

// A "%[...]" set, parsed from just after the '['.
struct CharSet {
  bool negated = false;
  bool member[256] = {};
  bool contains(char c) const {
    bool m = member[static_cast<unsigned char>(c)];
    return negated ? !m : m;
  }
};

const char* parseSet(const char* p, CharSet& set) {
  if (*p == '^') {
    set.negated = true;
    ++p;
  }
  if (*p == ']') {  // a leading ']' is a member
    set.member[static_cast<unsigned char>(']')] = true;
    ++p;
  }
  while (*p != '\0' && *p != ']') {
    unsigned char lo = static_cast<unsigned char>(*p);
    if (p[1] == '-' && p[2] != '\0' && p[2] != ']') {
      unsigned char hi = static_cast<unsigned char>(p[2]);
      for (unsigned c = lo; c <= hi; ++c) set.member[c] = true;
      p += 3;
    } else {
      set.member[lo] = true;
      ++p;
    }
  }
  return *p == ']' ? p + 1 : p;
}

void store(const ScanSink* s, const char* from, std::size_t n) {
  if (s == nullptr || s->text == nullptr || s->capacity == 0) return;
  if (n > s->capacity - 1) n = s->capacity - 1;
  std::memcpy(s->text, from, n);
  s->text[n] = '\0';
}

}  // namespace

int scanLine(const char* line, const char* pattern, std::initializer_list<ScanSink> sinks) {
  std::vector<ScanSink> out(sinks);
  std::size_t next = 0;
  int assigned = 0;
  bool converted = false;  // a conversion has succeeded (for the -1 result)
  const char* in = line;
  const char* p = pattern;
  auto inputFailure = [&]() { return converted ? assigned : -1; };

  while (*p != '\0') {
    if (isSpace(*p)) {
      while (isSpace(*p)) ++p;
      while (isSpace(*in)) ++in;
      continue;
    }
    if (*p != '%') {
      if (*in == '\0') return inputFailure();
      if (*in != *p) return assigned;
      ++in;
      ++p;
      continue;
    }
    ++p;  // past '%'
    if (*p == '%') {
      while (isSpace(*in)) ++in;
      if (*in == '\0') return inputFailure();
      if (*in != '%') return assigned;
      ++in;
      ++p;
      continue;
    }
    bool suppress = false;
    if (*p == '*') {
      suppress = true;
      ++p;
    }
    std::size_t width = 0;
    while (std::isdigit(static_cast<unsigned char>(*p))) {
      if (width < 1000000) width = width * 10 + static_cast<std::size_t>(*p - '0');
      ++p;
    }
    std::size_t limit = width == 0 ? static_cast<std::size_t>(-1) : width;
    const ScanSink* target = nullptr;
    char conv = *p;
    if (conv == '\0') return assigned;
    ++p;
    if (!suppress && conv != 'n') {
      target = next < out.size() ? &out[next] : nullptr;
      ++next;
    }

    switch (conv) {
      case 'n': {
        ScanSink* s = next < out.size() ? &out[next++] : nullptr;
        if (!suppress && s != nullptr && s->number != nullptr)
          *s->number = static_cast<int>(in - line);
        break;
      }
      case 's':
      case '[': {
        // "%s" is the run of non-space characters after the leading spaces.
        CharSet set;
        if (conv == 's') {
          while (isSpace(*in)) ++in;
          set.negated = true;
          for (int c = 0; c < 256; ++c) set.member[c] = isSpace(static_cast<char>(c));
        } else {
          p = parseSet(p, set);
        }
        if (*in == '\0') return inputFailure();
        const char* start = in;
        while (*in != '\0' && set.contains(*in) && static_cast<std::size_t>(in - start) < limit)
          ++in;
        if (in == start) return assigned;
        if (!suppress) {
          store(target, start, static_cast<std::size_t>(in - start));
          ++assigned;
        }
        converted = true;
        break;
      }
      case 'd': {
        while (isSpace(*in)) ++in;
        if (*in == '\0') return inputFailure();
        const char* q = in;
        bool negative = false;
        if ((*q == '+' || *q == '-') && limit > 1) {
          negative = *q == '-';
          ++q;
        }
        const char* digits = q;
        long long v = 0;
        while (std::isdigit(static_cast<unsigned char>(*q)) &&
               static_cast<std::size_t>(q - in) < limit) {
          if (v <= static_cast<long long>(INT_MAX) + 1) v = v * 10 + (*q - '0');
          ++q;
        }
        if (q == digits) return assigned;
        in = q;
        if (negative) v = -v;
        if (v > INT_MAX) v = INT_MAX;
        if (v < INT_MIN) v = INT_MIN;
        if (!suppress) {
          if (target != nullptr && target->number != nullptr) *target->number = static_cast<int>(v);
          ++assigned;
        }
        converted = true;
        break;
      }
      default:
        // Conversions the routines never use end the scan.
        return assigned;
    }
  }
  return assigned;
}

std::string patternText(const std::string& key) {
  std::string out;
  for (char c : key) {
    out += c;
    if (c == '%') out += '%';
  }
  return out;
}

}  // namespace conf
