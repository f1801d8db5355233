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

#include "platform/simulated/CodePage.h"
#include "runtime/RuntimeError.h"

namespace talu {

/// One request to the simulated machine, as a list of named values in the order in which they are
/// written.
struct JournalEvent {
  using Value = std::variant<std::string, std::int64_t, bool>;
  using Field = std::pair<std::string, Value>;

  JournalEvent(const char* kind, std::initializer_list<Field> fields)
      : Kind(kind), Fields(fields) {}

  /// The text of a field; empty when there is none of that name.
  std::string Text(const std::string& field) const;
  /// One JSON object on one line; texts are read as Windows-1252.
  std::string ToJson() const;

  std::string Kind;
  std::vector<Field> Fields;
  /// Set when the request failed.
  std::optional<RuntimeError> Error;
};

/// What the machine was asked, in order; and the place where a request can be made to fail.
class Journal {
 public:
  /// Counts a request that may fail. Raises the error that was asked for this request; out of
  /// memory is raised as a failed allocation.
  void Count(const char* request);
  /// A request that may fail and is no event: noted, then counted.
  void Count(const char* request, const std::string& about) {
    Note(request, about);
    Count(request);
  }
  /// Tells of something that is no event.
  void Note(const char* what, const std::string& about = "") const {
    if (OnNote) OnNote(what, about);
  }
  /// Told of what leaves no event: requests, with what they ask for, files closed, and pending
  /// events let through.
  std::function<void(const char* what, const std::string& about)> OnNote;
  /// Told of every such request before it is carried out, with its number (from 1); what it throws
  /// comes out of the request.
  std::function<void(int number, const char* request)> OnRequest;
  /// Requests counted so far.
  int Requests() const { return requests_; }
  /// Makes request number `request` (from 1) fail once.
  void FailRequest(int request, const RuntimeError& error);
  /// The name of the request that failed on demand; empty when none has.
  const std::string& FailedRequest() const { return failedRequest_; }

  void Add(JournalEvent event) {
    if (watcher_) {
      watcher_(event);
    } else {
      events_.push_back(std::move(event));
    }
  }
  /// From now on hands each event to `watcher` as it happens and keeps none; keeps them again
  /// without one. What the watcher throws comes out of the request.
  void Watch(std::function<void(const JournalEvent&)> watcher) { watcher_ = std::move(watcher); }
  const std::vector<JournalEvent>& Events() const { return events_; }
  /// One text per event of a kind: the value of `field`.
  std::vector<std::string> Texts(const std::string& kind, const std::string& field) const;

  /// Counts a request, does its work and records the event, with the error when one was raised.
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
  /// For a `catch (...)`: records the event with the error that was caught.
  void AddFailed(JournalEvent event);

  std::vector<JournalEvent> events_;
  std::function<void(const JournalEvent&)> watcher_;
  int requests_ = 0;
  int failAt_ = 0;
  std::optional<RuntimeError> failure_;
  std::string failedRequest_;
};

}  // namespace talu
