#include "sync/ptz/osd.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <vector>

#include "conf/error_log.h"
#include "conf/field.h"
#include "conf/keys.h"
#include "conf/lines.h"
#include "conf/paths.h"
#include "conf/rewrite.h"
#include "conf/shell.h"

namespace onvif {

using conf::Field;
using conf::Out;

namespace {

constexpr const char* kRoutine = "Update_OSD";
constexpr const char* kImageText = "/etc/sysconfig/image_text.conf";
constexpr const char* kOsdList = "/usr/apache/htdocs/onvif/OSDs.conf";
constexpr const char* kOsdDir = "/usr/apache/htdocs/onvif/";
constexpr const char* kOsdTemplate = "/usr/apache/htdocs/onvif/OSD.osdconf";
constexpr const char* kMissing = "[Update_OSD]%s missing";
constexpr const char* kNull = "NULL";

// The web's overlay settings, each the rest of its line.
struct TextSettings {
  Field<8> dateEnabled, clockEnabled, textEnabled, subtitleEnabled;
  Field<32> datePosition, stringPosition, subtitlePosition;
  Field<8> size;
  Field<16> color;
  Field<64> string;
  Field<64> subtitle[5];
};

bool readSettings(TextSettings& s) {
  return conf::scanConf(kImageText, {
      conf::rest("root.Image.I0.Text.DateEnabled=", s.dateEnabled),
      conf::rest("root.Image.I0.Text.DatePosition=", s.datePosition),
      conf::rest("root.Image.I0.Text.ClockEnabled=", s.clockEnabled),
      conf::rest("root.Image.I0.Text.TextEnabled=", s.textEnabled),
      conf::rest("root.Image.I0.Text.Size=", s.size),
      conf::rest("root.Image.I0.Text.Color=", s.color),
      conf::rest("root.Image.I0.Text.StringPosition=", s.stringPosition),
      conf::rest("root.Image.I0.Text.String=", s.string),
      conf::rest("root.Image.I0.Text.SubtitleEnabled", s.subtitleEnabled),
      conf::rest("root.Image.I0.Text.SubtitlePosition", s.subtitlePosition),
      conf::rest("root.Image.I0.Text.Subtitle1=", s.subtitle[0]),
      conf::rest("root.Image.I0.Text.Subtitle2=", s.subtitle[1]),
      conf::rest("root.Image.I0.Text.Subtitle3=", s.subtitle[2]),
      conf::rest("root.Image.I0.Text.Subtitle4=", s.subtitle[3]),
      conf::rest("root.Image.I0.Text.Subtitle5=", s.subtitle[4]),
  });
}

// The two subtitle keys carry no "=", so their rest of line starts with it.
std::string valueOf(const char* text) { return text[0] == '=' ? text + 1 : text; }

bool yes(const char* text) { return valueOf(text) == "yes"; }

// One overlay element and the record it owns; the list's n-th "OSDToken="
// line belongs to the n-th element.
struct Element {
  bool enabled;
  std::string position;  // the web's position word
  const char* textType;
  std::string plainText;
  int plainTextNo;
};

std::vector<Element> elements(const TextSettings& s) {
  std::vector<Element> e = {
      {yes(s.dateEnabled.c_str()), s.datePosition.str(), "Date", "", 0},
      {yes(s.clockEnabled.c_str()), s.datePosition.str(), "Time", "", 0},
      {yes(s.textEnabled.c_str()), s.stringPosition.str(), "Plain", s.string.str(), 0},
  };
  bool subtitles = yes(s.subtitleEnabled.c_str());
  for (int k = 0; k < 5; ++k)
    e.push_back({subtitles && !s.subtitle[k].empty(), valueOf(s.subtitlePosition.c_str()), "Plain",
                 s.subtitle[k].str(), k + 1});
  return e;
}

// The web's corner words and their normalized ONVIF coordinates.
struct Corner {
  const char* web;
  const char* onvif;
  double x, y;
};
const Corner kCorners[] = {
    {"topleft", "UpperLeft", -1.0, 1.0},
    {"topright", "UpperRight", 1.0, 1.0},
    {"bottomleft", "LowerLeft", -1.0, -1.0},
    {"bottomright", "LowerRight", 1.0, -1.0},
};

struct Placement {
  const char* type = "Custom";
  std::string x, y;  // "" keeps the record's coordinates
};

// "%.1f" (or another count of decimals) of a value.
std::string number(double v, int decimals = 1) {
  char buf[32];
  std::snprintf(buf, sizeof buf, "%.*f", decimals, v);
  return buf;
}

// A corner word, or a custom position "X,Y" in -1..1 (clamped); any other text
// (also "nan" or "inf", which sscanf reads as numbers) is a custom position at
// the record's current coordinates.
Placement placement(const std::string& web) {
  Placement p;
  for (const Corner& c : kCorners) {
    if (web == c.web) {
      p.type = c.onvif;
      p.x = number(c.x);
      p.y = number(c.y);
      return p;
    }
  }
  double x = 0, y = 0;
  char tail = 0;
  if (std::sscanf(web.c_str(), "%lf,%lf%c", &x, &y, &tail) == 2 && std::isfinite(x) &&
      std::isfinite(y)) {
    p.x = number(std::clamp(x, -1.0, 1.0), 2);
    p.y = number(std::clamp(y, -1.0, 1.0), 2);
  }
  return p;
}

// A positive decimal font size, or 0.
int fontSize(const std::string& text) {
  char* end = nullptr;
  long v = std::strtol(text.c_str(), &end, 10);
  if (end == text.c_str() || *end != '\0' || v <= 0 || v > 1000) return 0;
  return static_cast<int>(v);
}

conf::Result updateRecord(const std::string& token, const Element& e, const TextSettings& s) {
  std::string path = kOsdDir + token + ".osdconf";
  Placement where = placement(e.position);
  int size = fontSize(valueOf(s.size.c_str()));
  std::optional<YCbCr> colour = osdColour(valueOf(s.color.c_str()));
  YCbCr c = colour.value_or(YCbCr{0, 0, 0});

  return conf::rewrite(conf::inPlace(kRoutine, path, kMissing),
                       {
                           conf::set("OSDToken=", token),
                           conf::fixed("VideoSourceToken=", "VideoSourceToken=VideoSource1\n"),
                           conf::fixed("OSDType=", "OSDType=Text\n"),
                           conf::set("PositionType=", where.type),
                           conf::when(!where.x.empty(), conf::set("Position_X=", where.x)),
                           conf::when(!where.y.empty(), conf::set("Position_Y=", where.y)),
                           conf::set("TextType=", e.textType),
                           conf::fixed("DateFormat=", "DateFormat=yyyy/MM/dd\n"),
                           conf::fixed("TimeFormat=", "TimeFormat=HH:mm:ss\n"),
                           conf::when(size > 0, conf::set("FontSize=", std::to_string(size))),
                           conf::when(colour.has_value(), conf::set("FontColor_X=", number(c.y))),
                           conf::when(colour.has_value(), conf::set("FontColor_Y=", number(c.cb))),
                           conf::when(colour.has_value(), conf::set("FontColor_Z=", number(c.cr))),
                           conf::set("PlainText=", e.plainText),
                           conf::set("PlainTextNo=", std::to_string(e.plainTextNo)),
                       });
}

// A list token that names a record file of this folder. "OSD" would name the
// template every new record is copied from, which is not a record; a token
// that is not a plain file name is refused.
bool isRecordName(const std::string& token) {
  if (token.empty() || token == kNull || !conf::plainName(kRoutine, token)) return false;
  return token[0] != '.' && kOsdDir + token + ".osdconf" != kOsdTemplate;
}

}  // namespace

// The records are brought up to date first, then the list is rewritten to
// name them, and only then are the records of disabled elements removed, so
// the list never names a record that is not there.
//
// Brands 16 and 62 (one variant), 23 and 42 have variants of their own on the
// camera; what they do differently is not known, so every brand takes this
// path until it is.
int Update_OSD(shm::ShmBlock&) {
  TextSettings s;
  if (!readSettings(s)) return conf::logError(kMissing, kImageText);

  std::vector<std::string> listed;
  bool haveList = conf::forEachLine(kOsdList, [&](const char* line) {
    if (conf::holds(line, "OSDToken=")) {
      Field<64> token;
      conf::scan(line, "OSDToken=%s\n", token);
      listed.push_back(token.str());
    }
    return true;
  });
  if (!haveList) return conf::logError(kMissing, kOsdList);

  std::vector<Element> elems = elements(s);
  std::vector<std::string> tokens = listed;  // the list as it will be written
  std::vector<std::string> removals;
  int shell = 0;
  for (std::size_t p = 0; p < elems.size() && p < listed.size(); ++p) {
    const std::string& old = listed[p];
    bool had = isRecordName(old) && conf::exists(kOsdDir + old + ".osdconf");
    if (!elems[p].enabled) {
      tokens[p] = kNull;
      if (had) removals.push_back(old);
      continue;
    }
    std::string token = had ? old : "OSDtoken" + std::to_string(p + 1);
    if (!had) shell = conf::shellCopy(kRoutine, kOsdTemplate, kOsdDir + token + ".osdconf");
    conf::Result r = updateRecord(token, elems[p], s);
    shell = r.shell;
    if (r.done() || had) {
      tokens[p] = token;
    } else {
      tokens[p] = kNull;  // the new record could not be made
    }
  }

  std::size_t at = 0;
  conf::Result r = conf::rewrite(conf::inPlace(kRoutine, kOsdList, kMissing),
                                 {conf::rule("OSDToken=", [&](const char*) {
                                   std::size_t p = at++;
                                   return p < elems.size()
                                              ? Out::write("OSDToken=" + tokens[p] + "\n")
                                              : Out::keep();
                                 })});
  shell = r.shell;
  if (!r.done()) return shell;

  for (const std::string& token : removals)
    if (std::find(tokens.begin(), tokens.end(), token) == tokens.end())
      shell = conf::shellRemove(kOsdDir + token + ".osdconf");
  return shell;
}

YCbCr ycbcrFromRgb(int r, int g, int b) {
  auto clamp = [](double v) { return std::clamp(v, 0.0, 255.0); };
  return YCbCr{clamp(0.299 * r + 0.587 * g + 0.114 * b),
               clamp(128.0 - 0.168736 * r - 0.331264 * g + 0.5 * b),
               clamp(128.0 + 0.5 * r - 0.418688 * g - 0.081312 * b)};
}

std::optional<YCbCr> osdColour(const std::string& name) {
  struct Named {
    const char* name;
    int r, g, b;
  };
  static const Named kColours[] = {
      {"black", 0, 0, 0},       {"white", 255, 255, 255}, {"red", 255, 0, 0},
      {"green", 0, 255, 0},     {"blue", 0, 0, 255},      {"yellow", 255, 255, 0},
      {"cyan", 0, 255, 255},    {"magenta", 255, 0, 255},
  };
  for (const Named& c : kColours)
    if (name == c.name) return ycbcrFromRgb(c.r, c.g, c.b);
  return std::nullopt;
}

}  // namespace onvif
