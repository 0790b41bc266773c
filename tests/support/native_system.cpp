#include "support/native_system.h"

#include <algorithm>

#include "support/text.h"

namespace testing_support {

void NativeShell::start(platform::StringView command, std::int16_t windowStyle) {
  journal_.write("start \"" + utf8(command) + "\" style " + std::to_string(windowStyle));
  if (command.empty()) platform::raiseError(5);
  if (programsAreMissing) platform::raiseError(53);
  started.push_back({platform::String(command), windowStyle});
  if (whenStarting) whenStarting();
}

void NativeShell::htmlHelp(platform::WindowHandle owner, const std::string& path, std::uint32_t command,
                           std::uint32_t data) {
  journal_.write("help \"" + path + "\"");
  if (helpViewerIsMissing) platform::raiseError(53);
  helps.push_back({owner, path, command, data});
}

platform::Object NativeObjects::create(platform::StringView progId) {
  journal_.write("create object " + utf8(progId));
  asked.emplace_back(progId);
  const auto at = find(progId);
  if (at == entries_.end()) platform::raiseError(429);
  const Factory factory = at->factory;  // it may provide others
  return factory();
}

void NativeObjects::provide(platform::StringView progId, Factory factory) {
  withdraw(progId);
  entries_.push_back({platform::String(progId), std::move(factory)});
}

void NativeObjects::withdraw(platform::StringView progId) {
  if (const auto at = find(progId); at != entries_.end()) entries_.erase(at);
}

std::vector<NativeObjects::Entry>::iterator NativeObjects::find(platform::StringView progId) {
  return std::find_if(entries_.begin(), entries_.end(),
                      [&](const Entry& e) { return platform::sameName(e.progId, progId); });
}

std::int32_t NativeUserInterface::messageBox(platform::StringView prompt, std::int32_t flags,
                                             platform::StringView title) {
  journal_.write("box \"" + utf8(title) + "\"");
  boxes.push_back({platform::String(prompt), flags, platform::String(title)});
  if (whileBoxIsOpen) whileBoxIsOpen();
  return answer;
}

void NativeUserInterface::showForm(platform::StringView form, platform::FormModality modality) {
  journal_.write("form " + utf8(form));
  forms.push_back({platform::String(form), modality});
  if (!onShowForm) platform::raiseError(438);
  onShowForm(form, modality);
}

}  // namespace testing_support
