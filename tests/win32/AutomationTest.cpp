#include <algorithm>

#include "Scratch.h"
#include "platform/CodePage.h"
#include "platform/win32/LateBound.h"
#include "platform/win32/ShellShortcut.h"
#include "platform/win32/Text.h"
#include "platform/win32/Win32FileSystem.h"
#include "platform/win32/Win32Processes.h"
#include "platform/win32/Win32ScriptingHost.h"
#include "runtime/TextFunctions.h"

namespace talu {
namespace {

TEST(LateBound, CallsMembersByName) {
  LateBound dictionary("Scripting.Dictionary");
  dictionary.Put("CompareMode", 1);
  EXPECT_EQ(dictionary.Get("CompareMode").Number(), 1);
  dictionary.Call("Add", {"first", "Gr\u00fc\u00dfe \u8868 \U0001F600"});
  dictionary.Call("Add", {"second", 7});
  EXPECT_EQ(dictionary.Get("Count").Number(), 2);
  EXPECT_EQ(dictionary.Get("Item", {"first"}).Text(), "Gr\u00fc\u00dfe \u8868 \U0001F600");
  EXPECT_EQ(dictionary.Get("Item", {"second"}).Number(), 7);
  EXPECT_EQ(dictionary.Texts(), (std::vector<std::string>{"first", "second"}));
}

TEST(LateBound, RaisesTheObjectsOwnErrors) {
  LateBound dictionary("Scripting.Dictionary");
  LateBound files("Scripting.FileSystemObject");
  EXPECT_EQ(ErrorOf([] { LateBound("No.Such.Class"); }), 429);
  EXPECT_EQ(ErrorOf([&] { dictionary.Get("NoSuchMember"); }), 438);
  EXPECT_EQ(ErrorOf([&] { LateBound(dictionary.Get("Count")); }), 91);
  EXPECT_EQ(ErrorOf([&] { LateBound("WScript.Shell").Texts(); }), 438);
  EXPECT_EQ(ErrorOf([&] { (void)Variant("no number").Number(); }), 13);
  EXPECT_EQ(ErrorOf([&] { files.Call("GetFolder", {"Q:\\none"}); }), 76);
  dictionary.Call("Add", {"key", 1});
  EXPECT_EQ(ErrorOf([&] { dictionary.Call("Add", {"key", 1}); }), 457);
  EXPECT_EQ(ErrorOf([&] { dictionary.Put("CompareMode", 0); }), 5) << "not while it has entries";
  try {
    files.Call("GetFolder", {"Q:\\none"});
  } catch (const RuntimeError& error) {
    EXPECT_FALSE(error.Description.empty());
  }
}

// A byte that begins a longer character does not take the end of its line along.
TEST(CodePage, LinesEndAfterHalfACharacter) {
  for (const int number : {932, 936, 949, 950, 1252, 65001}) {
    const std::string text = CodePage(number).ToText("Caf\xE9\r\nGO\r\n");
    EXPECT_TRUE(text.starts_with("Caf")) << number;
    EXPECT_TRUE(text.ends_with("\r\nGO\r\n")) << number;
  }
  EXPECT_EQ(CodePage(932).ToText("\x95\x5C\\"), "\u8868\\");
  EXPECT_EQ(CodePage(932).FromText("\u8868\\"), "\x95\x5C\\");
}

/// An object whose member fails in one way.
class Failing : public IDispatch {
 public:
  HRESULT Result = DISP_E_EXCEPTION;
  EXCEPINFO Info = {};

  HRESULT WINAPI QueryInterface(REFIID, void**) override { return E_NOINTERFACE; }
  ULONG WINAPI AddRef() override { return 2; }
  ULONG WINAPI Release() override { return 1; }
  HRESULT WINAPI GetTypeInfoCount(UINT*) override { return E_NOTIMPL; }
  HRESULT WINAPI GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
  HRESULT WINAPI GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID* id) override {
    *id = 1;
    return S_OK;
  }
  HRESULT WINAPI Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO* info,
                        UINT*) override {
    *info = Info;
    return Result;
  }
};

HRESULT WINAPI FillInLater(EXCEPINFO* info) {
  info->bstrDescription = SysAllocString(L"told when asked for \u8868");
  return S_OK;
}

