#pragma once

// The only place that includes Windows' own headers. The names that they define as macros and that
// are also members of our interfaces are released again; Windows' functions are called by their "A"
// names.
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
