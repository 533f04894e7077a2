// Shell quoting of names, decoded by a small POSIX-sh tokenizer: a name given
// through shellWord is always one literal word, text given through
// quotedText between double quotes is that text, and neither ever reaches an
// expansion, a pattern, an operator or a comment.
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "check.h"
#include "conf/shell.h"
#include "sh_words.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::string name(reinterpret_cast<const char*>(data), size);
  name.resize(std::strlen(name.c_str()));  // names come from C strings

  std::string word = conf::shellWord(name);
  fuzz::Words asArgument = fuzz::tokenize("cp " + word + " /tmp/x");
  FUZZ_CHECK(asArgument.literal);
  FUZZ_CHECK((asArgument.words == std::vector<std::string>{"cp", name, "/tmp/x"}));
  // A plain word is the name itself.
  if (word == name) FUZZ_CHECK(!name.empty() && name.find('\'') == std::string::npos);

  fuzz::Words quoted = fuzz::tokenize("\"" + conf::quotedText(name) + "\"");
  FUZZ_CHECK(quoted.literal);
  FUZZ_CHECK(quoted.words == std::vector<std::string>{name});
  return 0;
}
