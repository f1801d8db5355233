#include "CheckServer.h"

#include <algorithm>

#include "database/BatchNames.h"
#include "runtime/TextFunctions.h"

namespace talu::packcheck {

void ServerCheck::Begin(const ServerCheck& other) {
  server_.Databases.insert(other.server_.Databases.begin(), other.server_.Databases.end());
  server_.Logins.insert(other.server_.Logins.begin(), other.server_.Logins.end());
  isUpgrade_ = true;
}

void ServerCheck::Tell(const SqlText& refused) {
  const bool login = Contains(refused.Text, "is not a valid login");
  findings_.Add(
      "SQL-REFUSED", refused.Place,
      {isUpgrade_ ? "a server with what the fresh and demo scripts make"
                  : "a server without the product",
       refused.Text, login ? ", a login with CREATE LOGIN in a batch before the first USE" : ""});
}

void ServerCheck::Take(const SqlBatch& batch, const SqlFacts& facts, bool records) {
  if (!facts.Variables.empty() && Contains(UCase(batch.Text), "CREATE")) isUnsure_ = true;
  madeAny_ = madeAny_ || !server_.Databases.empty() || CreatesDatabase(batch.Text);
  const std::vector<Refusal> refused = server_.ApplyNames(batch.Text);
  if (!refused.empty() && !facts.Variables.empty()) return;  // which have their own finding
  for (const Refusal& refusal : refused) {
    const std::string& text = refusal.Error.Description;
    const std::string words = text.substr(text.rfind(']') + 1);
    const Place place = batch.PlaceOfByte(refusal.At);
    // What these scripts make twice is named with both places.
    const bool isTold = refusal.Why == Refusal::Reason::Exists && !isUpgrade_;
    if (refusal.Why == Refusal::Reason::Missing) {
      if (!isUnsure_) missing_.push_back({words, place});
    } else if (!isTold) {
      Tell({words, place});
    }
  }
  if (!refused.empty()) return;
  if (records && CreatesDatabase(batch.Text)) Record(batch, facts, false);
  if (records && CreatesLogin(batch.Text)) Record(batch, facts, true);
}

// A name that the batch does not make is the affair of the checks of the batch itself.
void ServerCheck::Record(const SqlBatch& batch, const SqlFacts& facts, bool login) {
  const auto name = RecordedName(batch.Text, login);
  if (!name) return;
  const std::string upper = UCase(BackedUpName(Trim(*name)));
  const bool dropped = std::ranges::any_of(facts.Statements, [&](const SqlStatement& statement) {
    return statement.Verb == SqlStatement::Kind::Drop && statement.Login == login &&
           BareName(statement.Name) == upper;
  });
  if (dropped || Has(upper, login)) recorded_.push_back({upper, login, batch.Start});
}

bool ServerCheck::Has(const std::string& name, bool login) const {
  return (login ? server_.Logins : server_.Databases).contains(name);
}

void ServerCheck::End() {
  for (const Recorded& recorded : recorded_) {
    if (Has(recorded.Name, recorded.Login)) continue;
    findings_.Add("SQL-RECORD-GONE", recorded.At,
                  {recorded.Login ? "login" : "database", Shown(recorded.Name)});
  }
  if (!madeAny_) return;
  for (const SqlText& missing : missing_) Tell(missing);
}

}  // namespace talu::packcheck
