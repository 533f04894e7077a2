// The codec self-tests of sync commands 99 to 101: each runs the codec on a
// fixed vector and prints what it got.
#pragma once

#include <string>

#include "recording/packbits.h"

namespace rec {

// The built-in vectors.
extern const Bytes kDecodeVector;      // a PackBits-coded cell mask
extern const char* const kEncodeBits;  // a cell mask as bit-pattern text
extern const char* const kHexVector;

// `label` + the bits of `hex` + "\n", or "error, hex_str=<hex>\n" when `hex`
// holds a character that is not a hexadecimal digit.
std::string bitsLine(const std::string& label, const std::string& hex);

void packbitDecodeSelfTest();  // -u 99
void packbitEncodeSelfTest();  // -u 100
void hexToBinarySelfTest();    // -u 101

}  // namespace rec
