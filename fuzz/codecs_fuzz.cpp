// The PackBits and hexadecimal codecs: round trips, the shape of every packet
// the encoder writes, and decoding of arbitrary streams.
#include <algorithm>
#include <cstdint>
#include <string>

#include "check.h"
#include "recording/packbits.h"

namespace {

using rec::Bytes;

// Walks an encoded stream: packets of 1 to 128 bytes, never the header 128,
// every run of three equal bytes in a repeat packet, no literal packet next to
// a literal packet it could have joined. Returns the decoded length.
std::size_t checkPackets(const Bytes& packed) {
  std::size_t at = 0, length = 0;
  bool lastLiteralShort = false;  // the previous packet was a literal one under 128 bytes
  while (at < packed.size()) {
    unsigned header = packed[at++];
    FUZZ_CHECK(header != 128);
    if (header > 128) {
      FUZZ_CHECK(header <= 257 - rec::kMinRun && at < packed.size());
      length += 257 - header;
      ++at;
      lastLiteralShort = false;
      continue;
    }
    std::size_t n = header + 1;
    FUZZ_CHECK(packed.size() - at >= n);
    FUZZ_CHECK(!lastLiteralShort);
    for (std::size_t i = at; i + 2 < at + n; ++i)
      FUZZ_CHECK(!(packed[i] == packed[i + 1] && packed[i] == packed[i + 2]));
    lastLiteralShort = n < rec::kMaxPacket;
    at += n;
    length += n;
  }
  return length;
}

std::string hexOf(const Bytes& data, bool lower) {
  std::string hex;
  for (std::uint8_t b : data) hex += rec::hexByte(b);
  if (lower)
    for (char& c : hex) c = static_cast<char>(c >= 'A' && c <= 'F' ? c - 'A' + 'a' : c);
  return hex;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Bytes input(data, data + size);

  // Encoding: packets of the documented shape that decode to the input.
  Bytes packed = rec::packBitsEncode(input);
  FUZZ_CHECK(checkPackets(packed) == input.size());
  Bytes decoded;
  FUZZ_CHECK(rec::packBitsDecode(packed, decoded));
  FUZZ_CHECK(decoded == input);

  // Decoding anything: at most 128 bytes a packet, and a stream cut anywhere
  // decodes to a prefix of the whole.
  Bytes whole;
  bool complete = rec::packBitsDecode(input, whole);
  FUZZ_CHECK(whole.size() <= 128 * input.size());
  if (!input.empty()) {
    Bytes part;
    bool partComplete = rec::packBitsDecode(Bytes(input.begin(), input.end() - 1), part);
    FUZZ_CHECK(part.size() <= whole.size());
    FUZZ_CHECK(std::equal(part.begin(), part.end(), whole.begin()));
    if (complete) FUZZ_CHECK(!partComplete);  // the last byte of a stream is always needed
  }

  // Hexadecimal: bytes to digits to bits to bytes, in either case.
  for (bool lower : {false, true}) {
    std::string bits;
    FUZZ_CHECK(rec::hexToBinary(hexOf(input, lower), bits));
    FUZZ_CHECK(bits.size() == 8 * input.size());
    Bytes back;
    FUZZ_CHECK(rec::bitsToBytes(bits, back));
    FUZZ_CHECK(back == input);
  }
  // Arbitrary text: accepted exactly when every character is a digit.
  std::string text(input.begin(), input.end());
  std::string bits;
  bool hex = text.find_first_not_of("0123456789abcdefABCDEF") == std::string::npos;
  FUZZ_CHECK(rec::hexToBinary(text, bits) == hex);
  if (hex) FUZZ_CHECK(bits.size() == 4 * text.size());
  Bytes fromBits;
  if (rec::bitsToBytes(text, fromBits)) {
    FUZZ_CHECK(text.find_first_not_of("01 ") == std::string::npos);
    auto blanks = static_cast<std::size_t>(std::count(text.begin(), text.end(), ' '));
    FUZZ_CHECK(fromBits.size() * 8 == text.size() - blanks);
  }
  return 0;
}
