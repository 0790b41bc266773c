// The send-and-receive command, the polling timer, the SIM-full warning and the phone's effect on the button.

#include "unit/host/host_fixture.h"

namespace addin {
namespace {

class SendReceive : public HostFixture {
 protected:
  void startWithPhone() {
    providePhone();
    start();
    for (const std::int32_t type : {3, 4, 6}) emptyItems(type);
  }
  void emptyItems(std::int32_t type) {
    const auto none = fake("None");
    none->value(u"Count", std::int32_t{0});
    folder(type).value(u"Items", none->object());
    none->method(u"Restrict", [none = none.get()](Args) { return Variant(none->object()); });
  }
  void tick(std::int32_t milliseconds = 60000) { timers.back()->fire(timermm::TimerEvents::Timer, milliseconds); }
  Lines linesAfterSend() {
    const Lines lines = newTrace();
    const auto at = std::find(lines.begin(), lines.end(), checkLine);
    return {at, lines.end()};
  }
  // How often the command got as far as receiving.
  std::int32_t runs() {
    const Lines lines = newTrace();
    return static_cast<std::int32_t>(std::count(lines.begin(), lines.end(), "Inside Function ReceiveAll"));
  }
  void TearDown() override {
    if (addIn) addIn->UnInitHandler();
  }

