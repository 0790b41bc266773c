#include "modem/gammu.h"

#include <cstring>

#include <gammu.h>

#include "measure.h"

namespace bench {

struct Gammu::State {
  GSM_StateMachine* machine = nullptr;
  GSM_SMSC centre{};
  bool waits = false;
  bool sent = false;
};

Gammu::Gammu(const std::string& settings) : state_(std::make_unique<State>()) {
  GSM_InitLocales(nullptr);
  state_->machine = GSM_AllocStateMachine();
  require(state_->machine != nullptr, "gammu starts");
  INI_Section* file = nullptr;
  require(GSM_FindGammuRC(&file, settings.c_str()) == ERR_NONE &&
              GSM_ReadConfig(file, GSM_GetConfig(state_->machine, 0), 0) == ERR_NONE,
          "gammu reads its settings");
  INI_Free(file);
  GSM_SetConfigNum(state_->machine, 1);
  require(GSM_InitConnection(state_->machine, 1) == ERR_NONE, "gammu finds the phone");
  GSM_SetSendSMSStatusCallback(
      state_->machine,
      [](GSM_StateMachine*, int status, int, void* data) {
        auto* const state = static_cast<State*>(data);
        state->waits = false;
        state->sent = status == 0;
      },
      state_.get());
  state_->centre.Location = 1;
  require(GSM_GetSMSC(state_->machine, &state_->centre) == ERR_NONE, "gammu knows the service centre");
}

Gammu::~Gammu() {
  GSM_TerminateConnection(state_->machine);
  GSM_FreeStateMachine(state_->machine);
}

std::vector<std::string> Gammu::list() {
  std::vector<std::string> texts;
  const auto messages = std::make_unique<GSM_MultiSMSMessage>();
  std::memset(messages.get(), 0, sizeof *messages);
  for (bool first = true;; first = false) {
    const GSM_Error error = GSM_GetNextSMS(state_->machine, messages.get(), first ? TRUE : FALSE);
    if (error == ERR_EMPTY) return texts;
    require(error == ERR_NONE, "gammu lists");
    for (int i = 0; i < messages->Number; ++i) texts.emplace_back(DecodeUnicodeString(messages->SMS[i].Text));
  }
}

void Gammu::send(const std::string& number, const std::string& text) {
  const auto message = std::make_unique<GSM_SMSMessage>();
  std::memset(message.get(), 0, sizeof *message);
  EncodeUnicode(message->Text, text.c_str(), text.size());
  EncodeUnicode(message->Number, number.c_str(), number.size());
  CopyUnicodeString(message->SMSC.Number, state_->centre.Number);
  message->PDU = SMS_Submit;
  message->UDH.Type = UDH_NoUDH;
  message->Coding = SMS_Coding_Default_No_Compression;
  message->Class = -1;
  state_->waits = true;
  require(GSM_SendSMS(state_->machine, message.get()) == ERR_NONE, "gammu hands in");
  while (state_->waits) GSM_ReadDevice(state_->machine, TRUE);
  require(state_->sent, "gammu sends");
}

}  // namespace bench
