#include <gtest/gtest.h>

#include <functional>

#include "platform/simulated/SimulatedMachine.h"
#include "runtime/ErrorTrap.h"
#include "runtime/Int16.h"
#include "runtime/TextFiles.h"
#include "runtime/TextFunctions.h"

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

TEST(TextFunctions, TrimSplitReplaceAndUpperCase) {
  EXPECT_EQ(Trim("  a\t "), "a\t");
  EXPECT_EQ(Split("a,,b,", ','), (std::vector<std::string>{"a", "", "b", ""}));
  EXPECT_TRUE(Split("", ',').empty());
  EXPECT_EQ(ErrorOf([] { Element({}, 0); }), error::kSubscriptOutOfRange);
  EXPECT_EQ(Replace("aaa", "aa", "a"), "aa");
  EXPECT_EQ(Replace("abc", "", "x"), "abc");
  EXPECT_EQ(UCase("aZ\xE9\xFF\xF7\xDF"), "AZ\xC9\x9F\xF7\xDF");
  EXPECT_TRUE(ContainsUpper("x --taluGO", "--TALUGO"));
  EXPECT_FALSE(ContainsUpper("--talu", "--TALUGO"));
}

TEST(TextFunctions, ContainsFindsWhatInStrFinds) {
  const std::string text = "G LOGIN CREATE LOGGIN CREATE LOGIN G";
  for (std::size_t from = 0; from < text.size(); ++from) {
    for (std::size_t size = 0; size <= text.size() - from; ++size) {
      const std::string part = text.substr(from, size);
      EXPECT_EQ(Contains(part, "CREATE LOGIN"), InStr(part, "CREATE LOGIN") != 0) << part;
      EXPECT_EQ(Contains(part, ""), InStr(part, "") != 0) << part;
    }
  }
}

TEST(TextFiles, ReadsLinesAcrossItsBufferAndKeepsLoneLineFeeds) {
  SimulatedMachine machine;
  // A CR LF that falls on the edge of the read-ahead, a line longer than it, a NUL, a lone LF.
  const std::string edge(64 * 1024 - 1, 'e');
  const std::string longLine(200000, 'l');
  machine.Disk.WriteFile(
      "C:\\t.txt", edge + "\r\n" + longLine + "\rlf\nin" + std::string(1, '\0') + "\r\n\r\nend");
  TextFiles files(machine.Files);
  files.Open("C:\\t.txt", OpenMode::Input, 3);
  std::vector<std::string> lines;
  while (!files.EndOfFile(3)) lines.emplace_back(files.LineInput(3));
  EXPECT_EQ(lines,
            (std::vector<std::string>{edge, longLine, std::string("lf\nin\0", 6), "", "end"}));
  EXPECT_EQ(ErrorOf([&] { files.LineInput(3); }), error::kInputPastEnd);
}

TEST(TextFiles, NumbersAreAPool) {
  SimulatedMachine machine;
  TextFiles files(machine.Files);
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
  TextFiles files(machine.Files);
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
