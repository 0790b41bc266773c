// The driver against modems that behave differently, see tests/data/modems.
#include "unit/phone_modem/modem_fixture.h"

namespace phone {
namespace {

TEST_F(ModemTest, Connecting_SetsItUpAndFindsItsMemories) {
  attach("plain");
  modem_->connect();
  EXPECT_EQ(script_->heard, (Heard{"AT", "ATE0", "ATV1", "AT+CMEE=1", "AT+CPIN?", "AT+CSMS=0", "AT+CMGF=0",
                                   "AT+CSCS=\"GSM\"", "AT+CNMI=2,1,0,0,0", "AT+CGMI", "AT+CGMM", "AT+CPMS?",
                                   "AT+CPMS=?", "AT+CPMS=\"ME\",\"ME\",\"SM\"", "AT+CPMS=\"SM\",\"SM\",\"SM\""}));
  EXPECT_EQ(modem_->name(), "Maker Model 7");
  EXPECT_EQ(modem_->simState(), SimState::Ready);
  EXPECT_TRUE(modem_->isSupported(Memory::Phone));
  EXPECT_TRUE(modem_->isSupported(Memory::Sim));
  EXPECT_EQ(modem_->memory(Memory::Phone).capacity, 100);
  EXPECT_EQ(modem_->memory(Memory::Sim).capacity, 20);
}

TEST_F(ModemTest, Listing_ChoosesTheMemoryOnceAndChecksNothingThatIsWhole) {
  connect("plain");
  expectWorking();
  EXPECT_EQ(listed(Memory::Sim), bothMessages);
  EXPECT_EQ(script_->heard, (Heard{"AT+CPMS=\"ME\",\"ME\",\"SM\"", "AT+CMGL=4", "AT+CPMS=\"SM\",\"SM\",\"SM\"",
                                   "AT+CMGL=4", "AT+CMGL=4"}));
}

TEST_F(ModemTest, ModemsOfAllKinds_AreListedCompletely) {
  for (const char* name : {"plain",
                           "no-echo",
                           "echo-always",
                           "at-error",
                           "cmee-refused",
                           "cmee-words",
                           "bare-error",
                           "stray-ok",
                           "used-zero",
                           "cpms-query-refused",
                           "empty-321",
                           "unsolicited-in-listing",
                           "lf-only",
                           "prompt-without-break",
                           "halved-line",
                           "lost-octets",
                           "reset-in-listing",
                           "two-names",
                           "one-name",
                           "just-on",
                           "odd-identity"}) {
    SCOPED_TRACE(name);
    connect(name);
    expectWorking();
  }
}

TEST_F(ModemTest, ModemsOfAllKinds_SendAndAreInStepAgain) {
  for (const char* name : {"plain", "no-echo", "echo-always", "at-error", "used-zero", "cpms-query-refused",
                           "empty-321", "lf-only", "prompt-without-break", "prompt-on-a-line", "two-names"}) {
    SCOPED_TRACE(name);
    connect(name);
    EXPECT_EQ(send(u"hellohello"), Outcome());
    EXPECT_EQ(sending_.references, std::vector<int>{7});
    EXPECT_EQ(script_->heard, (Heard{"AT+CMGS=22", "message " + helloOut}));
    expectWorking();
  }
}

TEST_F(ModemTest, ListingOfAMemoryThatIsNotThere_IsRefused) {
  connect("one-memory");
  EXPECT_FALSE(modem_->isSupported(Memory::Phone));
  EXPECT_EQ(modem_->list(Memory::Phone).outcome, Outcome{Kind::NoMemory});
  EXPECT_EQ(modem_->read({Memory::Phone, 1}).outcome, Outcome{Kind::NoMemory});
  EXPECT_EQ(modem_->remove({Memory::Phone, 1}, hello), Outcome{Kind::NoMemory});
  EXPECT_EQ(script_->heard, Heard());
  EXPECT_EQ(listed(Memory::Sim), bothMessages);
}

TEST_F(ModemTest, FormOfTheMemoryCommand_IsTheOneThatWasAccepted) {
  connect("two-names");
  listed(Memory::Phone);
  EXPECT_EQ(script_->heard, (Heard{"AT+CPMS=\"ME\",\"ME\"", "AT+CMGL=4"}));
  EXPECT_EQ(modem_->memory(Memory::Phone).capacity, 100);
  connect("one-name");
  listed(Memory::Phone);
  EXPECT_EQ(script_->heard, (Heard{"AT+CPMS=\"ME\"", "AT+CMGL=4"}));
  EXPECT_EQ(modem_->memory(Memory::Sim).capacity, 20);
}

TEST_F(ModemTest, PhoneAndSimAsOne_StandInForTheSim) {
  connect("mt-only");
  EXPECT_FALSE(modem_->isSupported(Memory::Phone));
  EXPECT_EQ(modem_->memory(Memory::Sim).capacity, 120);
  EXPECT_EQ(listed(Memory::Sim), (std::vector<StoredPdu>{{101, Status::ReceivedRead, hello}}));
}

TEST_F(ModemTest, FirstSlotZero_IsASlotLikeOthers) {
  connect("slot-zero");
  EXPECT_EQ(listed(Memory::Sim), (std::vector<StoredPdu>{{0, Status::ReceivedUnread, hello}}));
  EXPECT_EQ(modem_->remove({Memory::Sim, 0}, hello), Outcome());
  EXPECT_EQ(script_->heardOf("AT+CMGD"), Heard{"AT+CMGD=0"});
}

TEST_F(ModemTest, DamagedMessages_AreReadOneByOneAndStayUnread) {
  connect("lost-octets");
  EXPECT_EQ(listed(Memory::Sim), bothMessages);
  EXPECT_EQ(script_->heardOf("AT+CMGR"), (Heard{"AT+CMGR=1", "AT+CMGR=3"}));
}

TEST_F(ModemTest, ListingThatBreaksOff_IsReadSlotBySlot) {
  connect("listing-cut");
  EXPECT_EQ(listed(Memory::Sim),
            (std::vector<StoredPdu>{{1, Status::ReceivedUnread, hello}, {3, Status::ReceivedRead, hej}}));
  Heard slots;
  for (int index = 0; index <= 20; ++index)
    if (index != 1) slots.push_back("AT+CMGR=" + std::to_string(index));
  EXPECT_EQ(script_->heardOf("AT+CMGR"), slots);
}

TEST_F(ModemTest, ListingHalfAnswered_IsAskedAgainAndKeepsWhatWasUnread) {
  connect("halved-line");
  EXPECT_EQ(listed(Memory::Sim), bothMessages);
  EXPECT_EQ(script_->heardOf("AT+CMGL").size(), 2u);
  EXPECT_EQ(script_->heardOf("AT+CMGR"), Heard());
}

TEST_F(ModemTest, LinesThatNobodyKnows_AreListedOnceMore) {
  for (const auto& [name, listings, readings] : {std::tuple("garbled-listing", 2u, 0u), std::tuple("talkative", 2u, 0u),
                                                 std::tuple("plain", 1u, 0u), std::tuple("garbled-header", 2u, 20u)}) {
    SCOPED_TRACE(name);
    connect(name);
    EXPECT_EQ(listed(Memory::Sim), bothMessages);
    EXPECT_EQ(script_->heardOf("AT+CMGL").size(), listings);
    EXPECT_EQ(script_->heardOf("AT+CMGR").size(), readings);
  }
}

TEST_F(ModemTest, LateAnswer_IsNotTakenForTheNextListings) {
  connect("late-answer");
  EXPECT_EQ(listed(Memory::Sim),
            (std::vector<StoredPdu>{{1, Status::ReceivedRead, hello}, {3, Status::ReceivedRead, hej}}));
}

TEST_F(ModemTest, ModemThatBeginsAnew_IsSetUpAgain) {
  connect("reset-in-listing");
  EXPECT_EQ(listed(Memory::Sim), bothMessages);
  EXPECT_EQ(script_->heard,
            (Heard{"AT+CMGL=4", "AT", "ATE0", "ATV1", "AT+CMEE=1", "AT+CPIN?", "AT+CSMS=0", "AT+CMGF=0",
                   "AT+CSCS=\"GSM\"", "AT+CNMI=2,1,0,0,0", "AT+CPMS=\"SM\",\"SM\",\"SM\"", "AT+CMGL=4"}));
}

TEST_F(ModemTest, ArrivalsInAListing_AreNoticed) {
  connect("unsolicited-in-listing");
  EXPECT_EQ(listed(Memory::Sim), bothMessages);
  EXPECT_EQ(modem_->takeNotices(),
            (std::vector<Notice>{{Notice::Kind::Direct, {}, hej}, {Notice::Kind::Stored, Slot{Memory::Sim, 4}, {}}}));
  EXPECT_EQ(modem_->takeNotices(), std::vector<Notice>());
}

TEST_F(ModemTest, ArrivalsWhileIdle_AreNoticed) {
  connect("plain");
  for (const char* line : {"+CMTI: \"ME\",0", "+CMTI: \"XX\",5", "^SMMEMFULL: \"SM\"", "+SMS FULL", "RING"})
    script_->say(line);
  for (int i = 0; i < 5; ++i) modem_->listen(script_->now() + Milliseconds(10));
  EXPECT_EQ(modem_->takeNotices(), (std::vector<Notice>{{Notice::Kind::Stored, Slot{Memory::Phone, 0}, {}},
                                                        {Notice::Kind::Stored, {}, {}},
                                                        {Notice::Kind::MemoryFull, {}, {}},
                                                        {Notice::Kind::MemoryFull, {}, {}}}));
}

TEST_F(ModemTest, SimThatIsStillBusy_IsWaitedFor) {
  attach("just-on");
  modem_->connect();
  EXPECT_EQ(modem_->simState(), SimState::Ready);
  EXPECT_EQ(script_->heardOf("AT+CPIN?").size(), 2u);
  EXPECT_EQ(script_->heardOf("AT+CPMS=?").size(), 3u);
  EXPECT_TRUE(modem_->isSupported(Memory::Sim));
}

TEST_F(ModemTest, LockedSim_IsConnectedWithoutMemories) {
  connect("needs-pin");
  EXPECT_EQ(modem_->simState(), SimState::NeedsPin);
  EXPECT_FALSE(modem_->isSupported(Memory::Sim));
  EXPECT_EQ(send(u"hellohello"), refused(311));
}

TEST_F(ModemTest, Identity_LosesPrefixQuotesAndRepetition) {
  connect("odd-identity");
  EXPECT_EQ(modem_->name(), "Maker M20");
}

TEST_F(ModemTest, Information_IsGiven) {
  connect("plain");
  EXPECT_EQ(modem_->serviceCentre(), "+46705008999");
  EXPECT_EQ(modem_->registration(), Registration::Home);
  EXPECT_EQ(modem_->signal(), 17);
  connect("odd-identity");
  EXPECT_EQ(modem_->serviceCentre(), "+46705008999");
  EXPECT_EQ(modem_->registration(), Registration::Roaming);
  EXPECT_EQ(modem_->signal(), std::nullopt);
}

TEST_F(ModemTest, InformationThatIsRefusedOrMakesNoSense_IsNone) {
  connect("without-information");
  for (int answer = 0; answer < 3; ++answer) {
    SCOPED_TRACE(answer);
    EXPECT_EQ(modem_->serviceCentre(), std::nullopt);
    EXPECT_EQ(modem_->registration(), std::nullopt);
    EXPECT_EQ(modem_->signal(), std::nullopt);
  }
  expectWorking();
}

TEST_F(ModemTest, ServiceCentreThatTheSimHasNot_IsNeitherNumberNorRefusal) {
  script_ = std::make_unique<ScriptedModem>(
      "like plain\non AT+CSCA?\n  say +CSCA: \"\",129\n  say OK\non AT+CSCA?\n  say +CMS ERROR: 330\n");
  modem_ = std::make_unique<Modem>(*script_, *script_);
  modem_->connect();
  EXPECT_EQ(modem_->serviceCentre(), "");
  EXPECT_EQ(modem_->serviceCentre(), "");
}

// 3GPP TS 27.007, 7.2.
TEST_F(ModemTest, Registration_OfAllKinds) {
  using enum Registration;
  const std::vector<std::optional<Registration>> expected{No,      Home, Searching, Denied,  Unknown, Roaming, Home,
                                                          Roaming, No,   Home,      Roaming, {},      {}};
  std::string script = "like plain\n";
  for (const int state : {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, -1})
    script += "on AT+CREG?\n  say +CREG: 2," + std::to_string(state) + ",\"00C3\",\"1A2B\"\n  say OK\n";
  script_ = std::make_unique<ScriptedModem>(script);
  modem_ = std::make_unique<Modem>(*script_, *script_);
  modem_->connect();
  for (std::size_t i = 0; i < expected.size(); ++i) EXPECT_EQ(modem_->registration(), expected[i]) << i;
}

TEST_F(ModemTest, Deleting_MakesSureOfTheMessageFirst) {
  connect("plain");
  EXPECT_EQ(modem_->remove({Memory::Sim, 1}, hello), Outcome());
  EXPECT_EQ(script_->heard, (Heard{"AT+CMGR=1", "AT+CMGD=1"}));
}

TEST_F(ModemTest, DeletingWhereAnotherMessageIsByNow_LeavesItThere) {
  connect("plain");
  EXPECT_EQ(modem_->remove({Memory::Sim, 3}, hello), Outcome{Kind::Empty});
  EXPECT_EQ(script_->heardOf("AT+CMGD"), Heard());
}

TEST_F(ModemTest, DeletingAnEmptySlot_SaysSoHoweverTheModemDoes) {
  for (const char* name : {"plain", "stray-ok", "cmee-words", "cmee-refused", "bare-error", "listing-cut"}) {
    SCOPED_TRACE(name);
    connect(name);
    EXPECT_EQ(modem_->remove({Memory::Sim, 5}, hello), Outcome{Kind::Empty});
    EXPECT_EQ(script_->heardOf("AT+CMGD"), Heard());
  }
}

TEST_F(ModemTest, DeletingThatIsRefused_IsTold) {
  connect("bare-error");
  // Slot 1 reads as well as any; only deleting is refused.
  EXPECT_EQ(modem_->remove({Memory::Sim, 1}, hello), (Outcome{Kind::Refused, {at::Result::Kind::Error, 0, "ERROR"}}));
}

TEST_F(ModemTest, MessageWithAServiceCentre_GoesByWayOfIt) {
  connect("plain");
  EXPECT_EQ(send(u"hellohello", u"+46705008999"), Outcome());
  EXPECT_EQ(script_->heardOf("message"), Heard{"message 07916407058099F9" + helloOut.substr(2)});
}

TEST_F(ModemTest, LongMessage_GoesInPartsWithTheRadioKeptOn) {
  connect("plain");
  EXPECT_EQ(send(std::u16string(300, u'x')), Outcome());
  ASSERT_EQ(script_->heard.size(), 5u);
  EXPECT_EQ(script_->heard[0], "AT+CMMS=1");
  EXPECT_EQ(script_->heardOf("message").size(), 2u);
  EXPECT_EQ(sending_.sent, 2u);
  EXPECT_EQ(sending_.references, (std::vector<int>{7, 7}));
}

TEST_F(ModemTest, RefusedMessage_IsNotRepeatedAndTheErrorIsTold) {
  connect("stray-ok");
  EXPECT_EQ(send(u"hellohello"), refused(38));
  EXPECT_EQ(script_->heardOf("message").size(), 1u);
  expectWorking();
  connect("bare-error");
  EXPECT_EQ(send(u"hellohello"), (Outcome{Kind::Refused, {at::Result::Kind::Error, 0, "ERROR"}}));
  EXPECT_EQ(script_->heardOf("message").size(), 1u);
  expectWorking();
  connect("cmee-words");
  EXPECT_EQ(send(u"hellohello").error.code, 331);
  connect("cmee-refused");
  EXPECT_EQ(send(u"hellohello"), (Outcome{Kind::Refused, {at::Result::Kind::Error, 0, "ERROR"}}));
  EXPECT_EQ(script_->heardOf("message"), Heard());
}

TEST_F(ModemTest, MessageWithoutAnAnswer_IsUnknownAndNotRepeated) {
  connect("silent-send");
  EXPECT_EQ(send(u"hellohello"), Outcome{Kind::Unknown});
  EXPECT_EQ(script_->heardOf("message"), Heard{"message " + helloOut});
  expectWorking();
  EXPECT_EQ(script_->heardOf("message").size(), 1u);
}

TEST_F(ModemTest, ModemThatBeginsAnewInASend_LeavesItUnknownAndWorksAgain) {
  connect("reset-in-sending");
  EXPECT_EQ(send(u"hellohello"), Outcome{Kind::Unknown});
  EXPECT_EQ(script_->heardOf("message").size(), 1u);
  EXPECT_EQ(send(u"hellohello"), Outcome());
  EXPECT_EQ(sending_.references, std::vector<int>{8});
  expectWorking();
}

TEST_F(ModemTest, ModemThatBeginsAnewBeforeAMessage_IsNotGivenIt) {
  connect("reset-before-prompt");
  EXPECT_EQ(send(u"hellohello"), Outcome{Kind::NoAnswer});
  EXPECT_EQ(script_->heardOf("message"), Heard());
  EXPECT_EQ(script_->heardOf("escape"), Heard{"escape"});
  EXPECT_EQ(send(u"hellohello"), Outcome());
  EXPECT_EQ(script_->heardOf("AT+CMGF").size(), 1u);
}

TEST_F(ModemTest, AnswerOfTheNetworkThatIsDamaged_CountsWithItsOk) {
  connect("halved-result");
  EXPECT_EQ(send(u"hellohello"), Outcome());
  EXPECT_EQ(sending_.references, std::vector<int>{-1});
  // Without any sign of it, an OK is not enough.
  EXPECT_EQ(send(u"hellohello"), Outcome{Kind::Unknown});
}

TEST_F(ModemTest, PulledOutInASend_LeavesItUnknownAndIsGone) {
  connect("pulled-out");
  EXPECT_EQ(send(u"hellohello"), Outcome{Kind::Unknown});
  EXPECT_THROW(modem_->list(Memory::Sim), LineLost);
  EXPECT_THROW(modem_->check(), LineLost);
}

TEST_F(ModemTest, LostPromptAndEscapeIgnored_SendsNothingAndIsInStepAgain) {
  connect("esc-ignored");
  EXPECT_EQ(send(u"hellohello"), Outcome{Kind::NoAnswer});
  for (const std::string& message : script_->heardOf("message")) EXPECT_EQ(message.find(helloOut), std::string::npos);
  EXPECT_EQ(send(u"hellohello"), Outcome());
  EXPECT_EQ(script_->heardOf("message").back(), "message " + helloOut);
  expectWorking();
}

TEST_F(ModemTest, ModemThatNeedsAPauseBehindThePrompt_GetsItFromThenOn) {
  connect("needs-pause");
  EXPECT_EQ(send(u"hellohello"), Outcome());
  EXPECT_EQ(script_->heardOf("message"), (Heard{"message " + helloOut, "message " + helloOut}));
  const Instant begin = script_->now();
  EXPECT_EQ(send(u"hellohello"), Outcome());
  EXPECT_EQ(script_->now() - begin, Milliseconds(2100));
  EXPECT_EQ(script_->heardOf("message").size(), 3u);
}

TEST_F(ModemTest, LongMessageRefusedOnItsWay_GoesOnWhereItStopped) {
  connect("busy-network");
  EXPECT_EQ(send(std::u16string(400, u'x')), refused(38));
  EXPECT_EQ(sending_.sent, 2u);
  auto parts = script_->heardOf("message");
  ASSERT_EQ(parts.size(), 4u);
  EXPECT_EQ(parts[1], parts[2]);  // was refused because of the moment only

  EXPECT_EQ(modem_->send(sending_), Outcome());
  EXPECT_EQ(sending_.references, (std::vector<int>{41, 42, 43}));
  EXPECT_EQ(script_->heardOf("message").back(), parts[3]);
}

TEST_F(ModemTest, WhatCannotBeSent_IsNotHandedToTheModem) {
  connect("plain");
  Sending sending;
  EXPECT_EQ(Modem::prepare({}, u"Anna", u"x", 1, sending), Outcome{Kind::BadNumber});
  EXPECT_EQ(Modem::prepare({}, u"", u"x", 1, sending), Outcome{Kind::BadNumber});
  EXPECT_EQ(Modem::prepare(u"centre", u"+46701234567", u"x", 1, sending), Outcome{Kind::BadNumber});
  EXPECT_EQ(Modem::prepare({}, u"+46701234567", std::u16string(255 * 153 + 1, u'x'), 1, sending),
            Outcome{Kind::TooLong});
  EXPECT_EQ(Modem::prepare({}, u"+46701234567", std::u16string(255 * 153, u'x'), 1, sending), Outcome());
  EXPECT_EQ(script_->heard, Heard());
}

TEST_F(ModemTest, CheckOfAModemThatForgotItsSettings_SetsItUpAgain) {
  connect("plain");
  modem_->check();
  EXPECT_EQ(script_->heard, Heard{"AT+CMEE?"});
  attach("forgetful");
  modem_->connect();
  script_->heard.clear();
  modem_->check();
  EXPECT_EQ(script_->heard.front(), "AT+CMEE?");
  EXPECT_EQ(script_->heardOf("AT+CNMI").size(), 1u);
  expectWorking();
}

TEST_F(ModemTest, NobodyThere_IsTold) {
  attach("dead");
  EXPECT_THROW(modem_->connect(), at::NotAnswering);
  EXPECT_EQ(script_->heard, (Heard{"AT", "AT", "AT", "AT", "AT"}));
}

TEST_F(ModemTest, Trace_ShowsTheDialogueWithoutNumbersAndTexts) {
  script_ = std::make_unique<ScriptedModem>(ScriptedModem::fromFile("plain"));
  Heard lines;
  at::Trace trace([&](std::string_view line) { lines.emplace_back(line); });
  modem_ = std::make_unique<Modem>(*script_, *script_, &trace);
  modem_->connect();
  lines.clear();
  modem_->serviceCentre();
  listed(Memory::Sim);
  send(u"hellohello", u"+46705008999");
  EXPECT_EQ(lines, (Heard{"> AT+CSCA?", "< +CSCA: \"***\",145", "< OK", "> AT+CMGL=4", "< +CMGL: 1,1,,28",
                          "< <36 octets>", "< +CMGL: 3,0,\"\",25", "< <33 octets>", "< OK", "> AT+CMGS=22",
                          "> <30 octets>", "< +CMGS: 7", "< OK"}));
  modem_.reset();
}

}  // namespace
}  // namespace phone
