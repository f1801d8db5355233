#pragma once

// The one place where Windows' own headers come in. The names that it turns into macros and that
// are also members of our interfaces are freed again; Windows' functions are called by their "W"
// names, which take every text.
#ifndef NOMINMAX
#define NOMINMAX
#endif
#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#ifndef _WIN32_WINNT
#define _WIN32_WINNT 0x0601
#endif
// clang-format off
#include <windows.h>
#include <commctrl.h>
#include <ole2.h>
#include <olectl.h>
#include <shellapi.h>
#include <shlobj.h>
// clang-format on

#undef CopyFile
#undef CreateFont
#undef CreateWindow
#undef DeleteFile
#undef DrawText
#undef FindText
#undef GetClassName
#undef GetObject
#undef LoadLibrary
#undef MessageBox
#undef PlaySound
#undef SetProp
#undef StartDoc
#undef Yield
