#include "modem/handset.h"

#include <array>
#include <chrono>
#include <utility>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include "measure.h"

namespace bench {
namespace {

class FileActions {
 public:
  FileActions() { posix_spawn_file_actions_init(&actions_); }
  ~FileActions() { posix_spawn_file_actions_destroy(&actions_); }
  FileActions(const FileActions&) = delete;
  FileActions& operator=(const FileActions&) = delete;

  void duplicate(int from, int to) { posix_spawn_file_actions_adddup2(&actions_, from, to); }
  const posix_spawn_file_actions_t* get() const { return &actions_; }

 private:
  posix_spawn_file_actions_t actions_{};
};

pid_t start(std::vector<std::string> words, const FileActions& actions) {
  std::vector<char*> pointers;
  for (std::string& word : words) pointers.push_back(word.data());
  pointers.push_back(nullptr);
  pid_t process = 0;
  require(posix_spawnp(&process, pointers[0], actions.get(), nullptr, pointers.data(), environ) == 0,
          "the program starts");
  return process;
}

struct Pipe {
  Descriptor reading, writing;
};

Pipe makePipe() {
  std::array<int, 2> ends{};
  require(pipe2(ends.data(), O_CLOEXEC) == 0, "a pipe");
  return {Descriptor(ends[0]), Descriptor(ends[1])};
}

}  // namespace

int Descriptor::release() { return std::exchange(descriptor_, -1); }

void Descriptor::close() {
  if (descriptor_ >= 0) ::close(release());
}

Handset::Handset(const std::string& program, const std::vector<std::string>& options) {
  Pipe commands = makePipe();
  Pipe answers = makePipe();
  FileActions actions;
  actions.duplicate(commands.reading.get(), STDIN_FILENO);
  actions.duplicate(answers.writing.get(), STDOUT_FILENO);
  std::vector<std::string> words{program};
  words.insert(words.end(), options.begin(), options.end());
  process_ = start(std::move(words), actions);
  input_ = std::move(commands.writing);
  output_ = std::move(answers.reading);
  answers.writing.close();
  constexpr std::string_view tcp = "* tcp ", terminal = "* terminal ";
  for (std::string said; !said.starts_with(terminal);) {
    said = line();
    if (said.starts_with(tcp)) tcp_ = said.substr(tcp.size());
  }
}

Handset::~Handset() {
  input_.close();
  output_.close();
  waitpid(process_, nullptr, 0);
}

std::string Handset::line() {
  for (;;) {
    const auto end = received_.find('\n');
    if (end != std::string::npos) {
      std::string line = received_.substr(0, end);
      received_.erase(0, end + 1);
      return line;
    }
    std::array<char, 4096> buffer{};
    const ssize_t count = read(output_.get(), buffer.data(), buffer.size());
    require(count > 0, "the handset is there");
    received_.append(buffer.data(), static_cast<std::size_t>(count));
  }
}

std::string Handset::tell(const std::string& command) {
  const std::string typed = command + '\n';
  require(write(input_.get(), typed.data(), typed.size()) == static_cast<ssize_t>(typed.size()), "the handset listens");
  for (;;) {
    const std::string said = line();
    require(!said.starts_with("error"), command.c_str());
    if (said.starts_with("ok")) return said.size() > 3 ? said.substr(3) : "";
  }
}

double wallClock() {
  return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

}  // namespace bench
