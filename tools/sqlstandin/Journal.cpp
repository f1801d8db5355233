#include "Journal.h"

#include <sys/eventfd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <nlohmann/json.hpp>
#include <stdexcept>

#include "sql/Passwords.h"

namespace talu::standin {
namespace {

/// Keeps the fields in the order of writing.
using Json = nlohmann::ordered_json;

void AddError(Json& record, const std::optional<SqlMessage>& error) {
  record["ok"] = !error.has_value();
  if (error) record["error"] = {{"number", error->Number}, {"description", error->Text}};
}

std::string Dump(const Json& record) {
  return record.dump(-1, ' ', false, Json::error_handler_t::replace);
}

std::optional<SqlMessage> Masked(std::optional<SqlMessage> error, const sql::PasswordMask& mask) {
  if (!error) return error;
  for (auto argument = error->Arguments.rbegin(); argument != error->Arguments.rend(); ++argument) {
    const auto [begin, end] = *argument;
    if (mask.Hides(std::string_view(error->Text).substr(begin, end - begin))) {
      error->Text.replace(begin, end - begin, "***");
    }
  }
  return error;
}

}  // namespace

std::optional<SqlMessage> Masked(std::optional<SqlMessage> error, std::string_view batch) {
  return error ? Masked(std::move(error), sql::PasswordMask(batch)) : error;
}

Journal::Journal(const std::filesystem::path& file)
    : name_(file), failureDescriptor_(eventfd(0, EFD_CLOEXEC)) {
  if (file.empty()) return;
  file_.reset(std::fopen(file.c_str(), "ae"));
  if (!file_) {
    throw std::runtime_error("the journal cannot be opened: " + file.string() + ": " +
                             std::strerror(errno));
  }
}

void Journal::Write(std::string_view head, std::string_view text, std::string_view tail) {
  constexpr std::size_t kPiece = 100'000;
  const std::lock_guard lock(mutex_);
  if (failure_.empty()) {
    const auto put = [this](std::string_view part) {
      std::fwrite(part.data(), 1, part.size(), file_.get());
    };
    put(head.substr(0, head.size() - (tail.empty() ? 0 : 1)));
    if (!tail.empty()) {
      // In pieces, each of whole characters: the text may be as large as what is left of the
      // memory.
      put(R"(,"text":")");
      for (std::size_t end = 0; !text.empty(); text.remove_prefix(end)) {
        end = std::min(kPiece, text.size());
        while (end < text.size() && end > kPiece - 4 && (text[end] & 0xC0) == 0x80) --end;
        const std::string piece = Dump(text.substr(0, end));
        put(std::string_view(piece).substr(1, piece.size() - 2));
      }
      put("\",");
      put(tail.substr(1));
    }
    put("\n");
    if (std::fflush(file_.get()) == 0 && std::ferror(file_.get()) == 0) return;
    failure_ = "the journal cannot be written: " + name_.string() + ": " + std::strerror(errno);
    eventfd_write(failureDescriptor_.Number(), 1);
  }
  throw std::runtime_error(failure_);
}

void Journal::Check() {
  const std::lock_guard lock(mutex_);
  if (!failure_.empty()) throw std::runtime_error(failure_);
}

void Journal::LoggedIn(int session, const std::string& user, const std::string& database,
                       const std::optional<SqlMessage>& error) {
  if (!file_) return;
  Json record = {{"event", "login"}, {"session", session}, {"user", user}, {"database", database}};
  AddError(record, error);
  Write(Dump(record));
}

void Journal::LoggedOut(int session) {
  if (!file_) return;
  Write(Dump({{"event", "logout"}, {"session", session}}));
}

void Journal::Batch(std::uint64_t number, int session, const std::string& database,
                    std::string_view batch, const Outcome& outcome) {
  if (!file_) return;
  const sql::PasswordMask mask(batch);
  const Json head = {
      {"event", "sql"}, {"number", number}, {"session", session}, {"database", database}};
  Json record;
  AddError(record, Masked(outcome.Error, mask));
  if (!outcome.Ending.empty()) {
    record["ok"] = false;
    record["ending"] = outcome.Ending;
  } else {
    record["fate"] = outcome.Fate();
  }
  if (!outcome.Noted.empty()) {
    record["carried"] = false;
    record["constructs"] = outcome.Noted;
  }
  Write(Dump(head), mask.Text(), Dump(record));
}

}  // namespace talu::standin
