#include "Report.h"

#include <algorithm>
#include <fstream>
#include <nlohmann/json.hpp>
#include <stdexcept>

#include "KeptObjects.h"
#include "Text.h"

namespace talu::standin {
namespace {

using Json = nlohmann::ordered_json;

std::string WithSchema(const std::string& name) {
  return name.find('.') == std::string::npos ? "dbo." + name : name;
}

/// What is in an online database.
void Describe(const DatabaseEntry& entry, Json& described) {
  SqliteDatabase database(entry.File, entry.Name, [] { return false; });
  const KeptObjects kept(database);
  for (const std::string& table :
       kept.List("SELECT name FROM main.sqlite_schema WHERE type = 'table' AND name NOT LIKE "
                 "'sqlite!_%' ESCAPE '!' AND name <> 'sqlstandin_kept' ORDER BY name COLLATE "
                 "NOCASE")) {
    described["tables"].push_back(
        {{"name", WithSchema(table)},
         {"rows", database.Count("SELECT COUNT(*) FROM main." + QuoteName(table))}});
  }
  for (const auto& [kind, count] : kept.Counts()) described["kept"][kind] = count;
  for (const std::string& name :
       kept.List("SELECT name FROM main.sqlstandin_kept WHERE kind = 'noted' AND text <> 'any' "
                 "ORDER BY id")) {
    described["unknown"].push_back(WithSchema(name));
  }
}

}  // namespace

void Report::Add(std::uint64_t number, const std::string& database, std::string_view batch,
                 const Outcome& outcome) {
  const char fate = outcome.Ending.empty() ? outcome.Fate().front() : 'x';
  const std::lock_guard lock(mutex_);
  if (fates_.size() < number) fates_.resize(number, 'x');
  fates_[number - 1] = fate;
  if (fate == 'r' || fate == 'n') {
    entries_[number] = {database, outcome.Line, Masked(outcome.Error, batch), outcome.Noted};
  }
}

void Report::Write(const std::filesystem::path& file, const Catalogue& server,
                   bool isStrict) const {
  struct Construct {
    std::string Name;
    std::size_t Count = 0;
    Json Databases = Json::object();
    std::uint64_t First = 0;
  };
  Json report = {{"strict", isStrict}};
  {
    const std::lock_guard lock(mutex_);
    const auto count = [this](char fate) { return std::ranges::count(fates_, fate); };
    report["batches"] = {{"received", fates_.size()},
                         {"carried", count('c')},
                         {"kept", count('k')},
                         {"noted", count('n')},
                         {"refused", count('r')}};
    report["fates"] = fates_;
    report["noted"] = report["refused"] = Json::array();
    std::vector<Construct> constructs;
    for (const auto& [number, entry] : entries_) {
      Json record = {{"number", number}, {"database", entry.Database}, {"line", entry.Line}};
      if (entry.Error) {
        record["error"] = {{"number", entry.Error->Number}, {"description", entry.Error->Text}};
      } else {
        record["constructs"] = entry.Noted;
      }
      report[entry.Error ? "refused" : "noted"].push_back(std::move(record));
      for (const std::string& name : entry.Noted) {
        auto found = std::ranges::find(constructs, name, &Construct::Name);
        if (found == constructs.end()) {
          found = constructs.insert(found, {name, 0, Json::object(), number});
        }
        ++found->Count;
        Json& here = found->Databases[entry.Database];
        here = here.is_null() ? 1 : here.get<int>() + 1;
      }
    }
    std::ranges::stable_sort(constructs, std::greater(), &Construct::Count);
    report["constructs"] = Json::array();
    for (const Construct& each : constructs) {
      report["constructs"].push_back({{"construct", each.Name},
                                      {"count", each.Count},
                                      {"databases", each.Databases},
                                      {"first", each.First}});
    }
  }
  report["databases"] = Json::array();
  for (const DatabaseEntry& entry : server.All()) {
    if (entry.Name == kMasterName) continue;
    Json files = Json::array({entry.WindowsFile});
    for (const auto& other : entry.OtherFiles) {
      files.push_back(server.AllDrives().WindowsPath(other));
    }
    Json described = {{"name", entry.Name},      {"online", entry.IsOnline},
                      {"files", files},          {"users", entry.Users},
                      {"tables", Json::array()}, {"kept", Json::object()},
                      {"unknown", Json::array()}};
    try {
      if (entry.IsOnline) Describe(entry, described);
    } catch (const SqlFailure& failure) {
      described["error"] = failure.what();
    }
    report["databases"].push_back(std::move(described));
  }
  report["logins"] = server.Logins();

  const std::filesystem::path fresh = file.string() + ".new";
  std::ofstream stream(fresh, std::ios::binary | std::ios::trunc);
  stream << report.dump(1, ' ', false, Json::error_handler_t::replace) << '\n';
  stream.close();
  std::error_code error;
  if (stream) std::filesystem::rename(fresh, file, error);
  if (!stream || error) {
    throw std::runtime_error("the report cannot be written: " + file.string());
  }
}

}  // namespace talu::standin
