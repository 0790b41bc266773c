// A mail client made of scriptable objects, for the tests of the add-in's host side: one explorer with the built-in
// menus, a namespace with its default folders, a timer server, a MAPI helper and, when asked for, a phone.
#pragma once

#include <map>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "addin/diag/basDbgOut.h"
#include "addin/host/OutAddIn.h"
#include "addin/host/basOutlook.h"
#include "addin/host/connect.h"
#include "addin/platform/dvmworkerlib.h"
#include "addin/platform/sms_objectlib.h"
#include "addin/platform/timermm.h"
#include "support/fake_object.h"
#include "support/native_system.h"
#include "support/seam_recorder.h"
#include "support/text.h"
#include "support/trace_levels.h"

namespace addin {

using testing_support::Census;
using testing_support::fake;
using testing_support::FakeObject;
using testing_support::Recorder;
using testing_support::ScriptedView;
using Shown = testing_support::NativeUserInterface::Shown;
using Lines = std::vector<std::string>;

// What each reading of the localizer leaves behind when there is none.
inline const std::string noLocalizer = "Error:429, ActiveX component can't create object, mrktxtmsg";

class HostFixture : public testing::Test {
 protected:
  static constexpr const char* optionsKey = "Software\\Microsoft\\Office\\9.0\\Outlook\\Options\\TextMessage";

  HostFixture() {
    dbgChannel = {};
    dbgChannel.Level = 2;
    system.windows.openViewer();
    setOption("WizardDone", 1u);
    buildObjectModel();
    provideServers();
  }
  ~HostFixture() override { dbgChannel = {}; }

  void setOption(const std::string& name, std::uint32_t number) {
    system.registry.setDword(rootCurrentUser, optionsKey, name, number);
  }
  void setOption(const std::string& name, const std::string& text) {
    system.registry.setString(rootCurrentUser, optionsKey, name, text);
  }

  // What was written since the last look.
  Lines newTrace() {
    Lines lines;
    for (const auto& line : system.windows.traceLines()) {
      EXPECT_EQ(line.level, testing_support::levelOf(line.text)) << line.text;
      lines.push_back(line.text);
    }
    system.windows.clearTrace();
    return lines;
  }

  // A connected add-in whose engine found no phone; its start-up lines are forgotten.
  void start() {
    addIn->InitHandler(application->as<outlook::Application>(), u"mrktxtmsg.connect");
    ASSERT_TRUE(addIn->StartUpCompleted());
    system.windows.clearTrace();
  }

  // The worker has one phone, attached, whose listings answer at once with the given status and no message.
  void providePhone() {
    sms->method(u"StorageCapacity", [](Args) { return Variant(std::int16_t{10}); });
    sms->method(u"StorageUsed", [this](Args) { return Variant(storageUsed); });
    sms->method(u"ListMessages", [this](Args) {
      system.time.post([this] {
        sms->fire(sms_objectlib::SMSEvents::OnNotifyResponse, std::int32_t{7}, std::int32_t{0}, Object());
      });
      return Variant(std::int32_t{7});
    });
    phone->value(u"IsConnected", true).value(u"SMS", sms->object());
    phones->value(u"Count", std::int32_t{1}).method(u"Item", [this](Args) { return Variant(phone->object()); });
    worker->value(u"IsConnected", true).value(u"CellPhones", phones->object());
    system.objects.provide(dvmworkerlib::progIdWorker, [this] { return worker->object(); });
  }

  FakeObject& folder(std::int32_t type) { return *folders.at(type); }
  // The button with this tag; a test failure when there is none.
  FakeObject& button(const std::string& tag) { return *buttons.at(tag); }

