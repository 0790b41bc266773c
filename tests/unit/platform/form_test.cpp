// The form model: what a view is told and when, which handlers run, and what holds a form.

#include "addin/platform/form.h"

#include <gtest/gtest.h>

#include "support/errors.h"
#include "support/native_system.h"
#include "support/seam_recorder.h"
#include "support/text.h"

namespace platform {
namespace {

using namespace testing_support;
using Lines = std::vector<std::string>;

class SampleForm final : public Form {
 public:
  SampleForm() : Form(u"frmSample") {}

  Control frame{*this, u"frame", ControlKind::Frame};
  Control box{*this, u"box", ControlKind::TextBox, &frame};
  Control tick{*this, u"tick", ControlKind::CheckBox, &frame};
  Control list{*this, u"list", ControlKind::DropDownList, &frame};
  Control button{*this, u"button", ControlKind::Button};
  std::function<void()> whenLoading;
  int loads = 0;
  int unloads = 0;

 protected:
  void Form_Load() override {
    ++loads;
    if (whenLoading) whenLoading();
  }
  void Form_Unload() override { ++unloads; }
};

class FormTest : public testing::Test {
 protected:
  ~FormTest() override { system.ui.closeAll(); }
  ScriptedView& show() {
    form->Show(FormModality::Modeless);
    return system.ui.view(u"frmSample");
  }

