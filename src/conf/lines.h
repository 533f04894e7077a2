// Line pieces. Every file is read as the routines always read it: at most 255
// characters plus the terminator at a time, so a longer line arrives in pieces
// and each piece is treated as a line of its own. A piece ends at the first
// NUL byte, as any C string does.
#pragma once

#include <cstdio>
#include <functional>
#include <cstring>
#include <string>

namespace conf {

inline constexpr int kLineBuffer = 256;

class LineReader {
 public:
  explicit LineReader(std::FILE* f) : f_(f) {}
  // Reads the next piece; false at the end of the file.
  bool next() { return std::fgets(buf_, kLineBuffer, f_) != nullptr; }
  const char* line() const { return buf_; }

 private:
  std::FILE* f_;
  char buf_[kLineBuffer] = {};
};

// Calls `fn` with each piece of the file at a camera path until it returns
// false. Returns false when the file cannot be opened.
bool forEachLine(const std::string& cameraPath, const std::function<bool(const char*)>& fn);

// Calls `fn` with the name that each line of a list file holding `marker`
// ("" for every line) gives through `pattern` ("profile filename=%s\n",
// "%s\n"; 63 characters at most), until `fn` returns false. Lines whose
// pattern reads nothing are skipped, and so are names that are not plain file
// names ("<routine>:<name> refused" is logged, see paths.h). Returns false
// when the list is missing.
bool forEachName(const std::string& routine, const std::string& listPath, const char* marker,
                 const char* pattern, const std::function<bool(const std::string&)>& fn);

// Opens a camera path with fopen's mode. A file of the temporary folder that
// is opened for writing never follows a link: a link standing at its name is
// removed first, the file is created with fopen's mode bits, and anything
// but a regular file is not opened.
std::FILE* openCamera(const std::string& cameraPath, const char* mode);

// True when the file at a camera path can be opened for reading.
bool exists(const std::string& cameraPath);

// True when the line holds `key` anywhere.
inline bool holds(const char* line, const char* key) { return std::strstr(line, key) != nullptr; }
inline bool holds(const char* line, const std::string& key) { return holds(line, key.c_str()); }

}  // namespace conf
