#pragma once

#include "Automation.h"

namespace talu::wine {

/// The data-access library's own errors, with their published numbers (`ErrorValueEnum`) and texts;
/// 0x800A0000 marks them as run-time errors. `source` is the name of the failing class.

inline AutomationError NotAllowedWhenClosed(const wchar_t* source) {
  return {static_cast<HRESULT>(0x800A0E78), source,
          L"Operation is not allowed when the object is closed."};
}

inline AutomationError NotAllowedWhenOpen(const wchar_t* source) {
  return {static_cast<HRESULT>(0x800A0E79), source,
          L"Operation is not allowed when the object is open."};
}

inline AutomationError InvalidConnection(const wchar_t* source) {
  return {static_cast<HRESULT>(0x800A0E7D), source,
          L"The connection cannot be used to perform this operation. It is either closed or "
          L"invalid in this context."};
}

inline AutomationError InvalidArgument(const wchar_t* source) {
  return {static_cast<HRESULT>(0x800A0BB9), source,
          L"Arguments are of the wrong type, are out of acceptable range, or are in conflict with "
          L"one another."};
}

inline AutomationError FeatureNotAvailable(const wchar_t* source) {
  return {static_cast<HRESULT>(0x800A0CB3), source,
          L"Object or provider is not capable of performing requested operation."};
}

/// OLE DB's `DB_E_NOCOMMAND`.
inline AutomationError NoCommandText(const wchar_t* source) {
  return {static_cast<HRESULT>(0x80040E0C), source,
          L"Command text was not set for the command object."};
}

}  // namespace talu::wine
