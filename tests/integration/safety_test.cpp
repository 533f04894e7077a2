// The file store's safety rules through the real binary: names read from list
// files never leave their folder, a link in the temporary folder is never
// written through, a full disk never leaves a file emptied or half-written,
// an append first ends an unterminated last line, and runs at the same time
// never mix their rewrites.
#include <gtest/gtest.h>

#include <unistd.h>

#include <fstream>
#include <map>
#include <random>
#include <regex>
#include <thread>

#include "transcript.h"

using shm::Slot;
using testkit::Camera;
using testkit::Files;
using testkit::Lines;
using testkit::SlotValues;

namespace {

using Args = std::vector<std::string>;
using Snapshot = std::map<std::string, std::string>;

const std::string kLive = "/tmp/onvif/", kPersist = "/usr/apache/htdocs/onvif/",
                  kTemp = "/tmp/onvif/tmp/";
const std::string kUsers = kPersist + "Users.conf", kOnvif = kPersist + "onvif.conf";

// Every file of the ONVIF server's two folders (the temporary folder aside).
Snapshot onvifFiles(const Camera& cam) {
  Snapshot all;
  for (const std::string& dir : {kLive, kPersist})
    for (const auto& [name, text] : testkit::folderFiles(cam.host(dir))) all[dir + name] = text;
  return all;
}

std::optional<std::string> readIf(const Camera& cam, const std::string& path) {
  return cam.exists(path) ? std::optional(cam.read(path)) : std::nullopt;
}

// A new server block with these slots, and the files written.
void setUp(Camera& cam, const SlotValues& slots, const Files& files = {}) {
  cam.stopServer();
  cam.startServer();
  for (const auto& [s, v] : slots) cam.setSlot(s, v);
  testkit::put(cam, files);
}

// A folder beside the camera's root, whose files must never change.
struct Outside {
  std::string dir;
  Outside() {
    char name[] = "/tmp/onvifctrl-outside-XXXXXX";
    dir = mkdtemp(name);
    for (const char* f : {"victim", "victim.default", "victim.VEncoder", "victim.osdconf"})
      std::ofstream(dir + "/" + f) << "Name=%s\nEncoding=H264\n";
  }
  ~Outside() { std::system(("rm -rf '" + dir + "'").c_str()); }
};

std::string fill(std::string text, const std::string& value) {
  return text.replace(text.find("%s"), 2, value);
}

// Names a list may hold that are not plain file names, the first climbing out
// of the folder `dir` to the outside victim.
Lines hostileNames(const std::string& dir, const Outside& out) {
  std::string up;
  for (char c : dir) up += c == '/' ? "../" : "";
  return {up + out.dir.substr(5) + "/victim", out.dir + "/victim", "a/b", ".", ".."};
}

struct HostileRow {
  Args args;
  SlotValues slots;
  std::string list;     // the list the names go into, before its own lines
  std::string line;     // its line for a name ("%s")
  std::string dir;      // the folder its names are joined to
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
  const std::string shipped = kPersist + "Profiles.conf.default";
  const HostileRow rows[] = {
      {{"-u", "11"}, b40, profiles, profile, kLive, {"update_onvif_profile_ptzconf"}},
      {{"-u", "4"}, b12, profiles, profile, kLive, {sound, sound}},
      {{"-u", "4"}, b40, kLive + "Profile1.profile", "VideoEncoder=%s", kLive, {"check_codec"}},
      {{"-u", "2"}, {}, video, "%s", kLive, {"Update_Imapge_Appearance"}},
      {{"-u", "5"}, d6, video, "%s VideoEncoder1.", kLive, {"Update_framerate"}},
      {{"-u", "9"}, {}, audio, "%s", kLive, {"Update_Multicast"}},
      {{"-u", "4"}, {}, audio, "%s AudioEncoder1.", kLive, {sound}},
      {{"-u", "4"}, b12, kPersist + "AudioOutput.conf", "%s", kPersist, {sound}},
      {{"-u", "3"}, {}, source, "%s VideoSource1.", kLive, {"Update_Imapge_Source"}},
      {{"-u", "12"}, {}, kPersist + "IO.conf", "%s Output", kLive, {io}},
      {{"-u", "16"}, {}, osd, "OSDToken=%s", kPersist, {"Update_OSD"}, "OSDToken=NULL\n"},
      {{"-s", "3"}, {}, video, "%s .VEncoder", kPersist, {"Soft_Default_All_Conf"}},
      {{"-s", "4"}, {}, shipped, profile, kPersist, {"Hard_Default_All_Conf"}},
  };
  // One pair of cameras for all rows: after each row the hostile camera gets
  // back the clean camera's copy of the list, so the two are alike again.
  Outside out;
  const Snapshot outside = testkit::folderFiles(out.dir);
  Camera clean, hostile;
  for (const HostileRow& row : rows) {
    const std::string what = row.args[1] + " " + row.list;
    const Lines names = hostileNames(row.dir, out);
    std::string cleanList, hostileList;
    Lines refused;
    for (const std::string& name : names) {
      hostileList += fill(row.line, name) + "\n";
      cleanList += row.clean;
    }
    for (const std::string& routine : row.routines)
      for (const std::string& name : names) refused.push_back(routine + ":" + name + " refused");
    for (Camera* cam : {&clean, &hostile}) {
      setUp(*cam, row.slots);
      cam->write(row.list, (cam == &clean ? cleanList : hostileList) + cam->read(row.list));
      cam->clearTrace();
      cam->remove("/tmp/onvif_error");
    }
    std::thread other([&] { clean.run(row.args); });
    hostile.run(row.args);
    other.join();

    EXPECT_EQ(testkit::folderFiles(out.dir), outside) << what;
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

// Commands that use the temporary folder, so that together they use every
// kind of name in it (rewrites, "OS_" files, the account working copy, the
// defaults' files, a generated file, the lock); no two in a row share a name.
TEST(Safety, LinksInTheTemporaryFolderAreNeverWrittenThrough) {
  const std::pair<Args, SlotValues> rows[] = {
      {{"-u", "1", "-u", "4", "-u", "12", "-u", "13", "-u", "16", "-u", "24", "-s", "3", "-p", "1",
        "-a", "2"},
       {{Slot::ONVIF_BRAND, 12}}},
      {{"-u", "2", "-u", "14", "-u", "18", "-u", "26", "-u", "25", "-u", "34", "-s", "4", "-q",
        "2", "-a", "1"},
       {}},
  };
  auto check = [](const Args& args, const SlotValues& slots) {
    Outside out;
    Camera normal, planted;
    setUp(normal, slots);
    setUp(planted, slots);
    const Snapshot shipped = testkit::folderFiles(normal.host(kTemp));
    normal.run(args);
    const Snapshot names = testkit::folderFiles(normal.host(kTemp));
    for (const auto& entry : names) {
      if (shipped.count(entry.first) != 0) continue;  // the sample's own, not a temporary name
      std::ofstream(out.dir + "/" + entry.first) << "outside\n";
      ASSERT_EQ(symlink((out.dir + "/" + entry.first).c_str(),
                        planted.host(kTemp + entry.first).c_str()),
                0);
    }
    const Snapshot outside = testkit::folderFiles(out.dir);
    planted.run(args);
    EXPECT_EQ(testkit::folderFiles(out.dir), outside) << args[1];
    EXPECT_EQ(onvifFiles(planted), onvifFiles(normal)) << args[1];
    EXPECT_EQ(planted.errorLog(), normal.errorLog()) << args[1];
    EXPECT_EQ(testkit::folderFiles(planted.host(kTemp)), names) << args[1];
  };
  for (const auto& [args, slots] : rows) check(args, slots);
}

// Writes past 1 KiB fail, in the tool and in the "cp" and "sh" it runs.
const Args kFileLimit = {"/bin/sh", "-c", "trap '' XFSZ; ulimit -f 2; exec \"$@\"", "sh"};

// A full tmpfs over a folder of the camera, with the folder's files in it;
// what the run leaves there is copied back to the folder afterwards.
Args fullTmpfs(const std::string& folder) {
  static const char* const script =
      R"(m=$ONVIFCTRL_ROOT$1 u=$ONVIFCTRL_ROOT/.under; shift
mkdir -p "$u" && mount --bind "$m" "$u" && mount -t tmpfs -o size=256k tmpfs "$m" &&
/bin/cp -a "$u/." "$m/" && { cat /dev/zero >"$m/.filler" 2>/dev/null; "$@"
rm "$m/.filler"; /bin/cp -a "$m/." "$u/"; })";
  std::string unshare =
      access("/usr/bin/unshare", X_OK) == 0 ? "/usr/bin/unshare" : "/bin/unshare";
  return {unshare, "-m", "/bin/sh", "-c", script, "sh", folder};
}

struct FullRow {
  Args args;
  std::string full;  // the folder a full tmpfs covers; "": the 1 KiB file-size limit
  Lines watched;     // each comes out as it was or as a normal run leaves it
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
  const FullRow rows[] = {
      {{"-u", "1"}, "", {live, kOnvif}},
      {{"-u", "24"}, "", {kUsers}},
      {{"-u", "26"}, "", {kUsers}},
      {{"-s", "3"}, "", {kOnvif, kOnvif + ".default"}},
      {{"-s", "4"}, "", {kOnvif, kOnvif + ".default"}},
      {{"-u", "24"}, kTemp, {kUsers}},
      {{"-u", "26"}, kTemp, {kUsers}},
      {{"-s", "3"}, kTemp, {kOnvif, kOnvif + ".default"}},
      {{"-u", "13"}, kLive, generated},
  };
  const bool tmpfs = geteuid() == 0 && std::system("unshare -m true 2>/dev/null") == 0;
  for (const FullRow& row : rows) {
    if (!row.full.empty() && !tmpfs)
      GTEST_SKIP() << "unshare -m is refused here: no full tmpfs rows";
    const std::string what = row.args[0] + row.args[1] + " " + row.full;
    Camera normal, full;
    setUp(normal, {}, changes);
    setUp(full, {}, changes);
    std::map<std::string, std::optional<std::string>> before;
    for (const std::string& path : row.watched) before[path] = readIf(full, path);
    std::thread other([&] { normal.run(row.args); });
    full.runUnder(row.full.empty() ? kFileLimit : fullTmpfs(row.full), row.args);
    other.join();
    bool changed = false;
    for (const std::string& path : row.watched) {
      std::optional<std::string> now = readIf(full, path), whole = readIf(normal, path);
      EXPECT_TRUE(now == before[path] || now == whole) << what << ": " << path;
      changed = changed || whole != before[path];
    }
    EXPECT_TRUE(changed) << what << ": a normal run changes a watched file";
    Lines log = full.errorLog();
    EXPECT_TRUE(std::any_of(log.begin(), log.end(), [](const std::string& l) {
      return std::regex_search(l, std::regex(" write failed$"));
    })) << what;
  }
}

struct AppendRow {
  Args args;
  SlotValues slots;
  Files before;
  std::string file;
  std::string after;  // a regular expression
};

TEST(Safety, AnAppendEndsAnUnterminatedLastLineFirst) {
  std::string names;
  for (const char* f : {"A1", "M1", "N1", "T1", "R1", "U1", "V0"})
    names += std::string("RecordingFile=") + f + "\n";
  const std::string recordings = kPersist + "Recordings.conf";
  const std::string storage = "/etc/sysconfig/storage.conf";
  const std::string privacy = "/etc/appWeb/appweb.privacy", pass = "/etc/appWeb/appweb.pass";
  const std::string debugLog = "/tmp/onvif/DebugLog", errorLog = "/tmp/onvif_error";
  const AppendRow rows[] = {
      {{"-u", "24"}, {},
       {{kUsers, "admin:Administrator:a"}, {privacy, "admin:1:1:1:1\nbob:1:1:0:0\n"},
        {pass, "admin:a\nbob:b\n"}},
       kUsers, "admin:Administrator:a\nbob:Operator:b\n"},
      {{"-u", "18"}, {},
       {{storage, "root.Storage.FileNameFormat=1\n"}, {recordings, "RecordingFile=A1"}},
       recordings, names},
      {{"-u", "18"}, {}, {}, recordings, names},
      {{"-u", "27"}, {{Slot::ONVIF_DEBUG_LOG, 1}}, {{debugLog, "old"}}, debugLog,
       "old\n\\d\\d:\\d\\d:\\d\\d API Set Without Audio\n"},
      {{"-u", "20"}, {}, {{errorLog, "old"}, {"/etc/sysconfig/network.conf", {}}}, errorLog,
       "old\nUpdate_IPV6: /etc/sysconfig/network.conf missing\n"},
  };
  Camera cam;
  for (const AppendRow& row : rows) {
    setUp(cam, row.slots, row.before);
    cam.run(row.args);
    EXPECT_TRUE(std::regex_match(cam.read(row.file), std::regex(row.after)))
        << row.args[1] << ": " << cam.read(row.file);
  }
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
  for (int round = 0; round < 3; ++round) {
    std::vector<Args> runs;
    for (int n = 1; n <= 20; ++n) {
      int pick = static_cast<int>(random() % 15);
      if (pick < 3)
        runs.push_back({"-u", pick == 0 ? "5" : pick == 1 ? "15" : "1"});
      else
        runs.push_back({pick < 9 ? "-p" : "-q", std::to_string(n)});
    }
    Camera together, serial;
    setUp(together, {{Slot::ONVIF_BRAND, 12}, {Slot::ONVIF_MULTIPLE_STREAM, 7}}, web);
    setUp(serial, {{Slot::ONVIF_BRAND, 12}, {Slot::ONVIF_MULTIPLE_STREAM, 7}}, web);
    std::vector<std::thread> threads;
    for (const Args& args : runs) threads.emplace_back([&together, args] { together.run(args); });
    for (const Args& args : runs) serial.run(args);
    for (std::thread& t : threads) t.join();
    EXPECT_EQ(onvifFiles(together), onvifFiles(serial)) << "round " << round;
  }
}

}  // namespace
