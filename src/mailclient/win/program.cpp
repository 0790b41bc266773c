#include "mailclient/win/program.h"

#include <cstdio>
#include <utility>

#include "mailclient/text_coding.h"

namespace mailclient::win {

void Program::execute(const std::string& line) {
  console_.execute(line);
  saveButtons();
}

void Program::loadAddIns() {
  addIns_.loadAtStartup();
  saveButtons();
}

int Program::serveMessages() {
  MSG message{};
  while (GetMessageW(&message, nullptr, 0, 0) > 0) {
    TranslateMessage(&message);
    DispatchMessageW(&message);
  }
  quit();  // when it was not we who ended the loop
  return static_cast<int>(message.wParam);
}

// Closing all windows lets their last events out first, while the add-ins still hear.
void Program::quit() {
  if (std::exchange(ending_, true)) return;
  Steps steps;
  leaving(steps);
  steps.run([&] { client_.quit(); });
  steps.run([&] { addIns_.shutDown(); });
  steps.run([&] { client_.saveSettings(); });
  left(steps);
  if (steps.failure())
    std::fprintf(stderr, "mailclient: not everything could be saved: %s\n",
                 toUtf8(steps.failure()->description).c_str());
  PostQuitMessage(steps.failure() ? 1 : 0);
}

// A crash leaves the buttons that programs have added; the next run must find them by their tags.
void Program::saveButtons() {
  Steps silent;  // the end tries again, and says what fails
  if (!ending_) silent.run([&] { client_.saveSettings(); });
}

}  // namespace mailclient::win
