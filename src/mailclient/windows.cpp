#include "mailclient/windows.h"

#include <algorithm>

#include "addin/platform/outlook.h"
#include "mailclient/client.h"

namespace mailclient {

namespace outlook = platform::outlook;

ExplorerPtr Windows::openExplorer(const std::shared_ptr<Folder>& folder) {
  auto window = std::make_shared<ExplorerWindow>();
  window->folder = folder;
  explorers_.push_back(window);
  order_.emplace_back(window);
  if (const Ref<Explorers> listeners(explorersView.live()); listeners && listeners.get()->listenerCount() != 0)
    listeners.get()->fire(outlook::ExplorersEvents::NewExplorer, explorerObject(window).get()->object());
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
  return window;
}

void Windows::activate(const ExplorerPtr& window) {
  std::erase(order_, std::variant<ExplorerPtr, InspectorPtr>(window));
  order_.emplace_back(window);
}

void Windows::activate(const InspectorPtr& window) {
  std::erase(order_, std::variant<ExplorerPtr, InspectorPtr>(window));
  order_.emplace_back(window);
}

void Windows::close(ExplorerPtr window) {
  if (window->closing) return;
  window->closing = true;
  if (const Ref<Explorer> listeners(window->view.live()); listeners)
    listeners.get()->fire(outlook::ExplorerEvents::Close);
  std::erase(order_, std::variant<ExplorerPtr, InspectorPtr>(window));
  std::erase(explorers_, window);
}

void Windows::close(InspectorPtr window) {
  if (window->closing) return;
  window->closing = true;
  if (const Ref<Inspector> listeners(window->view.live()); listeners)
    listeners.get()->fire(outlook::InspectorEvents::Close);
  std::erase(order_, std::variant<ExplorerPtr, InspectorPtr>(window));
  std::erase(inspectors_, window);
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

void Windows::showFolder(const ExplorerPtr& window, const std::shared_ptr<Folder>& folder) {
  if (window->folder == folder) return;
  window->folder = folder;
  select(window, {});
}

void Windows::select(const ExplorerPtr& window, std::vector<MessagePtr> messages) {
  if (window->selection == messages) return;
  window->selection = std::move(messages);
  if (const Ref<Explorer> listeners(window->view.live()); listeners)
    listeners.get()->fire(outlook::ExplorerEvents::SelectionChange);
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
