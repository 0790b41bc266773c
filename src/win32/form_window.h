// A form on the screen: a dialog whose controls follow the form's data and whose notices become what the user did.
#pragma once

#include <optional>
#include <vector>

#include "addin/platform/form.h"
#include "win32/dialog_keys.h"
#include "win32/dialog_look.h"
#include "win32/pictures.h"

namespace win32 {

class FormWindow final : public platform::FormView, public platform::Counted {
 public:
  // Opens the dialog of a form that has no view: hidden, above `owner` and in its middle. It keeps itself and the form
  // until the form is unloaded, or the window goes with its owner, which unloads the form. Null when the form has been
  // unloaded or has got a view meanwhile; error 7 when Windows makes no window.
  static platform::Ref<FormWindow> open(platform::Form& form, HWND owner, const LOGFONTW& font);

  FormWindow(platform::Form& form, const LOGFONTW& font) : form_(&form), look_(font) {}

  HWND handle() const { return window_; }
  // These two may find, or leave, the form unloaded.
  void bringToFront();
  // From now on, until this one goes, the thread's other windows take no input.
  void blockOthers();

  void changed(platform::Control& control, platform::Property property) override;
  void captionChanged() override;
  void focusMoved(platform::Control& control) override;
  void unloaded() override;

 private:
  static constexpr WORD firstId = 100;  // of the controls, in the order of the form

  struct Face {
    platform::Control* control;
    HWND window;  // null for what the dialog paints by itself
  };

  static INT_PTR CALLBACK procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) noexcept;
  INT_PTR handle(UINT message, WPARAM wParam, LPARAM lParam);

  // form_window.cpp
  void initialise(HWND window);
  void place();
  void command(WORD notice, WORD id);
  void notice(platform::Control& control, WORD notice, HWND source);
  void leaveUnusable();
  void windowHasGone();
  void letOthersGo();

  // form_faces.cpp
  void makeFaces();
  HWND makeWindow(platform::Control& control, WORD id);
  void makeHiddenLabel(const platform::Control& control);
  void fillList(const Face& face);
  void apply(const Face& face, platform::Property property);
  void applyVisibility();
  void applyCaptions();
  const Face* faceOf(const platform::Control& control) const;
  const Face* faceOf(HWND window) const;
  RECT pixels(const platform::Control& control) const;

  // form_painting.cpp
  void paint();
  void paintBackground(HDC dc, const platform::Control& control);
  HBRUSH colourFor(HDC dc, HWND window) const;

  platform::Ref<platform::Form> form_;
  DialogLook look_;
  Pictures pictures_;
  HWND window_ = nullptr;
  std::vector<Face> faces_;  // in the order of the form's controls
  std::vector<HWND> blocked_;
  std::optional<DialogKeys> keys_;
  platform::Ref<FormWindow> self_;  // while the window is there
  bool ready_ = false;              // with all its controls
  bool applying_ = false;           // controls echo what is set on them
};

}  // namespace win32
