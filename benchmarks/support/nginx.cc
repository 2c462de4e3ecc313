// SPDX-License-Identifier: MIT
#include "benchmarks/support/nginx.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <grp.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <pwd.h>
#include <signal.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#if defined(__linux__)
#include <sched.h>
#endif

#include <array>
#include <cerrno>
#include <fstream>
#include <stdexcept>
#include <vector>

extern char** environ;

namespace stowra_bench {

namespace {

// The constructor replaces the @WORDS@. While it answers requests, nginx writes no log and keeps
// files open.
constexpr const char* kConfiguration = R"(
@USER@
daemon off;
worker_processes 1;
pid @FOLDER@/nginx.pid;
lock_file @FOLDER@/nginx.lock;
error_log @FOLDER@/error.log;
events { worker_connections 1024; }
http {
  client_body_temp_path @FOLDER@/uploads;
  proxy_temp_path @FOLDER@/proxy;
  fastcgi_temp_path @FOLDER@/fastcgi;
  uwsgi_temp_path @FOLDER@/uwsgi;
  scgi_temp_path @FOLDER@/scgi;
  access_log off;
  sendfile on;
  sendfile_max_chunk 2m;
  open_file_cache max=64 inactive=1h;
  open_file_cache_valid 1h;
  keepalive_timeout 1h;
  keepalive_requests 1000000000;
  server {
    listen 127.0.0.1:@PORT@;
    location / { root @FOLDER@/files; }
  }
}
)";

void Check(bool good, const std::string& what) {
  if (!good) throw std::runtime_error(what + " failed");
}

void Replace(std::string& text, const std::string& from, const std::string& to) {
  for (std::size_t at = text.find(from); at != std::string::npos;
       at = text.find(from, at + to.size())) {
    text.replace(at, from.size(), to);
  }
}

void WriteFile(const std::filesystem::path& file, std::string_view content) {
  std::ofstream stream(file, std::ios::binary);
  stream << content;
  Check(static_cast<bool>(stream.flush()), "writing " + file.string());
}

// Binds this thread, and the threads and processes that it starts later, to one processor. The time
// of a transfer is then the work of both sides. It does not depend on how the system schedules and
// wakes two processes.
void KeepToOneProcessor() {
#if defined(__linux__)
  cpu_set_t one;
  CPU_ZERO(&one);
  CPU_SET(static_cast<std::size_t>(::sched_getcpu()), &one);
  Check(::sched_setaffinity(0, sizeof(one), &one) == 0, "choosing a processor");
#endif
}

std::filesystem::path MakeFolder() {
  std::string name = (std::filesystem::temp_directory_path() / "stowra-bench-XXXXXX").string();
  Check(::mkdtemp(name.data()) != nullptr, "making a temporary folder");
  return name;
}

// nginx started by root would run its worker as nobody, who cannot read the folder.
std::string UserDirective() {
  if (::geteuid() != 0) return {};
  const passwd* const user = ::getpwuid(::geteuid());
  const group* const users = ::getgrgid(::getegid());
  Check(user != nullptr && users != nullptr, "looking up the user");
  return std::string("user ") + user->pw_name + " " + users->gr_name + ";";
}

// Lets connections to `listener` send without pacing. The system's default algorithm may space
// packets out.
void SendWithoutPauses(int listener) {
#if defined(TCP_CONGESTION)
  constexpr std::string_view kName = "reno";
  Check(::setsockopt(listener, IPPROTO_TCP, TCP_CONGESTION, kName.data(), kName.size()) == 0,
        "choosing the congestion control");
#else
  static_cast<void>(listener);
#endif
}

int Listen(int& port) {
  const int listener = ::socket(AF_INET, SOCK_STREAM, 0);
  ::fcntl(listener, F_SETFD, FD_CLOEXEC);
  SendWithoutPauses(listener);
  sockaddr_in address = {};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t length = sizeof(address);
  auto* const plain = reinterpret_cast<sockaddr*>(&address);
  Check(::bind(listener, plain, length) == 0 && ::listen(listener, 512) == 0 &&
            ::getsockname(listener, plain, &length) == 0,
        "listening on 127.0.0.1");
  port = ntohs(address.sin_port);
  return listener;
}

// Starts nginx with the listening socket. nginx can inherit sockets for upgrades of its own binary,
// from the descriptors that the variable NGINX names.
pid_t Spawn(const std::filesystem::path& folder, int listener) {
  const std::string program = STOWRA_NGINX;
  Check(!program.empty(), "finding nginx");
  std::array<std::string, 7> arguments = {program,
                                          "-p",
                                          folder.string(),
                                          "-c",
                                          (folder / "nginx.conf").string(),
                                          "-e",
                                          (folder / "error.log").string()};
  std::vector<char*> argv;
  for (std::string& argument : arguments) argv.push_back(argument.data());
  argv.push_back(nullptr);

  std::string inherited = "NGINX=0;";
  std::vector<char*> environment = {inherited.data()};
  for (char** variable = environ; *variable != nullptr; ++variable) {
    environment.push_back(*variable);
  }
  environment.push_back(nullptr);

  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_adddup2(&actions, listener, STDIN_FILENO);
  pid_t process = -1;
  const int result =
      ::posix_spawn(&process, program.c_str(), &actions, nullptr, argv.data(), environment.data());
  posix_spawn_file_actions_destroy(&actions);
  Check(result == 0, "starting nginx");
  return process;
}

}  // namespace

Nginx::Nginx() : folder_(MakeFolder()) {
  KeepToOneProcessor();
  std::filesystem::create_directory(folder_ / "files");
  const int listener = Listen(port_);
  std::string configuration = kConfiguration;
  Replace(configuration, "@FOLDER@", folder_.string());
  Replace(configuration, "@PORT@", std::to_string(port_));
  Replace(configuration, "@USER@", UserDirective());
  WriteFile(folder_ / "nginx.conf", configuration);
  process_ = Spawn(folder_, listener);
  ::close(listener);
}

Nginx::~Nginx() {
  ::kill(process_, SIGTERM);
  while (::waitpid(process_, nullptr, 0) < 0 && errno == EINTR) {
  }
  std::error_code ignored;
  std::filesystem::remove_all(folder_, ignored);
}

Nginx& Nginx::OfThisProgram() {
  static Nginx server;
  return server;
}

std::string Nginx::AddFile(const std::string& name, std::string_view content) {
  WriteFile(folder_ / "files" / name, content);
  return Url(name);
}

std::string Nginx::AddSparseFile(const std::string& name, std::size_t size) {
  AddFile(name, "");
  std::filesystem::resize_file(folder_ / "files" / name, size);
  return Url(name);
}

std::string Nginx::Url(const std::string& name) const {
  return "http://127.0.0.1:" + std::to_string(port_) + "/" + name;
}

}  // namespace stowra_bench
