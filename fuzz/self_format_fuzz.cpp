// The safe self-format of copied lines against the C library's snprintf.
//
// The harness splits the line into literal text and conversions on its own.
// A conversion whose rendering with a zero argument is well defined (a numeric
// letter, "%c", "%p", "%m", with flags the letter allows and no length
// modifier, "*" or "n$") must render as snprintf renders it; "%%" is "%",
// "%n" writes nothing, "%s" is the text of a null string. Pieces longer than
// 255 characters are only checked to be cut to 255. Past the first conversion
// the harness does not model, only a prefix and the length bound are checked.
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "check.h"
#include "conf/self_format.h"

namespace {

constexpr std::size_t kMaxPiece = 255;

struct Spec {
  std::string flags;
  std::string width, precision;  // digits as written ("" when absent)
  bool hasPrecision = false;
  bool modelled = true;  // false: modifiers, '*', "n$", unusual flags
  char letter = '\0';
};

// Reads one conversion after its '%'; returns where it ends, or null when the
// line ends first.
const char* readSpec(const char* p, Spec& s) {
  for (; *p != '\0' && std::strchr("-+ #0'I", *p) != nullptr; ++p) {
    if (*p == '\'' || *p == 'I') s.modelled = false;
    s.flags += *p;
  }
  auto digits = [&p](std::string& into) {
    while (*p >= '0' && *p <= '9') into += *p++;
  };
  digits(s.width);
  if (*p == '*' || *p == '$') s.modelled = false;
  if (*p == '.') {
    ++p;
    s.hasPrecision = true;
    digits(s.precision);
  }
  if (*p == '\0') return nullptr;
  s.letter = *p;
  return p + 1;
}

bool flagsAllowed(const Spec& s) {
  const char* numeric = "diouxXfFeEgGaA";
  const char* alternate = "oxXfFeEgGaA";
  if (std::strchr(numeric, s.letter) != nullptr)
    return s.flags.find('#') == std::string::npos || std::strchr(alternate, s.letter) != nullptr;
  // "%c", "%p", "%m": left justification only, and no precision for c and p.
  if (s.flags.find_first_not_of('-') != std::string::npos) return false;
  return s.letter == 'm' || !s.hasPrecision;
}

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
#pragma GCC diagnostic ignored "-Wformat-security"
std::string render(const std::string& fmt, char letter) {
  std::vector<char> buf(16384);
  int n;
  if (std::strchr("dic", letter) != nullptr)
    n = std::snprintf(buf.data(), buf.size(), fmt.c_str(), 0);
  else if (std::strchr("ouxX", letter) != nullptr)
    n = std::snprintf(buf.data(), buf.size(), fmt.c_str(), 0u);
  else if (letter == 'p')
    n = std::snprintf(buf.data(), buf.size(), fmt.c_str(), static_cast<void*>(nullptr));
  else if (letter == 'm')
    n = (errno = 0, std::snprintf(buf.data(), buf.size(), fmt.c_str()));
  else
    n = std::snprintf(buf.data(), buf.size(), fmt.c_str(), 0.0);
  FUZZ_CHECK(n >= 0 && static_cast<std::size_t>(n) < buf.size());
  return std::string(buf.data(), static_cast<std::size_t>(n));
}
#pragma GCC diagnostic pop

// The expected output, piece by piece; a piece of `cut` characters stands for
// a conversion longer than the bound, whose text is not compared.
struct Expected {
  std::vector<std::string> pieces;
  std::vector<bool> cut;
  bool complete = true;  // false: stopped at a conversion it does not model
  void add(std::string s, bool isCut = false) {
    pieces.push_back(std::move(s));
    cut.push_back(isCut);
  }
};

Expected model(const char* line) {
  Expected e;
  const char* p = line;
  while (*p != '\0') {
    const char* pct = std::strchr(p, '%');
    if (pct == nullptr) {
      e.add(p);
      break;
    }
    e.add(std::string(p, pct));
    if (pct[1] == '%') {
      e.add("%");
      p = pct + 2;
      continue;
    }
    Spec s;
    const char* end = readSpec(pct + 1, s);
    bool known = std::strchr("diouxXfFeEgGaAcpmns", s.letter) != nullptr;
    if (end == nullptr || !s.modelled || !known || s.width.size() > 4 || s.precision.size() > 4) {
      e.complete = false;
      break;
    }
    p = end;
    if (s.letter == 'n') continue;
    if (s.letter == 's') {
      bool empty = s.hasPrecision && std::atoi(s.precision.c_str()) < 6;
      std::string text = empty ? "" : "(null)";
      std::size_t width = std::strtoul(s.width.c_str(), nullptr, 10);
      if (width > text.size()) {
        std::string fill(width - text.size(), ' ');
        text = s.flags.find('-') != std::string::npos ? text + fill : fill + text;
      }
      e.add(text.size() > kMaxPiece ? std::string(kMaxPiece, '?') : text, text.size() > kMaxPiece);
      continue;
    }
    if (!flagsAllowed(s)) {
      e.complete = false;
      break;
    }
    std::string text = render(std::string(pct, end), s.letter);
    e.add(text.size() > kMaxPiece ? std::string(kMaxPiece, '?') : text, text.size() > kMaxPiece);
  }
  return e;
}

// Whether `out` starts with the expected pieces (all of `out` when complete).
bool matches(const Expected& e, const std::string& out) {
  std::size_t at = 0;
  for (std::size_t i = 0; i < e.pieces.size(); ++i) {
    const std::string& piece = e.pieces[i];
    if (out.size() - at < piece.size()) return false;
    if (!e.cut[i] && out.compare(at, piece.size(), piece) != 0) return false;
    at += piece.size();
  }
  return !e.complete || at == out.size();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::string line(reinterpret_cast<const char*>(data), size);
  line.resize(std::strlen(line.c_str()));  // a line is a C string
  std::string out = conf::selfFormat(line.c_str());

  std::size_t percents = 0;
  for (char c : line) percents += c == '%';
  FUZZ_CHECK(out.size() <= line.size() + kMaxPiece * percents);
  if (percents == 0) FUZZ_CHECK(out == line);
  FUZZ_CHECK(matches(model(line.c_str()), out));
  return 0;
}
