// A source of each program that is to be safe from what lies beside it.

#include "platform/win32/SystemLibrary.h"

namespace {

#ifndef _MSC_VER
// Ahead of other constructors, the run-time library's among them: what they ask of the system may
// load libraries by name.
[[gnu::constructor(101)]] void BeforeAnythingElse() {
  talu::TrustSystemFolderOnly();
}
#endif

}  // namespace
