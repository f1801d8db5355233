#pragma once

namespace talu {

/// A path, and what Windows makes of it before it looks at a disk.
struct PathCase {
  const char* Given;
  const char* Meant;
};

/// Compared with the simulated disk and with GetFullPathName.
inline constexpr PathCase kPathCases[] = {
    {"C:\\t\\\\a//b", "C:\\t\\a\\b"},  {"C:\\t\\.\\b", "C:\\t\\b"},
    {"C:\\t\\..\\x", "C:\\x"},         {"C:\\..\\..\\x", "C:\\x"},
    {"C:\\t\\a ", "C:\\t\\a"},         {"C:\\t\\a. .", "C:\\t\\a"},
    {"C:\\t\\a \\b", "C:\\t\\a \\b"},  {"C:\\t\\a.\\b", "C:\\t\\a\\b"},
    {"C:\\t\\a..\\b", "C:\\t\\a.\\b"}, {"C:\\t\\a. \\b", "C:\\t\\a. \\b"},
    {"C:\\t\\a .\\b", "C:\\t\\a \\b"}, {"C:\\t\\...\\b", "C:\\t\\..\\b"},
    {"C:\\t\\ \\b", "C:\\t\\ \\b"},    {"C:\\t\\...", "C:\\t"},
    {"C:\\t\\a \\", "C:\\t\\a "},      {"C:\\t\\a\\.. ", "C:\\t\\a"},
};

}  // namespace talu
