// A property page as an add-in would bring it, and the add-in that brings it. Tests register both, and read in a file
// what was asked of the page.
#pragma once

#include "addin/platform/guid.h"
#include "addin/platform/text.h"
#include "com/pointers.h"

namespace sample_page {

inline constexpr platform::Guid clsidPage{0x6B1E2F40, 0x5D0A, 0x4C37, {0x9A, 0x21, 0x7F, 0x4E, 0x10, 0x3B, 0xC2, 0x58}};
inline constexpr platform::Guid clsidAddIn{
    0x6B1E2F41, 0x5D0A, 0x4C37, {0x9A, 0x21, 0x7F, 0x4E, 0x10, 0x3B, 0xC2, 0x58}};
inline constexpr platform::StringView progIdPage = u"sample_page.page";
inline constexpr platform::StringView progIdAddIn = u"sample_page.addin";
// The add-in offers this too: nobody makes it.
inline constexpr platform::StringView progIdOfNothing = u"sample_page.nothing";

// The title that the add-in gives its page.
inline constexpr platform::StringView title = u"Sample";
// Of the page's window, which has one edit control in it.
inline constexpr const wchar_t* windowClass = L"Sample property page";
// A text that the page does not accept when it is to store it.
inline constexpr const wchar_t* refused = L"refused";

// The environment variable that names the file; one line per call, appended.
inline constexpr const wchar_t* logVariable = L"SAMPLE_PAGE_LOG";

com::Ptr<IUnknown> createPage();
com::Ptr<IUnknown> createAddIn();
void log(platform::StringView line);

}  // namespace sample_page
