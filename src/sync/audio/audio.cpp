#include "sync/audio/audio.h"

#include <array>
#include <cstring>
#include <optional>
#include <string>
#include <vector>

#include "conf/error_log.h"
#include "conf/field.h"
#include "conf/files.h"
#include "conf/keys.h"
#include "conf/lines.h"
#include "conf/paths.h"
#include "conf/rewrite.h"
#include "conf/scan.h"
#include "conf/shell.h"
#include "sync/video/codec.h"

namespace onvif {

using conf::Field;
using conf::Out;
using conf::Rule;
using shm::Slot;

namespace {

constexpr const char* kRoutine = "Update_Audio_Source";
constexpr const char* kStreamRoutine = "Sync_AudioEncoder_By_StreamServer";
constexpr const char* kAudioSourceConf = "/etc/sysconfig/audio_source.conf";
constexpr const char* kAudioConf = "/etc/sysconfig/audio.conf";
constexpr const char* kOutputList = "/usr/apache/htdocs/onvif/AudioOutput.conf";
constexpr const char* kDecoderList = "/usr/apache/htdocs/onvif/AudioDecoder.conf";
constexpr const char* kStreamServerConf = "/home/ostrin2/StreamingServer/StreamServer.conf";
constexpr const char* kStreamCtl = "/home/ostrin2/StreamingServer/streamctl";

// Error-log shapes; the encoder list of the current path and the use-count
// pass have their own.
constexpr const char* kMissing = "ONVIF SYNC:Update_Audio_Source: %s missing";
constexpr const char* kEncoderListMissing = "ONVIF SYNC:Update_Audio_Source:%s missing";
constexpr const char* kCountMissing = "Update_Audio_Source: %s missing";
constexpr const char* kStreamMissing = "Sync_AudioEncoder_By_StreamServer: %s missing";

// The web's bit-rate token, the codec and bit rate the encoder record gets,
// and the code the server reads from ONVIF_AUDIO and ONVIF_CHANGE_AUDIO.
// Numbers are compared after decimal conversion, words exactly; numbers first.
// The G.711 rows write 64 for u-law and 80 for A-law: the server relies on it.
struct BitRate {
  int number;        // 0: matched by word
  const char* word;  // nullptr: matched by number
  const char* codec;
  const char* rate;  // nullptr: the "Bitrate=" line is kept
  int code;          // 0: no code
};

const BitRate kBitRates[] = {
    {16000, nullptr, "G726", "16", 1},
    {24000, nullptr, "G726", "24", 2},
    {32000, nullptr, "G726", "32", 3},
    {40000, nullptr, "G726", "40", 4},
    {0, "ulaw", "G711", "64", 5},
    {0, "alaw", "G711", "80", 6},
    {0, "aac_128000", "AAC", nullptr, 0},
};

const BitRate* findBitRate(const Field<32>& token) {
  int number = 0;
  conf::scan(token.c_str(), "%d", number);
  for (const BitRate& b : kBitRates)
    if (b.word != nullptr ? token.is(b.word) : number == b.number) return &b;
  return nullptr;
}

// Which streams get an audio back channel, by stream layout (slot 10), in
// the order jpeg, h264_1 to h264_4. A layout without a row runs no command.
struct BackChannel {
  int layout;
  std::array<bool, 5> on;
};

const BackChannel kBackChannels[] = {
    {0, {true, false, false, false, false}}, {1, {false, true, false, false, false}},
    {2, {false, true, true, false, false}},  {3, {true, true, false, false, false}},
    {5, {false, true, true, true, false}},   {6, {true, true, true, false, false}},
    {7, {false, true, true, true, true}},    {8, {true, true, true, true, false}},
};

const char* const kStreams[5][2] = {{"jpeg", "jpeg"},
                                    {"h264", "h264_1"},
                                    {"h264", "h264_2"},
                                    {"h264", "h264_3"},
                                    {"h264", "h264_4"}};

// The switches for the back-channel command; none when no command is run.
// With the duplex mode "disable" every stream is switched off, whatever the
// layout.
std::optional<std::array<bool, 5>> backChannel(bool disabled, int layout) {
  if (disabled) return std::array<bool, 5>{};
  for (const BackChannel& b : kBackChannels)
    if (b.layout == layout) return b.on;
  return std::nullopt;
}

// "<streamctl> jpeg jpeg_backchannel=on h264 h264_1_backchannel=off ...".
void runBackChannel(bool disabled, int layout) {
  std::optional<std::array<bool, 5>> on = backChannel(disabled, layout);
  if (!on) return;
  std::string command = conf::shellWord(conf::hostPath(kStreamCtl));
  for (int i = 0; i < 5; ++i)
    command += std::string(" ") + kStreams[i][0] + " " + kStreams[i][1] +
               "_backchannel=" + ((*on)[i] ? "on" : "off");
  conf::runShell(command);
}

void setAudioCode(shm::ShmBlock& block, int code) {
  if (code == 0) return;
  block.set(Slot::ONVIF_AUDIO, code);
  block.set(Slot::ONVIF_CHANGE_AUDIO, code);
}

bool namesAudioEncoder(const char* line) {
  for (int k = 1; k <= 8; ++k)
    if (conf::holds(line, "AudioEncoder" + std::to_string(k) + ".")) return true;
  return false;
}

// Rewrites "/tmp/onvif/<name>" (or another folder); a missing record is
// logged, a name that is not a plain file name refused.
conf::Result rewriteRecord(const char* dir, const std::string& name, const char* routine,
                           const char* missing, const std::vector<Rule>& rules) {
  std::optional<std::string> path = conf::inFolder(routine, dir, name);
  if (!path) return conf::Result{conf::Status::SourceMissing, 0};
  return conf::rewrite(conf::inPlace(routine, *path, missing), rules);
}

// Every record an audio list names (first word of each line), rewritten.
void rewriteListed(const char* list, const std::vector<Rule>& rules) {
  if (!conf::forEachName(kRoutine, list, "", "%s\n", [&](const std::string& name) {
        rewriteRecord(conf::kPersistDir, name, kRoutine, kMissing, rules);
        return true;
      }))
    conf::logError(kMissing, list);
}

// Output level (and, on the current path, use count) of every audio output.
void syncOutputs(const Field<32>& gain, const std::optional<std::string>& useCount) {
  rewriteListed(kOutputList, {conf::keepLine("SendPrimacy="), conf::set("OutputLevel=", gain.str()),
                              conf::setOr("UseCount=", useCount)});
}

struct WebAudio {
  Field<32> bitrate;
  Field<32> gain;
  Field<32> duplex;
  Field<32> storage;
};

// Reads the bit rate and output gain; false (logged) when the file is missing.
bool readAudioSource(WebAudio& web) {
  if (conf::scanConf(kAudioSourceConf, {conf::str("root.AudioSource.A0.BitRate=", web.bitrate),
                                        conf::str("root.AudioSource.A0.OutputGain=", web.gain)}))
    return true;
  conf::logError(kMissing, kAudioSourceConf);
  return false;
}

// Legacy path: every listed encoder keeps its codec; its bit rate follows the
// web setting within that codec. The G.711 and G.726 marks are cleared once,
// before the first record, and carry over from one record to the next.
void legacyEncoders(shm::ShmBlock& block, const WebAudio& web) {
  bool g711 = false;
  bool g726 = false;
  int code = 0;
  auto rateWithin = [&](const char* codec) {
    const BitRate* b = findBitRate(web.bitrate);
    if (b == nullptr || b->rate == nullptr || std::strcmp(b->codec, codec) != 0) return Out::keep();
    code = b->code;
    return Out::write(std::string("Bitrate=") + b->rate + "\n");
  };
  const std::vector<Rule> rules = {
      conf::rule("Encoding=G711",
                 [&](const char*) {
                   g711 = true;
                   return Out::write("Encoding=G711\n");
                 }),
      conf::rule("Encoding=G726",
                 [&](const char*) {
                   g726 = true;
                   return Out::write("Encoding=G726\n");
                 }),
      // A bit rate met with neither mark set is dropped from the record.
      conf::rule("Bitrate=",
                 [&](const char*) {
                   if (g711) {
                     g711 = false;
                     return rateWithin("G711");
                   }
                   if (g726) {
                     g726 = false;
                     return rateWithin("G726");
                   }
                   return Out::drop();
                 }),
  };
  // A line whose name is refused runs nothing; the name held stays.
  Field<64> name;
  if (!conf::forEachLine(conf::kAudioEncoderList, [&](const char* line) {
        Field<64> named;
        if (namesAudioEncoder(line) && conf::scan(line, "%s", named) == 1) {
          if (!conf::plainName(kRoutine, named.str())) return true;
          name = named;
        }
        if (name.empty()) return true;  // no record named yet
        code = 0;
        if (rewriteRecord(conf::kLiveDir, name.str(), kRoutine, kMissing, rules).done())
          setAudioCode(block, code);
        return true;
      }))
    conf::logError(kMissing, conf::kAudioEncoderList);
}

// Current path: only the first encoder is synchronised, codec and bit rate.
void currentEncoder(shm::ShmBlock& block, const WebAudio& web) {
  Field<64> name;
  if (!conf::forEachLine(conf::kAudioEncoderList, [&](const char* line) {
        if (conf::holds(line, "AudioEncoder1.")) conf::scan(line, "%s", name);
        return false;
      })) {
    conf::logError(kEncoderListMissing, conf::kAudioEncoderList);
    return;
  }
  if (name.empty()) return;
  const BitRate* b = findBitRate(web.bitrate);
  int code = 0;
  const std::vector<Rule> rules = {
      conf::rule("Encoding=",
                 [b](const char*) {
                   return b ? Out::write(std::string("Encoding=") + b->codec + "\n") : Out::keep();
                 }),
      conf::rule("Bitrate=",
                 [b, &code](const char*) {
                   if (b == nullptr || b->rate == nullptr) return Out::keep();
                   code = b->code;
                   return Out::write(std::string("Bitrate=") + b->rate + "\n");
                 }),
  };
  if (rewriteRecord(conf::kLiveDir, name.str(), kRoutine, kMissing, rules).done())
    setAudioCode(block, code);
}

// "<key>NONE" when audio is off, else "<key><token>".
Rule bind(const char* key, const char* token, bool off) {
  return conf::fixed(key, std::string(key) + (off ? "NONE" : token) + "\n");
}

// Counts the lines of `key` whose value is not "NONE".
conf::Key countUse(const char* key, int& count) {
  std::string pattern = conf::patternText(key) + "%s\n";
  return conf::on(key, [pattern, &count](const char* line) {
    Field<64> value;
    conf::scan(line, pattern.c_str(), value);
    if (!value.is("NONE")) ++count;
  });
}

void currentPath(shm::ShmBlock& block, WebAudio& web) {
  if (!conf::scanConf(kAudioConf, {conf::str("root.Audio.DuplexMode=", web.duplex),
                                   conf::str("root.Audio.StorageRecording=", web.storage)}))
    conf::logError(kMissing, kAudioConf);
  block.set(Slot::RECORD_AUDIO, web.storage.holds("disable") ? 0 : 1);

  int brand = block.get(Slot::ONVIF_BRAND);
  bool binding = brand == 34 || (brand == 44 && block.get(Slot::BRAND_REGION) == 7);
  bool off = web.duplex.is("disable");
  const std::vector<Rule> rules = {
      bind("AudioDecoder=", "AudioDecoder1", off),
      bind("AudioOutput=", "AudioOutput1", off),
      conf::when(binding, bind("AudioEncoder=", "AudioEncoder1", off)),
      conf::when(binding, bind("AudioSource=", "AudioSource1", off)),
  };
  int layout = block.get(Slot::ONVIF_MULTIPLE_STREAM);
  if (!conf::forEachName(
          kRoutine, conf::kProfileList, "profile filename=", "profile filename=%s\n",
          [&](const std::string& name) {
            if (rewriteRecord(conf::kLiveDir, name, kRoutine, kMissing, rules).done())
              runBackChannel(off, layout);
            return true;
          }))
    conf::logError(kMissing, conf::kProfileList);

  if (brand == 40) Sync_AudioEncoder_By_StreamServer();

  int outputs = 0;
  int decoders = 0;
  if (!conf::forEachName(kRoutine, conf::kProfileList, "profile filename=",
                         "profile filename=%s\n", [&](const std::string& name) {
                           std::string path = conf::kLiveDir + name;
                           if (!conf::scanConf(path, {countUse("AudioOutput=", outputs),
                                                      countUse("AudioDecoder=", decoders)}))
                             conf::logError(kCountMissing, path);
                           return true;
                         }))
    conf::logError(kMissing, conf::kProfileList);

  syncOutputs(web.gain, std::to_string(outputs));
  rewriteListed(kDecoderList, {conf::set("UseCount=", std::to_string(decoders))});
}

}  // namespace

int Update_Audio_Source(int multiStream, shm::ShmBlock& block) {
  WebAudio web;
  bool haveSource = readAudioSource(web);
  if (multiStream == 0) {
    if (haveSource) legacyEncoders(block, web);
    // Only the duplex line is read here; the legacy path does not use it.
    if (!conf::scanConf(kAudioConf, {conf::str("root.Audio.DuplexMode=", web.duplex).first()}))
      conf::logError(kMissing, kAudioConf);
    syncOutputs(web.gain, std::nullopt);
    return 0;
  }
  if (haveSource) currentEncoder(block, web);
  currentPath(block, web);
  return 0;
}

int Sync_AudioEncoder_By_StreamServer() {
  Field<16> h264[4];
  Field<16> jpeg;
  if (!conf::scanConf(kStreamServerConf, {conf::str("h264_1_audio_enable=", h264[0]),
                                          conf::str("h264_2_audio_enable=", h264[1]),
                                          conf::str("h264_3_audio_enable=", h264[2]),
                                          conf::str("h264_4_audio_enable=", h264[3]),
                                          conf::str("jpeg_1_audio_enable=", jpeg)}))
    conf::logError(kStreamMissing, kStreamServerConf);

  // The video encoder token and its codec carry over from one profile to the
  // next: an "AudioEncoder=" line met before the profile's own "VideoEncoder="
  // line is judged by the previous profile's encoder.
  Field<64> token;
  Field<64> codec;
  auto audioOn = [&]() {
    if (codec.is("JPEG")) return jpeg.is("on");
    for (int k = 0; k < 4; ++k)
      if (h264[k].is("on") && token.holds(("VideoEncoder" + std::to_string(k + 1)).c_str()))
        return true;
    return false;
  };
  const std::vector<Rule> rules = {
      conf::rule("VideoEncoder=",
                 [&](const char* line) {
                   conf::scan(line, "VideoEncoder=%s\n", token);
                   check_codec(token.str(), codec);
                   return Out::keep();
                 }),
      conf::rule("AudioEncoder=",
                 [&](const char*) {
                   if (!codec.is("H264") && !codec.is("JPEG")) return Out::keep();
                   return Out::write(audioOn() ? "AudioEncoder=AudioEncoder1\n"
                                               : "AudioEncoder=NONE\n");
                 }),
  };
  if (!conf::forEachName(kStreamRoutine, conf::kProfileList, "profile filename=",
                         "profile filename=%s\n", [&](const std::string& name) {
                           rewriteRecord(conf::kLiveDir, name, kStreamRoutine, kStreamMissing,
                                         rules);
                           return true;
                         }))
    conf::logError(kStreamMissing, conf::kProfileList);
  return 0;
}

}  // namespace onvif
