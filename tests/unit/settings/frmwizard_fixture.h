// A wizard on a system that has settings, a list of service centres and, when asked for, a localizer.
#pragma once

#include <gtest/gtest.h>

#include "addin/diag/basDbgOut.h"
#include "addin/settings/frmwizard.h"
#include "support/fake_object.h"
#include "support/native_system.h"
#include "support/seam_recorder.h"
#include "support/text.h"

namespace addin {

using testing_support::Census;
using testing_support::fake;
using testing_support::FakeObject;
using testing_support::ScriptedView;
using testing_support::utf8;
using Lines = std::vector<std::string>;
using RegistryValue = testing_support::NativeRegistry::Value;

class WizardFixture : public testing::Test {
 protected:
  static constexpr const char* optionsKey = "Software\\Microsoft\\Office\\9.0\\Outlook\\Options\\TextMessage";
  static constexpr const char* installationKey = "Software\\Marrick\\TextMessageAddIn";
  static constexpr StringView listPath = u"C:\\Marrick\\smsc.txt";

  WizardFixture() {
    dbgChannel = {};
    dbgChannel.Level = 2;
    system.windows.openViewer();
    system.registry.setKey(rootCurrentUser, optionsKey);
    setList("Choose one\r\n\"As stored on the SIM card ()\"\r\nNorth (+1 23)\r\n\"South, East (+456)\"\r\n");
  }
  ~WizardFixture() override {
    system.ui.closeAll();
    EXPECT_EQ(system.trace(), Lines{}) << "the wizard writes nothing";
    dbgChannel = {};
  }

  void setOption(const std::string& name, const std::string& text) {
    system.registry.setString(rootCurrentUser, optionsKey, name, text);
  }
  void setOption(const std::string& name, std::uint32_t number) {
    system.registry.setDword(rootCurrentUser, optionsKey, name, number);
  }
  void setList(const std::string& text) {
    system.registry.setString(rootLocalMachine, installationKey, "SMSCPath", utf8(listPath));
    system.files.contents[String(listPath)] = text;
  }
  void setNoList() { system.registry.deleteValue(rootLocalMachine, installationKey, "SMSCPath"); }

  FakeObject& provideLocalizer() {
    localizer = fake("Localizer");
    localizer->method(u"getlocalizedresstring", [](Args a) { return Variant(concat(u"L", CLng(a[0]))); });
    system.objects.provide(u"mrktxtmsgres.localizer", [this] { return localizer->object(); });
    return *localizer;
  }

  // A fresh wizard, not modal; an earlier one is closed.
  ScriptedView& open() {
    system.ui.closeAll();
    wizard = make<frmwizard>();
    wizard->Show(FormModality::Modeless);
    return system.ui.view(u"frmwizard");
  }
  // A fresh wizard on one of its pages, reached with Next; each page on the way is filled in.
  ScriptedView& openPage(int page) {
    ScriptedView& view = open();
    for (int at = 1; at < page; ++at) {
      if (at == 2 && !view.enabled("btnNext")) view.type("txtOwnSCAddress", u"+4");
      view.click("btnNext");
    }
    return view;
  }
  bool isOpen() const { return system.ui.isOpen(u"frmwizard"); }

  // What is stored under the options key, or nothing.
  std::optional<RegistryValue> stored(const std::string& name) const {
    return system.registry.value(rootCurrentUser, optionsKey, name);
  }
  static RegistryValue text(const std::string& bytes) { return {testing_support::regSz, bytes}; }
  static RegistryValue number(char value) { return {testing_support::regDword, std::string{value, 0, 0, 0}}; }

  testing_support::NativeSystem system;
  Census census;
  Ref<FakeObject> localizer;
  Ref<frmwizard> wizard;
};

}  // namespace addin
