// Scan patterns against the C library's sscanf: a pattern assembled from the
// pieces the routines use, fields of 8 to 256 bytes, and a fuzzed line.
//
// sscanf runs with buffers as long as the line, so it never overflows; the
// scanner must return the same count, hold each text value cut to its field
// (capacity minus one) and each number sscanf stores, and leave every field
// past the count untouched. Where a number does not fit an int sscanf's value
// is undefined and the scanner clamps: only the clamp is checked there.
#include <climits>
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "check.h"
#include "conf/scan.h"

namespace {

constexpr std::size_t kMaxValues = 4;

struct Piece {
  const char* text;
  int values;  // values it assigns
  bool number;  // its value (when it has one) is an int
};

const Piece kPieces[] = {
    {"%s", 1, false},        {"%[^\n]", 1, false},    {"%d", 1, true},
    {"%[^:]", 1, false},     {"%[^=]", 1, false},     {"%3s", 1, false},
    {"%2d", 1, true},        {"%[0-9.]", 1, false},   {"%*s", 0, false},
    {"%%", 0, false},        {":", 0, false},         {"=", 0, false},
    {"\n", 0, false},        {" ", 0, false},         {"root.Network.IPAddress=", 0, false},
    {"Encoding=", 0, false}, {"profile filename=", 0, false},
};

struct Value {
  bool number = false;
  std::size_t capacity = 0;      // field size (text values)
  std::vector<char> field;       // what the scanner fills, exactly `capacity` bytes
  std::vector<char> reference;   // what sscanf fills, longer than the line
  int scanned = 0x5a5a5a5a;
  int expected = 0x5a5a5a5a;
};

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
#pragma GCC diagnostic ignored "-Wformat-security"
// sscanf with one argument of the right type per value.
template <std::size_t Depth = 0, class... Args>
int referenceScan(const char* line, const char* pattern, std::vector<Value>& values,
                  Args... args) {
  if constexpr (Depth == kMaxValues) {
    return std::sscanf(line, pattern, args...);
  } else {
    if (Depth == values.size()) return std::sscanf(line, pattern, args...);
    Value& v = values[Depth];
    if (v.number) return referenceScan<Depth + 1>(line, pattern, values, args..., &v.expected);
    return referenceScan<Depth + 1>(line, pattern, values, args..., v.reference.data());
  }
}
#pragma GCC diagnostic pop

conf::ScanSink sinkOf(Value& v) {
  if (v.number) return conf::ScanSink{nullptr, 0, &v.scanned};
  return conf::ScanSink{v.field.data(), v.capacity, nullptr};
}

int productScan(const char* line, const char* pattern, std::vector<Value>& v) {
  switch (v.size()) {
    case 0: return conf::scanLine(line, pattern, {});
    case 1: return conf::scanLine(line, pattern, {sinkOf(v[0])});
    case 2: return conf::scanLine(line, pattern, {sinkOf(v[0]), sinkOf(v[1])});
    case 3: return conf::scanLine(line, pattern, {sinkOf(v[0]), sinkOf(v[1]), sinkOf(v[2])});
    default:
      return conf::scanLine(line, pattern,
                            {sinkOf(v[0]), sinkOf(v[1]), sinkOf(v[2]), sinkOf(v[3])});
  }
}

constexpr char kUntouched = '\x7f';

void checkValue(const Value& v, bool assigned) {
  if (v.number) {
    if (!assigned) FUZZ_CHECK(v.scanned == 0x5a5a5a5a);
    else if (v.scanned != v.expected) FUZZ_CHECK(v.scanned == INT_MAX || v.scanned == INT_MIN);
    return;
  }
  if (!assigned) {
    for (char c : v.field) FUZZ_CHECK(c == kUntouched);
    return;
  }
  std::string want(v.reference.data());
  if (want.size() > v.capacity - 1) want.resize(v.capacity - 1);
  FUZZ_CHECK(std::strlen(v.field.data()) < v.capacity);
  FUZZ_CHECK(want == v.field.data());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  // Layout: piece count, the pieces, one field size per value, then the line.
  if (size < 1) return 0;
  std::size_t at = 0;
  std::size_t count = data[at++] % 6 + 1;
  std::string pattern;
  std::vector<Value> values;
  for (std::size_t i = 0; i < count && at < size; ++i) {
    const Piece& p = kPieces[data[at++] % (sizeof kPieces / sizeof kPieces[0])];
    if (values.size() + static_cast<std::size_t>(p.values) > kMaxValues) break;
    pattern += p.text;
    if (p.values == 0) continue;
    values.emplace_back();
    values.back().number = p.number;
  }
  for (Value& v : values) {
    v.capacity = at < size ? 8 + data[at++] % 249 : 8;
  }
  std::string line(reinterpret_cast<const char*>(data + at), size - at);
  line.resize(std::strlen(line.c_str()));  // a line is a C string
  for (Value& v : values) {
    v.field.assign(v.capacity, kUntouched);
    v.reference.assign(line.size() + 8, '\0');  // room for any width in the table
  }

  int want = referenceScan(line.c_str(), pattern.c_str(), values);
  int got = productScan(line.c_str(), pattern.c_str(), values);
  // After a suppressed conversion only, an input failure gives 0 as the C
  // standard has it; glibc's sscanf gives -1 there.
  bool suppressedOnly = want == -1 && got == 0 && pattern.find("%*") != std::string::npos;
  FUZZ_CHECK(got == want || suppressedOnly);
  for (std::size_t i = 0; i < values.size(); ++i)
    checkValue(values[i], static_cast<int>(i) < want);
  return 0;
}