  NativeSystem system;
  Census census;
  Ref<SampleForm> form = make<SampleForm>();
};

// Setters -------------------------------------------------------------------------------------------------------------

TEST_F(FormTest, Setter_TellsTheViewBeforeTheHandlerRuns) {
  ScriptedView& view = show();
  Lines seen;
  form->box.Change = [&] { seen = view.told(); };
  form->box.Text(u"abc");
  EXPECT_EQ(seen, (Lines{"box.Text = abc"}));
  form->tick.Click = [&] { seen = view.told(); };
  view.clearTold();
  form->tick.Value(true);
  EXPECT_EQ(seen, (Lines{"tick.Value = True"}));
}

TEST_F(FormTest, Setter_SameValue_IsNoChange) {
  form->box.Text(u"abc");
  form->tick.Value(true);
  form->Caption(u"Title");
  ScriptedView& view = show();
  form->box.Change = form->tick.Click = [] { ADD_FAILURE() << "nothing has changed"; };
  form->box.Text(u"abc");
  form->tick.Value(true);
  form->box.Enabled(true);
  form->box.Visible(true);
  form->box.BackColor(colorButtonFace);
  form->button.Caption(u"");
  form->Caption(u"Title");
  EXPECT_EQ(view.told(), Lines{});
}

TEST_F(FormTest, Setter_EveryProperty_IsTold) {
  ScriptedView& view = show();
  form->Caption(u"Title");
  form->button.Caption(u"Go");
  form->button.Enabled(false);
  form->box.Visible(false);
  form->box.BackColor(colorWhite);
  form->box.MaxLength(2);
  form->box.Text(u"abc");  // cut
  form->list.AddItem(u"a");
  form->list.ListIndex(0);
  form->list.Clear();
  form->tick.SetFocus();
  EXPECT_EQ(view.told(), (Lines{"caption Title", "button.Caption = Go", "button.Enabled = False", "box.Visible = False",
                                "box.BackColor = 16777215", "box.MaxLength = 2", "box.Text = ab", "list.List",
                                "list.ListIndex = 0", "list.List", "focus tick"}));
}

TEST_F(FormTest, Setter_WithoutView_RunsTheHandlerAllTheSame) {
  int changes = 0;
  form->box.Change = [&] { ++changes; };
  form->box.Text(u"a");
  form->box.Text(u"b");
  EXPECT_EQ(changes, 2);
}

TEST_F(FormTest, List_RefusesWhatIsNotThere) {
  form->list.AddItem(u"a");
  EXPECT_EQ(errorNumberOf([&] { form->list.ListIndex(1); }), 380);
  EXPECT_EQ(errorNumberOf([&] { form->list.ListIndex(-2); }), 380);
  EXPECT_EQ(form->list.ListIndex(), -1);
  EXPECT_EQ(errorNumberOf([&] { form->list.List(1); }), 381);
  EXPECT_EQ(errorNumberOf([&] { form->list.List(-1); }), 381);
  form->list.ListIndex(0);
  form->list.Clear();
  EXPECT_EQ(form->list.ListIndex(), -1);
  EXPECT_EQ(form->list.ListCount(), 0);
}

TEST_F(FormTest, List_IsFullAt32767Entries) {
  for (int i = 0; i < 32767; ++i) form->list.AddItem(u"x");
  EXPECT_EQ(errorNumberOf([&] { form->list.AddItem(u"x"); }), 7);
  EXPECT_EQ(form->list.ListCount(), 32767);
}

TEST_F(FormTest, SetFocus_OfWhatCannotHaveIt_IsError5) {
  form->box.Enabled(false);
  EXPECT_EQ(errorNumberOf([&] { form->box.SetFocus(); }), 5);
  form->frame.Visible(false);
  EXPECT_EQ(errorNumberOf([&] { form->tick.SetFocus(); }), 5);  // its frame hides it
  form->frame.Visible(true);
  form->tick.SetFocus();
  EXPECT_EQ(form->ActiveControl(), &form->tick);
}

TEST_F(FormTest, Find_IgnoresCase) {
  EXPECT_EQ(form->Find(u"BUTTON"), &form->button);
  EXPECT_EQ(form->Find(u"none"), nullptr);
}

// The user ------------------------------------------------------------------------------------------------------------

TEST_F(FormTest, User_ChecksAndTheViewIsTold) {
  ScriptedView& view = show();
  int clicks = 0;
  form->tick.Click = [&] { ++clicks; };
  view.click("tick");
  EXPECT_TRUE(form->tick.Value());
  view.click("tick");
  EXPECT_FALSE(form->tick.Value());
  EXPECT_EQ(clicks, 2);
  EXPECT_EQ(view.told(), (Lines{"tick.Value = True", "tick.Value = False"}));
}

TEST_F(FormTest, User_EditsAndSelects_TheViewKnowsAlready) {
  ScriptedView& view = show();
  form->list.AddItem(u"a");
  form->list.AddItem(u"b");
  view.clearTold();
  Lines heard;
  form->box.Change = [&] { heard.push_back("changed to " + utf8(form->box.Text())); };
  form->list.Click = [&] { heard.push_back("selected " + std::to_string(form->list.ListIndex())); };
  view.type("box", u"x");
  view.choose("list", 1);
  form->box.userEdits(u"x");
  form->list.userSelects(1);  // the same again
  form->list.userSelects(2);  // not there
  EXPECT_EQ(heard, (Lines{"changed to x", "selected 1"}));
  EXPECT_EQ(view.told(), Lines{});
}

TEST_F(FormTest, User_CannotUseWhatIsDisabledHiddenOrUnloaded) {
  ScriptedView& view = show();
  form->list.AddItem(u"a");
  form->button.Click = form->tick.Click = form->box.Change =
      form->list.Click = [] { ADD_FAILURE() << "was not there"; };
  form->box.KeyPress = [](std::int32_t) -> std::int32_t { return ADD_FAILURE() << "was not there", 7; };
  const auto useAll = [&] {
    form->tick.userClicks();
    form->box.userEdits(u"x");
    form->list.userSelects(0);
    EXPECT_EQ(form->box.userPresses('x'), 0);
  };
  form->button.Enabled(false);
  form->button.userClicks();
  for (Control* control : {&form->box, &form->tick, &form->list}) control->Enabled(false);
  useAll();
  for (Control* control : {&form->box, &form->tick, &form->list}) control->Enabled(true);
  form->frame.Visible(false);
  useAll();
  form->frame.Visible(true);
  form->button.Enabled(true);
  view.close();
  useAll();
  form->button.userClicks();
}

TEST_F(FormTest, User_KeyWithoutFilter_PassesUnchanged) {
  show();
  EXPECT_EQ(form->box.userPresses('x'), 'x');
}

// Life ----------------------------------------------------------------------------------------------------------------

TEST_F(FormTest, Show_LoadsOnceAndBringsToTheFrontAfterwards) {
  show();
  show();
  EXPECT_EQ(form->loads, 1);
  EXPECT_EQ(system.ui.shown.size(), 2u);
  form->Unload();
  EXPECT_FALSE(form->IsLoaded());
  EXPECT_FALSE(system.ui.isOpen(u"frmSample"));
  EXPECT_EQ(form->unloads, 1);
  form->Unload();
  EXPECT_EQ(form->unloads, 1);
}

TEST_F(FormTest, Show_OpenForm_LivesWithoutAnybodyElse) {
  show();
  form = nullptr;
  EXPECT_EQ(census.more(), 1);
  system.ui.view(u"frmSample").close();
  EXPECT_EQ(census.more(), 0);
}

TEST_F(FormTest, Show_ModalOfAnOpenForm_WaitsForTheSameOne) {
  show();
  system.time.post(500, [&] { form->Unload(); });
  EXPECT_TRUE(form->Show(FormModality::Modal));
  EXPECT_EQ(form->loads, 1);
}

TEST_F(FormTest, Show_ModelessWhileAModalOneIsOpen_IsError401AndLoadsNothing) {
  const auto other = make<SampleForm>();
  system.ui.whenShown = [&](ScriptedView& view) {
    const auto error = errorOf([&] { other->Show(FormModality::Modeless); });
    ASSERT_TRUE(error);
    EXPECT_EQ(error->number, 401);
    EXPECT_EQ(utf8(error->description), "Can't show non-modal form when modal form is displayed");
    EXPECT_EQ(errorNumberOf([&] { form->Show(FormModality::Modeless); }), 401);
    view.close();
  };
  form->Show(FormModality::Modal);
  EXPECT_EQ(other->loads, 0);
  system.ui.whenShown = nullptr;
  EXPECT_TRUE(other->Show(FormModality::Modeless));
}

TEST_F(FormTest, Show_ModelessWhileItLoads_IsShownOnceWhenItHasLoaded) {
  form->whenLoading = [&] {
    EXPECT_TRUE(form->Show(FormModality::Modeless));
    EXPECT_TRUE(system.ui.shown.empty());
  };
  show();
  EXPECT_EQ(system.ui.shown.size(), 1u);
  show();  // now it is brought to the front again
  EXPECT_EQ(system.ui.shown.size(), 2u);
}

TEST_F(FormTest, Show_ModelessWhileAModalOneLoads_IsError401) {
  form->whenLoading = [&] { EXPECT_EQ(errorNumberOf([&] { form->Show(FormModality::Modeless); }), 401); };
  system.ui.whenShown = [](ScriptedView& view) { view.close(); };
  EXPECT_TRUE(form->Show(FormModality::Modal));
  form->whenLoading = [] { raiseError(70); };
  EXPECT_EQ(errorNumberOf([&] { form->Show(FormModality::Modal); }), 70);
  form->whenLoading = nullptr;
  EXPECT_TRUE(form->Show(FormModality::Modeless));  // nothing is thought to load or to be open
  EXPECT_EQ(system.ui.shown.size(), 2u);
}

// It would be seen half loaded, and its loading would not go on before it is closed.
TEST_F(FormTest, Show_ModalWhileItLoads_IsError400AndTheFirstOneShowsIt) {
  for (const FormModality first : {FormModality::Modeless, FormModality::Modal}) {
    system.ui.shown.clear();
    form->whenLoading = [&] {
      EXPECT_EQ(errorNumberOf([&] { form->Show(FormModality::Modal); }), 400);
      EXPECT_TRUE(form->IsLoaded());
      EXPECT_TRUE(system.ui.shown.empty());
    };
    system.ui.whenShown = [](ScriptedView& view) { view.close(); };
    EXPECT_TRUE(form->Show(first));
    EXPECT_EQ(system.ui.shown, (std::vector<NativeUserInterface::Shown>{{u"frmSample", first}}));
  }
  EXPECT_EQ(form->loads, 2);
}

TEST_F(FormTest, Show_UnloadedWhileItLoads_CanBeShownAtOnce) {
  int loads = 0;
  form->whenLoading = [&] {
    if (++loads > 1) return;
    form->Unload();
    EXPECT_TRUE(form->Show(FormModality::Modeless));
    EXPECT_TRUE(system.ui.isOpen(u"frmSample"));
  };
  show();
  EXPECT_EQ(loads, 2);
}

TEST_F(FormTest, Show_ModalInsideModal_EndsBoth) {
  const auto inner = make<SampleForm>();
  system.ui.whenShown = [&](ScriptedView& view) {
    system.ui.whenShown = [](ScriptedView& innerView) { innerView.close(); };
    EXPECT_TRUE(inner->Show(FormModality::Modal));
    EXPECT_EQ(errorNumberOf([&] { inner->Show(FormModality::Modeless); }), 401);  // the outer one is still open
    view.close();
  };
  EXPECT_TRUE(form->Show(FormModality::Modal));
}

TEST_F(FormTest, Show_ProgramEnds_UnloadsAndIsFalse) {
  system.time.postQuit();
  EXPECT_FALSE(form->Show(FormModality::Modal));
  EXPECT_EQ(form->unloads, 1);
}

TEST_F(FormTest, Show_WindowThatCannotBeMade_UnloadsAndFails) {
  system.ui.windowsCannotBeMade = true;
  EXPECT_EQ(errorNumberOf([&] { form->Show(FormModality::Modal); }), 7);
  EXPECT_FALSE(form->IsLoaded());
  EXPECT_EQ(form->unloads, 1);
  system.ui.windowsCannotBeMade = false;
  EXPECT_TRUE(form->Show(FormModality::Modeless));  // no modal form is thought to be open
}

TEST_F(FormTest, Show_UnloadedWhileItLoads_ShowsNothing) {
  form->whenLoading = [&] { form->Unload(); };
  EXPECT_TRUE(form->Show(FormModality::Modal));
  EXPECT_TRUE(system.ui.shown.empty());
}

TEST_F(FormTest, Unload_FromItsOwnHandler_KeepsTheFormUntilTheHandlerIsOver) {
  ScriptedView& view = show();
  bool ended = false;
  form->whenUnloaded = [&] { form = nullptr; };  // the last reference beside the view's
  SampleForm* const running = form.get();
  running->button.Click = [&, running] {
    running->Unload();
    EXPECT_FALSE(form);
    running->box.Text(u"still there");
    ended = true;
  };
  view.click("button");
  EXPECT_TRUE(ended);
  EXPECT_EQ(census.more(), 0);
}

TEST_F(FormTest, Unload_OfAFormThatOnlyItsViewHolds) {
  show();
  bool told = false;
  form->whenUnloaded = [&] { told = true; };
  SampleForm* const open = form.get();
  form = nullptr;
  open->Unload();
  EXPECT_TRUE(told);
  EXPECT_EQ(census.more(), 0);
}

TEST_F(FormTest, Show_OwnerThatLetsGoOfAFormWithoutAView_KeepsItUntilItHasFailed) {
  SampleForm* const own = form.get();
  own->whenLoading = [&] { form = nullptr; };
  system.ui.windowsCannotBeMade = true;
  EXPECT_EQ(errorNumberOf([&] { own->Show(FormModality::Modal); }), 7);
  EXPECT_EQ(census.more(), 0);
}

TEST_F(FormTest, Unload_TellsItsOwnerOnceAndLast) {
  show();
  int told = 0;
  form->whenUnloaded = [&] {
    ++told;
    EXPECT_FALSE(system.ui.isOpen(u"frmSample"));
    EXPECT_EQ(form->unloads, 1);
  };
  form->Unload();
  form->Unload();
  EXPECT_EQ(told, 1);
}

}  // namespace
}  // namespace platform
