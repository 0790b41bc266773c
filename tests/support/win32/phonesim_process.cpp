#include "support/win32/phonesim_process.h"

#include "support/win32/mail_client_process.h"
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

void PhonesimProcess::type(std::string_view command) { pipes_->write(std::string(command) + "\n"); }
void PhonesimProcess::kill() { pipes_->kill(); }

}  // namespace testing_support
