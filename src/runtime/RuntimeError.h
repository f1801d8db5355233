#pragma once

#include <cstdint>
#include <exception>
#include <string>

namespace talu {

/// A run-time error: the platform's own numbers (below) or an automation object's.
/// Everything that can fail raises it; `ErrorTrap` catches it.
class RuntimeError : public std::exception {
 public:
  /// One of the platform's own errors, with its standard description.
  explicit RuntimeError(std::int32_t number);
  /// An error with its own description; `source` names the object that raised it.
  RuntimeError(std::int32_t number, std::string description, std::string source = "");

  const char* what() const noexcept override { return Description.c_str(); }

  std::int32_t Number;
  std::string Description;
  std::string Source;
};

namespace error {
inline constexpr std::int32_t kInvalidProcedureCall = 5;
inline constexpr std::int32_t kOverflow = 6;
inline constexpr std::int32_t kOutOfMemory = 7;
inline constexpr std::int32_t kSubscriptOutOfRange = 9;
inline constexpr std::int32_t kBadFileNumber = 52;
inline constexpr std::int32_t kFileNotFound = 53;
inline constexpr std::int32_t kBadFileMode = 54;
inline constexpr std::int32_t kFileAlreadyOpen = 55;
inline constexpr std::int32_t kDeviceIO = 57;
inline constexpr std::int32_t kFileAlreadyExists = 58;
inline constexpr std::int32_t kDiskFull = 61;
inline constexpr std::int32_t kInputPastEnd = 62;
inline constexpr std::int32_t kTooManyFiles = 67;
inline constexpr std::int32_t kPermissionDenied = 70;
inline constexpr std::int32_t kPathFileAccess = 75;
inline constexpr std::int32_t kPathNotFound = 76;
inline constexpr std::int32_t kObjectNotSet = 91;
inline constexpr std::int32_t kCannotCreateObject = 429;
inline constexpr std::int32_t kInvalidPicture = 481;
/// The data provider's unspecified error (E_FAIL), which a failed `Open` reports.
inline constexpr std::int32_t kUnspecified = -2147467259;
}  // namespace error

/// For a `catch (...)`: the caught run-time error. A failed allocation and a text that would be too
/// long are "Out of memory"; anything else, such as the end of the program, is raised again.
RuntimeError CaughtError();

/// The standard description of one of the platform's own errors;
/// "Application-defined or object-defined error" for any other number.
std::string StandardDescription(std::int32_t number);

}  // namespace talu
