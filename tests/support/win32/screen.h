// The mail client's windows as a user sees them: found by class and title, read through their controls, worked with
// real keys and the mouse.
#pragma once

#include <string>
#include <vector>

#include "com/windows.h"
#include "support/win32/mail_client_process.h"
#include "support/win32/product.h"

// After our own windows header on purpose.
#include <commctrl.h>

namespace screen {

using testing_support::waitUntil;

inline constexpr const wchar_t* explorerClass = L"Marrick mail client explorer";
inline constexpr const wchar_t* inspectorClass = L"Marrick mail client inspector";

// A visible top-level window of the process; null when there is none. An empty class or title fits all.
HWND find(DWORD process, const std::wstring& className, const std::wstring& title = L"");
// The same, waited for.
HWND await(DWORD process, const std::wstring& className, const std::wstring& title = L"");
bool awaitGone(DWORD process, const std::wstring& className, const std::wstring& title = L"");

HWND child(HWND parent, const wchar_t* className, int position = 0);
std::wstring textOf(HWND window);

// Of list and tree views in another process.
int rows(HWND list);
std::wstring cell(HWND list, int row, int column);
RECT cellArea(HWND list, int row, int column);  // on the screen, without its edges
std::vector<std::wstring> treeLabels(HWND tree);
std::wstring statusText(HWND bar, int part);

// Brings a window to the front and sends real keys there. False when it does not come to the front.
bool toFront(HWND window);
void press(WORD key, bool control = false, bool shift = false);
void pressWithAlt(wchar_t letter);  // a capital one
void type(const std::wstring& text);
void clickAt(HWND window, int x, int y, bool control = false);
void clickOn(HWND window);  // in its middle

}  // namespace screen
