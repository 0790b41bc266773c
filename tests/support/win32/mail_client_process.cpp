#include "support/win32/mail_client_process.h"

#include "support/win32/piped_process.h"

namespace testing_support {

std::wstring productFolder() {
  wchar_t path[MAX_PATH];
  GetModuleFileNameW(nullptr, path, MAX_PATH);
  std::wstring folder = path;
  folder.resize(folder.rfind(L'\\'));
  folder.resize(folder.rfind(L'\\'));
  return folder + L"\\bin";
}

class MailClientProcess::Pipes final : public PipedProcess {
 public:
  using PipedProcess::PipedProcess;
};

MailClientProcess::MailClientProcess(NotAwaited, const std::wstring& arguments, const std::wstring& mode)
    : pipes_(std::make_unique<Pipes>(L"\"" + productFolder() + L"\\mailclient.exe\" " + mode + L" " + arguments)) {}

MailClientProcess::MailClientProcess(const std::wstring& arguments, const std::wstring& mode)
    : MailClientProcess(NotAwaited{}, arguments, mode) {
  awaitReady();
}

bool MailClientProcess::awaitReady() {
  ready_ = answerTo(0).result == "ready";
  return ready_;
}

MailClientProcess::~MailClientProcess() = default;

bool MailClientProcess::isRunning() const { return pipes_->isRunning(); }
std::uint32_t MailClientProcess::processId() const { return pipes_->id(); }
std::uint32_t MailClientProcess::exitCode() const { return pipes_->exitCode(); }
bool MailClientProcess::waitForEnd(std::uint32_t milliseconds) const { return pipes_->waitForEnd(milliseconds); }
void MailClientProcess::kill() { pipes_->kill(); }

int MailClientProcess::send(std::string_view command) {
  pipes_->write(std::string(command) + "\n");
  return ++sent_;
}

Answer MailClientProcess::answerTo(int number, std::uint32_t milliseconds) {
  const std::string prefix = std::to_string(number) + " ";
  Answer answer;
  const bool came = pipes_->waitFor(milliseconds, [&](const std::vector<std::string>& lines) {
    answer = {};
    for (const std::string& line : lines) {
      if (!line.starts_with(prefix)) continue;
      const std::string text = line.substr(prefix.size());
      if (text.starts_with("- ")) {
        answer.lines.push_back(text.substr(2));
        continue;
      }
      const std::string kind = text.substr(0, text.find(' '));
      answer.ok = kind == "ok" || kind == "ready";
      answer.result = kind == text ? (kind == "ok" ? "" : kind) : text.substr(kind.size() + 1);
      return true;
    }
    return false;
  });
  if (!came) answer = {false, "no answer", {}};
  return answer;
}

bool MailClientProcess::quit(std::uint32_t milliseconds) {
  send("quit");
  return waitForEnd(milliseconds);
}

std::string MailClientProcess::field(const std::string& line, const std::string& name) {
  const std::size_t at = (" " + line).find(" " + name + "=");
  if (at == std::string::npos) return {};
  const std::string value = line.substr(at + name.size() + 1);
  if (!value.starts_with('"')) return value.substr(0, value.find(' '));
  std::size_t end = 1;
  while (end < value.size() && value[end] != '"') end += value[end] == '\\' ? 2 : 1;
  return value.substr(1, end - 1);
}

}  // namespace testing_support
