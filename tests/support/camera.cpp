#include "camera.h"

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

std::string slurp(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  std::ostringstream s;
  s << in.rdbuf();
  return s.str();
}

std::string realTool(const char* name) {
  for (const char* dir : {"/bin/", "/usr/bin/"}) {
    std::string p = std::string(dir) + name;
    if (access(p.c_str(), X_OK) == 0) return p;
  }
  return name;
}

// A wrapper that records its command line, then runs the real tool.
void writeTraceWrapper(const std::string& dir, const char* name) {
  std::string path = dir + "/" + name;
  std::ofstream out(path);
  out << "#!/bin/sh\n"
      << "{ printf '%s' '" << name << "'; for a in \"$@\"; do printf ' %s' \"$a\"; done; printf '\\n'; }"
      << " >> \"$ONVIFCTRL_TRACE\"\n"
      << "exec " << realTool(name) << " \"$@\"\n";
  out.close();
  must(chmod(path.c_str(), 0755) == 0, "chmod " + path);
}

std::string replaceAll(std::string s, const std::string& from, const std::string& to) {
  for (std::size_t at = s.find(from); at != std::string::npos; at = s.find(from, at + to.size()))
    s.replace(at, from.size(), to);
  return s;
}

}  // namespace

std::vector<std::string> splitLines(const std::string& text) {
  std::vector<std::string> out;
  std::size_t start = 0;
  while (start < text.size()) {
    std::size_t nl = text.find('\n', start);
    if (nl == std::string::npos) {
      out.push_back(text.substr(start));
      break;
    }
    out.push_back(text.substr(start, nl - start));
    start = nl + 1;
  }
  return out;
}

bool hasLine(const std::vector<std::string>& lines, const std::string& needle) {
  for (const std::string& l : lines)
    if (l == needle) return true;
  return false;
}

Camera::Camera(const std::string& prefix) {
  std::string tmpl = prefix + "XXXXXX";
  must(mkdtemp(tmpl.data()) != nullptr, "mkdtemp");
  root_ = tmpl;
  sh("cp -R '" ONVIFCTRL_SAMPLE "/.' '" + root_ + "/'");
  sh("mkdir -p '" + root_ + "/tmp/onvif/tmp' '" + root_ + "/.trace/bin' '" + root_ + "/.run'");
  writeTraceWrapper(root_ + "/.trace/bin", "cp");
  writeTraceWrapper(root_ + "/.trace/bin", "rm");
}

Camera::~Camera() {
  stopServer();  // also a block that onvif-shm made
  std::system(("rm -rf '" + root_ + "'").c_str());
}

void Camera::startServer(std::initializer_list<std::pair<shm::Slot, int>> slots) {
  setenv("ONVIFCTRL_ROOT", root_.c_str(), 1);
  std::string error;
  bool created = false;
  // Two roots may get the same ftok key; a new inode gives a new key.
  for (int attempt = 0; attempt < 20 && !created; ++attempt) {
    created = host::createServerBlock(&error);
    if (!created) {
      std::string path = host(shm::kServerShmPath);
      std::remove(path.c_str());
      std::string spare = path + ".spare" + std::to_string(attempt);
      std::FILE* f = std::fopen(spare.c_str(), "w");
      if (f != nullptr) std::fclose(f);
    }
  }
  unsetenv("ONVIFCTRL_ROOT");
  if (!created) throw std::runtime_error("cannot create the server block: " + error);
  for (const auto& [s, v] : slots) setSlot(s, v);
}

void Camera::stopServer() {
  setenv("ONVIFCTRL_ROOT", root_.c_str(), 1);
  host::removeServerBlock();
  unsetenv("ONVIFCTRL_ROOT");
}

namespace {

std::optional<shm::ShmBlock> attachUnder(const std::string& root) {
  setenv("ONVIFCTRL_ROOT", root.c_str(), 1);
  std::optional<shm::ShmBlock> b = host::attachServerBlock();
  unsetenv("ONVIFCTRL_ROOT");
  if (!b) throw std::runtime_error("no server block under " + root);
  return b;
}

}  // namespace

int Camera::slot(shm::Slot s) const { return slot(shm::index(s)); }
int Camera::slot(int index) const { return attachUnder(root_)->at(index); }
void Camera::setSlot(shm::Slot s, int value) { setSlot(shm::index(s), value); }
void Camera::setSlot(int index, int value) { attachUnder(root_)->put(index, value); }

RunResult Camera::exec(const std::string& binary, const std::vector<std::string>& args) const {
  std::vector<std::string> env;
  for (char** e = environ; *e != nullptr; ++e) {
    std::string kv = *e;
    if (kv.rfind("ONVIFCTRL_ROOT=", 0) == 0 || kv.rfind("PATH=", 0) == 0 ||
        kv.rfind("ONVIFCTRL_TRACE=", 0) == 0)
      continue;
    env.push_back(kv);
  }
  const char* path = std::getenv("PATH");
  env.push_back("ONVIFCTRL_ROOT=" + root_);
  env.push_back("ONVIFCTRL_TRACE=" + root_ + "/.trace/log");
  env.push_back("PATH=" + root_ + "/.trace/bin:" + (path ? path : "/usr/bin:/bin"));

  std::vector<char*> argv{const_cast<char*>(binary.c_str())};
  for (const std::string& a : args) argv.push_back(const_cast<char*>(a.c_str()));
  argv.push_back(nullptr);
  std::vector<char*> envp;
  for (std::string& kv : env) envp.push_back(kv.data());
  envp.push_back(nullptr);

  std::string outPath = root_ + "/.run/out";
  std::string errPath = root_ + "/.run/err";
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, 1, outPath.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
  posix_spawn_file_actions_addopen(&actions, 2, errPath.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
  pid_t pid;
  int rc = posix_spawn(&pid, binary.c_str(), &actions, nullptr, argv.data(), envp.data());
  posix_spawn_file_actions_destroy(&actions);
  if (rc != 0) throw std::runtime_error("cannot run " + binary);
  int status = 0;
  while (waitpid(pid, &status, 0) == -1 && errno == EINTR) {
  }
  RunResult r;
  r.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  r.out = slurp(outPath);
  r.err = slurp(errPath);
  return r;
}

RunResult Camera::run(const std::vector<std::string>& args) const { return exec(ONVIFCTRL_BIN, args); }
RunResult Camera::runShm(const std::vector<std::string>& args) const { return exec(ONVIF_SHM_BIN, args); }

std::string Camera::host(const std::string& cameraPath) const { return root_ + cameraPath; }
std::string Camera::read(const std::string& cameraPath) const { return slurp(host(cameraPath)); }
std::vector<std::string> Camera::lines(const std::string& cameraPath) const {
  return splitLines(read(cameraPath));
}

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

std::vector<std::string> Camera::errorLog() const { return lines("/tmp/onvif_error"); }

std::vector<std::string> Camera::shellTrace() const {
  return splitLines(replaceAll(slurp(root_ + "/.trace/log"), root_, ""));
}

void Camera::clearTrace() const { std::remove((root_ + "/.trace/log").c_str()); }

FixedKeyLock::FixedKeyLock() : fd_(open("/tmp/onvifctrl-fixed-keys.lock", O_CREAT | O_RDWR, 0666)) {
  must(fd_ >= 0, "open the fixed-key lock");
  must(flock(fd_, LOCK_EX) == 0, "lock the fixed-key lock");
}

FixedKeyLock::~FixedKeyLock() {
  flock(fd_, LOCK_UN);
  close(fd_);
}

}  // namespace testkit
