#include "recording/recording.h"

#include <cstdio>

#include "conf/error_log.h"
#include "conf/field.h"
#include "conf/keys.h"
#include "conf/lines.h"
#include "conf/paths.h"
#include "conf/shell.h"
#include "shm/segments.h"

namespace rec {

namespace {

constexpr const char* kSummaryDefault = "/usr/apache/htdocs/onvif/Search_GetRecSum.conf.default";
constexpr const char* kSummary = "/tmp/onvif/Search_GetRecSum.conf";
constexpr const char* kTestDb = "/usr/sbin/test_db";

}  // namespace

int requestRecording(bool start) {
  shm::LookupError err;
  shm::Segment seg = shm::findSegment(shm::kStreamServerKey, shm::kStreamServerSize, &err);
  if (err == shm::LookupError::Get) {
    std::printf("StreamServerSHM: shmget error!!!\n");
    std::printf("StreamServerSHM: SHMSZ=%d\n", static_cast<int>(shm::kStreamServerSize));
    std::printf("StreamServerSHM: key=%d\n", static_cast<int>(shm::kStreamServerKey));
    return -1;
  }
  if (!seg) {
    std::printf("onvifCtrl StreamServerSHM: shmat error.\n");
    return -1;
  }
  seg.bytes[shm::kStreamRecordRequestByte] = start ? shm::kRecordStart : shm::kRecordStop;
  return 0;
}

std::array<std::string, 6> splitStamp(const std::string& digits) {
  static const std::size_t kWidths[6] = {4, 2, 2, 2, 2, 2};
  std::array<std::string, 6> parts;
  std::size_t at = 0;
  for (std::size_t i = 0; i < parts.size(); at += kWidths[i], ++i)
    if (at < digits.size()) parts[i] = digits.substr(at, kWidths[i]);
  return parts;
}

int GetRecordingSummary() {
  conf::Field<16> number;
  conf::Field<32> from;
  conf::Field<32> until;
  int shell = 0;
  // Without the shipped summary the copy would leave an older one in place:
  // report it and print empty values rather than stale ones.
  if (conf::exists(kSummaryDefault)) {
    shell = conf::shellCopy("GetRecordingSummary", kSummaryDefault, kSummary);
    if (!conf::scanConf(kSummary, {conf::str("RecordingNumber=", number),
                                   conf::str("DataFrom=", from), conf::str("DataUntil=", until)}))
      shell = conf::logError("[GetRecordingSummary]%s missing", kSummary);
  } else {
    shell = conf::logError("[GetRecordingSummary]%s missing", kSummaryDefault);
  }
  auto f = splitStamp(from.str());
  auto u = splitStamp(until.str());
  std::printf("DataFrom = %s-%s-%sT%s:%s:%sZ\n", f[0].c_str(), f[1].c_str(), f[2].c_str(),
              f[3].c_str(), f[4].c_str(), f[5].c_str());
  std::printf("DataUntil = %s-%s-%sT%s:%s:%sZ\n", u[0].c_str(), u[1].c_str(), u[2].c_str(),
              u[3].c_str(), u[4].c_str(), u[5].c_str());
  std::printf("NumberRecordings = %s\n", number.c_str());
  std::printf("\n");
  return shell;
}

int readDbFile() {
  int shell = conf::runShell("mode=read " + conf::shellWord(conf::hostPath(kTestDb)));
  std::printf("\n");
  return shell;
}

}  // namespace rec
