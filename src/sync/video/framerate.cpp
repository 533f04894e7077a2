#include "sync/video/framerate.h"

#include <optional>
#include <string>
#include <vector>

#include "conf/error_log.h"
#include "conf/keys.h"
#include "conf/rewrite.h"
#include "sync/video/encoders.h"

namespace onvif {

using conf::Field;
using shm::Slot;

namespace {

constexpr const char* kFramerateConf = "/etc/sysconfig/framerate.conf";
constexpr const char* kFrameskipConf = "/etc/sysconfig/frameskip.conf";

// The rates of Update_framerate, by stream.
enum Rate { kMjpeg = 0, kH264, kH264_2, kH264_3, kH264_4, kKept = -1 };

// The stream whose rate each encoder takes under each layout code. Codes 9
// and 10 (JPEG first) take the H.264 rates all the same; other codes keep
// every line.
const int kRateOnEncoder[11][4] = {
    {kMjpeg, kKept, kKept, kKept},       // 0
    {kH264, kKept, kKept, kKept},        // 1
    {kH264, kH264_2, kKept, kKept},      // 2
    {kH264, kMjpeg, kKept, kKept},       // 3
    {kKept, kKept, kKept, kKept},        // 4
    {kH264, kH264_2, kH264_3, kKept},    // 5
    {kH264, kH264_2, kMjpeg, kKept},     // 6
    {kH264, kH264_2, kH264_3, kH264_4},  // 7
    {kH264, kH264_2, kH264_3, kMjpeg},   // 8
    {kH264, kH264_2, kKept, kKept},      // 9
    {kH264, kH264_2, kKept, kKept},      // 10
};

int rateOnEncoder(int code, int k) {
  if (code < 0 || code > 10 || k < 1 || k > 4) return kKept;
  return kRateOnEncoder[code][k - 1];
}

// The passes an encoder record gets on the paths that go by its codec: its
// codec's stream, then, for an H.264 record on another channel, that
// channel's H.264 stream (`channels` lists the channel words that have one).
std::vector<int> codecPasses(const EncoderFacts& facts, int jpeg, int h264, int mpeg4,
                             const std::vector<std::pair<const char*, int>>& channels) {
  std::vector<int> passes;
  if (facts.encoding.is("JPEG")) passes.push_back(jpeg);
  if (facts.encoding.is("MPEG4") && mpeg4 != kKept) passes.push_back(mpeg4);
  if (facts.encoding.is("H264")) {
    passes.push_back(h264);
    for (const auto& [word, stream] : channels)
      if (facts.channel.is(word)) passes.push_back(stream);
  }
  return passes;
}

// Walks the records of the list lines that hold "VideoEncoder1." to
// "VideoEncoder<maxK>.", writing "FrameRateLimit=" of each pass's rate.
int walkByCodec(const std::string& routine, int maxK, const std::vector<std::string>& rates,
                const std::function<std::vector<int>(const EncoderFacts&)>& passesOf) {
  const std::string tag = "onvifServer:[" + routine + "]";
  const std::string missing = tag + "ONVIF_VIDEO_ENCODER_X missing";
  int shell = 0;
  bool listed = forEachEncoder(routine, maxK, true, [&](const std::string& name, int) {
    EncoderFacts facts;
    // A missing record is reported by the rewrite, which empties the temporary file.
    if (!readEncoderFacts(name, facts)) {
      shell = rewriteEncoder(routine, name, missing, {}).shell;
      return false;
    }
    for (int stream : passesOf(facts)) {
      conf::Rule limit = conf::set("FrameRateLimit=", rates[stream]);
      shell = rewriteEncoder(routine, name, missing, {limit}).shell;
    }
    return true;
  });
  return listed ? shell : conf::logError(tag + "ONVIF_VIDEO_ENCODER_CONF missing");
}

}  // namespace

int FrameRateOfSkip(int skip) {
  switch (skip) {
    case 0: return 30;
    case 1: return 15;
    case 2: return 6;
    default: return 1;
  }
}

int Update_framerate(int multiStream, int device, shm::ShmBlock& block) {
  const std::string routine = "Update_framerate";
  Field<8> rate[5];
  if (!conf::scanConf(kFramerateConf, {conf::str("root.Framerate.Mjpeg=", rate[kMjpeg]),
                                       conf::str("root.Framerate.H264=", rate[kH264]),
                                       conf::str("root.Framerate.H264_2=", rate[kH264_2]),
                                       conf::str("root.Framerate.H264_3=", rate[kH264_3]),
                                       conf::str("root.Framerate.H264_4=", rate[kH264_4])}))
    conf::logError("Update_framerate:%s missing", kFramerateConf);
  std::vector<std::string> rates;
  for (const Field<8>& r : rate) rates.push_back(r.str());

  if (multiStream == 1 && device == 6) {
    int code = block.get(Slot::ONVIF_MULTIPLE_STREAM);
    int shell = 0;
    bool listed = forEachEncoder(routine, 4, false, [&](const std::string& name, int k) {
      int stream = rateOnEncoder(code, k);
      std::optional<std::string> limit;
      if (stream != kKept) limit = rates[stream];
      conf::Result r = rewriteEncoder(routine, name,
                                      "onvifServer:[Update_framerate]ONVIF_VIDEO_ENCODER_X missing",
                                      {conf::setOr("FrameRateLimit=", limit)});
      shell = r.shell;
      return r.status != conf::Status::SourceMissing;
    });
    return listed
               ? shell
               : conf::logError("onvifServer:[Update_framerate]ONVIF_VIDEO_ENCODER_CONF missing");
  }
  return walkByCodec(routine, 6, rates, [](const EncoderFacts& f) {
    return codecPasses(f, kMjpeg, kH264, kKept, {{"2", kH264_2}, {"3", kH264_3}, {"4", kH264_4}});
  });
}

int Update_frameskip(int, int, int, int, int, int) {
  enum { kSkipMjpeg = 0, kSkipH264, kSkipH264_2, kSkipMpeg4 };
  int skip[4] = {};
  if (!conf::scanConf(kFrameskipConf, {conf::num("root.Frameskip.Mjpeg=", skip[kSkipMjpeg]),
                                       conf::num("root.Frameskip.H264=", skip[kSkipH264]),
                                       conf::num("root.Frameskip.H264_2=", skip[kSkipH264_2]),
                                       conf::num("root.Frameskip.Mpeg4=", skip[kSkipMpeg4])}))
    conf::logError("Update_frameskip:%s missing", kFrameskipConf);
  std::vector<std::string> rates;
  for (int s : skip) rates.push_back(std::to_string(FrameRateOfSkip(s)));
  return walkByCodec("Update_frameskip", 8, rates, [](const EncoderFacts& f) {
    return codecPasses(f, kSkipMjpeg, kSkipH264, kSkipMpeg4, {{"2", kSkipH264_2}});
  });
}

}  // namespace onvif
