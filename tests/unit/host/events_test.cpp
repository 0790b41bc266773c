// The mail client's own events: windows, selection, replies, and the Options dialog.

#include "unit/host/host_fixture.h"

namespace addin {
namespace {

class Events : public HostFixture {
 protected:
  Events() { explorer->value(u"Selection", selection->object()); }
  void TearDown() override { addIn->UnInitHandler(); }

  Ref<FakeObject> item(const std::string& entryId, StringView messageClass) {
    const auto made = fake("Item " + entryId);
    made->value(u"EntryID", String(entryId.begin(), entryId.end())).value(u"MessageClass", messageClass);
    return made;
  }
  void select(const std::vector<Ref<FakeObject>>& items) {
    selection->value(u"Count", static_cast<std::int32_t>(items.size()));
    selection->method(u"Item", [items](Args a) {
      return Variant(items.at(static_cast<std::size_t>(CLng(a[0])) - 1).get()->object());
    });
    explorer->fire(outlook::ExplorerEvents::SelectionChange);
  }
  template <class E>
  Variant markAfter(FakeObject& source, const E& event) {
    const auto response = fake("Response");
    response->value(u"BillingInformation", u"");
    bool cancel = false;
    source.fire(event, response->object(), cancel);
    EXPECT_FALSE(cancel);
    return response->valueOf(u"BillingInformation");
  }

