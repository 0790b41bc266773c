// Messages that are called sent, refused or unknown: what was handed in once must not be handed in again unless it is
// certain that it does not go.
#include "unit/phone_modem/modem_fixture.h"

namespace phone {
namespace {

using ModemSending = ModemTest;

TEST_F(ModemSending, TimeOutOfTheNetwork_LeavesTheMessageUnknownAndIsNotRepeated) {
  for (const char* error : {"+CMS ERROR: 332", "+CMS ERROR: network timeout", "+CME ERROR: 31"}) {
    SCOPED_TRACE(error);
    connectTo("on message *\n  pause 30000\n  say " + std::string(error));
    EXPECT_EQ(send(u"hellohello"), Outcome{Kind::Unknown});
    EXPECT_EQ(script_->heard, (Heard{"AT+CMGS=22", "message " + helloOut}));
    expectWorking();
  }
}

TEST_F(ModemSending, TimeOutInsteadOfThePrompt_IsARefusal) {
  connectTo("on AT+CMGS=22\n  say +CMS ERROR: 332");
  EXPECT_EQ(send(u"hellohello"), refused(332));
  EXPECT_EQ(script_->heard, Heard{"AT+CMGS=22"});
}

TEST_F(ModemSending, ErrorBehindTheNetworksReference_DoesNotUndoTheMessage) {
  // With 304 a message is otherwise handed in a second time.
  for (const char* error : {"+CMS ERROR: 500", "ERROR", "+CMS ERROR: 304", "+CMS ERROR: 515", "+CMS ERROR: 332"}) {
    SCOPED_TRACE(error);
    connectTo("on message *\n  pause 3000\n  say +CMGS: 7\n  say " + std::string(error));
    EXPECT_EQ(send(u"hellohello"), Outcome());
    EXPECT_EQ(sending_.references, std::vector<int>{7});
    EXPECT_EQ(script_->heard, (Heard{"AT+CMGS=22", "message " + helloOut}));
    expectWorking();
  }
}

TEST_F(ModemSending, ErrorBehindAReferenceThatIsNone_LeavesTheMessageUnknown) {
  for (const char* reference : {"", "x", "-1", "256"}) {
    SCOPED_TRACE(reference);
    connectTo("on message *\n  say +CMGS: " + std::string(reference) + "\n  say +CMS ERROR: 304");
    EXPECT_EQ(send(u"hellohello"), Outcome{Kind::Unknown});
    EXPECT_EQ(script_->heardOf("message").size(), 1u);
  }
}

TEST_F(ModemSending, ReferenceBeforeTheMessage_IsNotIts) {
  connectTo("on AT+CMGS=22\n  say +CMGS: 5\n  prompt <CR><LF>><SP>\non message *\n  say +CMS ERROR: 38");
  EXPECT_EQ(send(u"hellohello"), refused(38));
  connectTo("on AT+CMGS=22\n  say +CMGS: 5\n  prompt <CR><LF>><SP>\non message *\n  say +CMGS: 6\n  say OK");
  EXPECT_EQ(send(u"hellohello"), Outcome());
  EXPECT_EQ(sending_.references, std::vector<int>{6});
}

// Such an OK says nothing of the message.
TEST_F(ModemSending, NoiseBeforeTheMessage_IsNoDamageOfItsAnswer) {
  connectTo("on AT+CMGS=22\n  say SIM Tray Closed\n  prompt <CR><LF>><SP>\non message *\n  say OK");
  EXPECT_EQ(send(u"hellohello"), Outcome{Kind::Unknown});
}

TEST_F(ModemSending, ErrorBehindThePrompt_IsNotTheMessagesAndThePromptIsLeft) {
  connectTo("on AT+CMGS=22\n  prompt <CR><LF>><CR><LF><CR><LF>ERROR<CR><LF>\non AT+CMGS=22\n  prompt <CR><LF>><SP>");
  EXPECT_EQ(send(u"hellohello"), (Outcome{Kind::Refused, {at::Result::Kind::Error, 0, "ERROR"}}));
  EXPECT_EQ(script_->heard, (Heard{"AT+CMGS=22", "escape", "AT"}));
  EXPECT_EQ(send(u"hellohello"), Outcome());
  EXPECT_EQ(script_->heardOf("message"), Heard{"message " + helloOut});
}

}  // namespace
}  // namespace phone
