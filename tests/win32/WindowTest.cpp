#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <thread>

#include "SamplePage.h"
#include "Scratch.h"
#include "platform/win32/Text.h"
#include "platform/win32/Win32WindowSystem.h"
#include "runtime/TextFunctions.h"
// Behind the names that Windows.h frees.
#include <oleacc.h>

namespace talu {
namespace {

using Doings = std::vector<std::string>;

HWND FindFrame(const std::string& form) {
  for (HWND window = nullptr;
       (window = FindWindowExA(nullptr, window, "TaLuForm", nullptr)) != nullptr;) {
    if (GetPropA(window, form.c_str()) != nullptr) return window;
  }
  return nullptr;
}

class WindowTest : public testing::Test {
 protected:
  explicit WindowTest(bool (*wantsHighContrast)() = &WantsHighContrast)
      : windows_(wantsHighContrast) {}

  void Show() {
    windows_.ShowForm(page_);
    frame_ = FindFrame("FrmSample");
    SetForegroundWindow(frame_);
    Settle();
    page_.Doings.clear();
  }
  /// Handles what comes in for a moment.
  void Settle() {
    for (int i = 0; i < 10; ++i) {
      Sleep(5);
      windows_.DoEvents();
    }
  }
  HWND Control(const std::string& name) const {
    for (HWND child = GetWindow(frame_, GW_CHILD); child != nullptr;
         child = GetWindow(child, GW_HWNDNEXT)) {
      if (GetPropA(child, name.c_str()) != nullptr) return child;
    }
    return nullptr;
  }
  std::string TextOf(const std::string& name) const {
    wchar_t text[512] = L"";
    SendMessageW(Control(name), WM_GETTEXT, std::size(text), reinterpret_cast<LPARAM>(text));
    return Narrow(text);
  }
  std::string Focused() const {
    for (std::size_t i = 0; i < page_.ControlCount(); ++i) {
      if (GetPropA(GetFocus(), page_.ControlAt(i).Name.c_str()) != nullptr) {
        return page_.ControlAt(i).Name;
      }
    }
    return "";
  }
  void Press(WPARAM key) {
    PostMessageA(GetFocus(), WM_KEYDOWN, key, 1);
    PostMessageA(GetFocus(), WM_KEYUP, key, static_cast<LPARAM>(0xC0000001));
    Settle();
  }
  void ClickAt(const std::string& name) {
    PostMessageA(Control(name), WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(4, 4));
    PostMessageA(Control(name), WM_LBUTTONUP, 0, MAKELPARAM(4, 4));
    Settle();
  }
  bool Checked(const std::string& name) const {
    return SendMessageA(Control(name), BM_GETCHECK, 0, 0) == BST_CHECKED;
  }
  COLORREF PixelOf(const std::string& name, int x, int y) const {
    const HDC dc = GetDC(Control(name));
    const COLORREF colour = GetPixel(dc, x, y);
    ReleaseDC(Control(name), dc);
    return colour;
  }