  Ref<FakeObject> selection = fake("Selection");
};

const Lines removedLines{"Removed new button", "Removed send&receive button", "Removed delete button",
                         "Removed Help button"};

TEST_F(Events, ExplorerClose_LastOne_TearsDown) {
  start();
  inspectors->value(u"Count", std::int32_t{1});  // an item window stays open
  explorer->fire(outlook::ExplorerEvents::Close);
  EXPECT_EQ(newTrace(), removedLines);
  EXPECT_EQ(application->listeners(), 0u);
}

TEST_F(Events, ExplorerClose_AnotherStaysOpen_DoesNothing) {
  start();
  explorers->value(u"Count", std::int32_t{2});
  explorer->fire(outlook::ExplorerEvents::Close);
  EXPECT_EQ(newTrace(), Lines{});
  EXPECT_EQ(application->listeners(), 1u);
}

TEST_F(Events, ExplorerClose_AfterTearDown_IsHeardNoMore) {
  start();
  explorer->fire(outlook::ExplorerEvents::Close);
  newTrace();
  explorer->fire(outlook::ExplorerEvents::Close);
  EXPECT_EQ(newTrace(), Lines{});
}

TEST_F(Events, ExplorerClose_CountThatCannotBeRead_IsLoggedAndTearsNothingDown) {
  start();
  explorers->fails(u"Count", RuntimeError(70, u"Outlook", u"Permission denied"));
  explorer->fire(outlook::ExplorerEvents::Close);
  EXPECT_EQ(newTrace(), (Lines{"Error:70, Permission denied, Outlook"}));
  EXPECT_EQ(application->listeners(), 1u);
}

class InspectorEvents : public Events {
 protected:
  void open() {
    current->value(u"Class", std::int32_t{43});
    inspector->value(u"CurrentItem", current->object());
    inspectors->fire(outlook::InspectorsEvents::NewInspector, inspector->object());
  }
  Ref<FakeObject> inspector = fake("Inspector");
  Ref<FakeObject> current = fake("Current");
};

TEST_F(InspectorEvents, NewInspector_IsWatchedAndItsItemsClassRead) {
  start();
  open();
  EXPECT_EQ(inspector->calls(), (Lines{"connect", "CurrentItem"}));
  EXPECT_EQ(current->calls(), (Lines{"Class"}));
  EXPECT_EQ(newTrace(), Lines{});
}

TEST_F(InspectorEvents, NewInspector_ItemWithoutClass_IsLoggedAndStillWatched) {
  start();
  current->value(u"Class", std::int32_t{43}).removed(u"Class");
  inspector->value(u"CurrentItem", current->object());
  inspectors->fire(outlook::InspectorsEvents::NewInspector, inspector->object());
  EXPECT_EQ(newTrace(), (Lines{"Error:438, Object doesn't support this property or method, mrktxtmsg"}));
  EXPECT_EQ(inspector->listeners(), 1u);
}

TEST_F(InspectorEvents, Close_LastWindowOfAll_TearsDown) {
  start();
  open();
  explorers->value(u"Count", std::int32_t{0});
  inspectors->value(u"Count", std::int32_t{1});
  inspector->fire(outlook::InspectorEvents::Close);
  EXPECT_EQ(newTrace(), removedLines);
}

TEST_F(InspectorEvents, Close_WhileAnExplorerIsOpen_DoesNothing) {
  start();
  open();
  inspectors->value(u"Count", std::int32_t{1});
  inspector->fire(outlook::InspectorEvents::Close);
  EXPECT_EQ(newTrace(), Lines{});
}

TEST_F(InspectorEvents, Close_AnotherInspectorStays_DoesNothing) {
  start();
  open();
  explorers->value(u"Count", std::int32_t{0});
  inspectors->value(u"Count", std::int32_t{2});
  inspector->fire(outlook::InspectorEvents::Close);
  EXPECT_EQ(newTrace(), Lines{});
}

TEST_F(InspectorEvents, Close_CountThatCannotBeRead_IsLoggedAndTearsNothingDown) {
  start();
  open();
  explorers->value(u"Count", std::int32_t{0});
  inspectors->fails(u"Count", RuntimeError(70, u"Outlook", u"Permission denied"));
  inspector->fire(outlook::InspectorEvents::Close);
  EXPECT_EQ(newTrace(), (Lines{"Error:70, Permission denied, Outlook"}));
  EXPECT_EQ(application->listeners(), 1u);
}

TEST_F(InspectorEvents, NewInspector_ReplacesTheOneBefore) {
  start();
  open();
  const auto second = fake("Second");
  second->value(u"CurrentItem", current->object());
  inspectors->fire(outlook::InspectorsEvents::NewInspector, second->object());
  EXPECT_EQ(inspector->listeners(), 0u);
  EXPECT_EQ(second->listeners(), 1u);
}

TEST_F(Events, NewExplorer_DoesNothing) {
  start();
  const auto other = fake("Other");
  explorers->fire(outlook::ExplorersEvents::NewExplorer, other->object());
  EXPECT_EQ(other->calls(), Lines{});
  EXPECT_EQ(newTrace(), Lines{});
}

TEST_F(Events, Selection_OneTextMessage_IsWatched) {
  start();
  const auto message = item("E1", u"IPM.Note.TxtMsg");
  select({message});
  EXPECT_EQ(message->calls(), (Lines{"MessageClass", "connect"}));
  EXPECT_EQ(markAfter(*message, outlook::ItemEvents::Reply), Variant(u"R;E1;"));
  EXPECT_EQ(markAfter(*message, outlook::ItemEvents::Forward), Variant(u"F;E1;"));
  EXPECT_EQ(markAfter(*message, outlook::ItemEvents::ReplyAll), Variant(u""));  // a reply to all is not marked
  EXPECT_EQ(newTrace(), Lines{});
}

TEST_F(Events, Selection_OrdinaryMail_KeepsTheWatchedMessage) {
  start();
  const auto message = item("E1", u"IPM.Note.TxtMsg");
  const auto mail = item("E2", u"IPM.Note");
  select({message});
  select({mail});
  EXPECT_EQ(mail->listeners(), 0u);
  EXPECT_EQ(markAfter(*message, outlook::ItemEvents::Reply), Variant(u"R;E1;"));
  EXPECT_EQ(markAfter(*mail, outlook::ItemEvents::Reply), Variant(u""));
}

TEST_F(Events, Selection_ClassInOtherCase_IsNoTextMessage) {
  start();
  const auto mail = item("E2", u"IPM.NOTE.TXTMSG");
  select({mail});
  EXPECT_EQ(mail->listeners(), 0u);
}

TEST_F(Events, Selection_TwoThenOneMail_StaysEmpty) {
  start();
  const auto first = item("E1", u"IPM.Note.TxtMsg");
  const auto second = item("E2", u"IPM.Note.TxtMsg");
  const auto mail = item("E3", u"IPM.Note");
  select({first});
  select({first, second});
  EXPECT_EQ(first->listeners(), 0u);
  select({mail});
  for (const auto& any : {first, second, mail}) EXPECT_EQ(any->listeners(), 0u);
}

TEST_F(Events, Selection_None_EmptiesTheWatchedMessage) {
  start();
  const auto message = item("E1", u"IPM.Note.TxtMsg");
  select({message});
  select({});
  EXPECT_EQ(message->listeners(), 0u);
}

TEST_F(Events, Selection_ThatCannotBeRead_IsLoggedOnce) {
  start();
  selection->fails(u"Count", RuntimeError(70, u"Outlook", u"Permission denied"));
  explorer->fire(outlook::ExplorerEvents::SelectionChange);
  EXPECT_EQ(newTrace(), (Lines{"Error:70, Permission denied, Outlook"}));
}

TEST_F(Events, Selection_ItemWithoutMessageClass_IsLoggedAndKeepsTheWatchedMessage) {
  start();
  const auto message = item("E1", u"IPM.Note.TxtMsg");
  select({message});
  select({fake("No item")});
  EXPECT_EQ(newTrace(), (Lines{"Error:438, Object doesn't support this property or method, mrktxtmsg"}));
  EXPECT_EQ(message->listeners(), 1u);
}

TEST_F(Events, Reply_ResponseThatTakesNoMark_IsLoggedOnce) {
  start();
  const auto message = item("E1", u"IPM.Note.TxtMsg");
  select({message});
  const auto response = fake("Response");
  bool cancel = false;
  message->fire(outlook::ItemEvents::Reply, response->object(), cancel);
  message->fire(outlook::ItemEvents::Forward, response->object(), cancel);
  const std::string line = "Error:438, Object doesn't support this property or method, mrktxtmsg";
  EXPECT_EQ(newTrace(), (Lines{line, line}));
}

TEST_F(Events, OptionsPages_AddsThePageUnderItsCaption) {
  start();
  const auto page = fake("Page");
  const auto pages = fake("Pages");
  pages->method(u"Add", [](Args) { return Variant(); });
  system.objects.provide(u"mrktxtmsgpp.textmessage", [&] { return page->object(); });
  application->fire(outlook::ApplicationEvents::OptionsPagesAdd, pages->object());
  EXPECT_EQ(pages->calls(), (Lines{"Add(<Page>, \"Text Messages\")"}));
}

TEST_F(Events, OptionsPages_Localized_AsksForTheCaption) {
  start();
  const auto localizer = fake("Localizer");
  localizer->method(u"getlocalizedresstring", [](Args) { return Variant(u"Textmeddelanden"); });
  system.objects.provide(u"mrktxtmsgres.localizer", [&] { return localizer->object(); });
  system.objects.provide(u"mrktxtmsgpp.textmessage", [] { return fake("Page")->object(); });
  const auto pages = fake("Pages");
  pages->method(u"Add", [](Args) { return Variant(); });
  application->fire(outlook::ApplicationEvents::OptionsPagesAdd, pages->object());
  EXPECT_EQ(localizer->calls(), (Lines{"getlocalizedresstring(401, \"Text Messages\")"}));
  EXPECT_EQ(pages->calls(), (Lines{"Add(<Page>, \"Textmeddelanden\")"}));
}

TEST_F(Events, OptionsPages_PageMissing_LeavesTheDialogWithoutIt) {
  start();
  const auto pages = fake("Pages");
  system.objects.asked.clear();
  application->fire(outlook::ApplicationEvents::OptionsPagesAdd, pages->object());
  EXPECT_EQ(system.objects.asked, (std::vector<String>{u"mrktxtmsgres.localizer", u"mrktxtmsgpp.textmessage"}));
  EXPECT_EQ(pages->calls(), Lines{});
  const std::string line = "Error:429, ActiveX component can't create object, mrktxtmsg";
  EXPECT_EQ(newTrace(), (Lines{line, line}));  // the localizer's, and the page's
}

}  // namespace
}  // namespace addin
