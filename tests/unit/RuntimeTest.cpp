#include <gtest/gtest.h>

#include <functional>

#include "platform/simulated/SimulatedMachine.h"
#include "runtime/ErrorTrap.h"
#include "runtime/Int16.h"
#include "runtime/TextFiles.h"
#include "runtime/TextFunctions.h"
#include "runtime/Unicode.h"

namespace talu {
namespace {

int ErrorOf(const std::function<void()>& statement) {
  int number = 0;
  const ErrorTrap step([&](const RuntimeError& error) { number = error.Number; });
  step(statement);
  return number;
}

TEST(Int16, RoundsHalvesToEvenAndChecksEveryStep) {
  EXPECT_EQ(RoundToInt16(439.5), 440);
  EXPECT_EQ(RoundToInt16(732.5), 732);
  EXPECT_EQ(RoundToInt16(-0.5), 0);
  EXPECT_EQ(RoundToInt16(32767.4), 32767);
  EXPECT_EQ(ErrorOf([] { RoundToInt16(32767.5); }), error::kOverflow);
  EXPECT_EQ(ErrorOf([] { RoundToInt16(1e300); }), error::kOverflow);
  EXPECT_EQ(ErrorOf([] { Int16(32767) + 1; }), error::kOverflow);
  EXPECT_EQ(ErrorOf([] { Int16(-32768) - 1; }), error::kOverflow);
  EXPECT_EQ(ErrorOf([] { Int16(200) * 200; }), error::kOverflow);
}

TEST(TextFunctions, PositionsCountFromOne) {
  EXPECT_EQ(InStr("abcabc", "c"), 3);
  EXPECT_EQ(InStr(4, "abcabc", "c"), 6);
  EXPECT_EQ(InStr(7, "abcabc", ""), 0);
  EXPECT_EQ(InStr("", ""), 0);
  EXPECT_EQ(InStr(3, "abc", ""), 3);
  EXPECT_EQ(InStrRev("a\\b\\c", "\\"), 4);
  EXPECT_EQ(InStrRev("a\\b\\c", "\\", 3), 2);
  EXPECT_EQ(InStrRev("abab", "ab", 3), 1);
  EXPECT_EQ(InStrRev("abc", "c", 9), 0);
  EXPECT_EQ(Mid("abc", 2), "bc");
  EXPECT_EQ(Mid("abc", 4, 5), "");
  EXPECT_EQ(Right("abc", 5), "abc");
  EXPECT_EQ(ParentPath("C:\\A\\B"), "C:\\A");
  for (const auto& statement : std::initializer_list<std::function<void()>>{
           [] { InStr(0, "a", "a"); }, [] { InStrRev("a", "a", 0); }, [] { Mid("a", 0); },
           [] { Mid("a", 1, -1); }, [] { Left("a", -1); }, [] { ParentPath("none"); }}) {
    EXPECT_EQ(ErrorOf(statement), error::kInvalidProcedureCall);
  }
}

// What is counted are units of UTF-16: a character outside the first plane has two.
TEST(TextFunctions, PositionsCountUnits) {
  const std::string text = "\u00e9\u8868\U0001F600\\b";
  EXPECT_EQ(Length(text), 6);
  EXPECT_EQ(InStr(text, "\\"), 5);
  EXPECT_EQ(InStr(2, text, "\u00e9"), 0);
  EXPECT_EQ(InStrRev(text, "\u8868", 2), 2);
  EXPECT_EQ(InStrRev(text, "b", 5), 0);
  EXPECT_EQ(Mid(text, 2, 1), "\u8868");
  EXPECT_EQ(Right(text, 2), "\\b");
  EXPECT_EQ(Right(text, 9), text);
  EXPECT_EQ(ParentPath(text), "\u00e9\u8868\U0001F600");
  EXPECT_EQ(Length(Left(text, 3) + Mid(text, 4)), 6) << "a character cut in two and put together";
  EXPECT_EQ(InStr("\u8868[", "["), 2);
}

// Which bytes are text is decided as the tables of Unicode say.
TEST(Unicode, OnlyCharactersStay) {
  const std::string good = "a\u00e9\u8868\uffff\U00010000\U0010ffff";
  EXPECT_EQ(OnlyCharacters(good), good);
  for (const char* bad : {"\x80", "\xC1\xBF", "\xE0\x9F\xBF", "\xED\xA0\x80", "\xF0\x8F\xBF\xBF",
                          "\xF4\x90\x80\x80", "\xE8\xA1"}) {
    EXPECT_TRUE(OnlyCharacters(std::string(bad) + "z").starts_with("\uFFFD")) << bad;
    EXPECT_TRUE(OnlyCharacters(std::string(bad) + "z").ends_with("z")) << bad;
  }
}

TEST(TextFunctions, TrimSplitReplaceAndUpperCase) {
  EXPECT_EQ(Trim("  a\t "), "a\t");
  EXPECT_EQ(Split("a,,b,", ','), (std::vector<std::string>{"a", "", "b", ""}));
  EXPECT_TRUE(Split("", ',').empty());
  EXPECT_EQ(ErrorOf([] { Element({}, 0); }), error::kSubscriptOutOfRange);
  EXPECT_EQ(Replace("aaa", "aa", "a"), "aa");
  EXPECT_EQ(Replace("abc", "", "x"), "abc");
  EXPECT_EQ(UCase("aZ\u00e9\u00ff\u00f7\u00df\u0436"), "AZ\u00c9\u0178\u00f7\u00df\u0416");
  EXPECT_TRUE(ContainsUpper("x --taluGO", "--TALUGO"));
  EXPECT_FALSE(ContainsUpper("--talu", "--TALUGO"));
}

TEST(TextFiles, ReadsLinesAcrossItsBufferAndKeepsLoneLineFeeds) {
  SimulatedMachine machine;
  // A CR LF that falls on the edge of the read-ahead, a line longer than it, a NUL, a lone LF.
  const std::string edge(64 * 1024 - 1, 'e');
  const std::string longLine(200000, 'l');
  machine.Disk.WriteFile(
      "C:\\t.txt", edge + "\r\n" + longLine + "\rlf\nin" + std::string(1, '\0') + "\r\n\r\nend");
  TextFiles files(machine.Files, machine.CodePage);
  files.Open("C:\\t.txt", OpenMode::Input, 3);
  std::vector<std::string> lines;
  while (!files.EndOfFile(3)) lines.emplace_back(files.LineInput(3));
  EXPECT_EQ(lines,
            (std::vector<std::string>{edge, longLine, std::string("lf\nin\0", 6), "", "end"}));
  EXPECT_EQ(ErrorOf([&] { files.LineInput(3); }), error::kInputPastEnd);
}

// Lines whose characters fall on the edges of what is read at a time; in the first two code pages
// the second byte of one is a backslash, a letter.
TEST(TextFiles, AreInTheMachinesCodePage) {
  const struct {
    int codePage;
    std::string bytes;
    std::string text;
    std::string printed;  // of the text and two characters that others have
  } cases[] = {
      {932, "\x95\x5C", "\u8868", "\x95\x5C\x84\x77?"},
      {936, "\x81\x41", "\u4e04", "\x81\x41\xA7\xD8?"},
      {1250, "\x9C", "\u015b", "\x9C??"},
      {1251, "\xE6\x98", "\u0436\u0098", "\xE6\x98\xE6?"},
      {1252, "\xFF\x81", "\u00ff\u0081", "\xFF\x81??"},
      {65001, "\xE8\xA1\xA8", "\u8868", "\xE8\xA1\xA8\u0436\u05d0"},
  };
  for (const auto& test : cases) {
    SCOPED_TRACE(test.codePage);
    SimulatedMachine machine("D:\\Pack", test.codePage);
    TextFiles files(machine.Files, machine.CodePage);
    std::string bytes = "x";
    std::string text = "x";
    for (int i = 0; i < 70000; ++i) {
      bytes += test.bytes;
      text += test.text;
    }
    machine.Disk.WriteFile("C:\\t.txt", "plain\r\n" + bytes + "\r\n\r" + bytes);
    EXPECT_EQ(files.ReadWhole("C:\\t.txt"), "plain\r\n" + text + "\r\n\r" + text);
    files.Open("C:\\t.txt", OpenMode::Input, 1);
    std::vector<std::string> lines;
    while (!files.EndOfFile(1)) lines.emplace_back(files.LineInput(1));
    EXPECT_TRUE(lines == (std::vector<std::string>{"plain", text, "", text}));
    files.Open("C:\\out.txt", OpenMode::Output, 2);
    files.Print(2, {test.text, "\u0436", "\u05d0"});
    EXPECT_EQ(machine.Disk.ReadFile("C:\\out.txt"), test.printed + "\r\n");
  }
  EXPECT_THROW(SimulatedMachine("D:\\Pack", 12345), std::runtime_error);
  EXPECT_THROW(SimulatedMachine("D:\\Pack", 37), std::runtime_error) << "its letters are others";
  EXPECT_EQ(CodePage(1252).FromText("\U0001F600"), "??");
  EXPECT_EQ(CodePage(932).ToText("Caf\xE9\r\nGO"), "Caf\u30fb\r\nGO");
}

TEST(TextFiles, LoseNothingWhenOneReadFails) {
  SimulatedMachine machine("D:\\Pack", 932);
  TextFiles files(machine.Files, machine.CodePage);
  std::string bytes;
  for (int i = 0; i < 70000; ++i) bytes += "\x95\x5C";
  machine.Disk.WriteFile("C:\\t.txt", bytes);
  files.Open("C:\\t.txt", OpenMode::Input, 1);
  machine.Journal.FailRequest(machine.Journal.Requests() + 2, RuntimeError(error::kDeviceIO));
  EXPECT_EQ(ErrorOf([&] { files.LineInput(1); }), error::kDeviceIO);
  EXPECT_EQ(files.LineInput(1), machine.CodePage.ToText(bytes));
}

TEST(TextFiles, NumbersAreAPool) {
  SimulatedMachine machine;
  TextFiles files(machine.Files, machine.CodePage);
  machine.Disk.WriteFile("C:\\a.txt", "a");
  EXPECT_EQ(files.FreeFile(), 1);
  files.Open("C:\\log.txt", OpenMode::Append, 1);
  EXPECT_EQ(files.FreeFile(), 2);
  EXPECT_EQ(ErrorOf([&] { files.Open("C:\\a.txt", OpenMode::Input, 1); }), error::kFileAlreadyOpen);
  EXPECT_EQ(ErrorOf([&] { files.Open("c:\\LOG.txt", OpenMode::Input, 2); }),
            error::kFileAlreadyOpen);
  EXPECT_EQ(ErrorOf([&] { files.Open("C:\\a.txt", OpenMode::Input, 0); }), error::kBadFileNumber);
  EXPECT_EQ(ErrorOf([&] { files.EndOfFile(2); }), error::kBadFileNumber);
  EXPECT_EQ(ErrorOf([&] { files.EndOfFile(1); }), error::kBadFileMode);
  files.Print(1, {"who", "le"});
  EXPECT_EQ(machine.Disk.ReadFile("C:\\log.txt"), "whole\r\n") << "not on disk before it is closed";
  files.Close(1);
  files.Close(1);
  files.Close(0);
  EXPECT_EQ(files.FreeFile(), 1);
  for (int number = 1; number <= 255; ++number) files.Open("C:\\a.txt", OpenMode::Input, number);
  EXPECT_EQ(ErrorOf([&] { files.FreeFile(); }), error::kTooManyFiles);
}

TEST(TextFiles, AppendOpensTheFileAnewForEachRecord) {
  SimulatedMachine machine;
  TextFiles files(machine.Files, machine.CodePage);
  files.ReopenForAppend("C:\\log.txt", 1);
  files.ReopenForAppend("C:\\other.txt", 1);
  files.Print(1, {"x"});
  EXPECT_EQ(machine.Disk.ReadFile("C:\\other.txt"), "x\r\n");
  EXPECT_EQ(ErrorOf([&] { files.Open("C:\\OTHER.txt", OpenMode::Input, 2); }),
            error::kFileAlreadyOpen);
  machine.Disk.Find("C:\\other.txt")->Denied = true;
  EXPECT_EQ(ErrorOf([&] { files.ReopenForAppend("C:\\other.txt", 1); }), error::kPermissionDenied);
}

TEST(ErrorTrap, ResumesWithTheNextStatementAndLetsTheHandlersErrorOut) {
  std::vector<int> seen;
  const ErrorTrap step([&](const RuntimeError& error) { seen.push_back(error.Number); });
  step([] { throw RuntimeError(error::kDiskFull); });
  step([] { throw std::bad_alloc(); });
  step([&] { seen.push_back(0); });
  EXPECT_EQ(seen, (std::vector<int>{error::kDiskFull, error::kOutOfMemory, 0}));
  const ErrorTrap failing([](const RuntimeError&) { throw RuntimeError(error::kPathNotFound); });
  EXPECT_EQ(ErrorOf([&] { failing([] { throw RuntimeError(error::kDiskFull); }); }),
            error::kPathNotFound);
}

[[gnu::noinline]] Int16 CountOrFail(int count) {
  if (count == 0) throw RuntimeError(error::kDiskFull);
  return count;
}

TEST(ErrorTrap, AFailedAssignmentKeepsTheOldValue) {
  const ErrorTrap step([](const RuntimeError&) {});
  Int16 number = 3;
  const bool failed = !step.Assign(number, [] { return CountOrFail(0); });
  EXPECT_TRUE(failed && number == 3) << number;
  const bool assigned = step.Assign(number, [] { return CountOrFail(7); });
  EXPECT_TRUE(assigned && number == 7) << number;
  EXPECT_TRUE(!step.Assign(number, [] { return CountOrFail(0); }) && number == 7) << number;
}

TEST(ErrorTrap, CountsItsLoopsInSixteenBits) {
  int errors = 0;
  const ErrorTrap step([&](const RuntimeError& error) { errors += error.Number; });
  for (const int last : {0, 1, 32766, 32767}) {
    int rounds = 0;
    step.CountTo(last, [&](Int16 index) { EXPECT_EQ(index, ++rounds); });
    EXPECT_EQ(rounds, last);
    EXPECT_EQ(errors, last == 32767 ? error::kOverflow : 0);
  }
}

}  // namespace
}  // namespace talu
