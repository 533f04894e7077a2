// The file store's safety rules through the real binary: names read from list
// files never leave their folder, a link in the temporary folder is never
// written through, a full disk never leaves a file emptied or half-written,
// an append first ends an unterminated last line, and runs at the same time
// never mix their rewrites.
#include <gtest/gtest.h>
#include <unistd.h>

#include <random>
#include <regex>
#include <thread>

#include "transcript.h"

using shm::Slot;
using testkit::Camera;
using testkit::Files;
using testkit::Lines;
using testkit::SlotValues;
using testkit::Tree;

namespace {

const std::string kLive = "/tmp/onvif/", kPersist = "/usr/apache/htdocs/onvif/";
const std::string kTemp = "/tmp/onvif/tmp/", kUsers = kPersist + "Users.conf";
const std::string kOnvif = kPersist + "onvif.conf";

// The camera's files in one of `folders`, but those in `but`.
Tree filesIn(const Camera& cam, const Lines& folders, const std::string& but = {}) {
  Tree in;
  for (const auto& [path, text] : testkit::filesUnder(cam.root()))
    for (const std::string& folder : folders)
      if (path.rfind(folder, 0) == 0 && (but.empty() || path.rfind(but, 0) != 0)) in[path] = text;
  return in;
}

// Every file of the ONVIF server's two folders (the temporary folder aside).
Tree onvifFiles(const Camera& cam) { return filesIn(cam, {kLive, kPersist}, kTemp); }

std::optional<std::string> readIf(const Camera& cam, const std::string& path) {
  return cam.exists(path) ? std::optional(cam.read(path)) : std::nullopt;
}

struct HostileRow {
  std::string command;
  SlotValues slots;
  std::string list;     // the list the names go into, before its own lines
  std::string line;     // its line for a name ("%s")
  Lines routines;       // each refuses every name once, in this order
  std::string clean{};  // what stands for each name's line in the run without them
};

TEST(Safety, NamesThatAreNotPlainFileNamesAreRefused) {
  const std::string video = kPersist + "VideoEncoder.conf", audio = kPersist + "AudioEncoder.conf";
  const std::string profiles = kLive + "Profiles.conf", profile = "profile filename=%s";
  const std::string sound = "Update_Audio_Source", io = "Update_AlarmOutput_High_Low";
  const SlotValues b12 = {{Slot::ONVIF_BRAND, 12}}, b40 = {{Slot::ONVIF_BRAND, 40}};
  const SlotValues d6 = {{Slot::ONVIF_DEVICE, 6}};
  const std::string source = kPersist + "VideoSource.conf", osd = kPersist + "OSDs.conf";
  const HostileRow rows[] = {
      {"-u 11", b40, profiles, profile, {"update_onvif_profile_ptzconf"}},
      {"-u 4", b12, profiles, profile, {sound, sound}},
      {"-u 4", b40, kLive + "Profile1.profile", "VideoEncoder=%s", {"check_codec"}},
      {"-u 2", {}, video, "%s", {"Update_Imapge_Appearance"}},
      {"-u 5", d6, video, "%s VideoEncoder1.", {"Update_framerate"}},
      {"-u 19", {}, video, "%s", {"Update_EncodingPriority"}},
      {"-u 15", {}, video, "%s", {"START_SYNC_H264PROFILE"}},
      {"-u 9", {}, audio, "%s", {"Update_Multicast"}},
      {"-u 4", {}, audio, "%s AudioEncoder1.", {sound}},
      {"-u 4", b12, kPersist + "AudioOutput.conf", "%s", {sound}},
      {"-u 3", {}, source, "%s VideoSource1.", {"Update_Imapge_Source"}},
      {"-u 12", {}, kPersist + "IO.conf", "%s Output", {io}},
      {"-u 16", {}, osd, "OSDToken=%s", {"Update_OSD"}, "OSDToken=NULL\n"},
      {"-s 3", {}, video, "%s .VEncoder", {"Soft_Default_All_Conf"}},
      {"-s 4", {}, kPersist + "Profiles.conf.default", profile, {"Hard_Default_All_Conf"}},
  };
  // The victims are files of another camera; the first name climbs to one
  // from any folder (".." of "/" is "/"), the second names it whole.
  Camera out, clean, hostile;
  for (const char* suffix : {"", ".default", ".VEncoder", ".osdconf"})
    out.write(std::string("/victim") + suffix, "Name=%s\nEncoding=H264\n");
  const Tree outside = filesIn(out, {"/victim"});
  const Lines names = {"../../../../../../../.." + out.root() + "/victim", out.root() + "/victim",
                       "a/b", ".", ".."};
  // One pair of cameras for all rows: after each row the hostile camera gets
  // back the clean camera's copy of the list, so the two are alike again.
  for (const HostileRow& row : rows) {
    const std::string what = row.command + " " + row.list;
    std::string cleanList, hostileList;
    Lines refused;
    for (const std::string& name : names) {
      hostileList += std::string(row.line).replace(row.line.find("%s"), 2, name) + "\n";
      cleanList += row.clean;
    }
    for (const std::string& routine : row.routines)
      for (const std::string& name : names) refused.push_back(routine + ":" + name + " refused");
    for (Camera* cam : {&clean, &hostile}) {
      cam->startServer(row.slots);
      cam->write(row.list, (cam == &clean ? cleanList : hostileList) + cam->read(row.list));
      cam->remove("/tmp/onvif_error");
    }
    std::thread other([&] { clean.run(testkit::words(row.command)); });
    hostile.run(testkit::words(row.command));
    other.join();

    EXPECT_EQ(filesIn(out, {"/victim"}), outside) << what;
    Lines log, refusedLogged;
    for (const std::string& l : hostile.errorLog())
      (std::regex_search(l, std::regex(" refused$")) ? refusedLogged : log).push_back(l);
    EXPECT_EQ(refusedLogged, refused) << what;
    EXPECT_EQ(log, clean.errorLog()) << what;
    EXPECT_EQ(hostile.shellTrace(), clean.shellTrace()) << what;
    // The list itself differs, and so does a list restored from it.
    for (const std::string& list : {row.list, row.list.substr(0, row.list.find(".default"))})
      testkit::put(hostile, {{list, readIf(clean, list)}});
    EXPECT_EQ(onvifFiles(hostile), onvifFiles(clean)) << what;
  }
}

// Every command that makes a name in the temporary folder (rewrites, "OS_"
// files, the account working copy, the defaults' files, a generated file, the
// lock), in rows where no two commands share a name.
// Each name a normal run leaves there is planted as a link to the same file
// of another camera.
TEST(Safety, LinksInTheTemporaryFolderAreNeverWrittenThrough) {
  const std::pair<std::string, SlotValues> rows[] = {
      {"-u 1 -u 4 -u 12 -u 13 -u 16 -u 24 -s 3 -p 1 -a 2", {{Slot::ONVIF_BRAND, 12}}},
      {"-u 2 -u 14 -u 18 -u 26 -u 25 -u 34 -s 4 -q 2 -a 1", {}},
      {"-u 3 -u 5 -u 6 -u 7 -u 8 -u 9 -u 11 -u 15 -u 19 -u 23 -u 29", {{Slot::ONVIF_BRAND, 40}}},
  };
  for (const auto& [command, slots] : rows) {
    Camera out, normal(slots), planted(slots);
    const Tree shipped = filesIn(normal, {kTemp});
    normal.run(testkit::words(command));
    const Tree names = filesIn(normal, {kTemp});
    for (const auto& entry : names) {
      if (shipped.count(entry.first) != 0) continue;  // the sample's own, not a temporary name
      out.write(entry.first, "outside\n");
      ASSERT_EQ(symlink(out.host(entry.first).c_str(), planted.host(entry.first).c_str()), 0);
    }
    const Tree outside = filesIn(out, {kTemp});
    planted.run(testkit::words(command));
    EXPECT_EQ(filesIn(out, {kTemp}), outside) << command;
    EXPECT_EQ(onvifFiles(planted), onvifFiles(normal)) << command;
    EXPECT_EQ(planted.errorLog(), normal.errorLog()) << command;
    EXPECT_EQ(filesIn(planted, {kTemp}), names) << command;
  }
}

// Writes past 1 KiB fail, in the tool and in the "cp" and "sh" it runs.
const Lines kFileLimit = {"/bin/sh", "-c", "trap '' XFSZ; ulimit -f 2; exec \"$@\"", "sh"};

// A full tmpfs over a folder of the camera, with the folder's files in it;
// what the run leaves there is copied back to the folder afterwards.
Lines fullTmpfs(const std::string& folder) {
  static const char* const script =
      R"(m=$ONVIFCTRL_ROOT$1 u=$ONVIFCTRL_ROOT/.under; shift
mkdir -p "$u" && mount --bind "$m" "$u" && mount -t tmpfs -o size=256k tmpfs "$m" &&
/bin/cp -a "$u/." "$m/" && { cat /dev/zero >"$m/.filler" 2>/dev/null; "$@"
rm "$m/.filler"; /bin/cp -a "$m/." "$u/"; })";
  std::string unshare = access("/usr/bin/unshare", X_OK) == 0 ? "/usr/bin/unshare" : "/bin/unshare";
  return {unshare, "-m", "/bin/sh", "-c", script, "sh", folder};
}

