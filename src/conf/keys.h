// Reading a system file's keys: each line is tested against the routine's keys
// in the routine's fixed order; the first key found anywhere in the line reads
// its value with the key's scan pattern applied to the whole line. Every
// matching line is read, so a key that occurs twice keeps the later value,
// unless the key is marked to stop the reading at its first line.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "conf/field.h"
#include "conf/scan.h"

namespace conf {

struct Key {
  std::string key;
  std::function<void(const char* line)> read;
  bool stop = false;

  // Stop reading the file after the first line that holds this key.
  Key first() const {
    Key k = *this;
    k.stop = true;
    return k;
  }
};

// key + "%s\n": the value up to the first white space.
template <std::size_t N>
Key str(const std::string& key, Field<N>& f) {
  std::string pattern = patternText(key) + "%s\n";
  return Key{key, [pattern, &f](const char* line) { scan(line, pattern.c_str(), f); }};
}

// key + "%[^\n]\n": the rest of the line.
template <std::size_t N>
Key rest(const std::string& key, Field<N>& f) {
  std::string pattern = patternText(key) + "%[^\n]\n";
  return Key{key, [pattern, &f](const char* line) { scan(line, pattern.c_str(), f); }};
}

// key + "%d\n": a signed decimal integer.
Key num(const std::string& key, int& v);

// A key whose line is handed to `fn`.
Key on(const std::string& key, std::function<void(const char* line)> fn);

// Scans a file at a camera path. Returns false when it cannot be opened.
bool scanConf(const std::string& cameraPath, const std::vector<Key>& keys);

}  // namespace conf
