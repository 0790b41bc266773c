// The one header of ours that includes Windows' and COM's own. It takes back the macros that rename members of ours.
//
// Windows has a second name with W for every function that it takes back here: write SendMessageW. A system header that
// is not listed here and needs one of the lost words (`interface`, `IN`) goes before this one.
#pragma once

#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#ifndef NOMINMAX
#define NOMINMAX
#endif

#include <ole2.h>
#include <windows.h>
#include <ocidl.h>
#include <oleauto.h>
#include <olectl.h>

#undef CreateEvent
#undef CreateWindow
#undef DELETE
#undef ERROR
#undef FindWindow
#undef GetClassName
#undef GetFreeSpace
#undef GetMessage
#undef GetObject
#undef IN
#undef MessageBox
#undef OUT
#undef SendMessage
#undef Yield
#undef hyper
#undef interface
#undef small

// Other system headers write FAR and NEAR, which stand on far and near.
#undef far
#undef near
#undef FAR
#undef NEAR
#define FAR
#define NEAR
