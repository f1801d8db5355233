#include "platform/simulated/Journal.h"

#include <algorithm>
#include <new>

#include "runtime/JsonText.h"

namespace talu {

std::string JournalEvent::Text(const std::string& field) const {
  for (const auto& [name, value] : Fields) {
    if (name != field) continue;
    if (const auto* text = std::get_if<std::string>(&value)) return *text;
    if (const auto* number = std::get_if<std::int64_t>(&value)) return std::to_string(*number);
    return std::get<bool>(value) ? "true" : "false";
  }
  return "";
}

std::string JournalEvent::ToJson() const {
  std::string json = "{\"event\":\"" + Kind + "\"";
  for (const auto& [name, value] : Fields) {
    json += ",\"" + name + "\":";
    if (const auto* text = std::get_if<std::string>(&value)) {
      AppendJson(json, *text);
    } else if (const auto* number = std::get_if<std::int64_t>(&value)) {
      json += std::to_string(*number);
    } else {
      json += std::get<bool>(value) ? "true" : "false";
    }
  }
  if (Error) {
    json += ",\"ok\":false,\"error\":{\"number\":" + std::to_string(Error->Number) +
            ",\"description\":";
    AppendJson(json, Error->Description);
    json += "}";
  }
  return json + "}";
}

void Journal::Count(const char* request) {
  ++requests_;
  if (OnRequest) OnRequest(requests_, request);
  if (requests_ != failAt_) return;
  failedRequest_ = request;
  if (failure_->Number == error::kOutOfMemory) throw std::bad_alloc();
  throw RuntimeError(*failure_);
}

void Journal::AddFailed(JournalEvent event) {
  const auto isOk = [](const JournalEvent::Field& field) { return field.first == "ok"; };
  std::erase_if(event.Fields, isOk);
  try {
    event.Error = CaughtError();
  } catch (...) {
    Add(std::move(event));  // the end of the program is not a failure
    throw;
  }
  Add(std::move(event));
}

void Journal::FailRequest(int request, const RuntimeError& error) {
  failAt_ = request;
  failure_ = error;
}

std::vector<std::string> Journal::Texts(const std::string& kind, const std::string& field) const {
  std::vector<std::string> texts;
  for (const JournalEvent& event : events_) {
    if (event.Kind == kind) texts.push_back(event.Text(field));
  }
  return texts;
}

}  // namespace talu
