#pragma once

#include <cstdint>
#include <functional>
#include <initializer_list>
#include <optional>
#include <string>
#include <type_traits>
#include <utility>
#include <variant>
#include <vector>

#include "runtime/RuntimeError.h"

namespace talu {

/// One request to the simulated machine, as named values in the order of writing.
struct JournalEvent {
  using Value = std::variant<std::string, std::int64_t, bool>;
  using Field = std::pair<std::string, Value>;

  JournalEvent(const char* kind, std::initializer_list<Field> fields)
      : Kind(kind), Fields(fields) {}

  /// The text of a field; empty when there is no such field.
  std::string Text(const std::string& field) const;
  /// One JSON object on one line, in UTF-8.
  std::string ToJson() const;

  std::string Kind;
  std::vector<Field> Fields;
  /// Set when the request failed.
  std::optional<RuntimeError> Error;
};

/// The requests to the machine, in order; any of them can be made to fail here.
class Journal {
 public:
  /// Counts a request that may fail. Raises the error set for this request; out of memory is raised
  /// as a failed allocation.
  void Count(const char* request);
  /// A request that may fail and is not an event: noted, then counted.
  void Count(const char* request, const std::string& about) {
    Note(request, about);
    Count(request);
  }
  /// Reports something that is not an event.
  void Note(const char* what, const std::string& about = "") const {
    if (OnNote) OnNote(what, about);
  }
  /// Called for what leaves no event: requests, with their details, files closed, and pending
  /// events handled.
  std::function<void(const char* what, const std::string& about)> OnNote;
  /// Called before each such request is executed, with its number (from 1); the request passes on
  /// what it throws.
  std::function<void(int number, const char* request)> OnRequest;
  /// Requests counted so far.
  int Requests() const { return requests_; }
  /// Makes request number `request` (from 1) fail once.
  void FailRequest(int request, const RuntimeError& error);
  /// The name of the request that was made to fail; empty when there was none.
  const std::string& FailedRequest() const { return failedRequest_; }

  void Add(JournalEvent event) {
    if (watcher_) {
      watcher_(event);
    } else {
      events_.push_back(std::move(event));
    }
  }
  /// Passes each event to `watcher` as it happens and keeps none; without a watcher it keeps them
  /// again. The request passes on what the watcher throws.
  void Watch(std::function<void(const JournalEvent&)> watcher) { watcher_ = std::move(watcher); }
  const std::vector<JournalEvent>& Events() const { return events_; }
  /// One text per event of a kind: the value of `field`.
  std::vector<std::string> Texts(const std::string& kind, const std::string& field) const;

  /// Counts a request, executes it and records the event, with the error if it raised one.
  /// `showOk`: a success is marked too.
  template <class Work>
  auto Request(JournalEvent event, bool showOk, Work work) -> decltype(work()) {
    const auto attempt = [&] {
      try {
        Count(event.Kind.c_str());
        if (showOk) event.Fields.emplace_back("ok", true);
        return work();
      } catch (...) {
        AddFailed(std::move(event));
        throw;
      }
    };
    if constexpr (std::is_void_v<decltype(work())>) {
      attempt();
      Add(std::move(event));
    } else {
      auto result = attempt();
      Add(std::move(event));
      return result;
    }
  }

 private:
  /// For a `catch (...)`: records the event with the caught error.
  void AddFailed(JournalEvent event);

  std::vector<JournalEvent> events_;
  std::function<void(const JournalEvent&)> watcher_;
  int requests_ = 0;
  int failAt_ = 0;
  std::optional<RuntimeError> failure_;
  std::string failedRequest_;
};

}  // namespace talu
