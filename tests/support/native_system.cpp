#include "support/native_system.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

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

void NativeFiles::read(platform::StringView path, const std::function<bool(std::string_view piece)>& take) {
  journal_.write("read file \"" + utf8(path) + "\"");
  const auto at = contents.find(platform::String(path));
  if (at == contents.end()) platform::raiseError(53);
  const std::string& bytes = at->second;
  for (std::size_t position = 0; position < bytes.size(); position += pieceSize) {
    if (position + pieceSize > breaksAt) platform::raiseError(75);
    if (!take(std::string_view(bytes).substr(position, pieceSize))) return;
  }
}

bool NativeUserInterface::showForm(platform::Form& form, platform::FormModality modality) {
  const bool modal = modality == platform::FormModality::Modal;
  journal_.write("form " + utf8(form.Name()) + (modal ? " modal" : ""));
  shown.push_back({platform::String(form.Name()), modality});
  if (windowsCannotBeMade) platform::raiseError(7);
  if (!form.View()) views_.push_back(std::make_shared<ScriptedView>(form));
  const auto at =
      std::find_if(views_.begin(), views_.end(), [&](const auto& view) { return view.get() == form.View(); });
  const std::shared_ptr<ScriptedView> view = *at;  // others may come while it is open
  if (const auto act = whenShown) act(*view);      // it may put another in its own place
  while (modal && form.IsLoaded()) {
    if (pump_.wait(1000)) continue;
    form.Unload();
    return false;
  }
  return true;
}

ScriptedView* NativeUserInterface::find(platform::StringView form) const {
  const auto at = std::find_if(views_.begin(), views_.end(), [&](const auto& view) {
    return view->isOpen() && platform::sameName(view->form().Name(), form);
  });
  return at == views_.end() ? nullptr : at->get();
}

ScriptedView& NativeUserInterface::view(platform::StringView form) {
  ScriptedView* const found = find(form);
  if (!found) throw std::logic_error("no form " + utf8(form) + " is open");
  return *found;
}

void NativeUserInterface::closeAll() {
  for (const auto& view : std::exchange(views_, {})) view->close();
}

}  // namespace testing_support
