// The Office Assistant and its balloons. What was shown is kept for whoever asks; a host with a screen shows it.
//
// While the Assistant is off, every call is ignored without an error; only On itself can be set.
#pragma once

#include <array>
#include <functional>
#include <memory>
#include <vector>

#include "mailclient/model_object.h"

namespace mailclient {

class Assistant;
class Balloon;

// Later mail clients have no Assistant: asked for it, they answer Nothing or fail.
enum class AssistantPresence : std::uint8_t { Present, Nothing, Fails };

inline constexpr std::size_t balloonLabels = 5;

struct BalloonState {
  std::int32_t type = 0;  // MsoBalloonType
  std::int32_t icon = 0;
  std::int32_t button = 1;  // MsoButtonSetType: OK
  std::int32_t mode = 0;
  std::int32_t animation = 1;
  String heading;
  String text;
  std::array<String, balloonLabels> labels;
};

struct AssistantState {
  static constexpr std::size_t mostKept = 100;
  Object object(const ClientPtr& client);

  AssistantPresence presence = AssistantPresence::Present;
  bool on = false;
  bool visible = false;
  bool moveWhenInTheWay = false;
  bool sounds = false;
  std::int32_t animation = 1;       // MsoAnimationType: idle
  std::vector<BalloonState> shown;  // the last balloons that were shown, oldest first
  std::int32_t balloonAnswer = -1;  // what the user clicks, a MsoBalloonButtonType: OK
  // Shows a balloon and waits for the click, whose MsoBalloonButtonType it returns; empty where there is no screen.
  std::function<std::int32_t(const BalloonState&)> present;
  View<Assistant> view;
};

class Assistant final : public ModelObject {
 public:
  explicit Assistant(ClientPtr client) : ModelObject(std::move(client), u"Assistant") {}
  std::span<const Member> members() const override;
  void terminate() noexcept override { state().view.leave(); }

  std::int32_t animation() { return state().animation; }
  void putAnimation(std::int32_t animation);
  bool moveWhenInTheWay() { return state().moveWhenInTheWay; }
  void putMoveWhenInTheWay(bool on);
  String name() { return u"Clippit"; }
  Ref<Balloon> newBalloon();
  bool on() { return state().on; }
  void putOn(bool on);
  bool sounds() { return state().sounds; }
  void putSounds(bool on);
  bool visible() { return state().visible; }
  void putVisible(bool on);

 private:
  AssistantState& state() const;
};

class BalloonLabels;

class Balloon final : public ModelObject {
 public:
  explicit Balloon(ClientPtr client) : ModelObject(std::move(client), u"Balloon") {}
  std::span<const Member> members() const override;

  std::int32_t animation = 1;
  std::int32_t balloonType = 0;
  std::int32_t button = 1;
  String heading;
  std::int32_t icon = 0;
  std::int32_t mode = 0;
  String text;
  std::array<String, balloonLabels> labels;

  void close() {}
  Ref<BalloonLabels> labelCollection();
  std::int32_t show();  // a MsoBalloonButtonType; 0 when the Assistant is off
};

class BalloonLabel;

class BalloonLabels final : public ModelObject {
 public:
  BalloonLabels(ClientPtr client, Ref<Balloon> balloon)
      : ModelObject(std::move(client), u"BalloonLabels"), balloon_(std::move(balloon)) {}
  std::span<const Member> members() const override;

  std::int32_t count();
  Ref<BalloonLabel> item(std::int32_t index);

 private:
  Ref<Balloon> balloon_;
};

class BalloonLabel final : public ModelObject {
 public:
  BalloonLabel(ClientPtr client, Ref<Balloon> balloon, std::size_t position)
      : ModelObject(std::move(client), u"BalloonLabel"), balloon_(std::move(balloon)), position_(position) {}
  std::span<const Member> members() const override;

  String text() { return balloon_->labels[position_]; }
  void putText(const String& text) { balloon_->labels[position_] = text; }

 private:
  Ref<Balloon> balloon_;
  std::size_t position_;
};

}  // namespace mailclient
