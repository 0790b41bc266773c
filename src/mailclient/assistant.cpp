#include "mailclient/assistant.h"

#include "mailclient/client.h"

namespace mailclient {

Object AssistantState::object(const ClientPtr& client) {
  switch (presence) {
    case AssistantPresence::Present:
      return view.get(client).get()->object();
    case AssistantPresence::Nothing:
      return {};
    case AssistantPresence::Fails:
      break;
  }
  fail(failure::unspecified, u"The Office Assistant is not available.");
}

std::span<const Member> Assistant::members() const {
  static constexpr std::array table{
      method<&Assistant::name>(u"Item", 0),
      property<&Assistant::animation, &Assistant::putAnimation>(u"Animation", 0x6003000F),
      property<&Assistant::moveWhenInTheWay, &Assistant::putMoveWhenInTheWay>(u"MoveWhenInTheWay", 0x60030019),
      method<&Assistant::name>(u"Name", 0x6003002E),
      method<&Assistant::newBalloon>(u"NewBalloon", 0x6003000B),
      property<&Assistant::on, &Assistant::putOn>(u"On", 0x6003002F),
      property<&Assistant::sounds, &Assistant::putSounds>(u"Sounds", 0x6003001B),
      property<&Assistant::visible, &Assistant::putVisible>(u"Visible", 0x6003000D),
      method<&ModelObject::application>(u"Application", 0x60020000),
  };
  return table;
}

AssistantState& Assistant::state() const { return client().assistant(); }
Ref<Balloon> Assistant::newBalloon() { return make<Balloon>(clientPtr()); }

void Assistant::putAnimation(std::int32_t animation) {
  if (state().on) state().animation = animation;
}

void Assistant::putMoveWhenInTheWay(bool on) {
  if (state().on) state().moveWhenInTheWay = on;
}

void Assistant::putSounds(bool on) {
  if (state().on) state().sounds = on;
}

// Switching it on shows it, switching it off hides it.
void Assistant::putOn(bool on) {
  if (state().on != on) state().visible = on;
  state().on = on;
}

void Assistant::putVisible(bool on) {
  if (state().on) state().visible = on;
}

std::span<const Member> Balloon::members() const {
  static constexpr std::array table{
      field<&Balloon::animation>(u"Animation", 0x6003000D),
      field<&Balloon::balloonType>(u"BalloonType", 0x60030003),
      field<&Balloon::button>(u"Button", 0x6003000F),
      method<&Balloon::close>(u"Close", 0x60030018),
      field<&Balloon::heading>(u"Heading", 0x60030007),
      field<&Balloon::icon>(u"Icon", 0x60030005),
      method<&Balloon::labelCollection>(u"Labels", 0x60030002),
      field<&Balloon::mode>(u"Mode", 0x6003000B),
      method<&Balloon::show>(u"Show", 0x60030017),
      field<&Balloon::text>(u"Text", 0x60030009),
      method<&ModelObject::application>(u"Application", 0x60020000),
  };
  return table;
}

Ref<BalloonLabels> Balloon::labelCollection() { return make<BalloonLabels>(clientPtr(), Ref<Balloon>(this)); }

std::int32_t Balloon::show() {
  AssistantState& assistant = client().assistant();
  if (!assistant.on) return 0;
  assistant.shown.push_back({balloonType, icon, button, mode, animation, heading, text, labels});
  if (assistant.shown.size() > AssistantState::mostKept) assistant.shown.erase(assistant.shown.begin());
  if (!assistant.present) return assistant.balloonAnswer;
  const BalloonState balloon = assistant.shown.back();  // the user may take their time, and others may be shown
  return assistant.present(balloon);
}

std::span<const Member> BalloonLabels::members() const {
  static constexpr std::array table{
      method<&BalloonLabels::item>(u"Item", 0),
      method<&BalloonLabels::count>(u"Count", 0x60030003),
      method<&ModelObject::application>(u"Application", 0x60020000),
  };
  return table;
}

// Labels are counted up to the last one that has a text.
std::int32_t BalloonLabels::count() {
  std::int32_t used = 0;
  for (std::size_t i = 0; i < balloonLabels; ++i)
    if (!balloon_->labels[i].empty()) used = static_cast<std::int32_t>(i) + 1;
  return used;
}

Ref<BalloonLabel> BalloonLabels::item(std::int32_t index) {
  return make<BalloonLabel>(clientPtr(), balloon_, positionOf(index, balloonLabels));
}

std::span<const Member> BalloonLabel::members() const {
  static constexpr std::array table{
      method<&BalloonLabel::text>(u"Item", 0),
      property<&BalloonLabel::text, &BalloonLabel::putText>(u"Text", 0x60030003),
      method<&ModelObject::application>(u"Application", 0x60020000),
  };
  return table;
}

}  // namespace mailclient
