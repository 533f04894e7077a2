// A small POSIX-sh tokenizer for the harnesses: how sh would split a command
// line into words, without running anything.
#pragma once

#include <cstring>
#include <string>
#include <vector>

namespace fuzz {

struct Words {
  std::vector<std::string> words;
  bool literal = true;  // false: something the shell would expand or act on
};

// Splits a command line as sh does, without running anything. Any unquoted
// character that starts an expansion, a pattern, an operator or a comment (and
// the ones some shells treat so) marks the line as not literal.
inline Words tokenize(const std::string& line) {
  Words w;
  std::string word;
  bool inWord = false;
  auto end = [&]() {
    if (inWord) w.words.push_back(word);
    word.clear();
    inWord = false;
  };
  for (std::size_t i = 0; i < line.size(); ++i) {
    char c = line[i];
    if (c == ' ' || c == '\t') {
      end();
    } else if (c == '\'') {
      std::size_t close = line.find('\'', i + 1);
      if (close == std::string::npos) return w.literal = false, w;
      word += line.substr(i + 1, close - i - 1);
      inWord = true;
      i = close;
    } else if (c == '"') {
      inWord = true;
      for (++i; i < line.size() && line[i] != '"'; ++i) {
        char d = line[i];
        if (d == '\\' && i + 1 < line.size() && std::strchr("$`\"\\\n", line[i + 1]) != nullptr) {
          if (line[++i] != '\n') word += line[i];  // backslash-newline joins two lines
          continue;
        }
        if (d == '$' || d == '`') w.literal = false;
        word += d;
      }
      if (i >= line.size()) w.literal = false;  // unterminated
    } else if (c == '\\') {
      if (i + 1 >= line.size() || line[i + 1] == '\n') w.literal = false;
      else word += line[++i];
      inWord = true;
    } else if (std::strchr("|&;<>()$`*?[]{}!\n", c) != nullptr ||
               (!inWord && (c == '#' || c == '~'))) {
      w.literal = false;
      word += c;
      inWord = true;
    } else {
      word += c;
      inWord = true;
    }
  }
  end();
  return w;
}

}  // namespace fuzz