TEST(LateBound, RaisesWhateverWayAnObjectTellsOfItsFailure) {
  Failing object;
  const auto raised = [&object] {
    try {
      LateBound(Variant::Object(&object)).Call("Member");
    } catch (const RuntimeError& error) {
      return std::to_string(error.Number) + " " + error.Description;
    }
    return std::string("nothing");
  };
  object.Info.scode = static_cast<SCODE>(0x80040E14);
  object.Info.pfnDeferredFillIn = FillInLater;
  EXPECT_EQ(raised(), "-2147217900 told when asked for \u8868");
  object.Info = {};
  object.Info.wCode = 1004;
  object.Info.bstrDescription = SysAllocString(L"a short number");
  EXPECT_EQ(raised(), "1004 a short number");
  object.Info = {};
  object.Info.scode = static_cast<SCODE>(0x800A0E79);
  EXPECT_TRUE(raised().starts_with("3705 ")) << raised();
  object.Info = {};
  EXPECT_TRUE(raised().starts_with(std::to_string(DISP_E_EXCEPTION) + " ")) << raised();
  object.Result = DISP_E_BADPARAMCOUNT;
  EXPECT_TRUE(raised().starts_with(std::to_string(DISP_E_BADPARAMCOUNT) + " ")) << raised();
}

/// What a shortcut on disk says.
struct Link {
  explicit Link(const std::string& path) {
    void* object = nullptr;
    CoCreateInstance(CLSID_ShellLink, nullptr, CLSCTX_INPROC_SERVER, IID_IShellLinkW, &object);
    auto* link = static_cast<IShellLinkW*>(object);
    link->QueryInterface(IID_IPersistFile, &object);
    auto* file = static_cast<IPersistFile*>(object);
    Loaded = SUCCEEDED(file->Load(Wide(path).c_str(), STGM_READ));
    wchar_t text[MAX_PATH] = L"";
    link->GetPath(text, MAX_PATH, nullptr, 0);
    Target = Narrow(text);
    int index = -1;
    link->GetIconLocation(text, MAX_PATH, &index);
    Icon = Narrow(text) + "," + std::to_string(index);
    link->GetWorkingDirectory(text, MAX_PATH);
    Folder = Narrow(text);
    file->Release();
    link->Release();
  }
  bool Loaded;
  std::string Target, Icon, Folder;
};

TEST(ScriptingHost, MakesTheSameShortcutWithAndWithoutTheHost) {
  const Scratch scratch("\u00e4");  // Wine's shortcuts have targets in the code page
  const std::string target = scratch.Write("prog, one.exe", "");
  const auto make = [&](Shortcut& shortcut, const std::string& path) {
    shortcut.TargetPath(target);
    shortcut.WorkingDirectory("");
    shortcut.IconLocation(target);
    EXPECT_FALSE(Link(path).Loaded) << "nothing is written before Save";
    shortcut.Save();
    const Link made(path);
    EXPECT_TRUE(made.Loaded);
    EXPECT_EQ(UCase(made.Target), UCase(target));
    EXPECT_EQ(UCase(made.Icon), UCase(target + ",0"));
    EXPECT_EQ(made.Folder, "");
  };
  const auto shell = Win32ScriptingHost().CreateShell();
  make(*shell->CreateShortcut(scratch / "host.lnk"), scratch / "host.lnk");
  ShellShortcut link(scratch / "shell.lnk");
  make(link, scratch / "shell.lnk");

  const auto lost = shell->CreateShortcut(scratch / "missing\\host.lnk");
  lost->TargetPath(target);
  EXPECT_NE(ErrorOf([&] { lost->Save(); }), 0);
  EXPECT_NE(ErrorOf([&] { ShellShortcut(scratch / "missing\\shell.lnk").Save(); }), 0);
}

/// A script host, its maker and its shortcuts, which do as they are told and write nothing.
class IdleHost : public Failing, public IClassFactory {
 public:
  HRESULT WINAPI QueryInterface(REFIID id, void** object) override {
    *object = nullptr;
    if (IsEqualIID(id, IID_IDispatch)) *object = static_cast<IDispatch*>(this);
    if (IsEqualIID(id, IID_IUnknown) || IsEqualIID(id, IID_IClassFactory))
      *object = static_cast<IClassFactory*>(this);
    return *object != nullptr ? S_OK : E_NOINTERFACE;
  }
  ULONG WINAPI AddRef() override { return 2; }
  ULONG WINAPI Release() override { return 1; }
  HRESULT WINAPI LockServer(BOOL) override { return S_OK; }
  HRESULT WINAPI CreateInstance(IUnknown*, REFIID id, void** object) override {
    return QueryInterface(id, object);
  }
  HRESULT WINAPI Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT* result, EXCEPINFO*,
                        UINT*) override {
    result->vt = VT_DISPATCH;
    result->pdispVal = this;
    return S_OK;
  }
};

