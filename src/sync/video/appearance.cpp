#include "sync/video/appearance.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <vector>

#include "conf/error_log.h"
#include "conf/files.h"
#include "conf/keys.h"
#include "conf/lines.h"
#include "conf/rewrite.h"
#include "sync/video/encoders.h"
#include "sync/video/resolution.h"

namespace onvif {

using conf::Field;
using conf::Out;
using shm::Slot;

namespace {

constexpr const char* kRoutine = "Update_Imapge_Appearance";
constexpr const char* kAppMissing = "[Update_Imapge_Appearance]SYSTEM_IMAGE_APP_CONFIG missing";
constexpr const char* kListMissing = "[Update_Imapge_Appearance]ONVIF_VIDEO_ENCODER_CONF missing";
constexpr const char* kEncoderMissing = "[Update_Imapge_Appearance]ONVIF_VIDEO_ENCODER_X missing";

// The web's stream settings from image_appearance.conf.
struct Appearance {
  Field<8> mjpegQ, mjpeg2Q;
  Field<8> bitrate[4], gov[4];
  Field<8> mpeg4Bitrate, mpeg4Gov;
  Field<8> h264Quality[4];  // read; the H.264 encoders keep their quality
  Field<16> encodeType;     // read, kept for the record
  Field<16> profile[4];
  Field<16> names[5];       // the "Resolution=" fields in the order of the shape
};

// The shapes of the "Resolution=" value: JPEG and H.264 1 to 4 (multi-stream
// devices), JPEG, MPEG-4, H.264 1 and 2 (device type 2), JPEG, H.264 1 and 2.
enum class Shape { Five, Four, Three };

bool readAppearance(Appearance& a, Shape shape) {
  const char* pattern =
      shape == Shape::Five
          ? "root.Image.I0.Appearance.Resolution=%[^','],%[^','],%[^','],%[^','],%[^'\n']"
      : shape == Shape::Four
          ? "root.Image.I0.Appearance.Resolution=%[^','],%[^','],%[^','],%[^'\n']"
          : "root.Image.I0.Appearance.Resolution=%[^','],%[^','],%[^'\n']";
  const std::string p = "root.Image.I0.Appearance.";
  bool found = conf::scanConf(conf::kImageAppearanceConf, {
      conf::rest(p + "MjpegQfactor=", a.mjpegQ),
      conf::rest(p + "Mjpeg_2Qfactor=", a.mjpeg2Q),
      conf::rest(p + "H264Bitrate=", a.bitrate[0]),
      conf::rest(p + "H264_2Bitrate=", a.bitrate[1]),
      conf::rest(p + "H264_3Bitrate=", a.bitrate[2]),
      conf::rest(p + "H264_4Bitrate=", a.bitrate[3]),
      conf::rest(p + "Mpeg4Bitrate=", a.mpeg4Bitrate),
      conf::on(p + "Resolution=", [&](const char* line) {
        conf::scan(line, pattern, a.names[0], a.names[1], a.names[2], a.names[3], a.names[4]);
      }),
      conf::rest(p + "H264VideoKeyFrameInterval=", a.gov[0]),
      conf::rest(p + "H264_2VideoKeyFrameInterval=", a.gov[1]),
      conf::rest(p + "H264_3VideoKeyFrameInterval=", a.gov[2]),
      conf::rest(p + "H264_4VideoKeyFrameInterval=", a.gov[3]),
      conf::rest(p + "Mpeg4VideoKeyFrameInterval=", a.mpeg4Gov),
      conf::rest(p + "EncodeType=", a.encodeType),
      conf::rest(p + "H264Profile=", a.profile[0]),
      conf::rest(p + "H264_2Profile=", a.profile[1]),
      conf::rest(p + "H264_3Profile=", a.profile[2]),
      conf::rest(p + "H264_4Profile=", a.profile[3]),
      conf::rest(p + "H264Quality=", a.h264Quality[0]),
      conf::rest(p + "H264_2Quality=", a.h264Quality[1]),
      conf::rest(p + "H264_3Quality=", a.h264Quality[2]),
      conf::rest(p + "H264_4Quality=", a.h264Quality[3]),
  });
  if (!found) conf::logError(kAppMissing);
  return found;
}

// What one encoder record receives; an unset value keeps its line.
struct StreamValues {
  std::optional<std::string> encoding;
  int width = 0;  // the size lines are kept unless both are above 0
  int height = 0;
  std::optional<std::string> quality, bitrate, gov, profile;
};

StreamValues jpegValues(int width, int height, const Field<8>& factor) {
  StreamValues v;
  v.width = width;
  v.height = height;
  v.quality = std::to_string(JpegQuality(textNumber(factor.c_str())));
  return v;
}

StreamValues videoValues(int width, int height, const Field<8>& bitrate, const Field<8>& gov) {
  StreamValues v;
  v.width = width;
  v.height = height;
  v.bitrate = bitrate.str();
  v.gov = gov.str();
  return v;
}

// The routine's keys in their order, the same on every path: a line is
// decided by the first of them it holds, and an unset value keeps it (an
// H.264 record's "Quality=3 BitrateLimit=4" line stays as it is). `useCount`
// is the "UseCount=" rule of the multi-stream path.
std::vector<conf::Rule> encoderRules(const StreamValues& v,
                                     conf::Rule useCount = conf::keepLine("UseCount=")) {
  const bool sized = v.width > 0 && v.height > 0;
  return {
      conf::setOr("Encoding=", v.encoding),
      std::move(useCount),
      conf::when(sized, conf::set("Resolution width=", std::to_string(v.width))),
      conf::when(sized, conf::set("Resolution height=", std::to_string(v.height))),
      conf::setOr("Quality=", v.quality),
      conf::setOr("BitrateLimit=", v.bitrate),
      conf::setOr("GovLength=", v.gov),
      conf::setOr("H264Profile=", v.profile),
  };
}

// ---- The multi-stream path ----

// Which of the five fields are active, and the layout they make. Any other
// combination (no stream, a gap between H.264 streams, five streams) leaves
// the layout and channel slots as they are.
enum Field5 { kJ = 0, kH1, kH2, kH3, kH4, kNoField = -1 };

struct LayoutRow {
  bool active[5];  // JPEG, H.264 1 to 4
  int code;        // ONVIF_MULTIPLE_STREAM
  int channel[4];  // the field whose code goes to CH1 to CH4 (JPEG last)
};

const LayoutRow kLayouts[] = {
    {{false, true, true, true, false}, 5, {kH1, kH2, kH3, kNoField}},
    {{false, true, true, false, false}, 2, {kH1, kH2, kNoField, kNoField}},
    {{false, true, true, true, true}, 7, {kH1, kH2, kH3, kH4}},
    {{false, true, false, false, false}, 1, {kH1, kNoField, kNoField, kNoField}},
    {{true, true, false, false, false}, 3, {kH1, kJ, kNoField, kNoField}},
    {{true, true, true, true, false}, 8, {kH1, kH2, kH3, kJ}},
    {{true, true, true, false, false}, 6, {kH1, kH2, kJ, kNoField}},
    {{true, false, false, false, false}, 0, {kJ, kNoField, kNoField, kNoField}},
};

const Slot kChannelSlots[4] = {Slot::ONVIF_CH1_RESOLUTION, Slot::ONVIF_CH2_RESOLUTION,
                               Slot::ONVIF_CH3_RESOLUTION, Slot::ONVIF_CH4_RESOLUTION};

// The codec each encoder record gets under each layout code (o: the
// "Encoding=" line is left as it is). Codes 4 and 9 to 13 are set elsewhere.
enum class Codec { Keep, Jpeg, H264 };
constexpr Codec J = Codec::Jpeg, H = Codec::H264, o = Codec::Keep;
const Codec kEncoderCodecs[14][4] = {
    {J, o, o, o},  // 0  JPEG only
    {H, o, o, o},  // 1  H.264 1
    {H, H, o, o},  // 2  H.264 1 and 2
    {H, J, o, o},  // 3  JPEG and H.264 1
    {o, o, o, o},  // 4  no change
    {H, H, H, o},  // 5  H.264 1 to 3
    {H, H, J, o},  // 6  JPEG and H.264 1 and 2
    {H, H, H, H},  // 7  H.264 1 to 4
    {H, H, H, J},  // 8  JPEG and H.264 1 to 3; also the "Encoding=" row of unknown codes
    {J, J, o, o},  // 9  two JPEG streams
    {J, H, o, o},  // 10 JPEG first, then H.264 1
    {H, J, J, o},  // 11
    {J, H, J, o},  // 12
    {J, J, J, o},  // 13
};

bool knownLayout(int code) { return code >= 0 && code <= 13; }

// The stream an encoder carries: the n-th H.264 encoder of the row carries
// H.264 stream n, the first JPEG encoder the JPEG stream and any later JPEG
// encoder the second JPEG stream (its own quality factor, no size field).
struct Stream {
  Codec codec = Codec::Keep;
  int n = 0;
};

Stream streamOn(int code, int k) {
  Stream s;
  if (!knownLayout(code) || k < 1 || k > 4) return s;
  int h = 0;
  int j = 0;
  for (int e = 0; e < k; ++e) {
    Codec c = kEncoderCodecs[code][e];
    if (c == Codec::H264) s = {c, ++h};
    if (c == Codec::Jpeg) s = {c, ++j};
    if (c == Codec::Keep) s = {};
  }
  return s;
}

std::optional<std::string> codecWord(Codec c) {
  if (c == Codec::Jpeg) return "JPEG";
  if (c == Codec::H264) return "H264";
  return std::nullopt;
}

// "UseCount=" of encoder k (1..4): the profiles bound to it, counted anew for
// each such line.
conf::Rule useCountOf(int k) {
  return conf::rule("UseCount=", [k](const char*) {
    std::array<std::string, 4> counts;
    Sync_VideoEncoderUseCount(counts);
    return k >= 1 ? Out::write("UseCount=" + counts[k - 1] + "\n") : Out::keep();
  });
}

std::vector<conf::Rule> multiStreamRules(const Appearance& a, const int width[5],
                                         const int height[5], int code, int k) {
  Stream s = streamOn(code, k);
  StreamValues v;
  if (s.codec == Codec::Jpeg && s.n == 1) v = jpegValues(width[kJ], height[kJ], a.mjpegQ);
  if (s.codec == Codec::Jpeg && s.n > 1) v = jpegValues(0, 0, a.mjpeg2Q);  // no size field for it
  if (s.codec == Codec::H264) {
    v = videoValues(width[s.n], height[s.n], a.bitrate[s.n - 1], a.gov[s.n - 1]);
    v.profile = MapH264ProfileName(a.profile[s.n - 1].c_str());
  }
  if (k >= 1)
    v.encoding =
        codecWord(knownLayout(code) ? kEncoderCodecs[code][k - 1] : kEncoderCodecs[8][k - 1]);
  return encoderRules(v, useCountOf(k));
}

int multiStreamPath(int videoType, shm::ShmBlock& block) {
  Appearance a;
  readAppearance(a, Shape::Five);
  int width[5];
  int height[5];
  bool active[5];
  for (int f = 0; f < 5; ++f) {
    width[f] = GetResolutionWidth(a.names[f].c_str(), videoType, block);
    height[f] = GetResolutionHeight(a.names[f].c_str(), videoType, block);
    active[f] = width[f] > 0 && height[f] > 0;
  }
  for (const LayoutRow& row : kLayouts) {
    if (!std::equal(active, active + 5, row.active)) continue;
    block.set(Slot::ONVIF_MULTIPLE_STREAM, row.code);
    for (int c = 0; c < 4; ++c)
      block.set(kChannelSlots[c], row.channel[c] == kNoField
                                      ? 0
                                      : GetResolutionCode(a.names[row.channel[c]].c_str()));
    break;
  }

  CheckResolutionToAddOrMinusVideoEncoderInProfile(block);

  int code = block.get(Slot::ONVIF_MULTIPLE_STREAM);
  int shell = 0;
  bool listed = forEachEncoder(kRoutine, 4, false, [&](const std::string& name, int k) {
    conf::Result r = rewriteEncoder(kRoutine, name, kEncoderMissing,
                                    multiStreamRules(a, width, height, code, k));
    shell = r.shell;
    return r.status != conf::Status::SourceMissing;
  });
  return listed ? shell : conf::logError(kListMissing);
}

// ---- The per-codec and two-encoder paths ----

// One legacy resolution per codec: JPEG, MPEG-4 (device type 2), H.264 1 and 2.
struct Legacy {
  LegacyResolution jpeg, mpeg4, h264, h264_2;
};

Legacy readLegacy(Appearance& a, int videoType, int device, shm::ShmBlock& block) {
  bool four = device == 2;
  readAppearance(a, four ? Shape::Four : Shape::Three);
  const char* none = "";
  Legacy l{GetLegacyResolutionIndex(a.names[0].c_str(), videoType),
           GetLegacyResolutionIndex(four ? a.names[1].c_str() : none, videoType),
           GetLegacyResolutionIndex(a.names[four ? 2 : 1].c_str(), videoType),
           GetLegacyResolutionIndex(a.names[four ? 3 : 2].c_str(), videoType)};
  auto store = [&](Slot s, const LegacyResolution& r) {
    if (r.known) block.set(s, r.index);
  };
  store(Slot::ONVIF_RESOLUTION_JPEG, l.jpeg);
  store(Slot::ONVIF_RESOLUTION_H264, l.h264);
  store(Slot::ONVIF_RESOLUTION_H264_2, l.h264_2);
  if (four) store(Slot::ONVIF_RESOLUTION_MPEG4, l.mpeg4);
  return l;
}

// The values of the codec an "Encoding=" word names (H.264 stream 1 for "H264").
std::optional<StreamValues> codecValues(const Appearance& a, const Legacy& l,
                                        const char* encoding) {
  std::string e(encoding);
  if (e == "JPEG") return jpegValues(l.jpeg.width, l.jpeg.height, a.mjpegQ);
  if (e == "H264") return videoValues(l.h264.width, l.h264.height, a.bitrate[0], a.gov[0]);
  if (e == "MPEG4") return videoValues(l.mpeg4.width, l.mpeg4.height, a.mpeg4Bitrate, a.mpeg4Gov);
  return std::nullopt;
}

// Flag 0: each record keeps its codec and receives that codec's values; an
// H.264 record on channel 2 is passed a second time with H.264 stream 2's
// values (its size lines keep the first pass's size when stream 2 is off).
int perCodecPath(int videoType, int device, shm::ShmBlock& block) {
  Appearance a;
  Legacy l = readLegacy(a, videoType, device, block);
  int shell = 0;
  bool listed = forEachEncoder(kRoutine, 0, false, [&](const std::string& name, int) {
    EncoderFacts facts;
    // A missing record is reported by the rewrite, which empties the temporary file.
    if (!readEncoderFacts(name, facts)) {
      shell = rewriteEncoder(kRoutine, name, kEncoderMissing, {}).shell;
      return false;
    }
    std::vector<StreamValues> passes;
    if (auto v = codecValues(a, l, facts.encoding.c_str())) passes.push_back(*v);
    if (facts.encoding.is("H264") && facts.channel.is("2"))
      passes.push_back(videoValues(l.h264_2.width, l.h264_2.height, a.bitrate[1], a.gov[1]));
    for (const StreamValues& v : passes)
      shell = rewriteEncoder(kRoutine, name, kEncoderMissing, encoderRules(v)).shell;
    return true;
  });
  return listed ? shell : conf::logError(kListMissing);
}

// Flag 1 on devices other than 6: two records. The enabled codecs, in the
// order H.264, MPEG-4, JPEG (H.264 first, as on the multi-stream layouts),
// go to VideoEncoder1 and VideoEncoder2; a record left without an enabled
// codec keeps its "Encoding=" line. Either way a record receives the values
// of the codec its "Encoding=" line names once rewritten.
int twoEncoderPath(int videoType, int device, shm::ShmBlock& block) {
  Appearance a;
  Legacy l = readLegacy(a, videoType, device, block);
  std::vector<const char*> enabled;
  if (l.h264.width > 0) enabled.push_back("H264");
  if (device == 2 && l.mpeg4.width > 0) enabled.push_back("MPEG4");
  if (l.jpeg.width > 0) enabled.push_back("JPEG");

  std::string names[3];
  if (!forEachEncoder(kRoutine, 2, true, [&](const std::string& name, int k) {
        if (names[k].empty()) names[k] = name;
        return true;
      }))
    return conf::logError("onvifServer:[Update_Imapge_Appearance]ONVIF_VIDEO_ENCODER_CONF missing");

  int shell = 0;
  for (int k = 1; k <= 2; ++k) {
    std::string missing =
        "[Update_Imapge_Appearance]ONVIF_VIDEO_ENCODER_" + std::to_string(k) + " missing";
    EncoderFacts facts;
    if (names[k].empty()) return conf::logError(missing);
    if (!readEncoderFacts(names[k], facts))
      return rewriteEncoder(kRoutine, names[k], missing, {}).shell;
    std::optional<std::string> encoding;
    if (static_cast<std::size_t>(k) <= enabled.size()) encoding = enabled[k - 1];
    StreamValues v = codecValues(a, l, encoding ? encoding->c_str() : facts.encoding.c_str())
                         .value_or(StreamValues{});
    v.encoding = encoding;
    shell = rewriteEncoder(kRoutine, names[k], missing, encoderRules(v)).shell;
  }
  return shell;
}

int boundEncoders(int code) {
  // Profiles bound to an encoder under each layout code; -1: left alone.
  static const int kBound[14] = {1, 1, 2, 2, -1, 3, 3, 4, 4, 2, 2, -1, -1, -1};
  return knownLayout(code) ? kBound[code] : -1;
}

int profileNumber(const std::string& name) {
  for (int p = 1; p <= 4; ++p)
    if (name == "Profile" + std::to_string(p) + ".profile") return p;
  return 0;
}

}  // namespace

int JpegQuality(int factor) {
  if (factor == 0) return 1;
  return static_cast<int>(std::ceil(factor / 70.0 * 100.0));
}

void Sync_VideoEncoderUseCount(std::array<std::string, 4>& counts) {
  int uses[4] = {};
  bool listed = conf::forEachName(
      "Sync_VideoEncoderUseCount", conf::kProfileList, "", "profile filename=%s\n",
      [&](const std::string& name) {
        std::string path = std::string(conf::kLiveDir) + name;
        Field<64> encoder;
        if (!conf::scanConf(path, {conf::str("VideoEncoder=", encoder).first()})) {
          conf::logError("Sync_VideoEncoderUseCount %s missing", path);
          return true;
        }
        for (int k = 1; k <= 4; ++k) {
          if (encoder.holds(("VideoEncoder" + std::to_string(k)).c_str())) {
            ++uses[k - 1];
            break;
          }
        }
        return true;
      });
  if (!listed) conf::logError("Sync_VideoEncoderUseCount:%s missing", conf::kProfileList);
  for (int k = 0; k < 4; ++k) counts[k] = std::to_string(uses[k]);
}

int CheckResolutionToAddOrMinusVideoEncoderInProfile(shm::ShmBlock& block) {
  const std::string routine = "CheckResolutionToAddOrMinusVideoEncoderInProfile";
  int bound = boundEncoders(block.get(Slot::ONVIF_MULTIPLE_STREAM));
  bool audioToo = block.get(Slot::ONVIF_BRAND) == 28;
  int shell = 0;
  bool listed = conf::forEachName(
      routine, conf::kProfileList, "", "profile filename=%s\n", [&](const std::string& name) {
        int p = profileNumber(name);
        auto bindTo = [&](const char* kind) {
          return p <= bound ? kind + std::to_string(p) : std::string("NONE");
        };
        const bool bind = bound > 0 && p > 0;
        shell =
            conf::rewrite(
                conf::inPlace(routine, conf::kLiveDir + name, routine + " %s missing"),
                {conf::when(bind, conf::set("VideoEncoder=", bindTo("VideoEncoder"))),
                 conf::when(bind && audioToo, conf::set("AudioEncoder=", bindTo("AudioEncoder")))})
                .shell;
        return true;
      });
  return listed ? shell : conf::logError((routine + " %s missing").c_str(), conf::kProfileList);
}

int Update_Imapge_Appearance(int multiStream, int videoType, int device, shm::ShmBlock& block) {
  if (multiStream == 1 && device == 6) return multiStreamPath(videoType, block);
  if (multiStream == 1) return twoEncoderPath(videoType, device, block);
  return perCodecPath(videoType, device, block);
}

}  // namespace onvif
