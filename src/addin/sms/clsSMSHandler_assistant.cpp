// Feedback through the Office Assistant. User feedback must never fail: every error is ignored.

#include "addin/platform/on_error.h"
#include "addin/sms/clsSMSHandler.h"

namespace addin {

bool clsSMSHandler::AssistantOn() const {
  bool on = false;
  onErrorResumeNext([&] { on = m_objOutlookApp.Assistant().On(); });
  return on;
}

// What cannot be asked counts as off, each of the two by itself: one that fails says nothing about the other.
void clsSMSHandler::SaveAssistantState() noexcept {
  m_bAssistantOn = false;
  m_bAssistantVisible = false;
  office::Assistant assistant;
  onErrorResumeNext([&] { assistant = m_objOutlookApp.Assistant(); }, [&] { m_bAssistantOn = assistant.On(); },
                    [&] { m_bAssistantVisible = assistant.Visible(); });
}

void clsSMSHandler::StartAssistantAnimation() {
  if (!m_objOutlookApp) return;
  SaveAssistantState();
  office::Assistant assistant;
  onErrorResumeNext([&] { assistant = m_objOutlookApp.Assistant(); }, [&] { assistant.On(true); },
                    [&] { assistant.Visible(true); }, [&] { assistant.MoveWhenInTheWay(true); },
                    [&] { assistant.Animation(office::msoAnimationWorkingAtSomething); });
}

void clsSMSHandler::StopAssistantAnimation() {
  office::Assistant assistant;
  onErrorResumeNext([&] { assistant = m_objOutlookApp.Assistant(); },
                    [&] { assistant.Animation(office::msoAnimationIdle); },
                    [&] { assistant.Visible(m_bAssistantVisible); }, [&] { assistant.On(m_bAssistantOn); });
}

void clsSMSHandler::ShowAssistantBalloon(StringView Heading, StringView Text, StringView Label) {
  SaveAssistantState();
  office::Assistant assistant;
  office::Balloon balloon;
  onErrorResumeNext(
      [&] { assistant = m_objOutlookApp.Assistant(); }, [&] { assistant.On(true); }, [&] { assistant.Visible(true); },
      [&] { assistant.MoveWhenInTheWay(true); }, [&] { balloon = assistant.NewBalloon(); },
      [&] { balloon.BalloonType(office::msoBalloonTypeBullets); }, [&] { balloon.Heading(Heading); },
      [&] { balloon.Text(Text); }, [&] { balloon.Labels().Item(1).Text(Label); },
      [&] { balloon.Button(office::msoButtonSetOK); }, [&] { balloon.Icon(office::msoIconAlertInfo); },
      [&] { balloon.Show(); }, [&] { assistant.Visible(m_bAssistantVisible); }, [&] { assistant.On(m_bAssistantOn); });
}

}  // namespace addin
