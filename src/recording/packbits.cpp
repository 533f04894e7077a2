#include "recording/packbits.h"

namespace rec {

namespace {

// Length of the run of equal bytes starting at `at`, at most kMaxPacket.
std::size_t runAt(const Bytes& data, std::size_t at) {
  std::size_t n = 1;
  while (at + n < data.size() && n < kMaxPacket && data[at + n] == data[at]) ++n;
  return n;
}

}  // namespace

Bytes packBitsEncode(const Bytes& data) {
  Bytes out;
  std::size_t at = 0;
  while (at < data.size()) {
    std::size_t run = runAt(data, at);
    if (run >= kMinRun) {
      out.push_back(static_cast<std::uint8_t>(257 - run));
      out.push_back(data[at]);
      at += run;
      continue;
    }
    // A literal packet up to the next run worth a repeat packet.
    std::size_t start = at;
    while (at < data.size() && at - start < kMaxPacket) {
      std::size_t next = runAt(data, at);
      if (next >= kMinRun) break;
      at += next;
      if (at - start > kMaxPacket) at = start + kMaxPacket;
    }
    out.push_back(static_cast<std::uint8_t>(at - start - 1));
    out.insert(out.end(), data.begin() + static_cast<std::ptrdiff_t>(start),
               data.begin() + static_cast<std::ptrdiff_t>(at));
  }
  return out;
}

bool packBitsDecode(const Bytes& packed, Bytes& out) {
  out.clear();
  std::size_t at = 0;
  while (at < packed.size()) {
    unsigned header = packed[at++];
    if (header >= 128) {
      if (at >= packed.size()) return false;
      out.insert(out.end(), 257 - header, packed[at++]);
    } else {
      std::size_t n = header + 1;
      if (packed.size() - at < n) {
        out.insert(out.end(), packed.begin() + static_cast<std::ptrdiff_t>(at), packed.end());
        return false;
      }
      out.insert(out.end(), packed.begin() + static_cast<std::ptrdiff_t>(at),
                 packed.begin() + static_cast<std::ptrdiff_t>(at + n));
      at += n;
    }
  }
  return true;
}

bool hexToBinary(const std::string& hex, std::string& bits) {
  bits.clear();
  for (char c : hex) {
    int v;
    if (c >= '0' && c <= '9')
      v = c - '0';
    else if (c >= 'A' && c <= 'F')
      v = c - 'A' + 10;
    else if (c >= 'a' && c <= 'f')
      v = c - 'a' + 10;
    else
      return false;
    for (int bit = 3; bit >= 0; --bit) bits += (v >> bit) & 1 ? '1' : '0';
  }
  return true;
}

std::string hexByte(std::uint8_t b) {
  static const char kDigits[] = "0123456789ABCDEF";
  return std::string{kDigits[b >> 4], kDigits[b & 0x0F]};
}

bool bitsToBytes(const std::string& text, Bytes& out) {
  out.clear();
  unsigned value = 0;
  int count = 0;
  for (char c : text) {
    if (c == ' ') continue;
    if (c != '0' && c != '1') return false;
    value = (value << 1) | static_cast<unsigned>(c - '0');
    if (++count == 8) {
      out.push_back(static_cast<std::uint8_t>(value));
      value = 0;
      count = 0;
    }
  }
  return count == 0;
}

}  // namespace rec
