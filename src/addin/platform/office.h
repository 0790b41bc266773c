// The Office command bars and the Assistant, as far as the add-in calls them (Office 2000, type library 2.1).
#pragma once

#include "addin/platform/object.h"

namespace platform::office {

enum MsoControlType : std::int32_t { msoControlButton = 1 };
enum MsoButtonStyle : std::int32_t { msoButtonCaption = 2, msoButtonIconAndCaption = 3 };
enum MsoAnimationType : std::int32_t { msoAnimationIdle = 1, msoAnimationWorkingAtSomething = 23 };
enum MsoBalloonType : std::int32_t { msoBalloonTypeBullets = 1 };
enum MsoButtonSetType : std::int32_t { msoButtonSetOK = 1 };
enum MsoIconType : std::int32_t { msoIconAlertInfo = 4 };

struct CommandBarButtonEvents {
  static constexpr Guid iid{0x000C0351, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};
  static constexpr Event<Object, bool&> Click{u"Click", 1};
};

class CommandBar;

class CommandBarControl : public Object {
 public:
  using Object::Object;
  void BeginGroup(bool on) const { let(u"BeginGroup", on); }
  void Caption(StringView text) const { let(u"Caption", text); }
  void Delete() const { call(u"Delete"); }
  void Enabled(bool on) const { let(u"Enabled", on); }
  void OnAction(StringView text) const { let(u"OnAction", text); }
  void Tag(StringView text) const { let(u"Tag", text); }
  void TooltipText(StringView text) const { let(u"TooltipText", text); }
};

class CommandBarButton : public CommandBarControl {
 public:
  using CommandBarControl::CommandBarControl;
  using Events = CommandBarButtonEvents;
  void FaceId(std::int32_t id) const { let(u"FaceId", id); }
  void Style(std::int32_t style) const { let(u"Style", style); }
};

class CommandBarPopup : public CommandBarControl {
 public:
  using CommandBarControl::CommandBarControl;
  office::CommandBar CommandBar() const;
};

class CommandBarControls : public Object {
 public:
  using Object::Object;
  CommandBarControl Add(const Variant& type, const Variant& id, const Variant& parameter, const Variant& before,
                        const Variant& temporary) const {
    return call<CommandBarControl>(u"Add", type, id, parameter, before, temporary);
  }
};

class CommandBar : public Object {
 public:
  using Object::Object;
  CommandBarControls Controls() const { return get<CommandBarControls>(u"Controls"); }
  // Nothing when there is no such control.
  CommandBarControl FindControl(const Variant& type, const Variant& id, const Variant& tag, const Variant& visible,
                                const Variant& recursive) const {
    return call<CommandBarControl>(u"FindControl", type, id, tag, visible, recursive);
  }
};
inline office::CommandBar CommandBarPopup::CommandBar() const { return get<office::CommandBar>(u"CommandBar"); }

class CommandBars : public Object {
 public:
  using Object::Object;
  CommandBar Item(const Variant& nameOrPosition) const { return get<CommandBar>(u"Item", nameOrPosition); }
};

class BalloonLabel : public Object {
 public:
  using Object::Object;
  void Text(StringView text) const { let(u"Text", text); }
};

class BalloonLabels : public Object {
 public:
  using Object::Object;
  BalloonLabel Item(std::int32_t position) const { return get<BalloonLabel>(u"Item", position); }
};

class Balloon : public Object {
 public:
  using Object::Object;
  void BalloonType(MsoBalloonType type) const { let(u"BalloonType", type); }
  void Button(MsoButtonSetType buttons) const { let(u"Button", buttons); }
  void Heading(StringView text) const { let(u"Heading", text); }
  void Icon(MsoIconType icon) const { let(u"Icon", icon); }
  BalloonLabels Labels() const { return get<BalloonLabels>(u"Labels"); }
  std::int32_t Show() const { return call<std::int32_t>(u"Show"); }
  void Text(StringView text) const { let(u"Text", text); }
};

class Assistant : public Object {
 public:
  using Object::Object;
  void Animation(MsoAnimationType animation) const { let(u"Animation", animation); }
  void MoveWhenInTheWay(bool on) const { let(u"MoveWhenInTheWay", on); }
  Balloon NewBalloon() const { return get<Balloon>(u"NewBalloon"); }
  bool On() const { return get<bool>(u"On"); }
  void On(bool on) const { let(u"On", on); }
  bool Visible() const { return get<bool>(u"Visible"); }
  void Visible(bool on) const { let(u"Visible", on); }
};

}  // namespace platform::office
