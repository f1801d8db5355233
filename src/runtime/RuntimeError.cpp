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
    return RuntimeError(error::OutOfMemory);
  } catch (const std::length_error&) {  // a text longer than any can be
    return RuntimeError(error::OutOfMemory);
  }
}

std::string StandardDescription(std::int32_t number) {
  switch (number) {
    case error::InvalidProcedureCall:
      return "Invalid procedure call or argument";
    case error::Overflow:
      return "Overflow";
    case error::OutOfMemory:
      return "Out of memory";
    case error::SubscriptOutOfRange:
      return "Subscript out of range";
    case error::BadFileNumber:
      return "Bad file name or number";
    case error::FileNotFound:
      return "File not found";
    case error::BadFileMode:
      return "Bad file mode";
    case error::FileAlreadyOpen:
      return "File already open";
    case error::DeviceIO:
      return "Device I/O error";
    case error::FileAlreadyExists:
      return "File already exists";
    case error::DiskFull:
      return "Disk full";
    case error::InputPastEnd:
      return "Input past end of file";
    case error::TooManyFiles:
      return "Too many files";
    case error::PermissionDenied:
      return "Permission denied";
    case error::PathFileAccess:
      return "Path/File access error";
    case error::PathNotFound:
      return "Path not found";
    case error::ObjectNotSet:
      return "Object variable not set";
    case error::CannotCreateObject:
      return "ActiveX component can't create object";
    case error::InvalidPicture:
      return "Invalid picture";
    default:
      return "Application-defined or object-defined error";
  }
}

}  // namespace talu
