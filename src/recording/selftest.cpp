#include "recording/selftest.h"

#include <cstdio>

namespace rec {

// 3 x FF as a repeat packet, 0F F0 as a literal packet, 4 x 00 as a repeat
// packet: a 72-cell mask with its first 24 cells and a block in the middle on.
const Bytes kDecodeVector = {0xFE, 0xFF, 0x01, 0x0F, 0xF0, 0xFD, 0x00};
const char* const kEncodeBits = "11111111 11111111 11111111 11110000 11110000 11110000";
const char* const kHexVector = "0123456789ABCDEF";

std::string bitsLine(const std::string& label, const std::string& hex) {
  std::string bits;
  if (!hexToBinary(hex, bits)) return "error, hex_str=" + hex + "\n";
  return label + bits + "\n";
}

namespace {

std::string hexText(const Bytes& data, const char* separator) {
  std::string text;
  for (std::size_t i = 0; i < data.size(); ++i) {
    if (i > 0) text += separator;
    text += hexByte(data[i]);
  }
  return text;
}

}  // namespace

void packbitDecodeSelfTest() {
  Bytes data;
  bool whole = packBitsDecode(kDecodeVector, data);
  for (std::size_t i = 0; i < data.size(); ++i)
    std::printf("------decode data[%d]:%s \n", static_cast<int>(i), hexByte(data[i]).c_str());
  std::printf("------decode length[%d]:%d \n", static_cast<int>(kDecodeVector.size()),
              static_cast<int>(data.size()));
  if (!whole) std::printf("------decode error: the last packet is cut short \n");
  std::printf("%s", bitsLine("Bin String: ", hexText(data, "")).c_str());
}

void packbitEncodeSelfTest() {
  Bytes data;
  bitsToBytes(kEncodeBits, data);
  Bytes packed = packBitsEncode(data);
  std::printf("Before Packbit Encode data size = %d\n", static_cast<int>(data.size()));
  std::printf("After Packbit Encode data size = %d\n", static_cast<int>(packed.size()));
  std::printf("Packbit Encode data = %s\n", hexText(packed, " ").c_str());
  Bytes back;
  bool same = packBitsDecode(packed, back) && back == data;
  std::printf("Packbit Decode check = %s\n", same ? "OK" : "FAILED");
}

void hexToBinarySelfTest() {
  std::printf("%s", bitsLine("Output Binary String:", kHexVector).c_str());
}

}  // namespace rec