  static inline const std::string checkLine =
      "Check in the registry if a warning should be displayed, if the SIM card is full";
  static inline const Lines simFullLines{
      "Inside Function isSimFull",
      "Max SIM Capacity = 10",
      "Used SIM Memory = 10",
      "m_maxSimCapacity is larger than zero - compare it with m_usedSimMemory",
      "isSimFull=1",
      "simWarning <> 0, localize SIM Full strings",
      "Error:429, ActiveX component can't create object, mrktxtmsg",
      "Show message SIM card is full",
  };
};

TEST_F(SendReceive, Command_ReceivesBothStoresThenArmsTheSendTimerThenChecksTheSim) {
  startWithPhone();
  addIn->SendAndReceive();
  const Lines lines = newTrace();
  const auto position = [&](const std::string& line) {
    return std::find(lines.begin(), lines.end(), line) - lines.begin();
  };
  EXPECT_EQ(position("Inside Function ReceiveAll"), 0);
  EXPECT_LT(position("ListMessage - cpSMSSIMMessageStore - bRet = True"), position("Inside Function SendAll"));
  EXPECT_LT(position("SendAll = True"), position(checkLine));
  EXPECT_EQ(lines.back(), "isSimFull=0");
  EXPECT_TRUE(system.ui.boxes.empty());
  EXPECT_EQ(timers[0]->valueOf(u"Enabled"), Variant(true));
}

TEST_F(SendReceive, Command_FailedReceive_IsOneLineAndTheRestRuns) {
  startWithPhone();
  worker->value(u"IsConnected", false);  // no listing starts
  addIn->SendAndReceive();
  EXPECT_EQ(
      newTrace(),
      (Lines{"Inside Function ReceiveAll", "Create m_smsToDelete collection",
             "Inside ReceiveAll Function - m_bReceiveAll = True", "ListMessage - cpSMSMEMessageStore - bRet = False",
             "Error:3, Error during ListMessage, Store:1, ReceiveAll",
             "Error: 1, Error during Receive All, SendAndReceive", "Inside Function SendAll",
             "SetupSendMessage: 1000000", "SendAll = True", "SetupSendMessage: 1000000", checkLine,
             "Show warning - SIM card is full", "Inside Function isSimFull", "Max SIM Capacity = 10",
             "Used SIM Memory = 3", "m_maxSimCapacity is larger than zero - compare it with m_usedSimMemory",
             "UsedMemory is less than SimCapacity", "isSimFull=0"}));
}

TEST_F(SendReceive, Command_FailedSend_EndsBeforeTheSimCheck) {
  start();  // no phone
  addIn->SendAndReceive();
  const Lines lines = newTrace();
  EXPECT_EQ(
      Lines(lines.end() - 4, lines.end()),
      (Lines{"Error: 1, Error during Receive All, SendAndReceive", "Inside Function SendAll",
             "Error:-1, No phone connected, SetupSendMessage", "Error:2, Error during Send All, SendAndReceive"}));
  EXPECT_TRUE(system.ui.boxes.empty());
}

TEST_F(SendReceive, Command_WithoutEngine_GoesOnToTheCheckAndEndsThere) {
  addIn->SendAndReceive();
  EXPECT_EQ(newTrace(), (Lines{checkLine, "Show warning - SIM card is full",
                               "Error:91, Object variable or With block variable not set, mrktxtmsg"}));
}

TEST_F(SendReceive, Command_BeforeTheWizardIsDone_ShowsItModelessOnly) {
  startWithPhone();
  setOption("WizardDone", 0u);
  addIn->SendAndReceive();
  EXPECT_EQ(newTrace(), Lines{});
  EXPECT_EQ(system.ui.shown, (std::vector<Shown>{{u"frmwizard", FormModality::Modeless}}));
}

TEST_F(SendReceive, Click_RunsTheCommand) {
  startWithPhone();
  bool cancel = false;
  auto& pressed = button("Send & Receive Text Message");
  pressed.fire(office::CommandBarButtonEvents::Click, pressed.object(), cancel);
  EXPECT_FALSE(cancel);
  EXPECT_EQ(runs(), 1);
}

TEST_F(SendReceive, Click_DisconnectedWhileListing_EndsBeforeTheSend) {
  startWithPhone();
  sms->method(u"ListMessages", [this](Args) {
    system.time.post([this] {
      newTrace();
      addIn->UnInitHandler();
      addIn = nullptr;  // the last reference, while its click handler runs
      for (const auto& object : {application, explorer, worker, sms}) EXPECT_EQ(object->listeners(), 0u);
    });
    return Variant(std::int32_t{7});
  });
  bool cancel = false;
  auto& pressed = button("Send & Receive Text Message");
  pressed.fire(office::CommandBarButtonEvents::Click, pressed.object(), cancel);
  EXPECT_EQ(newTrace(), (Lines{"Removed new button", "Removed send&receive button", "Removed delete button",
                               "Removed Help button", "ListMessage - cpSMSMEMessageStore - bRet = False",
                               "Error:3, Error during ListMessage, Store:1, ReceiveAll",
                               "Error: 1, Error during Receive All, SendAndReceive",
                               "Error:91, Object variable or With block variable not set, mrktxtmsg"}));
  EXPECT_EQ(pressed.listeners(), 0u);
}

TEST_F(SendReceive, Warning_SimFull_ShowsTheBox) {
  startWithPhone();
  storageUsed = 10;
  addIn->SendAndReceive();
  Lines expected = simFullLines;
  expected.insert(expected.begin(), {checkLine, "Show warning - SIM card is full"});
  EXPECT_EQ(linesAfterSend(), expected);
  EXPECT_EQ(
      system.ui.boxes,
      (std::vector<testing_support::NativeUserInterface::Box>{
          {u"The text message memory is full!\r\n\r\nIt is necessary to delete text message(s) from the Inbox to be "
           u"able to receive new text messages.",
           64, u"Marrick Text Message Add-In For Outlook"}}));
}

TEST_F(SendReceive, Warning_LineComesWhenTheBoxHasBeenClosed) {
  startWithPhone();
  storageUsed = 10;
  std::string lastWhileOpen;
  system.ui.whileBoxIsOpen = [&] { lastWhileOpen = system.trace().back(); };
  addIn->SendAndReceive();
  EXPECT_EQ(lastWhileOpen, "Error:429, ActiveX component can't create object, mrktxtmsg");
  EXPECT_EQ(newTrace().back(), "Show message SIM card is full");
}

TEST_F(SendReceive, Warning_Localized_AsksForThreeTexts) {
  startWithPhone();
  storageUsed = 10;
  const auto localizer = fake("Localizer");
  localizer->method(u"getlocalizedresstring", [](Args a) { return Variant(concat(u"L", CLng(a[0]))); });
  system.objects.provide(u"mrktxtmsgres.localizer", [&] { return localizer->object(); });
  addIn->SendAndReceive();
  EXPECT_EQ(
      localizer->calls(),
      (Lines{"getlocalizedresstring(101, \"Marrick Text Message Add-In For Outlook\")",
             "getlocalizedresstring(424, \"The text message memory is full!\")",
             "getlocalizedresstring(425, \"It is necessary to delete text message(s) from the Inbox to be able to "
             "receive new text messages.\")"}));
  EXPECT_EQ(system.ui.boxes,
            (std::vector<testing_support::NativeUserInterface::Box>{{u"L424\r\n\r\nL425", 64, u"L101"}}));
}

TEST_F(SendReceive, Warning_SwitchedOff_IsNotEvenChecked) {
  startWithPhone();
  storageUsed = 10;
  setOption("Sim_Full_Warning", 0u);
  addIn->SendAndReceive();
  EXPECT_EQ(linesAfterSend(), (Lines{checkLine, "Don't show warning - SIM card is full: 0"}));
  EXPECT_TRUE(system.ui.boxes.empty());
}

TEST_F(SendReceive, Warning_AnyOtherNumber_SaysDontAndShowsIt) {
  for (const std::string value : {"1", "-1", "17"}) {
    startWithPhone();
    storageUsed = 10;
    setOption("Sim_Full_Warning", value);
    addIn->SendAndReceive();
    Lines expected = simFullLines;
    expected.insert(expected.begin(), {checkLine, "Don't show warning - SIM card is full: " + value});
    EXPECT_EQ(linesAfterSend(), expected);
    addIn->UnInitHandler();
    addIn = make<OutAddIn>();
  }
  EXPECT_EQ(system.ui.boxes.size(), 3u);
}

TEST_F(SendReceive, Warning_TextThatIsNoNumber_IsLoggedAndShowsNothing) {
  startWithPhone();
  storageUsed = 10;
  setOption("Sim_Full_Warning", "often");
  addIn->SendAndReceive();
  EXPECT_EQ(linesAfterSend(), (Lines{checkLine, "Error:13, Type mismatch, mrktxtmsg"}));
  EXPECT_TRUE(system.ui.boxes.empty());
}

TEST_F(SendReceive, Warning_PhoneGoneAfterTheSend_CountsAsFull) {
  startWithPhone();
  // The phone goes between the send and the check; the query that fails then gives -1, as no SMS object does.
  sms->fails(u"StorageUsed", RuntimeError(-2147417848, u"SMS", u"disconnected"));
  addIn->SendAndReceive();
  EXPECT_EQ(linesAfterSend(),
            (Lines{checkLine, "Show warning - SIM card is full", "Inside Function isSimFull", "Max SIM Capacity = 10",
                   "Error:-2147417848, disconnected, SMS", "simWarning <> 0, localize SIM Full strings",
                   "Error:429, ActiveX component can't create object, mrktxtmsg", "Show message SIM card is full"}));
  EXPECT_EQ(system.ui.boxes.size(), 1u);
}

TEST_F(SendReceive, Timer_DefaultInterval_RunsAtEverySecondTick) {
  startWithPhone();
  std::vector<std::int32_t> ran;
  for (int i = 0; i < 6; ++i) {
    tick();
    ran.push_back(runs());
  }
  EXPECT_EQ(ran, (std::vector<std::int32_t>{0, 1, 0, 1, 0, 1}));
}

TEST_F(SendReceive, Timer_IntervalFive_RunsAtEveryFifthTick) {
  setOption("SendReceive_AutoIntervall", 5u);
  startWithPhone();
  std::vector<std::int32_t> ran;
  for (int i = 0; i < 11; ++i) {
    tick();
    ran.push_back(runs());
  }
  EXPECT_EQ(ran, (std::vector<std::int32_t>{0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0}));
}

TEST_F(SendReceive, Timer_IntervalBelowOne_BecomesTwo) {
  for (const std::string interval : {"0", "-7"}) {
    setOption("SendReceive_AutoIntervall", interval);
    startWithPhone();
    tick();
    EXPECT_EQ(runs(), 0) << interval;
    tick();
    EXPECT_EQ(runs(), 1) << interval;
    addIn->UnInitHandler();
    addIn = make<OutAddIn>();
  }
}

TEST_F(SendReceive, Timer_Tick_TracesItsMilliseconds) {
  startWithPhone();
  tick(60017);
  EXPECT_EQ(newTrace(), (Lines{"Poll timer: 60017"}));
}

TEST_F(SendReceive, Timer_Run_DisablesTheTimerAndEnablesItAfterwards) {
  startWithPhone();
  tick();
  timers[2]->clearCalls();
  storageUsed = 10;
  Lines whileOpen;
  system.ui.whileBoxIsOpen = [&] { whileOpen = timers[2]->calls(); };
  tick();
  EXPECT_EQ(whileOpen, (Lines{"Enabled = False"}));
  EXPECT_EQ(timers[2]->calls(), (Lines{"Enabled = False", "Enabled = True"}));
}

TEST_F(SendReceive, Timer_NoPhone_SkipsTheRunAndGoesOn) {
  start();
  tick();
  timers[2]->clearCalls();
  tick();
  EXPECT_EQ(newTrace(), (Lines{"Poll timer: 60000", "Poll timer: 60000"}));
  EXPECT_EQ(timers[2]->calls(), (Lines{"Enabled = False", "Enabled = True"}));
}

TEST_F(SendReceive, Timer_FailedRun_IsEnabledAgain) {
  startWithPhone();
  setOption("Sim_Full_Warning", "often");
  tick();
  tick();
  EXPECT_EQ(timers[2]->valueOf(u"Enabled"), Variant(true));
}

TEST_F(SendReceive, Timer_ErrorInItsOwnSteps_LeavesItDisabled) {
  startWithPhone();
  tick();
  timers[2]->script(u"Enabled", [](Access, Args a) -> Variant {
    if (!CBool(a[0])) raiseError(-2147467259, u"timermm", u"Unspecified error");
    ADD_FAILURE() << "enabled again";
    return {};
  });
  newTrace();
  tick();
  EXPECT_EQ(newTrace(), (Lines{"Poll timer: 60000", "Error:-2147467259, Unspecified error, timermm"}));
}

TEST_F(SendReceive, Timer_WizardNotDone_OpensItAtEachRun) {
  startWithPhone();
  setOption("WizardDone", 0u);
  tick();
  tick();
  ASSERT_EQ(system.ui.shown.size(), 1u);
  system.ui.view(u"frmwizard").close();
  tick();
  tick();
  EXPECT_EQ(system.ui.shown.size(), 2u);
  EXPECT_TRUE(system.ui.isOpen(u"frmwizard"));
  EXPECT_EQ(timers.back()->valueOf(u"Enabled"), Variant(true));  // the run did not wait for it
}

TEST_F(SendReceive, Timer_WizardStillOpen_BringsTheSameOneToTheFront) {
  startWithPhone();
  setOption("WizardDone", 0u);
  tick();
  tick();
  system.ui.view(u"frmwizard").click("btnNext");
  tick();
  tick();
  EXPECT_EQ(system.ui.shown.size(), 2u);
  EXPECT_TRUE(system.ui.view(u"frmwizard").seen("pageServiceCentre"));  // where the user had left it
}

TEST_F(SendReceive, Timer_DisconnectedWhileTheBoxIsOpen_EndsWithoutTouchingAnything) {
  startWithPhone();
  storageUsed = 10;
  system.ui.whileBoxIsOpen = [this] {
    addIn->UnInitHandler();
    addIn = nullptr;  // the last reference, while its timer handler runs
    EXPECT_EQ(application->listeners(), 0u);
    EXPECT_EQ(button("New Text Message").listeners(), 0u);
  };
  tick();
  tick();
  const Lines lines = newTrace();
  EXPECT_EQ(
      Lines(lines.end() - 2, lines.end()),
      (Lines{"Show message SIM card is full", "Error:91, Object variable or With block variable not set, mrktxtmsg"}));
}

TEST_F(SendReceive, PhoneConnected_EnablesTheButtonAndSaysSo) {
  providePhone();
  phones->value(u"Count", std::int32_t{0});  // it comes later
  start();
  auto& pressed = button("Send & Receive Text Message");
  EXPECT_EQ(pressed.valueOf(u"Enabled"), Variant(false));
  worker->fire(dvmworkerlib::WorkerEvents::OnNotifyCellPhoneConnected, std::int32_t{1}, phone->object());
  EXPECT_EQ(pressed.valueOf(u"Enabled"), Variant(true));
  EXPECT_EQ(newTrace().back(), "m_objSMSHandler_OnPhoneConnected: True");
  worker->fire(dvmworkerlib::WorkerEvents::OnNotifyCellPhoneConnected, std::int32_t{0}, phone->object());
  EXPECT_EQ(pressed.valueOf(u"Enabled"), Variant(false));
  EXPECT_EQ(newTrace(),
            (Lines{"m_bPhoneConnected = 0", "Phone disconnected!", "m_objSMSHandler_OnPhoneConnected: False"}));
}

TEST_F(SendReceive, PhoneConnected_WithoutTheButton_IsTheRaisersError) {
  popups.erase(30007);
  providePhone();
  addIn->InitHandler(application->as<outlook::Application>(), u"x");
  newTrace();
  EXPECT_TRUE(addIn->StartUpCompleted());
  const Lines lines = newTrace();
  // InitCAPIObjects raised the event, and logs the error; the start-up goes on.
  EXPECT_EQ(
      std::count(lines.begin(), lines.end(), "Error:91, Object variable or With block variable not set, mrktxtmsg"), 1);
  EXPECT_EQ(std::count(lines.begin(), lines.end(), "m_objSMSHandler_OnPhoneConnected: True"), 0);
}

}  // namespace
}  // namespace addin
