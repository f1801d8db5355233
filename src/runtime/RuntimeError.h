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
  /// An error with a description of its own; `source` names the object that raised it.
  RuntimeError(std::int32_t number, std::string description, std::string source = "");

  const char* what() const noexcept override { return Description.c_str(); }

  std::int32_t Number;
  std::string Description;
  std::string Source;
};

namespace error {
inline constexpr std::int32_t InvalidProcedureCall = 5;
inline constexpr std::int32_t Overflow = 6;
inline constexpr std::int32_t OutOfMemory = 7;
inline constexpr std::int32_t SubscriptOutOfRange = 9;
inline constexpr std::int32_t BadFileNumber = 52;
inline constexpr std::int32_t FileNotFound = 53;
inline constexpr std::int32_t BadFileMode = 54;
inline constexpr std::int32_t FileAlreadyOpen = 55;
inline constexpr std::int32_t DeviceIO = 57;
inline constexpr std::int32_t FileAlreadyExists = 58;
inline constexpr std::int32_t DiskFull = 61;
inline constexpr std::int32_t InputPastEnd = 62;
inline constexpr std::int32_t TooManyFiles = 67;
inline constexpr std::int32_t PermissionDenied = 70;
inline constexpr std::int32_t PathFileAccess = 75;
inline constexpr std::int32_t PathNotFound = 76;
inline constexpr std::int32_t ObjectNotSet = 91;
inline constexpr std::int32_t CannotCreateObject = 429;
inline constexpr std::int32_t InvalidPicture = 481;
/// The data provider's unspecified error (E_FAIL), which a failed `Open` reports.
inline constexpr std::int32_t Unspecified = -2147467259;
}  // namespace error

/// For a `catch (...)`: the run-time error that was caught; a failed allocation is "Out of memory",
/// and so is a text that would be too long.
/// Anything else, the end of the program for one, is raised again.
RuntimeError CaughtError();

/// The standard description of one of the platform's own errors;
/// "Application-defined or object-defined error" for any other number.
std::string StandardDescription(std::int32_t number);

}  // namespace talu
