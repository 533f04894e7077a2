#include "sync/network/device.h"

#include <sys/shm.h>

#include <cstdio>
#include <iterator>
#include <string>

#include "conf/error_log.h"
#include "conf/field.h"
#include "conf/files.h"
#include "conf/keys.h"
#include "conf/lines.h"
#include "conf/rewrite.h"
#include "conf/scan.h"
#include "conf/write_file.h"
#include "shm/segments.h"
#include "sync/ptz/ptz_scopes.h"

namespace onvif {

using conf::Field;
using conf::Out;
using shm::Slot;

namespace {

constexpr const char* kRs485Conf = "/etc/sysconfig/rs485protocol.conf";
constexpr const char* kOutputsConf = "/etc/sysconfig/outputs.conf";
constexpr const char* kIoList = "/usr/apache/htdocs/onvif/IO.conf";
constexpr const char* kIoPtzList = "/usr/apache/htdocs/onvif/IOPTZ.conf";
constexpr const char* kStorageConf = "/etc/sysconfig/storage.conf";
constexpr const char* kRecordings = "/usr/apache/htdocs/onvif/Recordings.conf";
constexpr const char* kClinkConf = "/etc/sysconfig/clink.conf";
constexpr const char* kRateControlConf = "/etc/sysconfig/image_ratecontrol.conf";
constexpr const char* kSmartCompression = "/usr/apache/htdocs/onvif/SmartCompression.conf";

// An alarm output: the token that names its record, the web value that
// decides its idle state, and the slot that takes its active state.
struct AlarmOutput {
  const char* token;
  const Field<16>& active;
  Slot slot;
};

// The recordings-list lines that name a file-name field, and the line each
// adds when it is missing (V is added off, the others on).
struct NameField {
  const char* key;
  const char* added;
};
constexpr NameField kNameFields[] = {
    {"RecordingFile=A", "RecordingFile=A1\n"}, {"RecordingFile=M", "RecordingFile=M1\n"},
    {"RecordingFile=N", "RecordingFile=N1\n"}, {"RecordingFile=T", "RecordingFile=T1\n"},
    {"RecordingFile=R", "RecordingFile=R1\n"}, {"RecordingFile=U", "RecordingFile=U1\n"},
    {"RecordingFile=V", "RecordingFile=V0\n"},
};

// Recording flags of the two streams in the streaming server's segment.
struct RecordingSource {
  const char* source;
  unsigned char stream1, stream2;
};
constexpr RecordingSource kRecordingSources[] = {{"S1", 1, 0}, {"S2", 0, 1}, {"both", 1, 1}};

constexpr const char* kCompressionLevels[] = {"low", "middle", "high"};

// Update_Recording with a file-name format other than "1": the list keeps
// only its "RecordingFile=O" lines.
int keepOriginalNames(shm::ShmBlock& block) {
  conf::Result r =
      conf::rewrite(conf::inPlace("Update_Recording", kRecordings, "Update_Recording:%s missing"),
                    {conf::keepLine("RecordingFile=O"), conf::dropLine("")});
  block.set(Slot::RECORDING_NAME_FORMAT, 0);
  return r.shell;
}

// Update_Recording with format "1" (or brand 9): every name field is listed.
int listAllNameFields(shm::ShmBlock& block) {
  bool seen[std::size(kNameFields)] = {};
  int shell = 0;
  if (!conf::forEachLine(kRecordings, [&](const char* line) {
        for (std::size_t i = 0; i < std::size(kNameFields); ++i) {
          if (conf::holds(line, kNameFields[i].key)) {
            seen[i] = true;
            break;
          }
        }
        return true;
      }))
    shell = conf::logError("Update_Recording:%s missing", kRecordings);

  std::string added;
  for (std::size_t i = 0; i < std::size(kNameFields); ++i)
    if (!seen[i]) added += kNameFields[i].added;
  if (!added.empty()) {
    conf::AppendStatus s = conf::appendText(kRecordings, added);
    if (s == conf::AppendStatus::OpenFailed)
      shell = conf::logError("Update_Recording:%s missing", kRecordings);
    if (s == conf::AppendStatus::WriteFailed)
      shell = conf::logWriteFailed("Update_Recording", kRecordings);
  }
  block.set(Slot::RECORDING_NAME_FORMAT, 1);
  return shell;
}

}  // namespace

int Update_RS485Control(shm::ShmBlock& block) {
  int on = 0;
  if (!conf::scanConf(kRs485Conf, {conf::num("root.RS485Control.Switch=", on).first()}))
    return conf::logError("Update_RS485Control %s missing", kRs485Conf);

  // Brand 40 keeps the zoom and focus value aside while pan and tilt are off
  // and brings it back; other brands fall back to the fixed value 6.
  const bool brand40 = block.get(Slot::ONVIF_BRAND) == 40;
  const int ptz = on != 0 ? 1 : 0;
  block.set(Slot::ONVIF_PT_SUPPORT, ptz);
  if (ptz == 0 && brand40) {
    if (block.get(Slot::ONVIF_ZF_SUPPORT) != 0)
      block.set(Slot::ONVIF_ZF_SUPPORT_BAKEUP, block.get(Slot::ONVIF_ZF_SUPPORT));
    block.set(Slot::ONVIF_ZF_SUPPORT, 0);
  } else if (ptz == 0) {
    if (block.get(Slot::ONVIF_ZF_SUPPORT_BAKEUP) == 0) block.set(Slot::ONVIF_ZF_SUPPORT, 0);
  } else if (brand40) {
    if (block.get(Slot::ONVIF_ZF_SUPPORT) == 0)
      block.set(Slot::ONVIF_ZF_SUPPORT, block.get(Slot::ONVIF_ZF_SUPPORT_BAKEUP));
  } else if (block.get(Slot::ONVIF_ZF_SUPPORT) == 0) {
    block.set(Slot::ONVIF_ZF_SUPPORT_BAKEUP, 0);
    block.set(Slot::ONVIF_ZF_SUPPORT, 6);
  }
  if (brand40) update_onvif_profile_ptzconf(ptz);
  update_onvif_conf_file_ptzscopes(ptz);
  return 0;
}

int Update_AlarmOutput_High_Low(shm::ShmBlock& block) {
  const std::string routine = "Update_AlarmOutput_High_Low";
  const std::string missing = routine + ":%s missing";
  Field<16> o0, o1;
  if (!conf::scanConf(kOutputsConf, {conf::str("root.Output.O0.Active=", o0),
                                     conf::str("root.Output.O1.Active=", o1)}))
    conf::logError(missing.c_str(), kOutputsConf);

  const int ioType = block.get(Slot::ONVIF_IO_TYPE);
  const char* list = ioType == 3 || ioType == 4 || ioType == 5 ? kIoPtzList : kIoList;
  // A missing list is reported by the name the firmware always gave it: type 5
  // reads IOPTZ.conf but names IO.conf.
  const char* listName = ioType == 3 || ioType == 4 ? kIoPtzList : kIoList;
  const AlarmOutput outputs[] = {{"IO_Output1", o0, Slot::ONVIF_OUTPUT1_ACTIVE_STATE},
                                 {"IO_Output2", o1, Slot::ONVIF_OUTPUT2_ACTIVE_STATE}};

  // One token buffer for the whole run: a record without a "token=" line
  // goes on with the token of the record before.
  Field<64> token;
  int shell = 0;
  auto idleState = [&](const char*) {
    for (const AlarmOutput& out : outputs) {
      if (!token.holds(out.token)) continue;
      if (out.active.is("closed")) {
        block.set(out.slot, 0);
        return Out::write("IdleState=open\n");
      }
      if (out.active.is("open")) {
        block.set(out.slot, 1);
        return Out::write("IdleState=closed\n");
      }
      return Out::keep();
    }
    return Out::keep();
  };
  if (!conf::forEachName(routine, list, "Output", "%s\n", [&](const std::string& name) {
        // A record that is not there is logged and skipped.
        const std::string path = conf::kLiveDir + name;
        shell =
            conf::rewrite(conf::inPlace(routine, path, missing).unsynced(),
                          {conf::rule("token=",
                                      [&](const char* line) {
                                        conf::scan(line, "token=%s\n", token);
                                        return Out::keep();
                                      }),
                           conf::rule("IdleState=", idleState)})
                .shell;
        return true;
      }))
    return conf::logError(missing.c_str(), listName);
  return shell;
}

int Update_Recording(shm::ShmBlock& block) {
  Field<16> format;
  if (!conf::scanConf(kStorageConf, {conf::str("root.Storage.FileNameFormat=", format)}))
    conf::logError("Update_Recording %s missing", kStorageConf);
  if (!format.is("1") && block.get(Slot::ONVIF_BRAND) != 9) return keepOriginalNames(block);
  return listAllNameFields(block);
}

int Update_Recording_Channel(shm::ShmBlock&) {
  Field<16> source;
  if (!conf::scanConf(kStorageConf, {conf::str("root.Storage.RecordingSource=", source).first()}))
    conf::logError("Update_Recording_Channel %s missing", kStorageConf);

  shm::LookupError error = shm::LookupError::None;
  shm::Segment seg = shm::findSegment(shm::kStreamServerKey, shm::kStreamServerSize, &error);
  if (error == shm::LookupError::Get) {
    std::printf("StreamServerSHM: shmget error.\n");
    std::printf("StreamServerSHM: SHMSZ=%d\n", static_cast<int>(shm::kStreamServerSize));
    std::printf("StreamServerSHM: key=%d\n", static_cast<int>(shm::kStreamServerKey));
    return -1;
  }
  if (!seg) return -1;
  RecordingSource flags{"", 0, 0};
  for (const RecordingSource& s : kRecordingSources)
    if (source.is(s.source)) flags = s;
  seg.bytes[shm::kStreamRecording1Byte] = flags.stream1;
  seg.bytes[shm::kStreamRecording2Byte] = flags.stream2;
  shmdt(seg.bytes);
  return 0;
}

int Change_Onvif_Path(shm::ShmBlock& block) {
  Field<64> path;
  int shell = 0;
  if (!conf::scanConf(conf::kNetworkConf, {conf::str("root.Network.ONVIF.DeviceIO.Path=", path)}))
    shell = conf::logError("Change_Onvif_Path: %s missing", conf::kNetworkConf);
  block.set(Slot::PATH_DEVICE_IO, path.holds("deviceIO") ? 1 : 0);
  return shell;
}

int Update_SD_CARD_STATUS(shm::ShmBlock& block) {
  int shell = 0;
  // Each line goes to the slot as it is read; a value that is not a number
  // leaves the slot as it was.
  if (!conf::scanConf(
          kClinkConf,
          {conf::on("root.CLink.Onvif.Notification.SD.Interval=", [&](const char* line) {
            int interval = block.get(Slot::SD_CARD_EVENT_INTERVAL);
            conf::scan(line, "root.CLink.Onvif.Notification.SD.Interval=%d\n", interval);
            block.set(Slot::SD_CARD_EVENT_INTERVAL, interval);
          })}))
    shell = conf::logError("Update_SD_CARD_STATUS:%s missing", kClinkConf);
  std::printf("[PKW] Update Send SD CARD EVENT INTERVAL is %d seconds\n",
              static_cast<int>(block.get(Slot::SD_CARD_EVENT_INTERVAL)));
  return shell;
}

int Update_SmartCompression() {
  const char* missing = "[Update_SmartCompression] %s missing";
  Field<32> lbr;
  Field<64> mode1, dynamic1, mode2, dynamic2;
  if (!conf::scanConf(
          kRateControlConf,
          {
              conf::str("root.Image.I0.RateControl.H264Mode.LBR.Auto=", lbr),
              conf::str("root.Image.I0.RateControl.H264VideoKeyFrameInterval.Mode=", mode1),
              conf::str("root.Image.I0.RateControl.H264VideoKeyFrameInterval.Dynamic=", dynamic1),
              conf::str("root.Image.I0.RateControl.H264_2VideoKeyFrameInterval.Mode=", mode2),
              conf::str("root.Image.I0.RateControl.H264_2VideoKeyFrameInterval.Dynamic=", dynamic2),
          }))
    conf::logError(missing, kRateControlConf);

  std::string level = "off";
  for (const char* l : kCompressionLevels)
    if (lbr.is(l)) level = l;
  auto onOff = [](const Field<64>& mode) { return mode.is("dynamic") ? "on" : "off"; };

  return conf::rewrite(conf::inPlace("Update_SmartCompression", kSmartCompression, missing),
                       {
                           conf::set("Smart_Compression_Enabled=", level),
                           conf::set("Stream1_DynamicGOP_Enabled=", onOff(mode1)),
                           conf::set("Stream1_DynamicGOP_MaxGOP=", dynamic1.str()),
                           conf::set("Stream2_DynamicGOP_Enabled=", onOff(mode2)),
                           conf::set("Stream2_DynamicGOP_MaxGOP=", dynamic2.str()),
                       })
      .shell;
}

}  // namespace onvif
