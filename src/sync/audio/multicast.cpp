#include "sync/audio/multicast.h"

#include <string>
#include <vector>

#include "conf/error_log.h"
#include "conf/field.h"
#include "conf/files.h"
#include "conf/keys.h"
#include "conf/lines.h"
#include "conf/rewrite.h"
#include "conf/scan.h"

namespace onvif {

using conf::Field;
using conf::Out;
using conf::Rule;
using shm::Slot;

namespace {

constexpr const char* kRoutine = "Update_Multicast";
constexpr const char* kVariableConf = "/etc/sysconfig/variable.conf";
constexpr const char* kAudioEncoder1 = "/tmp/onvif/AudioEncoder1.AEncoder";

constexpr const char* kMissing = "Update_Multicast:%s missing!";
constexpr const char* kAudioMissing = "Update_Multicast audio:%s missing!";
constexpr const char* kGenerationAudioMissing = "A2&N3 nonbrand Update_Multicast audio:%s missing!";

using Value = Field<32>;

// The web's RTP settings ("root.Network.RTP.R0." keys of network.conf).
struct Rtp {
  Value videoAddress, h264Port[4], mjpegPort, mpegPort, audioPort, ttl, audioTtl, audioAddress,
      mjpegAddress, h264Address[4], h264AudioPort[4], mjpegAudioPort, h264Ttl[4], mjpegTtl,
      mjpegTtl2;
};

// Keys in this order, the first found takes the line. The fourth H.264 TTL is
// searched with a doubled first letter that no system file holds, so it stays
// empty: the fourth audio encoder's TTL is written empty on the platform that
// uses it, as the server expects.
bool readRtp(Rtp& r) {
  const std::string k = "root.Network.RTP.R0.";
  return conf::scanConf(
      conf::kNetworkConf,
      {conf::str(k + "VideoAddress=", r.videoAddress),
       conf::str(k + "H264VideoPort=", r.h264Port[0]),
       conf::str(k + "H264VideoPort2=", r.h264Port[1]),
       conf::str(k + "H264VideoPort3=", r.h264Port[2]),
       conf::str(k + "H264VideoPort4=", r.h264Port[3]),
       conf::str(k + "MjpegVideoPort=", r.mjpegPort),
       conf::str(k + "MpegVideoPort=", r.mpegPort),
       conf::str(k + "AudioPort=", r.audioPort),
       conf::str(k + "TTL=", r.ttl),
       conf::str(k + "AudioTTL=", r.audioTtl),
       conf::str(k + "AudioAddress=", r.audioAddress),
       conf::str(k + "MjpegVideoAddress=", r.mjpegAddress),
       conf::str(k + "H264VideoAddress=", r.h264Address[0]),
       conf::str(k + "H264VideoAddress2=", r.h264Address[1]),
       conf::str(k + "H264VideoAddress3=", r.h264Address[2]),
       conf::str(k + "H264VideoAddress4=", r.h264Address[3]),
       conf::str(k + "H264AudioPort=", r.h264AudioPort[0]),
       conf::str(k + "H264AudioPort2=", r.h264AudioPort[1]),
       conf::str(k + "H264AudioPort3=", r.h264AudioPort[2]),
       conf::str(k + "H264AudioPort4=", r.h264AudioPort[3]),
       conf::str(k + "MjpegAudioPort=", r.mjpegAudioPort),
       conf::str(k + "H264TTL=", r.h264Ttl[0]),
       conf::str(k + "H264TTL2=", r.h264Ttl[1]),
       conf::str(k + "H264TTL3=", r.h264Ttl[2]),
       conf::on("r" + k + "H264TTL4=",
                [&r](const char* line) {
                  conf::scan(line, "root.Network.RTP.R0.H264TTL4=%s\n", r.h264Ttl[3]);
                }),
       conf::str(k + "MjpegTTL=", r.mjpegTtl),
       conf::str(k + "MjpegTTL2=", r.mjpegTtl2)});
}

// A video stream, for its multicast address and port.
enum class Stream { None, H264_1, H264_2, H264_3, H264_4, Mjpeg, Mpeg4 };

const Value& addressOf(const Rtp& r, Stream s) {
  if (s == Stream::Mjpeg) return r.mjpegAddress;
  return r.h264Address[static_cast<int>(s) - static_cast<int>(Stream::H264_1)];
}

const Value& portOf(const Rtp& r, Stream s) {
  if (s == Stream::Mjpeg) return r.mjpegPort;
  if (s == Stream::Mpeg4) return r.mpegPort;
  return r.h264Port[static_cast<int>(s) - static_cast<int>(Stream::H264_1)];
}

// Platform 6: the streams of VideoEncoder1 to 4 by stream layout.
struct LayoutRow {
  int layout;
  Stream encoder[4];
};

constexpr Stream H1 = Stream::H264_1, H2 = Stream::H264_2, H3 = Stream::H264_3, H4 = Stream::H264_4;
constexpr Stream J = Stream::Mjpeg, M = Stream::Mpeg4, None = Stream::None;

const LayoutRow kLayouts[] = {
    {0, {J, None, None, None}},   {1, {H1, None, None, None}}, {2, {H1, H2, None, None}},
    {3, {H1, J, None, None}},     {9, {H1, H2, None, None}},   {10, {H1, H2, None, None}},
    {5, {H1, H2, H3, None}},      {6, {H1, H2, J, None}},      {7, {H1, H2, H3, H4}},
    {8, {H1, H2, H3, J}},
};

// Platform 6, brand 28: each audio encoder follows the video stream of its
// position, or the JPEG stream under the layout that puts JPEG there.
struct AudioRow {
  const char* record;
  int jpegLayout;
  int stream;  // index of the H.264 audio port and TTL
};

const AudioRow kAudioRows[] = {{"AudioEncoder1.AEncoder", 0, 0},
                               {"AudioEncoder2.AEncoder", 3, 1},
                               {"AudioEncoder3.AEncoder", 6, 2},
                               {"AudioEncoder4.AEncoder", 8, 3}};

// Platforms 2 and 0 to 4 with brand 12 or above: the records and their ports
// by the codec enable slots (H.264, second H.264, JPEG, MPEG-4; -1 any).
struct CodecSlotRow {
  bool secondGeneration;
  int h264, h264_2, jpeg, mpeg4;
  Stream encoder[2];
};

const CodecSlotRow kCodecSlots[] = {
    // first generation (MPEG-4 not looked at)
    {false, 1, 0, 0, -1, {H1, None}},
    {false, 0, 0, 1, -1, {J, None}},
    {false, 1, 0, 1, -1, {H1, J}},
    {false, 1, 1, 0, -1, {H1, H2}},
    // second generation
    {true, 1, 0, 0, 0, {H1, None}},
    {true, 0, 0, 1, 0, {J, None}},
    {true, 1, 0, 1, 0, {H1, J}},
    {true, 1, 1, 0, 0, {H1, H2}},
    {true, 0, 0, 1, 1, {M, J}},
};

// The platforms that differ only in their log prefix and codec-slot rows.
struct Generation {
  const char* prefix;
  bool second;
  std::string text(const char* rest) const { return std::string(prefix) + rest; }
};

std::string videoRecord(int k) {
  return "/tmp/onvif/VideoEncoder" + std::to_string(k) + ".VEncoder";
}

// The three multicast lines of an encoder record.
std::vector<Rule> multicast(const Value& address, Rule port, const Value& ttl) {
  return {conf::set("MultiIPv4Address=", address.str()), std::move(port),
          conf::set("MultiTTL=", ttl.str())};
}

Rule portLine(const Value& port) { return conf::set("MultiPort=", port.str()); }
Rule portLine(const Value* port) { return port ? portLine(*port) : conf::keepLine("MultiPort="); }

void rewriteRecord(const std::string& path, const std::string& missing,
                   const std::vector<Rule>& rules) {
  conf::rewrite(conf::inPlace(kRoutine, path, missing), rules);
}

void layoutBranch(shm::ShmBlock& block, const Rtp& r) {
  int layout = block.get(Slot::ONVIF_MULTIPLE_STREAM);
  const LayoutRow* row = nullptr;
  for (const LayoutRow& l : kLayouts)
    if (l.layout == layout) row = &l;
  if (row == nullptr) conf::logError("Update_Multicast ONVIF_MULTIPLE_STREAM ERROR!");
  for (int k = 0; row != nullptr && k < 4; ++k) {
    Stream s = row->encoder[k];
    if (s != Stream::None)
      rewriteRecord(videoRecord(k + 1), kMissing,
                    multicast(addressOf(r, s), portLine(portOf(r, s)), r.ttl));
  }

  if (block.get(Slot::ONVIF_BRAND) != 28) {
    rewriteRecord(kAudioEncoder1, kAudioMissing,
                  multicast(r.audioAddress, portLine(r.audioPort), r.ttl));
    return;
  }
  const std::string audioList = conf::kAudioEncoderList;
  if (!conf::forEachName(kRoutine, audioList, "", "%s\n", [&](const std::string& name) {
        const Value* port = &r.h264AudioPort[0];
        const Value* ttl = &r.h264Ttl[0];
        for (const AudioRow& a : kAudioRows) {
          if (name != a.record) continue;
          port = layout == a.jpegLayout ? &r.mjpegAudioPort : &r.h264AudioPort[a.stream];
          ttl = layout == a.jpegLayout ? &r.mjpegTtl : &r.h264Ttl[a.stream];
        }
        // The message names the first audio encoder, whichever record is missing.
        rewriteRecord(conf::kLiveDir + name, conf::fill(kAudioMissing, kAudioEncoder1),
                      multicast(r.audioAddress, portLine(*port), *ttl));
        return true;
      }))
    conf::logError(kAudioMissing, conf::kAudioEncoderList);
}

// Platform 5: each record's own "Encoding=" line, met before its port,
// chooses the port.
void codecBranch(const Rtp& r) {
  for (int k = 0; k < 2; ++k) {
    Field<64> codec;
    auto port = [&r, &codec, k](const char*) {
      const Value* p = codec.is("H264")   ? &r.h264Port[k]
                       : codec.is("JPEG") ? &r.mjpegPort
                                          : nullptr;
      return p != nullptr ? Out::write("MultiPort=" + p->str() + "\n") : Out::keep();
    };
    std::vector<Rule> rules = {conf::rule("Encoding=", [&codec](const char* line) {
      conf::scan(line, "Encoding=%s\n", codec);
      return Out::keep();
    })};
    for (Rule& line : multicast(r.videoAddress, conf::rule("MultiPort=", port), r.ttl))
      rules.push_back(std::move(line));
    rewriteRecord(videoRecord(k + 1), kMissing, rules);
  }
  // The audio encoder takes the video address, not the audio address.
  rewriteRecord(kAudioEncoder1, kAudioMissing,
                multicast(r.videoAddress, portLine(r.audioPort), r.ttl));
}

// Brands below 12: the records the video list names; each record's codec and
// channel choose its port.
void listVariant(const Rtp& r, const Generation& g) {
  std::string missing = g.text(" nonbrand Update_Multicast video:%s missing!");
  const std::string videoList = conf::kVideoEncoderList;
  if (!conf::forEachName(kRoutine, videoList, "", "%s\n", [&](const std::string& name) {
        std::string path = conf::kLiveDir + name;
        Field<64> codec;
        int channel = 0;
        if (!conf::scanConf(path,
                            {conf::str("Encoding=", codec), conf::num("Channel=", channel)})) {
          conf::logError(missing.c_str(), path);
          return true;
        }
        const Value* port = nullptr;
        if (codec.is("H264") && (channel == 1 || channel == 2)) port = &r.h264Port[channel - 1];
        if (codec.is("JPEG")) port = &r.mjpegPort;
        if (codec.is("MPEG4") && g.second) port = &r.mpegPort;
        rewriteRecord(path, missing, multicast(r.videoAddress, portLine(port), r.ttl));
        return true;
      }))
    conf::logError(missing.c_str(), conf::kVideoEncoderList);
}

// Brands 12 and above: the codec enable slots choose the records and ports.
void codecSlotVariant(shm::ShmBlock& block, const Rtp& r, const Generation& g) {
  auto enabled = [&block](Slot s) { return block.get(s) != 0 ? 1 : 0; };
  int h264 = enabled(Slot::ONVIF_RESOLUTION_H264), h264_2 = enabled(Slot::ONVIF_RESOLUTION_H264_2),
      jpeg = enabled(Slot::ONVIF_RESOLUTION_JPEG), mpeg4 = enabled(Slot::ONVIF_RESOLUTION_MPEG4);
  for (const CodecSlotRow& row : kCodecSlots) {
    if (row.secondGeneration != g.second || row.h264 != h264 || row.h264_2 != h264_2 ||
        row.jpeg != jpeg || (row.mpeg4 != -1 && row.mpeg4 != mpeg4))
      continue;
    for (int k = 0; k < 2; ++k)
      if (row.encoder[k] != Stream::None)
        rewriteRecord(videoRecord(k + 1), g.text(" SP Update_Multicast video:%s missing!"),
                      multicast(r.videoAddress, portLine(portOf(r, row.encoder[k])), r.ttl));
    return;
  }
  conf::logError(g.text(" SP Update_Multicast ONVIF_MULTIPLE_STREAM ERROR!"));
}

void generationBranch(shm::ShmBlock& block, const Rtp& r, const Generation& g) {
  if (block.get(Slot::ONVIF_BRAND) < 12)
    listVariant(r, g);
  else
    codecSlotVariant(block, r, g);
  const std::string audioList = conf::kAudioEncoderList;
  if (!conf::forEachName(kRoutine, audioList, "", "%s\n", [&](const std::string& name) {
        rewriteRecord(conf::kLiveDir + name, kGenerationAudioMissing,
                      multicast(r.videoAddress, portLine(r.audioPort), r.ttl));
        return true;
      }))
    conf::logError(kGenerationAudioMissing, conf::kAudioEncoderList);
}

enum class Platform { Unknown, Layout, Codec, SecondGeneration, FirstGeneration };

Platform platformOf(int device) {
  if (device == 6) return Platform::Layout;
  if (device == 5) return Platform::Codec;
  if (device == 2) return Platform::SecondGeneration;
  if (device <= 4) return Platform::FirstGeneration;  // 0 and below, 1, 3, 4
  return Platform::Unknown;
}

}  // namespace

int Update_Multicast(shm::ShmBlock& block) {
  int protocol = 0;
  if (!conf::scanConf(kVariableConf, {conf::num("root.Variable.Videoprotocol=", protocol).first()}))
    conf::logError(kMissing, kVariableConf);
  Rtp r;
  if (!readRtp(r)) return conf::logError(kMissing, conf::kNetworkConf);

  Platform platform = platformOf(block.get(Slot::ONVIF_DEVICE));
  if (platform == Platform::Unknown) return 0;
  block.set(Slot::MULTICASTING, protocol == 4 ? 1 : 0);
  if (protocol != 4) return 0;

  switch (platform) {
    case Platform::Layout:
      layoutBranch(block, r);
      break;
    case Platform::Codec:
      codecBranch(r);
      break;
    case Platform::SecondGeneration:
      generationBranch(block, r, Generation{"N3", true});
      break;
    case Platform::FirstGeneration:
      generationBranch(block, r, Generation{"A2", false});
      break;
    case Platform::Unknown:
      break;
  }
  return 0;
}

}  // namespace onvif
