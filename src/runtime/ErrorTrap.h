#pragma once

#include <functional>
#include <utility>

#include "runtime/Int16.h"
#include "runtime/RuntimeError.h"

namespace talu {

/// Resume-next: runs one statement at a time, passes the run-time error of a failing one to the
/// handler and continues. A statement is the smallest unit that can fail on its own. Errors of the
/// handler itself, and all that is not a run-time error, go to the procedure's caller.
class ErrorTrap {
 public:
  using Handler = std::function<void(const RuntimeError&)>;

  explicit ErrorTrap(Handler handler) : handler_(std::move(handler)) {}

  /// Runs `statement`; returns whether it succeeded.
  template <class Statement>
  bool operator()(Statement&& statement) const {
    try {
      std::forward<Statement>(statement)();
      return true;
    } catch (...) {
      handler_(CaughtError());
    }
    return false;
  }

  /// A statement that assigns: stores the result of `expression` in `variable`, which keeps its
  /// value when the expression fails; returns whether it succeeded. Assigning inside `operator()`
  /// is not the same: GCC 12's optimiser drops the value that `number` had before `number =
  /// Count();` although `Count` throws.
  template <class Variable, class Expression>
  bool Assign(Variable& variable, Expression&& expression) const {
    return (*this)([&] {
      decltype(auto) result = std::forward<Expression>(expression)();
      variable = std::forward<decltype(result)>(result);
    });
  }

  /// A counted loop: `body` with 1 to `last`. The index is a 16-bit one and is also incremented
  /// after the last round, so 32767 rounds end with an error 6 for the handler.
  template <class Body>
  void CountTo(Int16 last, Body&& body) const {
    for (Int16 index = 1; index <= last;) {
      body(index);
      if (!(*this)([&] { ++index; })) return;
    }
  }

 private:
  Handler handler_;
};

}  // namespace talu
