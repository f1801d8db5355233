#include "runtime/RuntimeError.h"

#include <new>
#include <stdexcept>
#include <utility>

namespace talu {

RuntimeError::RuntimeError(std::int32_t number)
    : Number(number), Description(StandardDescription(number)) {}

RuntimeError::RuntimeError(std::int32_t number, std::string description, std::string source)
    : Number(number), Description(std::move(description)), Source(std::move(source)) {}

RuntimeError CaughtError() {
  try {
    throw;
  } catch (const RuntimeError& error) {
    return error;
  } catch (const std::bad_alloc&) {
    return RuntimeError(error::kOutOfMemory);
  } catch (const std::length_error&) {  // a text longer than possible
    return RuntimeError(error::kOutOfMemory);
  }
}

std::string StandardDescription(std::int32_t number) {
  switch (number) {
    case error::kInvalidProcedureCall:
      return "Invalid procedure call or argument";
    case error::kOverflow:
      return "Overflow";
    case error::kOutOfMemory:
      return "Out of memory";
    case error::kSubscriptOutOfRange:
      return "Subscript out of range";
    case error::kBadFileNumber:
      return "Bad file name or number";
    case error::kFileNotFound:
      return "File not found";
    case error::kBadFileMode:
      return "Bad file mode";
    case error::kFileAlreadyOpen:
      return "File already open";
    case error::kDeviceIO:
      return "Device I/O error";
    case error::kFileAlreadyExists:
      return "File already exists";
    case error::kDiskFull:
      return "Disk full";
    case error::kInputPastEnd:
      return "Input past end of file";
    case error::kTooManyFiles:
      return "Too many files";
    case error::kPermissionDenied:
      return "Permission denied";
    case error::kPathFileAccess:
      return "Path/File access error";
    case error::kPathNotFound:
      return "Path not found";
    case error::kObjectNotSet:
      return "Object variable not set";
    case error::kCannotCreateObject:
      return "ActiveX component can't create object";
    case error::kInvalidPicture:
      return "Invalid picture";
    default:
      return "Application-defined or object-defined error";
  }
}

}  // namespace talu