TEST(ScriptingHost, LeavesToTheShellWhatItsShortcutsCannotName) {
  IdleHost host;
  CLSID id;
  DWORD registration = 0;
  CLSIDFromProgID(L"WScript.Shell", &id);
  CoRegisterClassObject(id, static_cast<IClassFactory*>(&host), CLSCTX_INPROC_SERVER,
                        REGCLS_MULTIPLEUSE, &registration);
  const Scratch foreign;
  const Scratch plain("");
  const auto isMadeByShell = [](const std::string& path, const std::string& target) {
    const auto shortcut = Win32ScriptingHost().CreateShell()->CreateShortcut(path);
    shortcut->TargetPath(target);
    shortcut->WorkingDirectory("");
    shortcut->IconLocation(target);
    shortcut->Save();
    return Win32FileSystem().FileExists(path);
  };
  const std::string program = plain.Write("one.exe", "");
  const bool lacksLetters = GetACP() != CP_UTF8;
  EXPECT_FALSE(isMadeByShell(plain / "plain.lnk", program));
  EXPECT_EQ(isMadeByShell(plain / "target.lnk", foreign.Write("one.exe", "")), lacksLetters);
  EXPECT_EQ(isMadeByShell(foreign / "place.lnk", program), lacksLetters);
  CoRevokeClassObject(registration);
}

TEST(ScriptingHost, ListsTheSpecialFoldersOfAllUsersFirst) {
  const auto folders = Win32ScriptingHost().CreateShell()->SpecialFolders();
  ASSERT_GT(folders.size(), 10u);
  const auto path = [](int folder) {
    wchar_t text[MAX_PATH];
    SHGetFolderPathW(nullptr, folder, nullptr, SHGFP_TYPE_CURRENT, text);
    return Narrow(text);
  };
  const auto place = [&](int folder) {
    return std::find(folders.begin(), folders.end(), path(folder)) - folders.begin();
  };
  EXPECT_EQ(place(CSIDL_COMMON_DESKTOPDIRECTORY), 0);
  EXPECT_EQ(place(CSIDL_COMMON_STARTMENU), 1);
  EXPECT_EQ(place(CSIDL_COMMON_PROGRAMS), 2);
  EXPECT_LT(place(CSIDL_COMMON_PROGRAMS), place(CSIDL_DESKTOPDIRECTORY));
  EXPECT_LT(place(CSIDL_DESKTOPDIRECTORY), place(CSIDL_STARTMENU));
  EXPECT_LT(place(CSIDL_STARTMENU), place(CSIDL_PROGRAMS));
  EXPECT_EQ(folders.back(), path(CSIDL_PROGRAMS));
}

TEST(Processes, WaitsForTheExitCode) {
  int waits = 0;
  Win32Processes processes([&] { ++waits; });
  EXPECT_EQ(processes.RunAndWait("cmd /c exit 7"), 7);
  EXPECT_EQ(processes.RunAndWait("cmd /c exit -3"), -3);
  EXPECT_EQ(processes.RunAndWait("C:\\no such folder\\setup.exe"), -1);
  EXPECT_EQ(waits, 3);
  const Scratch scratch;
  // Of an .exe Windows itself would say with a box that it is no program.
  EXPECT_EQ(processes.RunAndWait(scratch.Write("noprogram.txt", "text")), -1);
}

TEST(Processes, StartsAndGoesOn) {
  const Scratch scratch;
  Win32Processes processes([] {});
  const std::string made = scratch / "made.txt";
  processes.Start("cmd /c echo x> \"" + made + "\"", 2);
  for (int i = 0; i < 500 && Scratch::Read(made).empty(); ++i) Sleep(20);
  EXPECT_EQ(Scratch::Read(made).substr(0, 1), "x");
  Sleep(200);  // until cmd has left the folder
  EXPECT_EQ(ErrorOf([&] { processes.Start("no-such-program-here /s", 2); }), 53);
  EXPECT_EQ(ErrorOf([&] { processes.Start(scratch.Write("noprogram.txt", "text"), 2); }), 5);
}

}  // namespace
}  // namespace talu
