#include "camera.h"

#include <dirent.h>
#include <fcntl.h>
#include <spawn.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <sstream>
#include <stdexcept>

#include "host_shm.h"

extern char** environ;

namespace testkit {

namespace {

void must(bool ok, const std::string& what) {
  if (!ok) throw std::runtime_error(what + ": " + std::strerror(errno));
}

void sh(const std::string& command) {
  int rc = std::system(command.c_str());
  if (rc != 0) throw std::runtime_error("command failed: " + command);
}

// A wrapper that records its command line, then runs the real tool.
void writeTraceWrapper(const std::string& dir, const char* name) {
  std::string path = dir + "/" + name;
  std::ofstream out(path);
  out << "#!/bin/sh\n"
      << "{ printf '%s' '" << name
      << "'; for a in \"$@\"; do printf ' %s' \"$a\"; done; printf '\\n'; }"
      << " >> \"$ONVIFCTRL_TRACE\"\n"
      << "exec /bin/" << name << " \"$@\"\n";
  out.close();
  must(chmod(path.c_str(), 0755) == 0, "chmod " + path);
}

// The strings as a null-ended array for exec.
std::vector<char*> cStrings(Lines& strings) {
  std::vector<char*> out;
  for (std::string& s : strings) out.push_back(s.data());
  out.push_back(nullptr);
  return out;
}

// A binary under test: the one built here, or the one the environment names
// (a cross-built onvifCtrl behind an emulator wrapper, an installed binary).
std::string binaryUnderTest(const char* variable, const char* built) {
  const char* named = std::getenv(variable);
  return named != nullptr && *named != '\0' ? named : built;
}

std::string replaceAll(std::string s, const std::string& from, const std::string& to) {
  for (std::size_t at = s.find(from); at != std::string::npos; at = s.find(from, at + to.size()))
    s.replace(at, from.size(), to);
  return s;
}

void walk(const std::string& root, const std::string& dir, Tree& tree) {
  DIR* d = opendir((root + dir).c_str());
  if (d == nullptr) return;
  while (const dirent* e = readdir(d)) {
    std::string name = e->d_name, path = dir + "/" + name;
    struct stat st {};
    if (name == "." || name == ".." || name == ".trace" || name == ".run" ||
        lstat((root + path).c_str(), &st) != 0)
      continue;
    if (S_ISDIR(st.st_mode)) walk(root, path, tree);
    if (S_ISREG(st.st_mode)) tree[path] = readFile(root + path);
  }
  closedir(d);
}

// Runs `f` with ONVIFCTRL_ROOT naming `root`, where the host functions look.
template <typename F>
auto underRoot(const std::string& root, F f) {
  setenv("ONVIFCTRL_ROOT", root.c_str(), 1);
  auto result = f();
  unsetenv("ONVIFCTRL_ROOT");
  return result;
}

}  // namespace

std::string readFile(const std::string& hostPath) {
  std::ifstream in(hostPath, std::ios::binary);
  std::ostringstream s;
  s << in.rdbuf();
  return s.str();
}

Lines splitLines(const std::string& text) {
  Lines out;
  std::size_t start = 0;
  while (start < text.size()) {
    std::size_t nl = text.find('\n', start);
    if (nl == std::string::npos) nl = text.size();
    out.push_back(text.substr(start, nl - start));
    start = nl + 1;
  }
  return out;
}

Tree filesUnder(const std::string& hostDir) {
  Tree tree;
  walk(hostDir, "", tree);
  return tree;
}

Camera::Camera(const SlotValues& slots, const std::string& prefix) {
  std::string tmpl = prefix + "XXXXXX";
  must(mkdtemp(tmpl.data()) != nullptr, "mkdtemp");
  root_ = tmpl;
  sh("cp -R '" ONVIFCTRL_SAMPLE "/.' '" + root_ + "/'");
  sh("mkdir -p '" + root_ + "/tmp/onvif/tmp' '" + root_ + "/.trace/bin' '" + root_ + "/.run'");
  writeTraceWrapper(root_ + "/.trace/bin", "cp");
  writeTraceWrapper(root_ + "/.trace/bin", "rm");
  startServer(slots);
}

Camera::~Camera() {
  stopServer();  // also a block that onvif-shm made
  std::system(("rm -rf '" + root_ + "'").c_str());
}

void Camera::startServer(const SlotValues& slots) {
  stopServer();
  std::string error;
  auto create = [&] { return underRoot(root_, [&] { return host::createServerBlock(&error); }); };
  // Two roots may get the same ftok key; a new inode gives a new key.
  for (int attempt = 1; !create(); ++attempt) {
    if (attempt == 20) throw std::runtime_error("cannot create the server block: " + error);
    std::string path = host(shm::kServerShmPath);
    std::remove(path.c_str());
    std::ofstream(path + ".spare" + std::to_string(attempt));
  }
  for (const auto& [s, v] : slots) setSlot(s, v);
}

void Camera::stopServer() {
  underRoot(root_, [] { return host::removeServerBlock(); });
  std::remove(host(shm::kServerShmPath).c_str());
}

std::optional<shm::ShmBlock> Camera::block() const {
  return underRoot(root_, [] { return host::attachServerBlock(); });
}

int Camera::slot(shm::Slot s) const { return block().value().get(s); }
void Camera::setSlot(int index, int value) { block().value().put(index, value); }

RunResult Camera::exec(const std::string& binary, const Lines& args) const {
  const char* path = std::getenv("PATH");
  Lines env = {"ONVIFCTRL_ROOT=" + root_, "ONVIFCTRL_TRACE=" + root_ + "/.trace/log",
               "PATH=" + root_ + "/.trace/bin:" + (path ? path : "/usr/bin:/bin")};
  for (char** e = environ; *e != nullptr; ++e) {
    const std::string kv = *e, name = kv.substr(0, kv.find('='));
    if (name != "ONVIFCTRL_ROOT" && name != "ONVIFCTRL_TRACE" && name != "PATH") env.push_back(kv);
  }
  Lines words = {binary};
  words.insert(words.end(), args.begin(), args.end());
  std::vector<char*> argv = cStrings(words), envp = cStrings(env);

  std::string outPath = root_ + "/.run/out";
  std::string errPath = root_ + "/.run/err";
  std::remove((root_ + "/.trace/log").c_str());  // the trace of this run only
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, 1, outPath.c_str(), O_WRONLY | O_CREAT | O_TRUNC,
                                   0644);
  posix_spawn_file_actions_addopen(&actions, 2, errPath.c_str(), O_WRONLY | O_CREAT | O_TRUNC,
                                   0644);
  pid_t pid;
  int rc = posix_spawn(&pid, binary.c_str(), &actions, nullptr, argv.data(), envp.data());
  posix_spawn_file_actions_destroy(&actions);
  if (rc != 0) throw std::runtime_error("cannot run " + binary);
  int status = 0;
  while (waitpid(pid, &status, 0) == -1 && errno == EINTR) {
  }
  RunResult r;
  r.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  r.out = readFile(outPath);
  r.err = readFile(errPath);
  return r;
}

