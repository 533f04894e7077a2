#include "conf/rewrite.h"

#include <cstdio>
#include <cstring>

#include "conf/error_log.h"
#include "conf/files.h"
#include "conf/lines.h"
#include "conf/paths.h"
#include "conf/self_format.h"
#include "conf/shell.h"
#include "conf/write_file.h"

namespace conf {

Rule set(const std::string& key, const std::string& value) {
  std::string line = key + value + "\n";
  return Rule{key, [line](const char*) { return Out::write(line); }};
}

Rule fixed(const std::string& key, const std::string& line) {
  return Rule{key, [line](const char*) { return Out::write(line); }};
}

Rule keepLine(const std::string& key) {
  return Rule{key, [](const char*) { return Out::keep(); }};
}

Rule dropLine(const std::string& key) {
  return Rule{key, [](const char*) { return Out::drop(); }};
}

Rule rule(const std::string& key, std::function<Out(const char* line)> apply) {
  return Rule{key, std::move(apply)};
}

Rule when(bool active, Rule r) { return active ? std::move(r) : keepLine(r.key); }

Rule setOr(const std::string& key, const std::optional<std::string>& value) {
  return value ? set(key, *value) : keepLine(key);
}

RewriteJob inPlace(const std::string& routine, const std::string& path,
                   const std::string& missing) {
  RewriteJob job;
  job.routine = routine;
  job.source = path;
  job.temp = wsTemp(routine);
  job.targets = {path};
  job.missing = missing;
  return job;
}

RewriteJob onvifConf(const std::string& routine, const std::string& missing) {
  RewriteJob job = inPlace(routine, kLiveOnvifConf, missing);
  job.targets.push_back(kPersistOnvifConf);
  return job;
}

RewriteJob RewriteJob::unsynced() const {
  RewriteJob job = *this;
  job.sync = false;
  return job;
}

RewriteJob RewriteJob::sourceFirst() const {
  RewriteJob job = *this;
  job.tempFirst = false;
  return job;
}

RewriteJob RewriteJob::wPlus() const {
  RewriteJob job = *this;
  job.tempMode = "w+";
  return job;
}

RewriteJob RewriteJob::through(std::string t) const {
  RewriteJob job = *this;
  job.temp = std::move(t);
  return job;
}

namespace {

bool put(std::FILE* f, const std::string& s) {
  return s.empty() || std::fwrite(s.data(), 1, s.size(), f) == s.size();
}

Result writeFailed(const RewriteJob& job) {
  return Result{Status::WriteFailed, logWriteFailed(job.routine, job.temp)};
}

Result sourceMissing(const RewriteJob& job) {
  int shell = job.missing.empty() ? 0 : logError(job.missing.c_str(), job.source);
  return Result{Status::SourceMissing, shell};
}

}  // namespace

Result rewrite(const RewriteJob& job, const std::vector<Rule>& rules) {
  std::FILE* temp = nullptr;
  if (job.tempFirst) temp = openCamera(job.temp, job.tempMode);
  std::FILE* src = openCamera(job.source, "r");
  if (src == nullptr) {
    if (temp != nullptr) std::fclose(temp);
    return sourceMissing(job);
  }
  if (!job.tempFirst) temp = openCamera(job.temp, job.tempMode);
  if (temp == nullptr) {
    std::fclose(src);
    return writeFailed(job);
  }

  bool ok = true;
  LineReader reader(src);
  while (reader.next()) {
    const char* line = reader.line();
    Out out = Out::keep();
    for (const Rule& r : rules) {
      if (holds(line, r.key)) {
        out = r.apply(line);
        break;
      }
    }
    if (out.keepLine) ok = put(temp, selfFormat(line)) && ok;
    ok = put(temp, out.text) && ok;
  }
  std::fclose(src);

  if (job.sync && !syncToDisk(fileno(temp))) ok = false;
  if (std::ferror(temp)) ok = false;
  if (std::fclose(temp) != 0) ok = false;
  if (!ok) return writeFailed(job);

  // A copy that cannot be made whole stops the copies after it.
  int shell = 0;
  Chain chain;
  for (const std::string& target : job.targets) {
    shell = shellCopy(job.routine, job.temp, target);
    if (!chain.intact()) return Result{Status::WriteFailed, shell};
  }
  return Result{Status::Done, shell};
}

}  // namespace conf