struct FullRow {
  std::string command;
  std::string full;  // the folder a full tmpfs covers; "": the 1 KiB file-size limit
  Lines watched;     // each comes out as it was or as a normal run leaves it; {}: every ONVIF file
};

TEST(Safety, AFullDiskNeverLeavesAFileEmptiedOrHalfWritten) {
  std::string users;
  for (int i = 0; i < 60; ++i)
    users += "user" + std::to_string(i) + ":User:password" + std::to_string(i) + "\n";
  const Files changes = {{kUsers, users},
                         {"/etc/appWeb/appweb.privacy", "user1:1:1:1:1\nnew:1:1:0:0\n"},
                         {"/etc/appWeb/appweb.pass", "user1:secret\nnew:pw\n"},
                         {"/etc/sysconfig/network.conf", "root.Network.IPAddress=10.1.2.3\n"}};
  const std::string live = kLive + "onvif.conf", available = kLive + "available_resolution";
  Lines generated = {available};
  for (int n = 1; n <= 4; ++n)
    generated.push_back(available + "_with_" + std::to_string(n) + "_channel");
  const Lines defaults = {kOnvif, kOnvif + ".default"};
  std::vector<FullRow> rows = {
      {"-u 1", "", {live, kOnvif}}, {"-u 24", "", {kUsers}},   {"-u 26", "", {kUsers}},
      {"-s 3", "", defaults},       {"-s 4", "", defaults},    {"-u 24", kTemp, {kUsers}},
      {"-u 26", kTemp, {kUsers}},   {"-s 3", kTemp, defaults}, {"-u 13", kLive, generated},
  };
  // Every command that works in the temporary folder, with that folder full.
  for (const char* command : {"-u 1",  "-u 2",  "-u 3",  "-u 4",  "-u 5",  "-u 6",  "-u 7",
                              "-u 8",  "-u 9",  "-u 11", "-u 12", "-u 13", "-u 14", "-u 15",
                              "-u 16", "-u 19", "-u 23", "-u 25", "-u 29", "-u 34", "-s 4",
                              "-p 1",  "-q 2",  "-a 1"})
    rows.push_back({command, kTemp, {}});
  const bool tmpfs = geteuid() == 0 && std::system("unshare -m true 2>/dev/null") == 0;
  for (const FullRow& row : rows) {
    if (!row.full.empty() && !tmpfs)
      GTEST_SKIP() << "unshare -m is refused here: no full tmpfs rows";
    const std::string what = row.command + " " + row.full;
    const SlotValues slots = {{Slot::ONVIF_BRAND, 40}};
    Camera normal(slots), full(slots);
    testkit::put(normal, changes);
    testkit::put(full, changes);
    Lines watched = row.watched;
    for (const auto& entry : row.watched.empty() ? onvifFiles(full) : Tree{})
      watched.push_back(entry.first);
    std::map<std::string, std::optional<std::string>> before;
    for (const std::string& path : watched) before[path] = readIf(full, path);
    std::thread other([&] { normal.run(testkit::words(row.command)); });
    full.runUnder(row.full.empty() ? kFileLimit : fullTmpfs(row.full), testkit::words(row.command));
    other.join();
    bool changed = row.watched.empty();  // not every command changes the sample's files
    for (const std::string& path : watched) {
      std::optional<std::string> now = readIf(full, path), whole = readIf(normal, path);
      EXPECT_TRUE(now == before[path] || now == whole) << what << ": " << path;
      changed = changed || whole != before[path];
    }
    EXPECT_TRUE(changed) << what << ": a normal run changes a watched file";
    EXPECT_NE(full.read("/tmp/onvif_error").find(" write failed\n"), std::string::npos) << what;
  }
}

