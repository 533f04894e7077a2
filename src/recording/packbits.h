// PackBits and hexadecimal codecs, as the cell-motion masks and the
// diagnostic commands use them.
//
// A PackBits stream is a series of packets, each a header byte and its data:
//   header 0..127    a literal packet: the next header + 1 bytes as they are;
//   header 128..255  a repeat packet: the next byte, 257 - header times.
// The encoder writes packets of at most 128 bytes and codes every run of three
// or more equal bytes as repeat packets; shorter runs go into literal packets.
// It never writes the header 128 (which the decoder reads as 129 repeats).
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace rec {

using Bytes = std::vector<std::uint8_t>;

inline constexpr std::size_t kMaxPacket = 128;
inline constexpr std::size_t kMinRun = 3;

Bytes packBitsEncode(const Bytes& data);

// Decodes a whole stream. Returns false, with `out` holding what was decoded
// before it, when the last packet lacks bytes its header announces.
bool packBitsDecode(const Bytes& packed, Bytes& out);

// "0".."9", "A".."F" and "a".."f" become four "0"/"1" characters each, the
// most significant bit first. Returns false at the first other character.
bool hexToBinary(const std::string& hex, std::string& bits);

// The two upper-case hexadecimal digits of a byte ("0F").
std::string hexByte(std::uint8_t b);

// Eight "0"/"1" characters a byte, most significant bit first; blanks between
// groups are skipped. Returns false on any other character or when the bits
// do not fill whole bytes.
bool bitsToBytes(const std::string& text, Bytes& out);

}  // namespace rec
