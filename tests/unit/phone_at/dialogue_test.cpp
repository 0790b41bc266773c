#include "unit/phone_at/dialogue_fixture.h"

namespace phone::at {
namespace {

constexpr const char* sendsWell = R"(
echo off
on AT+CMGS=3
  prompt <CR><LF>><SP>
on message *
  pause 3000
  say +CMGS: 7
  say OK
)";

TEST_F(AtDialogue, CommandWithAnAnswer_GivesItsInformationAndResult) {
  modem("echo off\non AT+CSQ\n  say +CSQ: 17,99\n  say OK");
  const Answer answer = run({"AT+CSQ", "+CSQ"});
  EXPECT_EQ(answer.result, (Result{Kind::Ok, 0, "OK"}));
  EXPECT_EQ(answer.information, (Infos{{"17,99", {}}}));
  EXPECT_EQ(modem_->heard, Heard{"AT+CSQ"});
  EXPECT_EQ(traced_, (Heard{"> AT+CSQ", "< +CSQ: 17,99", "< OK"}));
  EXPECT_EQ(unsolicited_, std::vector<Unsolicited>());
}

TEST_F(AtDialogue, Echo_IsNoAnswer) {
  modem("on AT+CGMI\n  say Maker\n  say OK");
  EXPECT_EQ(run({"AT+CGMI", "+CGMI", false, true}).information, (Infos{{"Maker", {}}}));
  EXPECT_EQ(unsolicited_, std::vector<Unsolicited>());
}

TEST_F(AtDialogue, IdentityWithItsPrefix_LosesIt) {
  modem("echo off\non AT+CGMM\n  say +CGMM: Model 7\n  say OK");
  EXPECT_EQ(run({"AT+CGMM", "+CGMM", false, true}).information, (Infos{{"Model 7", {}}}));
}

TEST_F(AtDialogue, ListingOctetByOctet_PutsEachMessageToItsHeader) {
  modem("pieces 1\non AT+CMGL=4\n  say +CMGL: 0,1,,2\n  say 00AB\n  say +CMGL: 9,1,\"A, B\",2\n  say 00cd\n  say OK");
  EXPECT_EQ(run(listing()).information, (Infos{{"0,1,,2", "00AB"}, {"9,1,\"A, B\",2", "00cd"}}));
}

TEST_F(AtDialogue, UnsolicitedLinesInAListing_GoToTheListenerWithTheirOwnMessages) {
  modem(R"(
echo off
on AT+CMGL=4
  say ^RSSI:18
  say +CMGL: 1,1,,2
  say +CMT: ,3
  say 00FFFF
  say +CMTI: "SM",5
  say 00AB
  say RING
  say +CMGL: 2,1,,2
  say 00CD
  say OK
)");
  EXPECT_EQ(run(listing()).information, (Infos{{"1,1,,2", "00AB"}, {"2,1,,2", "00CD"}}));
  EXPECT_EQ(unsolicited_, (std::vector<Unsolicited>{
                              {"^RSSI:18", ""}, {"+CMT: ,3", "00FFFF"}, {"+CMTI: \"SM\",5", ""}, {"RING", ""}}));
}

TEST_F(AtDialogue, HeaderWithoutItsMessage_IsKeptWithoutOne) {
  modem("echo off\non AT+CMGL=4\n  say +CMGL: 1,1,,2\n  say +CMGL: 2,1,,2\n  say 00CD\n  say OK");
  EXPECT_EQ(run(listing()).information, (Infos{{"1,1,,2", {}}, {"2,1,,2", "00CD"}}));
}

TEST_F(AtDialogue, NotifiedWhileIdle_IsHeardWhenListening) {
  modem("echo off\nat 500\n  say +CMTI: \"ME\",2\nat 900\n  say +CDS: 2\n  raw 00AB<CR><LF>");
  EXPECT_EQ(timeOf([&] { dialogue_->listen(modem_->now() + Milliseconds(60000)); }), Milliseconds(500));
  dialogue_->listen(modem_->now() + Milliseconds(60000));
  dialogue_->listen(modem_->now() + Milliseconds(60000));
  EXPECT_EQ(unsolicited_, (std::vector<Unsolicited>{{"+CMTI: \"ME\",2", ""}, {"+CDS: 2", "00AB"}}));
}

TEST_F(AtDialogue, Woken_StopsListening) {
  modem("echo off");
  modem_->wake();
  EXPECT_EQ(timeOf([&] { dialogue_->listen(modem_->now() + Milliseconds(60000)); }), Milliseconds(0));
}

TEST_F(AtDialogue, NoticeThatHasBegunWhenACommandIsSent_IsNotLost) {
  modem("echo off\non AT+CSQ\n  raw M\",5<CR><LF>\n  say +CSQ: 1,99\n  say OK\nat 0\n  raw <CR><LF>+CMTI: \"S");
  EXPECT_TRUE(run({"AT+CSQ", "+CSQ"}).ok());
  EXPECT_EQ(unsolicited_, (std::vector<Unsolicited>{{"+CMTI: \"SM\",5", ""}}));
}

TEST_F(AtDialogue, SlowListing_HasItsLimitForEachMessage) {
  modem(R"(
echo off
on AT+CMGL=4
  pause 15000
  say +CMGL: 1,1,,2
  say 00AB
  pause 15000
  say +CMGL: 2,1,,2
  say 00CD
  pause 15000
  say OK
)");
  EXPECT_EQ(run(listing()).information.size(), 2u);
}

TEST_F(AtDialogue, NoiseWithoutEnd_DoesNotStretchALimit) {
  std::string script = "echo off\non AT+CSQ\n";
  for (int i = 0; i < 100; ++i) script += "at " + std::to_string(i * 250) + "\n  say ^BOOT:41,0,0,0,7\n";
  modem(script);
  // Its limit, and then the longest time that is given to a modem to become silent, before and behind "AT".
  EXPECT_EQ(timeOf([&] { EXPECT_FALSE(run({"AT+CSQ", "+CSQ"}).result); }), Milliseconds(5000 + 2000 + 2000));
  EXPECT_EQ(modem_->heard, (Heard{"AT+CSQ", "AT"}));
}

TEST_F(AtDialogue, LateAnswer_IsNotTakenForTheNextCommands) {
  modem(R"(
echo off
on AT+CPMS?
  pause 7000
  say +CPMS: "SM",1,20
  say OK
on AT+CSQ
  say +CSQ: 17,99
  say OK
)");
  EXPECT_FALSE(run({"AT+CPMS?", "+CPMS"}).result);
  const Answer next = run({"AT+CSQ", "+CSQ"});
  EXPECT_TRUE(next.ok());
  EXPECT_EQ(next.information, (Infos{{"17,99", {}}}));
  EXPECT_EQ(modem_->heard.back(), "AT+CSQ");
}

TEST_F(AtDialogue, AnswerThatComesWhileRecovering_IsStillGiven) {
  modem("echo off\non AT+CPMS?\n  pause 5100\n  say +CPMS: \"SM\",1,20\n  say OK");
  const Answer answer = run({"AT+CPMS?", "+CPMS"});
  EXPECT_FALSE(answer.result);
  EXPECT_EQ(answer.information, (Infos{{"\"SM\",1,20", {}}}));
}

TEST_F(AtDialogue, LateAnswerWithoutEnd_IsCut) {
  std::string script = "echo off\non AT+CMGL=4\n  pause 20100\n";
  for (int i = 0; i < 10010; ++i) script += "  raw +CMGL: 1,1,,2<CR><LF>\n";
  modem(script);
  const Answer answer = run({"AT+CMGL=4", "+CMGL", false, false, Milliseconds(20000)});
  EXPECT_FALSE(answer.result);
  EXPECT_EQ(answer.information.size(), 10000u);
}

TEST_F(AtDialogue, HalfALine_IsForgotten) {
  modem("echo off\non AT+CSQ\n  raw <CR><LF>+CSQ: 1\non AT+CREG?\n  say +CREG: 0,1\n  say OK");
  EXPECT_FALSE(run({"AT+CSQ", "+CSQ"}).result);
  const Answer next = run({"AT+CREG?", "+CREG"});
  EXPECT_TRUE(next.ok());
  EXPECT_EQ(next.information, (Infos{{"0,1", {}}}));
  EXPECT_EQ(modem_->heard, (Heard{"AT+CSQ", "AT", "AT+CREG?"}));
}

TEST_F(AtDialogue, OkBehindAnError_IsNotTakenForTheNextCommands) {
  modem(R"(
echo off
on AT+CMGD=1
  say +CMS ERROR: 321
  pause 50
  say OK
on AT+CMGD=2
  say ERROR
)");
  EXPECT_TRUE(run({"AT+CMGD=1", {}}).result->isCms(321));
  EXPECT_EQ(run({"AT+CMGD=2", {}}).result, (Result{Kind::Error, 0, "ERROR"}));
  EXPECT_EQ(modem_->heard, (Heard{"AT+CMGD=1", "AT", "AT+CMGD=2"}));
}

TEST_F(AtDialogue, ResultThatNobodyWaitsFor_IsNotTakenForTheNextCommands) {
  modem("echo off\nat 10\n  say OK\non AT+CMGD=2\n  say ERROR");
  dialogue_->listen(modem_->now() + Milliseconds(100));
  EXPECT_EQ(run({"AT+CMGD=2", {}}).result, (Result{Kind::Error, 0, "ERROR"}));
  EXPECT_EQ(modem_->heard, (Heard{"AT", "AT+CMGD=2"}));
}

TEST_F(AtDialogue, AtThatIsAnsweredWithError_IsAnAnswerToo) {
  modem("echo off\non AT\n  say ERROR\non AT+CSQ\n  say +CSQ: 1,99\n  say OK");
  dialogue_->greet(3);
  EXPECT_TRUE(run({"AT+CSQ", "+CSQ"}).ok());
  EXPECT_EQ(modem_->heard, (Heard{"AT", "AT+CSQ"}));
}

TEST_F(AtDialogue, DigitsInsteadOfWords_AreResultsOfSettings) {
  modem("echo off\non AT\n  raw 0<CR>\non ATV1\n  raw 4<CR>\non AT+CGMI\n  say 0\n  say OK");
  dialogue_->greet(1);
  EXPECT_EQ(run({"ATV1", {}}).result, (Result{Kind::Error, 0, "4"}));
  EXPECT_EQ(run({"AT+CGMI", "+CGMI", false, true}).information, (Infos{{"0", {}}}));
}

TEST_F(AtDialogue, ModemThatDoesNotAnswer_IsReportedAsGoneOnceAndForAll) {
  modem("echo off\non AT\non AT+CSQ");
  EXPECT_THROW(run({"AT+CSQ", "+CSQ"}), NotAnswering);
  EXPECT_EQ(modem_->heard, (Heard{"AT+CSQ", "AT", "AT", "AT"}));
  EXPECT_THROW(run({"AT+CSQ", "+CSQ"}), NotAnswering);
  EXPECT_THROW(dialogue_->listen(modem_->now()), NotAnswering);
  EXPECT_EQ(modem_->heard.size(), 4u);
}

TEST_F(AtDialogue, LineThatBreaks_IsReportedAsLost) {
  modem("echo off\non AT+CSQ\n  raw <CR><LF>+C\n  lose");
  EXPECT_THROW(run({"AT+CSQ", "+CSQ"}), LineLost);
  EXPECT_THROW(run({"AT+CSQ", "+CSQ"}), LineLost);
}

TEST_F(AtDialogue, Greeting_TriesUntilAnswered) {
  modem("echo off\non AT\non AT\non AT\n  say OK");
  dialogue_->greet(5);
  EXPECT_EQ(modem_->heard, (Heard{"AT", "AT", "AT"}));
  modem("echo off\non AT");
  EXPECT_THROW(dialogue_->greet(2), NotAnswering);
  EXPECT_EQ(modem_->heard, (Heard{"AT", "AT"}));
}

TEST_F(AtDialogue, MessageAfterThePrompt_IsSentAndAnswered) {
  modem(sendsWell);
  const DataAnswer answer = dialogue_->runWithData(sending(), "0001");
  EXPECT_TRUE(answer.dataSent);
  EXPECT_TRUE(answer.ok());
  EXPECT_EQ(answer.information, (Infos{{"7", {}}}));
  EXPECT_EQ(modem_->heard, (Heard{"AT+CMGS=3", "message 0001"}));
  EXPECT_EQ(traced_, (Heard{"> AT+CMGS=3", "> <2 octets>", "< +CMGS: 7", "< OK"}));
}

TEST_F(AtDialogue, PromptInAnyForm_IsSeen) {
  for (const std::string prompt : {"<CR><LF>><SP>", "<CR><LF>>", "><SP>", "<CR><LF>><CR><LF>", "<LF>><SP><LF>"}) {
    for (const std::string echo : {"off", "always"}) {
      modem("echo " + echo + "\non AT+CMGS=3\n  prompt " + prompt + "\non message *\n  say +CMGS: 7\n  say OK");
      const DataAnswer answer = dialogue_->runWithData(sending(), "0001");
      EXPECT_TRUE(answer.ok()) << prompt;
      EXPECT_EQ(answer.information, (Infos{{"7", {}}})) << prompt;
      EXPECT_EQ(modem_->heard, (Heard{"AT+CMGS=3", "message 0001"})) << prompt;
      EXPECT_EQ(unsolicited_, std::vector<Unsolicited>()) << prompt;
    }
  }
}

TEST_F(AtDialogue, ErrorInsteadOfThePrompt_IsTheAnswerAndNothingWasSent) {
  modem("echo off\non AT+CMGS=3\n  say +CMS ERROR: 330");
  const DataAnswer answer = dialogue_->runWithData(sending(), "0001");
  EXPECT_FALSE(answer.dataSent);
  EXPECT_TRUE(answer.result->isCms(330));
  EXPECT_EQ(modem_->heard, Heard{"AT+CMGS=3"});
}

TEST_F(AtDialogue, NoPrompt_IsLeftWithEscape) {
  modem(R"(
echo off
on AT+CMGS=3
  prompt
on escape
  say OK
on AT+CSQ
  say +CSQ: 17,99
  say OK
)");
  DataAnswer answer;
  EXPECT_EQ(timeOf([&] { answer = dialogue_->runWithData(sending(), "0001"); }), Milliseconds(10000 + 300 + 300));
  EXPECT_FALSE(answer.dataSent);
  EXPECT_FALSE(answer.result);
  EXPECT_EQ(modem_->heard, (Heard{"AT+CMGS=3", "escape", "AT"}));
  EXPECT_EQ(run({"AT+CSQ", "+CSQ"}).information, (Infos{{"17,99", {}}}));
}

TEST_F(AtDialogue, NoPromptAndEscapeIgnored_HandsInWhatCannotBeAMessage) {
  modem(R"(
echo off
escape ignored
on AT+CMGS=3
  prompt
on message *
  say +CMS ERROR: 304
on AT+CSQ
  say +CSQ: 17,99
  say OK
)");
  const DataAnswer answer = dialogue_->runWithData(sending(), "0001");
  EXPECT_FALSE(answer.dataSent);
  EXPECT_FALSE(answer.result);
  EXPECT_EQ(modem_->heard, (Heard{"AT+CMGS=3", "message \x1B\rAT\r\x1B\rAT\r\x1B\rAT\r", "AT"}));
  EXPECT_TRUE(run({"AT+CSQ", "+CSQ"}).ok());
}

TEST_F(AtDialogue, MessageWithoutAnAnswer_IsUnknownAndNeverHandedInAgain) {
  modem(R"(
echo off
on AT+CMGS=3
  prompt <CR><LF>><SP>
on message *
on AT+CSQ
  say +CSQ: 17,99
  say OK
)");
  const DataAnswer answer = dialogue_->runWithData(sending(), "0001");
  EXPECT_TRUE(answer.dataSent);
  EXPECT_FALSE(answer.result);
  EXPECT_EQ(modem_->heard, (Heard{"AT+CMGS=3", "message 0001", "AT"}));
  EXPECT_TRUE(run({"AT+CSQ", "+CSQ"}).ok());
}

TEST_F(AtDialogue, SubThatGotLost_IsLeftWithEscapeAndTheMessageIsNotCompleted) {
  modem(R"(
echo off
on AT+CMGS=3
  prompt <CR><LF>><SP>
)");
  struct Deaf final : Line {
    explicit Deaf(ScriptedModem& m) : modem(m) {}
    void write(std::string_view octets, Instant deadline) override {
      if (octets.ends_with('\x1A')) octets.remove_suffix(1);
      modem.write(octets, deadline);
    }
    std::string read(Instant deadline) override { return modem.read(deadline); }
    void wake() noexcept override {}
    void end() noexcept override {}
    ScriptedModem& modem;
  } deaf(*modem_);
  Dialogue dialogue(deaf, *modem_, nullptr);
  const DataAnswer answer = dialogue.runWithData(sending(), "0001");
  EXPECT_TRUE(answer.dataSent);
  EXPECT_FALSE(answer.result);
  EXPECT_EQ(modem_->heard, (Heard{"AT+CMGS=3", "escape", "AT"}));
}

TEST_F(AtDialogue, LineThatBreaksBehindTheMessage_LeavesItsOutcomeUnknown) {
  modem("echo off\non AT+CMGS=3\n  prompt <CR><LF>><SP>\non message *\n  lose");
  const DataAnswer answer = dialogue_->runWithData(sending(), "0001");
  EXPECT_TRUE(answer.dataSent);
  EXPECT_FALSE(answer.result);
  EXPECT_THROW(run({"AT+CSQ", "+CSQ"}), LineLost);
}

TEST_F(AtDialogue, LineThatBreaksBeforeTheMessage_IsReportedAsLost) {
  modem("echo off\non AT+CMGS=3\n  lose");
  EXPECT_THROW(dialogue_->runWithData(sending(), "0001"), LineLost);
}

TEST_F(AtDialogue, PromptOfLongAgo_IsNotTakenForTheNext) {
  modem("echo off\nat 0\n  raw <CR><LF>><SP>\non AT+CMGS=3\n  pause 100\n  say +CMS ERROR: 302");
  const DataAnswer answer = dialogue_->runWithData(sending(), "0001");
  EXPECT_FALSE(answer.dataSent);
  EXPECT_EQ(modem_->heard, Heard{"AT+CMGS=3"});
}

TEST_F(AtDialogue, ErrorBehindThePrompt_IsNotTheMessagesAndThePromptIsLeft) {
  for (const char* said : {"prompt <CR><LF>><CR><LF><CR><LF>ERROR<CR><LF>", "prompt ><CR><LF>\n  say ERROR"}) {
    traced_.clear();
    modem("echo off\non AT+CMGS=3\n  " + std::string(said) + "\non escape\n  say OK\non AT+CSQ\n  say OK");
    const DataAnswer answer = dialogue_->runWithData(sending(), "0001");
    EXPECT_FALSE(answer.dataSent);
    EXPECT_EQ(answer.result, (Result{Kind::Error, 0, "ERROR"}));
    EXPECT_TRUE(run({"AT+CSQ", {}}).ok());
    EXPECT_EQ(modem_->heard, (Heard{"AT+CMGS=3", "escape", "AT", "AT+CSQ"}));
    EXPECT_EQ(traced_, (Heard{"> AT+CMGS=3", "< ERROR", "- an error behind the prompt", "< OK",
                              "- nobody waits for that", "> AT", "< OK", "> AT+CSQ", "< OK"}));
  }
}

TEST_F(AtDialogue, ErrorInThePauseBeforeTheMessage_KeepsItBack) {
  modem("echo off\non AT+CMGS=3\n  prompt <CR><LF>><SP>\n  pause 50\n  say +CMS ERROR: 302\non escape\n  say OK");
  dialogue_->pauseBeforeData(Milliseconds(100));
  const DataAnswer answer = dialogue_->runWithData(sending(), "0001");
  EXPECT_FALSE(answer.dataSent);
  EXPECT_TRUE(answer.result->isCms(302));
  EXPECT_EQ(modem_->heard, (Heard{"AT+CMGS=3", "escape", "AT"}));
}

TEST_F(AtDialogue, AnswersBeforeTheMessage_AreNotIts) {
  modem("echo off\non AT+CMGS=3\n  say +CMGS: 5\n  say Noise\n  prompt <CR><LF>><SP>\non message *\n  say OK");
  const DataAnswer answer = dialogue_->runWithData(sending(), "0001");
  EXPECT_TRUE(answer.ok());
  EXPECT_EQ(answer.information, Infos());
  EXPECT_FALSE(answer.damaged());
}

TEST_F(AtDialogue, PauseBeforeTheMessage_IsKept) {
  modem(sendsWell);
  dialogue_->pauseBeforeData(Milliseconds(100));
  EXPECT_EQ(timeOf([&] { dialogue_->runWithData(sending(), "0001"); }), Milliseconds(3100));
}

TEST_F(AtDialogue, NetworksAnswerWithoutTheModemsOk_IsNotWaitedForAsLongAsTheNetwork) {
  modem("echo off\non AT+CMGS=3\n  prompt <CR><LF>><SP>\non message *\n  pause 3000\n  say +CMGS: 7");
  DataAnswer answer;
  EXPECT_EQ(timeOf([&] { answer = dialogue_->runWithData(sending(), "0001"); }), Milliseconds(3000 + 5000 + 300 + 300));
  EXPECT_FALSE(answer.result);
  EXPECT_EQ(answer.information, (Infos{{"7", {}}}));
}

TEST_F(AtDialogue, ResetInACommand_EndsItSoonAndIsTold) {
  modem(R"(
echo off
on AT+CMGS=3
  prompt <CR><LF>><SP>
on message *
  pause 1000
  begin
  pause 5000
  say RDY
  say +CFUN: 1
)");
  DataAnswer answer;
  EXPECT_LT(timeOf([&] { answer = dialogue_->runWithData(sending(), "0001"); }), Milliseconds(12000));
  EXPECT_TRUE(answer.dataSent);
  EXPECT_FALSE(answer.result);
  EXPECT_TRUE(dialogue_->takeReset());
  EXPECT_FALSE(dialogue_->takeReset());
}

TEST_F(AtDialogue, UnknownLines_AreNotTracedInFull) {
  modem("echo off\non AT+CSQ\n  say Meet me at 5\n  say +CSQ: 1,99\n  say OK");
  run({"AT+CSQ", "+CSQ"});
  EXPECT_EQ(traced_, (Heard{"> AT+CSQ", "< <12 characters>", "< +CSQ: 1,99", "< OK"}));
}

// Some are the rest of a text of several lines, and begin like something that a modem says.
TEST_F(AtDialogue, TextsThatBeginLikeNotices_AreNotTracedInFull) {
  modem(R"(
echo off
at 10
  say +CUSD: 0,"Balance 12
  say *Anna hello hello*",15
  say +Meet me at the old pier, darling
  say ^
  say ^RSSI:18
  say +SMS FULL
)");
  dialogue_->listen(modem_->now() + Milliseconds(100));
  for (int i = 0; i < 6; ++i) dialogue_->listen(modem_->now());
  EXPECT_EQ(traced_, (Heard{"< +CUSD: 0,\"***", "< <22 characters>", "< <33 characters>", "< <1 characters>",
                            "< ^RSSI:18", "< +SMS FULL"}));
}

}  // namespace
}  // namespace phone::at
