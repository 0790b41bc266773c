#include "mailclient/windows.h"

#include <algorithm>
#include <utility>

#include "addin/platform/outlook.h"
#include "mailclient/client.h"
#include "mailclient/events.h"
#include "mailclient/folders.h"

namespace mailclient {

namespace outlook = platform::outlook;

namespace {

// An event that nobody listens to costs no object.
template <class Kind, class Window, class... P, class... A>
void tell(const std::shared_ptr<Window>& window, const platform::Event<P...>& event, A&&... arguments) {
  if (const Ref<Kind> listeners(window->view.live()); listeners) listeners.get()->fire(event, arguments...);
}

}  // namespace

ExplorerPtr Windows::openExplorer(const std::shared_ptr<Folder>& folder) {
  auto window = std::make_shared<ExplorerWindow>();
  window->folder = folder;
  explorers_.push_back(window);
  order_.emplace_back(window);
  if (const Ref<Explorers> listeners(explorersView.live()); listeners && listeners.get()->listenerCount() != 0)
    listeners.get()->fire(outlook::ExplorersEvents::NewExplorer, explorerObject(window).get()->object());
  show(window);
  return window;
}

InspectorPtr Windows::openInspector(const MessagePtr& message) {
  const auto open = std::find_if(inspectors_.begin(), inspectors_.end(),
                                 [&](const InspectorPtr& w) { return w->message == message && !w->closing; });
  if (open != inspectors_.end()) {
    const InspectorPtr window = *open;
    activate(window);
    return window;
  }
  auto window = std::make_shared<InspectorWindow>();
  window->message = message;
  inspectors_.push_back(window);
  order_.emplace_back(window);
  if (const Ref<Inspectors> listeners(inspectorsView.live()); listeners && listeners.get()->listenerCount() != 0)
    listeners.get()->fire(outlook::InspectorsEvents::NewInspector, inspectorObject(window).get()->object());
  show(window);
  return window;
}

// A window that cannot be shown is none: it would be counted, and never be closed.
template <class Window>
void Windows::show(const std::shared_ptr<Window>& window) {
  if (!host || window->closing) return;
  try {
    host->opened(window);
  } catch (const RuntimeError&) {
    close(window);
    throw;
  }
}

void Windows::activate(const ExplorerPtr& window) {
  if (host)
    host->toFront(window);
  else
    activated(window);
}

void Windows::activate(const InspectorPtr& window) {
  if (host)
    host->toFront(window);
  else
    activated(window);
}

void Windows::activated(const ExplorerPtr& window) {
  if (window->closing || active_ == Any(window)) return;
  if (makeActive(window)) tell<Explorer>(window, ExplorerEvents::Activate);
}

void Windows::activated(const InspectorPtr& window) {
  if (window->closing || active_ == Any(window)) return;
  if (makeActive(window)) tell<Inspector>(window, InspectorEvents::Activate);
}

void Windows::deactivated(const ExplorerPtr& window) {
  if (active_ == Any(window)) leaveActive();
}

void Windows::deactivated(const InspectorPtr& window) {
  if (active_ == Any(window)) leaveActive();
}

// Those who hear that the other window is left may close this one.
template <class Window>
bool Windows::makeActive(const std::shared_ptr<Window>& window) {
  leaveActive();
  if (window->closing) return false;
  std::erase(order_, Any(window));
  order_.emplace_back(window);
  active_ = window;
  return true;
}

void Windows::leaveActive() {
  const auto left = std::exchange(active_, std::nullopt);
  if (!left) return;
  if (const auto* const explorer = std::get_if<ExplorerPtr>(&*left))
    tell<Explorer>(*explorer, ExplorerEvents::Deactivate);
  else
    tell<Inspector>(std::get<InspectorPtr>(*left), InspectorEvents::Deactivate);
}

void Windows::forget(const Any& window) {
  if (active_ == window) active_.reset();
  std::erase(order_, window);
}

void Windows::close(ExplorerPtr window) {
  if (window->closing) return;
  window->closing = true;
  tell<Explorer>(window, outlook::ExplorerEvents::Close);
  forget(window);
  std::erase(explorers_, window);
  if (host) host->closed(window);
}

void Windows::close(InspectorPtr window) {
  if (window->closing) return;
  window->closing = true;
  tell<Inspector>(window, outlook::InspectorEvents::Close);
  forget(window);
  std::erase(inspectors_, window);
  if (host) host->closed(window);
}

void Windows::closeInspectorsOf(const MessagePtr& message) {
  const auto now = inspectors_;
  for (const InspectorPtr& window : now)
    if (window->message == message) close(window);
}

void Windows::closeAll() {
  const auto items = inspectors_;
  for (const InspectorPtr& window : items) close(window);
  const auto folders = explorers_;
  for (const ExplorerPtr& window : folders) close(window);
}

bool Windows::showFolder(const ExplorerPtr& window, const std::shared_ptr<Folder>& folder) {
  if (window->folder == folder) return true;
  const Ref<Explorer> listeners(window->view.live());
  if (listeners && listeners.get()->listenerCount() != 0) {
    bool cancel = false;
    listeners.get()->fire(ExplorerEvents::BeforeFolderSwitch, client_.folderObject(folder).get()->object(), cancel);
    if (cancel || window->closing || folder->isGone()) return false;
  }
  window->folder = folder;
  const bool hadSelection = !window->selection.empty();
  window->selection.clear();
  if (host) host->folderShown(window);
  if (!window->closing) tell<Explorer>(window, ExplorerEvents::FolderSwitch);
  if (hadSelection && !window->closing) tell<Explorer>(window, outlook::ExplorerEvents::SelectionChange);
  return true;
}

void Windows::select(const ExplorerPtr& window, std::vector<MessagePtr> messages) {
  if (window->selection == messages) return;
  window->selection = std::move(messages);
  if (host) host->selectionChanged(window);
  tell<Explorer>(window, outlook::ExplorerEvents::SelectionChange);
}

Ref<Explorer> Windows::explorerObject(const ExplorerPtr& window) {
  return window->view.get(client_.shared_from_this(), window);
}

Ref<Inspector> Windows::inspectorObject(const InspectorPtr& window) {
  return window->view.get(client_.shared_from_this(), window);
}

Object Windows::activeExplorer() {
  for (auto at = order_.rbegin(); at != order_.rend(); ++at)
    if (const auto* const window = std::get_if<ExplorerPtr>(&*at)) return explorerObject(*window).get()->object();
  return {};
}

Object Windows::activeInspector() {
  for (auto at = order_.rbegin(); at != order_.rend(); ++at)
    if (const auto* const window = std::get_if<InspectorPtr>(&*at)) return inspectorObject(*window).get()->object();
  return {};
}

Object Windows::activeWindow() {
  if (order_.empty()) return {};
  return std::holds_alternative<ExplorerPtr>(order_.back()) ? activeExplorer() : activeInspector();
}

}  // namespace mailclient