RunResult Camera::run(const Lines& args) const {
  return exec(binaryUnderTest("ONVIFCTRL_TEST_BIN", ONVIFCTRL_BIN), args);
}
RunResult Camera::runShm(const Lines& args) const {
  return exec(binaryUnderTest("ONVIF_SHM_TEST_BIN", ONVIF_SHM_BIN), args);
}

RunResult Camera::runUnder(const Lines& wrapper, const Lines& args) const {
  std::vector<std::string> words(wrapper.begin() + 1, wrapper.end());
  words.push_back(ONVIFCTRL_BIN);
  words.insert(words.end(), args.begin(), args.end());
  return exec(wrapper.front(), words);
}

std::string Camera::host(const std::string& cameraPath) const { return root_ + cameraPath; }
std::string Camera::read(const std::string& cameraPath) const { return readFile(host(cameraPath)); }

void Camera::write(const std::string& cameraPath, const std::string& content) const {
  std::string p = host(cameraPath);
  std::string dir = p.substr(0, p.rfind('/'));
  sh("mkdir -p '" + dir + "'");
  std::ofstream out(p, std::ios::binary | std::ios::trunc);
  out << content;
  if (!out) throw std::runtime_error("cannot write " + p);
}

bool Camera::exists(const std::string& cameraPath) const {
  struct stat st {};
  return lstat(host(cameraPath).c_str(), &st) == 0;
}

void Camera::remove(const std::string& cameraPath) const {
  std::system(("rm -rf '" + host(cameraPath) + "'").c_str());
}

Lines Camera::errorLog() const { return splitLines(read("/tmp/onvif_error")); }

Lines Camera::shellTrace() const {
  return splitLines(replaceAll(readFile(root_ + "/.trace/log"), root_, ""));
}

FixedKeyLock::FixedKeyLock() : fd_(open("/tmp/onvifctrl-fixed-keys.lock", O_CREAT | O_RDWR, 0666)) {
  must(fd_ >= 0, "open the fixed-key lock");
  must(flock(fd_, LOCK_EX) == 0, "lock the fixed-key lock");
}

FixedKeyLock::~FixedKeyLock() {
  flock(fd_, LOCK_UN);
  close(fd_);
}

}  // namespace testkit