  Win32WindowSystem windows_;
  SamplePage page_{windows_};
  HWND frame_ = nullptr;
};

TEST_F(WindowTest, MakesOneChildWindowAControlInPlace) {
  Show();
  ASSERT_NE(frame_, nullptr);
  const HDC screen = GetDC(nullptr);
  const int dpi = GetDeviceCaps(screen, LOGPIXELSX);
  ReleaseDC(nullptr, screen);
  RECT client;
  GetClientRect(frame_, &client);
  EXPECT_EQ(client.right, 9000 * dpi / 1440);
  EXPECT_EQ(client.bottom, 6300 * dpi / 1440);
  EXPECT_EQ(GetWindowLongA(frame_, GWL_STYLE) & (WS_THICKFRAME | WS_MAXIMIZEBOX), 0);
  for (std::size_t i = 0; i < page_.ControlCount(); ++i) {
    const ControlView& view = page_.ControlAt(i);
    const HWND window = Control(view.Name);
    ASSERT_NE(window, nullptr) << view.Name;
    RECT area;
    GetWindowRect(window, &area);
    MapWindowPoints(nullptr, frame_, reinterpret_cast<POINT*>(&area), 2);
    EXPECT_EQ(area.left, MulDiv(view.Left, dpi, 1440)) << view.Name;
    EXPECT_EQ(area.right, MulDiv(view.Left + view.Width, dpi, 1440)) << view.Name;
    EXPECT_EQ(GetPropA(window, "Width"), reinterpret_cast<HANDLE>(view.Width)) << view.Name;
    EXPECT_EQ(IsWindowEnabled(window) != FALSE, view.Enabled) << view.Name;
  }
  EXPECT_EQ(TextOf("OptFresh"), "&Fresh installation") << "its label is its name";
  EXPECT_EQ(TextOf("OptDemo"), "Demo && tour");
  EXPECT_NE(GetWindowLongA(Control("TxtPsWord"), GWL_STYLE) & ES_PASSWORD, 0);
}

TEST_F(WindowTest, ScreenReadersHearWhatEveryControlIs) {
  Show();
  const auto nameOf = [&](const std::string& control) {
    IAccessible* object = nullptr;
    EXPECT_HRESULT_SUCCEEDED(
        AccessibleObjectFromWindow(Control(control), static_cast<DWORD>(OBJID_CLIENT),
                                   IID_IAccessible, reinterpret_cast<void**>(&object)));
    VARIANT self = {};
    self.vt = VT_I4;
    BSTR name = nullptr;
    if (object != nullptr) object->get_accName(self, &name);
    if (object != nullptr) object->Release();
    const std::wstring text(name, SysStringLen(name));
    SysFreeString(name);
    return text;
  };
  EXPECT_EQ(nameOf("OptFresh"), L"Fresh installation");
  EXPECT_EQ(nameOf("OptDemo"), L"Demo & tour");
  EXPECT_EQ(nameOf("ChkOldLocation"), L"Use the old location");
  EXPECT_EQ(nameOf("TxtPath"), L"Installation Location");
  EXPECT_EQ(nameOf("CmdLocation"), L"Demo & tour ...");
  EXPECT_EQ(nameOf("CmdNext"), L"Next");
  EXPECT_EQ(nameOf("ImgBack"), L"Background picture");
  // The system's own objects for these two take their names from the label before them.
  EXPECT_EQ(GetWindow(Control("TxtPath"), GW_HWNDPREV), Control("LblPath"));
  EXPECT_EQ(GetWindow(Control("ShpProgBar"), GW_HWNDPREV), Control("LblTitleMsg"));
  char className[32] = "";
  GetClassNameA(Control("ShpProgBar"), className, sizeof className);
  EXPECT_STREQ(className, PROGRESS_CLASSA);
  EXPECT_EQ(SendMessageA(Control("ShpProgBar"), PBM_GETPOS, 0, 0), 2930);
  page_.ShpProgBar.Width = 5860;
  Settle();
  EXPECT_EQ(SendMessageA(Control("ShpProgBar"), PBM_GETPOS, 0, 0), 5860);
}

TEST_F(WindowTest, ClicksReachTheFormWhichSetsTheValue) {
  Show();
  SendMessageA(Control("OptDemo"), BM_CLICK, 0, 0);
  EXPECT_TRUE(Checked("OptDemo"));
  ClickAt("LblFresh");
  EXPECT_TRUE(Checked("OptFresh"));
  EXPECT_FALSE(Checked("OptDemo"));
  EXPECT_EQ(Focused(), "OptFresh");
  ClickAt("ChkOldLocation");
  EXPECT_TRUE(Checked("ChkOldLocation"));
  ClickAt("OptUpgrade");
  ClickAt("CmdPrev");
  EXPECT_EQ(page_.Doings,
            Doings({"click OptDemo", "click OptFresh", "click ChkOldLocation", "click CmdPrev"}));
  SendMessageA(frame_, WM_CLOSE, 0, 0);
  EXPECT_EQ(SendMessageA(frame_, WM_QUERYENDSESSION, 0, 0), TRUE);
  EXPECT_EQ(page_.Doings[4] + page_.Doings[5], "closeclose");
}

TEST_F(WindowTest, CanBeUsedByKeyboardAlone) {
  page_.OptDemo.Value = true;
  Show();
  EXPECT_EQ(Focused(), "OptDemo") << "the selected option is the group's one stop";
  Press(VK_DOWN);
  EXPECT_EQ(page_.Doings, Doings({"click OptFresh"})) << "round, past the disabled one";
  EXPECT_EQ(Focused(), "OptFresh");
  Doings stops;
  for (int i = 0; i < 8; ++i) {
    Press(VK_TAB);
    stops.push_back(Focused());
  }
  EXPECT_EQ(stops, Doings({"ChkOldLocation", "TxtPath", "CmdLocation", "TxtPsWord", "LblFinalMsg",
                           "CmdPrev", "CmdNext", "OptFresh"}));
  page_.Doings.clear();
  PostMessageA(GetFocus(), WM_SYSCHAR, 'l', 1 << 29);
  Settle();
  EXPECT_EQ(Focused(), "TxtPath") << "a label's mnemonic leads to the control behind it";
  PostMessageA(GetFocus(), WM_SYSCHAR, 'u', 1 << 29);
  Settle();
  Press(VK_RETURN);
  PostMessageA(GetFocus(), WM_KEYDOWN, VK_RETURN, 1 << 30);  // held down
  Settle();
  EXPECT_EQ(page_.Doings, Doings({"focus TxtPath", "click ChkOldLocation", "click CmdNext"}));
  page_.Doings.clear();
  SetFocus(Control("CmdPrev"));
  Press(VK_RETURN);
  EXPECT_EQ(page_.Doings, Doings({"click CmdPrev"})) << "a focused button comes first";
  SetFocus(Control("OptFresh"));
  page_.CmdNext.Enabled = false;
  Press(VK_RETURN);
  Press(VK_ESCAPE);
  EXPECT_EQ(page_.Doings.size(), 1u);
}

TEST_F(WindowTest, TypingReachesTheFormAndItsOwnTextsDoNotEcho) {
  Show();
  SetFocus(Control("TxtPath"));
  SendMessageA(Control("TxtPath"), EM_SETSEL, 0, -1);
  for (const wchar_t c : {L'C', L'\u8868'}) SendMessageW(Control("TxtPath"), WM_CHAR, c, 1);
  EXPECT_EQ(page_.Doings, Doings({"focus TxtPath", "type TxtPath C", "type TxtPath C\u8868"}));
  page_.Doings.clear();
  page_.TxtPath.Text = "D:\\\u0436pps";
  page_.TxtPath.SelStart = 3;
  page_.TxtPath.SelLength = 4;
  EXPECT_EQ(page_.Doings, Doings({"type TxtPath D:\\\u0436pps"})) << "once, by the form itself";
  EXPECT_EQ(TextOf("TxtPath"), "D:\\\u0436pps");
  EXPECT_EQ(SendMessageA(Control("TxtPath"), EM_GETSEL, 0, 0), MAKELONG(3, 7));
  SendMessageA(Control("TxtPath"), WM_MOUSEMOVE, 0, MAKELPARAM(5, 5));
  EXPECT_EQ(page_.TxtPath.ToolTipText.Get(), "D:\\\u0436pps");
}

TEST_F(WindowTest, FocusLeavesAControlThatIsDisabledInItsOwnClick) {
  Show();
  SetFocus(Control("CmdNext"));
  page_.OnClick = [&] { page_.CmdNext.Enabled = false; };
  Press(VK_SPACE);
  EXPECT_EQ(page_.Doings.back(), "click CmdNext");
  EXPECT_FALSE(IsWindowEnabled(Control("CmdNext")));
  EXPECT_EQ(Focused(), "OptFresh");
}

TEST_F(WindowTest, ShowsTextsAndBarsWhenAskedOrWhenTheHandlerIsOver) {
  Show();
  const COLORREF track = PixelOf("ShpProgBase", 300, 5);
  page_.LblMsg.Caption = "Copying - x";
  EXPECT_EQ(TextOf("LblMsg"), "Copying - x") << "asked for, so up to date";
  page_.OnClick = [&] {
    page_.ShpProgBar.Width = 5860;
    page_.LblTitleMsg.Caption = "R & D \u8868";
  };
  SendMessageA(Control("CmdNext"), BM_CLICK, 0, 0);
  EXPECT_EQ(GetPropA(Control("ShpProgBar"), "Width"), reinterpret_cast<HANDLE>(5860));
  wchar_t title[32] = L"";
  DefWindowProcW(Control("LblTitleMsg"), WM_GETTEXT, std::size(title),
                 reinterpret_cast<LPARAM>(title));
  EXPECT_EQ(Narrow(title), "R & D \u8868");
  Settle();
  EXPECT_NE(PixelOf("ShpProgBar", 300, 5), track);
  page_.ShpProgBar.Visible = false;
  Settle();
  EXPECT_EQ(PixelOf("ShpProgBase", 300, 5), track);
}

TEST_F(WindowTest, PaintsAndTakesInputWhileAHandlerWorks) {
  Show();
  page_.LblMsg.Caption = "working";
  Sleep(60);
  windows_.DoEvents();
  wchar_t text[32] = L"";
  DefWindowProcW(Control("LblMsg"), WM_GETTEXT, std::size(text), reinterpret_cast<LPARAM>(text));
  EXPECT_EQ(Narrow(text), "working");
  EXPECT_FALSE(GetUpdateRect(Control("LblMsg"), nullptr, FALSE));
  PostMessageA(frame_, WM_CLOSE, 0, 0);
  Sleep(20);
  windows_.DoEvents();
  EXPECT_EQ(page_.Doings, Doings({"close"}));
}

TEST_F(WindowTest, TheNextPageAppearsWhereTheLastOneStood) {
  Show();
  RECT first;
  RECT work;
  GetWindowRect(frame_, &first);
  SystemParametersInfoA(SPI_GETWORKAREA, 0, &work, 0);
  EXPECT_NEAR(first.left + first.right, work.left + work.right, 2);
  EXPECT_NEAR(first.top + first.bottom, work.top + work.bottom, 2);

  SetWindowPos(frame_, nullptr, 31, 47, 0, 0, SWP_NOSIZE | SWP_NOZORDER);
  SamplePage next(windows_, "FrmNext");
  windows_.HideForm(page_);
  windows_.ShowForm(next);
  RECT second;
  GetWindowRect(FindFrame("FrmNext"), &second);
  EXPECT_EQ(second.left, 31);
  EXPECT_EQ(second.top, 47);
  EXPECT_FALSE(IsWindowVisible(frame_));

  page_.LblMsg.Caption = "hidden";
  windows_.HideForm(next);
  EXPECT_TRUE(IsWindowVisible(FindFrame("FrmNext"))) << "until the next page covers it";
  Settle();
  EXPECT_FALSE(IsWindowVisible(FindFrame("FrmNext")));
  windows_.ShowForm(page_);
  EXPECT_TRUE(IsWindowVisible(frame_));
}

TEST_F(WindowTest, LongTextsCanAlwaysBeRead) {
  Show();
  const auto tip = [&](const std::string& name) {
    NMTTDISPINFOW info = {};
    info.hdr.code = static_cast<UINT>(TTN_GETDISPINFOW);
    info.hdr.idFrom = reinterpret_cast<UINT_PTR>(Control(name));
    SendMessageW(frame_, WM_NOTIFY, 0, reinterpret_cast<LPARAM>(&info));
    return Narrow(info.lpszText);
  };
  EXPECT_EQ(tip("LblMsg"), page_.LblMsg.Caption.Get());
  EXPECT_EQ(tip("LblTitleMsg"), "") << "it fits";
  page_.TxtPath.ToolTipText = "own";
  EXPECT_EQ(tip("TxtPath"), "own");

  const HWND final = Control("LblFinalMsg");
  EXPECT_NE(GetWindowLongA(final, GWL_STYLE) & WS_VSCROLL, 0);
  SetFocus(final);
  Press(VK_END);
  EXPECT_GT(GetScrollPos(final, SB_VERT), 0);
  page_.LblFinalMsg.Caption = "short";
  EXPECT_EQ(TextOf("LblFinalMsg"), "short");
  EXPECT_EQ(GetWindowLongA(final, GWL_STYLE) & (WS_VSCROLL | WS_TABSTOP), 0);
}

/// The contrast of two colours as web pages measure it, from 1 to 21.
double Contrast(COLORREF one, COLORREF other) {
  const auto luminance = [](COLORREF colour) {
    const auto part = [](BYTE value) {
      const double share = value / 255.0;
      return share <= 0.04045 ? share / 12.92 : std::pow((share + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * part(GetRValue(colour)) + 0.7152 * part(GetGValue(colour)) +
           0.0722 * part(GetBValue(colour)) + 0.05;
  };
  const double ratio = luminance(one) / luminance(other);
  return std::max(ratio, 1 / ratio);
}

TEST_F(WindowTest, APictureStandsBehindALightCard) {
  const Scratch scratch;
  // The smallest bitmap there is: one black pixel.
  std::string bitmap("BM\x3A\0\0\0\0\0\0\0\x36\0\0\0\x28\0\0\0\1\0\0\0\1\0\0\0\1\0\x18", 30);
  bitmap.resize(58);
  page_.ImgBack.Picture = windows_.LoadPicture(scratch.Write("100% black #1.bmp", bitmap));
  Show();
  EXPECT_EQ(PixelOf("ImgBack", 2, 2), RGB(0, 0, 0));
  const COLORREF card = PixelOf("LblTitleMsg", 460, 5);
  const Palette own;
  for (const Colour text : {own.Text, own.Title, own.Note, own.Disabled}) {
    EXPECT_GE(Contrast(ToColorref(text), card), 4.5) << std::hex << text;
  }
  EXPECT_GE(Contrast(ToColorref(own.Accent), card), 4.5) << "the focus";
  EXPECT_GE(Contrast(ToColorref(own.Edge), card), 3) << "what can be clicked";
  for (const Colour face : {own.Accent, own.AccentHot, own.AccentDown}) {
    EXPECT_GE(Contrast(ToColorref(own.OnAccent), ToColorref(face)), 4.5) << std::hex << face;
  }
  EXPECT_GE(Contrast(ToColorref(own.Disabled), ToColorref(own.FaceDisabled)), 4.5);
  page_.ImgBack.Picture = nullptr;
  Settle();
  EXPECT_GT(GetRValue(PixelOf("ImgBack", 2, 2)), 200) << "a plain light ground";

  EXPECT_EQ(windows_.LoadPicture(""), nullptr);
  EXPECT_EQ(ErrorOf([&] { windows_.LoadPicture(scratch / "none.jpg"); }), 53);
  EXPECT_EQ(ErrorOf([&] { windows_.LoadPicture(scratch.Write("no.jpg", "text")); }), 481);
  EXPECT_EQ(ErrorOf([&] { windows_.LoadPicture(scratch.Write("no.jpg", "")); }), 481);
}

bool highContrast = false;

class HighContrastTest : public WindowTest {
 protected:
  HighContrastTest() : WindowTest([] { return highContrast; }) {}
  ~HighContrastTest() override { highContrast = false; }
};

TEST_F(HighContrastTest, ThePagesHaveTheOperatorsColoursAtOnce) {
  Show();
  const auto colours = [&] {
    Settle();
    return std::vector<COLORREF>{PixelOf("ImgBack", 2, 2),    PixelOf("LblTitleMsg", 460, 5),
                                 PixelOf("CmdPrev", 5, 12),   PixelOf("CmdNext", 5, 12),
                                 PixelOf("TxtPath", 200, 12), PixelOf("TxtServer", 100, 12),
                                 PixelOf("ShpProgBar", 20, 4)};
  };
  const auto before = colours();
  highContrast = true;
  SendMessageA(frame_, WM_SYSCOLORCHANGE, 0, 0);
  const COLORREF window = GetSysColor(COLOR_WINDOW);
  const COLORREF chosen = GetSysColor(COLOR_HIGHLIGHT);
  EXPECT_EQ(colours(), (std::vector<COLORREF>{window, window, GetSysColor(COLOR_BTNFACE), chosen,
                                              window, window, chosen}));
  highContrast = false;
  SendMessageA(frame_, WM_SETTINGCHANGE, SPI_SETHIGHCONTRAST, 0);
  EXPECT_EQ(colours(), before);
}

TEST_F(WindowTest, TheWheelScrollsByTheSettingFromAnywhereOnThePage) {
  UINT setting = 3;
  SystemParametersInfoA(SPI_GETWHEELSCROLLLINES, 0, &setting, 0);
  page_.LblFinalMsg.Caption = page_.LblFinalMsg.Caption.Get() +
                              "\rSix.\rSeven.\rEight.\rNine.\rTen.\rEleven.\rTwelve.\rThirteen.";
  Show();
  const HWND final = Control("LblFinalMsg");
  struct Case {
    const char* Words;
    UINT Lines;
    const char* Over;
    std::vector<int> Turns;
    int First;
  };
  const Case cases[] = {
      {"one line a notch", 1, "LblFinalMsg", {-WHEEL_DELTA, -WHEEL_DELTA}, 2},
      {"two lines, and back", 2, "LblFinalMsg", {-WHEEL_DELTA, -WHEEL_DELTA, WHEEL_DELTA}, 2},
      {"parts of a notch", 1, "LblFinalMsg", {-50, -50, -50}, 1},
      {"parts the other way do not count", 1, "LblFinalMsg", {-100, 30, -30}, 0},
      {"no lines", 0, "LblFinalMsg", {-WHEEL_DELTA}, 0},
      {"over another label", 1, "LblMsg", {-WHEEL_DELTA}, 1},
      {"over a button", 1, "CmdNext", {-WHEEL_DELTA}, 1},
      {"over the page", 1, "", {-WHEEL_DELTA}, 1},
  };
  for (const Case& test : cases) {
    SystemParametersInfoA(SPI_SETWHEELSCROLLLINES, test.Lines, nullptr, 0);
    SendMessageA(final, WM_VSCROLL, SB_TOP, 0);
    for (const int turn : test.Turns) {
      SendMessageA(*test.Over == '\0' ? frame_ : Control(test.Over), WM_MOUSEWHEEL,
                   MAKEWPARAM(0, turn), 0);
    }
    EXPECT_EQ(GetScrollPos(final, SB_VERT), test.First) << test.Words;
  }
  SystemParametersInfoA(SPI_SETWHEELSCROLLLINES, WHEEL_PAGESCROLL, nullptr, 0);
  SendMessageA(final, WM_VSCROLL, SB_TOP, 0);
  SendMessageA(final, WM_VSCROLL, SB_PAGEDOWN, 0);
  const int page = GetScrollPos(final, SB_VERT);
  SendMessageA(final, WM_MOUSEWHEEL, MAKEWPARAM(0, WHEEL_DELTA), 0);
  EXPECT_EQ(GetScrollPos(final, SB_VERT), 0) << "a page a notch";
  EXPECT_GT(page, 1);
  SystemParametersInfoA(SPI_SETWHEELSCROLLLINES, setting, nullptr, 0);
}

/// A dialog of this process; null without one. Other programs have dialogs too.
HWND FindDialog() {
  HWND dialog = nullptr;
  while ((dialog = FindWindowExA(nullptr, dialog, "#32770", nullptr)) != nullptr) {
    DWORD owner = 0;
    GetWindowThreadProcessId(dialog, &owner);
    if (owner == GetCurrentProcessId() && IsWindowVisible(dialog)) break;
  }
  return dialog;
}

TEST_F(WindowTest, MessageBoxesBelongToThePage) {
  Show();
  std::string title(64, '\0');
  HWND owner = nullptr;
  std::thread answer([&] {
    for (int i = 0; i < 500 && FindDialog() == nullptr; ++i) Sleep(10);
    Sleep(100);
    const HWND dialog = FindDialog();
    title.resize(static_cast<std::size_t>(GetWindowTextA(dialog, title.data(), 64)));
    owner = GetWindow(dialog, GW_OWNER);
    PostMessageA(dialog, WM_COMMAND, IDOK, 0);
  });
  windows_.MessageBox("text", "");
  answer.join();
  EXPECT_EQ(title, "TA-LU Setup");
  EXPECT_EQ(owner, frame_);
}

}  // namespace
}  // namespace talu
