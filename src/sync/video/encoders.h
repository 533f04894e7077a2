// What the video routines share about the encoder records: the list file, the
// walk over it, which encoder a name is, and the in-place rewrite of one record.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "conf/field.h"
#include "conf/rewrite.h"

namespace onvif {

// The number k of the first "VideoEncoder<k>." (k = 1..maxK) that `text`
// holds, or 0.
int encoderNumber(const char* text, int maxK);

// Walks the encoder list: `fn` gets the name of each line ("%s") and the
// encoder number its line gives (encoderNumber with maxK) and returns false to
// end the walk. With onlyNumbered, lines without a number are skipped; so are
// names that are not plain file names (refused in `routine`'s name).
// Returns false when the list is missing.
bool forEachEncoder(const std::string& routine, int maxK, bool onlyNumbered,
                    const std::function<bool(const std::string& name, int k)>& fn);

// "/tmp/onvif/" + name.
std::string encoderPath(const std::string& name);

// The first "Encoding=" and "Channel=" values of an encoder record.
struct EncoderFacts {
  conf::Field<16> encoding;
  conf::Field<8> channel;
};
// False when the record cannot be opened.
bool readEncoderFacts(const std::string& name, EncoderFacts& facts);

// Rewrites the record in place through the routine's temporary file; a
// missing record logs `missing` (its "%s", if any, is the record's path).
conf::Result rewriteEncoder(const std::string& routine, const std::string& name,
                            const std::string& missing, const std::vector<conf::Rule>& rules);

// A decimal number at the start of a text as atoi reads it (0 when there is
// none), clamped to int.
int textNumber(const char* text);

// "main" -> "Main", "baseline" -> "Baseline", "high" -> "High", anything else
// (also "High") -> "Main".
std::string MapH264ProfileName(const char* word);

}  // namespace onvif