// Two accounts, then recording names, an error-log line and a DebugLog line,
// each appended to a file whose last line has no newline.
TEST(Safety, AnAppendEndsAnUnterminatedLastLineFirst) {
  const std::string recordings = kPersist + "Recordings.conf";
  testkit::Transcript t;
  t.run("Accounts", "-u 24", {},
        {{kUsers, "admin:Administrator:a"},
         {"/etc/appWeb/appweb.privacy", "admin:1:1:1:1\nbob:1:1:0:0\n"},
         {"/etc/appWeb/appweb.pass", "admin:a\nbob:b\n"}});
  t.run("Recording names", "-u 18", {},
        {{"/etc/sysconfig/storage.conf", "root.Storage.FileNameFormat=1\n"},
         {recordings, "RecordingFile=A1"}});
  t.run("The names are there", "-u 18");
  t.run("The error log", "-u 20", {},
        {{"/tmp/onvif_error", "old"}, {"/etc/sysconfig/network.conf", {}}});
  t.run("The DebugLog", "-u 27", {{Slot::ONVIF_DEBUG_LOG, 1}}, {{"/tmp/onvif/DebugLog", "old"}});
  t.expectGolden();
}

// Rounds of 20 runs at once on one camera: -p and -q on presets of their own,
// and sync commands that change encoder records and onvif.conf. Each result
// is the same in any serial order, so each file must equal what one serial
// run of the same commands leaves.
TEST(Safety, RunsAtTheSameTimeNeverMixTheirFiles) {
  std::mt19937 random(20240607);
  Files web = {
      {"/etc/sysconfig/framerate.conf", "root.Framerate.H264=12\nroot.Framerate.H264_2=5\n"},
      {"/etc/sysconfig/network.conf", "root.Network.IPAddress=10.1.2.3\n"}};
  std::string labels, presets;
  for (int n = 1; n <= 20; ++n) {
    labels += "root.preset.position" + std::to_string(n) + ".set=P" + std::to_string(n) + "\n";
    presets += "preset" + std::to_string(n) + ".token.name=YES," + std::to_string(n) + ",Old\n";
  }
  web.push_back({"/etc/sysconfig/presetlist.conf", labels});
  web.push_back({kPersist + "Preset.conf", presets});
  const SlotValues slots = {{Slot::ONVIF_BRAND, 12}, {Slot::ONVIF_MULTIPLE_STREAM, 7}};
  for (int round = 0; round < 3; ++round) {
    std::vector<Lines> runs;
    for (int n = 1; n <= 20; ++n) {
      int pick = static_cast<int>(random() % 15);
      if (pick < 3)
        runs.push_back({"-u", pick == 0 ? "5" : pick == 1 ? "15" : "1"});
      else
        runs.push_back({pick < 9 ? "-p" : "-q", std::to_string(n)});
    }
    Camera together(slots), serial(slots);
    testkit::put(together, web);
    testkit::put(serial, web);
    std::vector<std::thread> threads;
    for (const Lines& args : runs) threads.emplace_back([&together, args] { together.run(args); });
    for (const Lines& args : runs) serial.run(args);
    for (std::thread& t : threads) t.join();
    EXPECT_EQ(onvifFiles(together), onvifFiles(serial)) << "round " << round;
  }
}

}  // namespace
