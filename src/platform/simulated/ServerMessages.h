#pragma once

#include <string>
#include <string_view>

#include "runtime/RuntimeError.h"
#include "sql/Lexer.h"

namespace talu {

inline constexpr const char* kProvider = "Microsoft OLE DB Provider for ODBC Drivers";

/// The provider's error for a statement that the server refuses; `text` is the server's.
RuntimeError StatementError(const std::string& text);

// What the server refuses, in its words. Source: Database Engine errors and events, by these
// numbers.

/// 1801 and 15025.
RuntimeError Exists(const std::string& name, bool login);
/// 3701 and 15151.
RuntimeError CannotDrop(const std::string& name, bool login);
/// 5011 and 15151.
RuntimeError CannotAlter(const std::string& name, bool login);
/// 911.
RuntimeError CannotUse(const std::string& name);
/// 15007.
RuntimeError NoLogin(const std::string& name);
/// 111; `kind` is the word behind CREATE.
RuntimeError NotFirst(std::string_view kind);
/// 102, 156 and 105.
RuntimeError Misplaced(const sql::Token& token, const sql::Token& before);
/// 15151; `what` is a verb and its thing, such as "find the user".
RuntimeError CannotFind(const std::string& what, const std::string& name);
/// 4902.
RuntimeError NoObject(const std::string& name);

}  // namespace talu
