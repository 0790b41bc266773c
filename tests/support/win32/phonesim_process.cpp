#include "support/win32/phonesim_process.h"

#include "support/win32/piped_process.h"

namespace testing_support {

class PhonesimProcess::Pipes final : public PipedProcess {
 public:
  using PipedProcess::PipedProcess;
};

PhonesimProcess::PhonesimProcess(const std::wstring& arguments)
    : pipes_(std::make_unique<Pipes>(L"\"" + productFolder() + L"\\phonesim.exe\" " + arguments)) {}

PhonesimProcess::~PhonesimProcess() = default;

std::optional<std::string> PhonesimProcess::awaitLine(std::string_view beginning, std::uint32_t milliseconds) {
  std::optional<std::string> rest;
  pipes_->waitFor(milliseconds, [&](const std::vector<std::string>& lines) {
    for (const std::string& line : lines)
      if (!rest && line.starts_with(beginning)) rest = line.substr(beginning.size());
    return rest.has_value();
  });
  return rest;
}

int PhonesimProcess::send(std::string_view command) {
  pipes_->write(std::string(command) + "\n");
  return ++sent_;
}

// Answers come in the order of the commands, with notices between them.
Answer PhonesimProcess::ask(std::string_view command, std::uint32_t milliseconds) {
  const int number = send(command);
  Answer answer;
  const bool came = pipes_->waitFor(milliseconds, [&](const std::vector<std::string>& lines) {
    int answers = 0;
    answer = {};
    for (const std::string& line : lines) {
      if (line.starts_with("- ")) answer.lines.push_back(line.substr(2));
      const bool ok = line == "ok" || line.starts_with("ok ");
      if (!ok && !line.starts_with("error ")) continue;
      if (++answers == number) {
        answer.ok = ok;
        answer.result = line == "ok" ? "" : line.substr(line.find(' ') + 1);
        return true;
      }
      answer.lines.clear();
    }
    return false;
  });
  if (!came) answer = {false, "no answer", {}};
  return answer;
}

void PhonesimProcess::kill() { pipes_->kill(); }

}  // namespace testing_support