  testing_support::NativeSystem system;
  Census census;
  Ref<FakeObject> application = fake("Application");
  Ref<FakeObject> nameSpace = fake("NameSpace");
  Ref<FakeObject> explorers = fake("Explorers");
  Ref<FakeObject> inspectors = fake("Inspectors");
  Ref<FakeObject> explorer = fake("Explorer");
  Ref<FakeObject> commandBars = fake("CommandBars");
  Ref<FakeObject> menuBar = fake("MenuBar");
  Ref<FakeObject> formItem = fake("FormItem");
  Ref<FakeObject> form = fake("FormDescription");
  Ref<FakeObject> addInInst = fake("AddInInst");
  Ref<FakeObject> worker = fake("Worker");
  Ref<FakeObject> phones = fake("CellPhones");
  Ref<FakeObject> phone = fake("CellPhone");
  Ref<FakeObject> sms = fake("SMS");
  Ref<FakeObject> helper = fake("Helper");
  std::int16_t storageUsed = 3;  // messages on the SIM, of 10
  std::map<std::int32_t, Ref<FakeObject>> folders;
  std::map<std::int32_t, Ref<FakeObject>> popups;  // built-in menus by control id
  std::map<std::string, Ref<FakeObject>> buttons;  // by tag, in whatever menu
  std::vector<Ref<FakeObject>> timers;             // in the order of creation
  Ref<OutAddIn> addIn = make<OutAddIn>();

 private:
  void buildObjectModel() {
    for (const std::int32_t type : {3, 4, 5, 6, 10}) {
      const auto items = fake("Items " + std::to_string(type));
      folders[type] = fake("Folder " + std::to_string(type));
      folders[type]->value(u"Items", items->object());
    }
    nameSpace->method(u"GetDefaultFolder", [this](Args a) { return Variant(folders.at(CLng(a[0]))->object()); });
    explorers->value(u"Count", std::int32_t{1});
    inspectors->value(u"Count", std::int32_t{0});
    for (const std::int32_t id : {30037, 30007, 30010}) addMenu(id);
    menuBar->method(u"FindControl", [this](Args a) { return findMenu(a); });
    commandBars->method(u"Item", [this](Args a) {
      return CStr(a[0]) == u"Menu Bar" ? Variant(menuBar->object()) : (raiseError(5), Variant());
    });
    explorer->value(u"CommandBars", commandBars->object());
    form->value(u"DisplayName", u"").value(u"Name", u"").method(u"PublishForm", [](Args) { return Variant(); });
    formItem->value(u"FormDescription", form->object());
    application->value(u"ActiveWindow", explorer->object())
        .value(u"ActiveExplorer", explorer->object())
        .value(u"Explorers", explorers->object())
        .value(u"Inspectors", inspectors->object())
        .method(u"GetNamespace", [this](Args) { return Variant(nameSpace->object()); })
        .method(u"CreateItemFromTemplate", [this](Args) { return Variant(formItem->object()); });
    addInInst->value(u"ProgId", u"mrktxtmsg.connect");
  }

  void addMenu(std::int32_t id) {
    const auto popup = fake("Popup " + std::to_string(id));
    const auto bar = fake("Menu " + std::to_string(id));
    const auto controls = fake("Controls " + std::to_string(id));
    bar->method(u"FindControl", [this](Args a) {
      const auto at = buttons.find(testing_support::utf8(CStr(a[2])));
      return Variant(at == buttons.end() ? Object() : at->second->object());
    });
    controls->method(u"Add", [this](Args a) { return Variant(addButton(testing_support::utf8(CStr(a[2])))); });
    bar->value(u"Controls", controls->object());
    popup->value(u"CommandBar", bar->object());
    popups[id] = popup;
  }

  Variant findMenu(Args a) {
    const auto at = popups.find(CLng(a[1]));
    return Variant(at == popups.end() ? Object() : at->second->object());
  }

  Object addButton(const std::string& tag) {
    const auto made = fake("Button " + tag);
    for (const StringView property :
         {u"Caption", u"Tag", u"FaceId", u"Style", u"TooltipText", u"BeginGroup", u"OnAction", u"Enabled"})
      made->value(property, Variant());
    made->method(u"Delete", [](Args) { return Variant(); });
    buttons[tag] = made;
    return made->object();
  }

  void provideServers() {
    system.objects.provide(timermm::progIdTimer, [this] {
      const auto timer = fake("Timer " + std::to_string(timers.size() + 1));
      for (const StringView property : {u"Enabled", u"Interval", u"Resolution", u"Periodic"})
        timer->value(property, Variant());
      timers.push_back(timer);
      return timer->object();
    });
    system.objects.provide(txtmsghelper::progIdTxtMsg, [this] { return helper->object(); });
  }
};

}  // namespace addin
