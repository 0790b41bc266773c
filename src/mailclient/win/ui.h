// Windows and controls with little ceremony: an object that owns its window, the system's font, sizes that follow the
// screen's resolution.
#pragma once

#include <string>
#include <vector>

#include "com/windows.h"
#include "mailclient/types.h"

// After our own windows header on purpose: it needs what <windows.h> declares.
#include <commctrl.h>

namespace mailclient::win {

inline const wchar_t* wide(const String& text) { return reinterpret_cast<const wchar_t*>(text.c_str()); }
inline StringView view(const wchar_t* text) { return reinterpret_cast<const char16_t*>(text); }

// Pixels for a length at 96 dots per inch.
int scaled(int length);

// The system's font for messages and windows, and a bold one.
HFONT uiFont();
HFONT boldFont();
// The height of a line of text, and the width of one.
int lineHeight();
int textWidth(const String& text, HFONT font = uiFont());
// The height that a one-line edit control needs.
int fieldHeight();

String textOf(HWND window);
// Nothing happens when it has this text already: some controls would flicker or move their caret.
void setText(HWND window, const String& text);

HWND makeControl(HWND parent, const wchar_t* className, const wchar_t* text, DWORD style, int id = 0, DWORD extra = 0);
void place(HWND window, int left, int top, int width, int height);
void place(HWND window, const RECT& rectangle);

RECT clientArea(HWND window);
int widthOf(const RECT& r);
int heightOf(const RECT& r);

// A window of ours. The object may go before its window or after it.
class Window {
 public:
  Window() = default;
  Window(const Window&) = delete;
  Window& operator=(const Window&) = delete;
  virtual ~Window();

  HWND handle() const { return handle_; }
  // The object must stay: a message is being served, or somebody is at work with the window.
  bool isServing() const { return serving_ != 0; }
  class Serving {
   public:
    explicit Serving(Window& window) : window_(window) { ++window_.serving_; }
    ~Serving() { --window_.serving_; }
    Serving(const Serving&) = delete;
    Serving& operator=(const Serving&) = delete;

   private:
    Window& window_;
  };

 protected:
  struct Look {
    const wchar_t* className;
    String title;
    DWORD style;
    DWORD extraStyle = 0;
    RECT place;
    HWND parent = nullptr;
  };
  // False when the system refuses (there is no display).
  bool create(const Look& look);
  void destroy();
  virtual LRESULT onMessage(UINT message, WPARAM wide, LPARAM extra);
  // For messages that onMessage does not serve.
  LRESULT byDefault(UINT message, WPARAM wide, LPARAM extra);

 private:
  static LRESULT CALLBACK procedure(HWND window, UINT message, WPARAM wide, LPARAM extra);

  HWND handle_ = nullptr;
  int serving_ = 0;
};

// A place on the screen as text, "left top width height maximized", and back; nothing when it would not be visible.
String placeText(HWND window);
struct WindowPlace {
  RECT rectangle{};
  bool maximized = false;
};
bool readPlace(StringView text, WindowPlace& place);
// A rectangle of this size (at 96 dots per inch) that fits the screen; the system chooses where.
RECT freePlace(int width, int height, int step);

}  // namespace mailclient::win
