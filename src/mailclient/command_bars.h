// The command bars as data: bars, the controls on them, and the popups that open further bars. Built-in ones have the
// control identifiers of Office 2000; programs add buttons, of which the permanent ones come back in the next run.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "mailclient/model_object.h"
#include "mailclient/persistence.h"

namespace mailclient {

struct BuiltInCommand;
class CommandBar;
class CommandBarControl;
class CommandBars;

enum class ControlType : std::int32_t { Button = 1, Popup = 10 };

// Control identifiers of the built-in popups.
namespace menu {
inline constexpr std::int32_t file = 30002;
inline constexpr std::int32_t edit = 30003;
inline constexpr std::int32_t view = 30004;
inline constexpr std::int32_t tools = 30007;
inline constexpr std::int32_t help = 30010;
inline constexpr std::int32_t newItem = 30037;  // inside File
inline constexpr std::int32_t favorites = 30017;
inline constexpr std::int32_t actions = 30131;
}  // namespace menu

inline constexpr StringView menuBarName = u"Menu Bar";

struct Bar;
using BarPtr = std::shared_ptr<Bar>;

struct Control {
  ControlType type = ControlType::Button;
  std::int32_t id = 1;  // 1: made by a program
  bool builtIn = false;
  bool temporary = false;
  bool deleted = false;
  Bar* bar = nullptr;  // where it lies; every bar lives as long as its BarSet
  BarPtr popup;        // what a popup opens
  String caption;
  String tag;
  String tooltip;
  String parameter;
  String onAction;
  std::int32_t faceId = 0;
  std::int32_t style = 0;  // MsoButtonStyle
  std::int32_t state = 0;  // MsoButtonState
  bool beginGroup = false;
  bool enabled = true;
  bool visible = true;
  View<CommandBarControl> view;
};
using ControlPtr = std::shared_ptr<Control>;

struct Bar {
  String name;
  std::int32_t type = 0;    // MsoBarType: 0 toolbar, 1 menu bar, 2 popup
  std::int32_t menuId = 0;  // of a popup's bar: the popup's control identifier
  bool enabled = true;
  bool visible = true;
  std::vector<ControlPtr> controls;
  View<CommandBar> view;
};

// What FindControl looks for; an empty field matches everything.
struct ControlQuery {
  std::optional<std::int32_t> type{};
  std::optional<std::int32_t> id{};
  std::optional<String> tag{};
  bool visibleOnly = false;
};

// The command bars of one kind of window.
class BarSet {
 public:
  // Builds the built-in bars without the popups in `leftOut`, and puts the saved buttons into those that are there.
  BarSet(const std::vector<std::int32_t>& leftOut, const std::vector<SavedButton>& saved);

  const std::vector<BarPtr>& bars() const { return bars_; }
  BarPtr bar(StringView name) const;  // null when there is none
  // The first match, depth first; null when there is none.
  static ControlPtr find(const Bar& bar, const ControlQuery& query, bool recursive);
  ControlPtr find(const ControlQuery& query) const;

  // A button at a position (from 0), or at the end.
  static ControlPtr addButton(Bar& bar, std::optional<std::size_t> position, bool temporary);
  static void remove(const ControlPtr& control);

  // What a click of the user does: the Click event, when the button is there, enabled and visible. False otherwise.
  bool click(const ControlPtr& control);
  // Hears that a control was added, removed or looks different.
  std::function<void()> changed = [] {};
  // What a built-in command does; nothing where there is no window.
  std::function<void(std::int32_t id)> runBuiltIn;
  // The built-in controls of a command, in the menus and on the toolbar.
  std::vector<ControlPtr> controlsOf(std::int32_t id) const;

  std::vector<SavedButton> permanentButtons() const;
  // Calls `visit` for every control, depth first.
  void forEach(const std::function<void(const ControlPtr&)>& visit) const;

  View<CommandBars> view;

 private:
  void addBuiltIn(const BuiltInCommand& what);
  void restore(const SavedButton& saved);

  std::vector<BarPtr> bars_;
  std::vector<SavedButton> homeless_;  // saved buttons whose menu is left out in this run
};

}  // namespace mailclient
