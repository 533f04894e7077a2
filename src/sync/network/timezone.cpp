#include "sync/network/timezone.h"

#include <cstring>

namespace onvif {

namespace {

// A test of a row: the whole text is the name, or the text holds it.
struct Test {
  bool whole;
  const char* text;
  bool passes(const char* tz) const {
    return whole ? std::strcmp(tz, text) == 0 : std::strstr(tz, text) != nullptr;
  }
};

constexpr Test is(const char* t) { return Test{true, t}; }
constexpr Test holds(const char* t) { return Test{false, t}; }

struct Row {
  const char* onvif;
  Test tests[6];  // unused tests have no text
};

// Tested from the first row to the last; the first row with a passing test
// decides. The order is part of the table: row 21 holds "GMT-1", so the plain
// names "GMT-10" to "GMT-14" all stop there and give "GMT+1:00:00"; the later
// rows are reached through their zone rules only. Keep it so.
const Row kZones[] = {
    {"GMT-1:00:00", {is("GMT+1"), holds("CVT1"), holds("AZOT1AZOST")}},
    {"GMT-2:00:00", {is("GMT+2")}},
    {"GMT-3:00:00", {is("GMT+3"), holds("ART3ARST"), holds("BRT3BRST"), holds("UYT3UYST")}},
    {"GMT-3:30:00", {is("GMT+3,5"), holds("NST3:30NDT")}},
    {"GMT-4:00:00", {is("GMT+4"), holds("BOT4"), holds("AMT4AMST"), holds("AST4ADT")}},
    {"GMT-4:30:00", {is("GMT+4,5"), holds("VET4:30")}},
    {"GMT-5:00:00", {is("GMT+5"), holds("EST5EDT"), holds("COT5"), holds("CST5CDT")}},
    {"GMT-5:30:00", {is("GMT+5,5")}},
    {"GMT-5:45:00", {is("GMT+5,75")}},
    {"GMT-6:00:00", {is("GMT+6"), holds("CST6")}},
    {"GMT-6:30:00", {is("GMT+6,5")}},
    {"GMT-7:00:00", {is("GMT+7"), holds("MST7")}},
    {"GMT-8:00:00", {is("GMT+8"), holds("PST8PDT")}},
    {"GMT-9:00:00", {is("GMT+9"), holds("AKST9AKDT")}},
    {"GMT-9:30:00", {is("GMT+9,5"), holds("MART9:30")}},
    {"GMT-10:00:00", {is("GMT+10"), holds("HAST10HADT"), holds("HST10")}},
    {"GMT-11:00:00", {is("GMT+11"), holds("SST11")}},
    {"GMT-12:00:00", {is("GMT+12")}},
    {"GMT-13:00:00", {is("GMT+13")}},
    {"GMT+0:00:00", {is("GMT"), holds("GMT0BST")}},
    {"GMT+1:00:00", {is("GMT-1"), holds("CET-1CEST"), is("WAT-1"), holds("GMT-1")}},
    {"GMT+2:00:00", {is("GMT-2"), holds("EET-2EEST"), holds("WAT-1WAST"), holds("CAT-2")}},
    {"GMT+3:00:00", {is("GMT-3"), holds("AST-3"), holds("EAT-3")}},
    {"GMT+3:30:00", {is("GMT-3,5")}},
    {"GMT+4:00:00", {is("GMT-4"), holds("GST-4"), holds("MSK-4"), holds("AMT-4"), holds("GET-4")}},
    {"GMT+4:30:00", {holds("AFT-4:30")}},
    {"GMT+5:00:00", {is("GMT-5"), holds("PKT-5PKST")}},
    {"GMT+5:30:00", {holds("IST-5:30")}},
    {"GMT+5:45:00", {holds("NPT-5:45")}},
    {"GMT+6:00:00", {is("GMT-6"), holds("YEKT-6")}},
    {"GMT+6:30:00", {holds("MMT-6:30")}},
    {"GMT+7:00:00", {is("GMT-7"), holds("NOVT-7"), holds("ICT-7")}},
    {"GMT+8:00:00",
     {is("GMT-8"), holds("HKT-8"), holds("KRAT-8"), holds("MYT-8"), is("WST-8"), holds("CST-8")}},
    {"GMT+8:45:00", {holds("CWST-8:45")}},
    {"GMT+9:00:00", {is("GMT-9"), holds("IRKT-9"), holds("JST-9"), holds("KST-9")}},
    {"GMT+9:30:00", {holds("CST-9:30")}},
    {"GMT+10:00:00", {is("GMT-10"), holds("EST-10"), holds("ChST-10"), holds("YAKT-10")}},
    {"GMT+10:30:00", {holds("LHST-10:30LHST")}},
    {"GMT+11:00:00", {is("GMT-11"), holds("VLAT-11")}},
    {"GMT+11:30:00", {holds("NFT-11:30")}},
    {"GMT+12:00:00", {is("GMT-12"), holds("NZST-12NZDT"), holds("PETT-12"), holds("MAGT-12")}},
    {"GMT+13:00:00", {holds("GMT-13")}},
    {"GMT+14:00:00", {holds("GMT-14")}},
};

constexpr const char* kNoRow = "GMT+0:00:00";

}  // namespace

const char* onvifTimeZone(const char* web) {
  for (const Row& row : kZones)
    for (const Test& t : row.tests)
      if (t.text != nullptr && t.passes(web)) return row.onvif;
  return kNoRow;
}

}  // namespace onvif
