#include "PlanAccount.h"

#include <algorithm>
#include <array>
#include <iomanip>
#include <ostream>
#include <utility>

#include "Passwords.h"
#include "database/TypeScripts.h"
#include "pages/FrmSQLNonQuery.h"
#include "runtime/TextFunctions.h"
#include "sql/Passwords.h"

namespace talu::packcheck {
namespace {

constexpr std::array kModes = {"server", "client"};
constexpr int kLabelWidth = 12;
constexpr const char* kTextIndent = "               ";
constexpr const char* kStatementIndent = "      ";

/// The text, its lines below each other, without the line end that batches begin with.
std::string Lines(std::string_view text, const char* indent) {
  std::string lines;
  LineScanner scanner(text);
  for (std::string_view line; scanner.Next(line);) {
    if (lines.empty() && line.empty()) continue;
    if (!lines.empty()) lines.append("\n").append(indent);
    lines += line;
  }
  return lines;
}

std::string WithoutLineEnds(std::string text) {
  while (text.ends_with(kCrLf)) text.resize(text.size() - kCrLf.size());
  return text;
}

std::string Counted(int count, const std::string& what) {
  return std::to_string(count) + " " + what + (count == 1 ? "" : "s");
}

}  // namespace

void PlanAccount::Begin() {
  const DateTime& now = options_.Now;
  const auto two = [](int number) { return (number < 10 ? "0" : "") + std::to_string(number); };
  out_ << kTypeScripts.at(static_cast<std::size_t>(options_.Type)).WithArticle
       << " installation in " << kModes.at(static_cast<std::size_t>(options_.Mode)) << " mode from "
       << options_.PackPath << ", on " << now.Year << '-' << two(now.Month) << '-' << two(now.Day)
       << " at " << two(now.Hour) << ':' << two(now.Minute) << '\n';
}

void PlanAccount::Take(PlannedRun& run, const JournalEvent& event) {
  const auto text = [&event](const char* field) { return event.Text(field); };
  const std::string& kind = event.Kind;
  if (counts_.empty()) Begin();
  ++counts_[kind];
  if (event.Error) {
    lastError_ = event.Error->Description;
    ++failures_;
  }
  if (kind == "show") {
    TakePage(run, event);
  } else if (kind == "set") {
    if (text("control") == "LblFinalMsg") finalMessage_ = text("value");
  } else if (kind == "msgbox") {
    Tell("message", text("text"));
  } else if (kind == "mkdir") {
    Tell("folder", text("path"), event);
  } else if (kind == "delete") {
    Tell("deletes", text("path"), event);
  } else if (kind == "print") {
    TakePrint(run, event);
  } else if (kind == "copy") {
    // A component is copied into a folder, under its own name.
    const std::string from = text("from");
    const std::string name = from.substr(from.rfind('\\') + 1);
    const std::string to = text("to");
    Tell("file", to.ends_with("\\" + name) ? to : to + "\\" + name, event);
  } else if (kind == "connect") {
    ++connections_;
    Tell("connects", text("text"), event);
  } else if (kind == "sql") {
    TakeStatement(run, event);
  } else if (kind == "dsn") {
    const std::string attributes = Replace(text("attributes"), std::string_view("\0", 1), "; ");
    Tell("data source", text("driver") + ": " + attributes, event);
  } else if (kind == "run") {
    Tell("runs", text("command") + "  ends with " + text("exit"));
  } else if (kind == "start") {
    Tell("starts", text("command"), event);
  } else if (kind == "shortcut") {
    Tell("shortcut", text("path") + "  leads to " + text("target"), event);
  } else if (kind == "setting" && event.Error) {
    Tell("setting", text("key"), event);
  }
}

void PlanAccount::TakePage(const PlannedRun& run, const JournalEvent& event) {
  EndPage();
  connections_ = 0;
  out_ << '\n' << event.Text("form");
  if (const ControlView* title = run.Machine.Windows.Shown("LblTitleMsg")) {
    out_ << ": " << Trim(title->Text);
  }
  out_ << '\n';
}

void PlanAccount::TakeStatement(PlannedRun& run, const JournalEvent& event) {
  const std::string& doubt = run.Machine.Server.Doubt();
  if (event.Error) {
    ++counts_["failed sql"];
  } else if (!doubt.empty()) {
    ++counts_["doubted sql"];
  } else if (!Passes("statement")) {
    return;
  }
  out_ << "  statement " << counts_["sql"];
  // Statements of no script come from the backup before the build connects, or the rollback.
  if (const auto& origin = run.Wizard.Page<FrmSQLNonQuery>().Build.Executing()) {
    out_ << ", " << origin->Script << " line " << origin->Line;
  } else {
    out_ << (connections_ < 2 ? ", backup" : ", rollback");
  }
  if (event.Error) {
    out_ << ", fails: " << event.Error->Description;
  } else if (!doubt.empty()) {
    out_ << ", cannot tell " << doubt;
  }
  out_ << '\n'
       << kStatementIndent << Lines(sql::PasswordMask(event.Text("text")).Text(), kStatementIndent)
       << '\n';
}

void PlanAccount::TakePrint(PlannedRun& run, const JournalEvent& event) {
  const std::string path = event.Text("path");
  const std::string text = event.Text("text");
  if (path.ends_with("\\Uninstall.dat")) {
    Tell("record", WithoutLineEnds(text), event);
  } else if (path.ends_with("\\Ta-luErrLog.txt")) {
    TakeLogEntry(run, text);
  } else {
    const std::string hidden = Replace(text, options_.Password, kHiddenPassword);
    Tell("writes", path + ": " + WithoutLineEnds(hidden), event);
  }
}

// Reports errors only. Their entries have a second "//" line before the text and a second line end
// after it; no other entry has both. What stands between is the error and, on the page of the
// databases, the batch.
void PlanAccount::TakeLogEntry(PlannedRun& run, const std::string& entry) {
  constexpr std::string_view kHead = "//\r\n//\r\n";
  constexpr std::string_view kTail = "\r\n\r\n\r\n";
  if (!entry.starts_with(kHead) || !entry.ends_with(kTail)) return;
  const std::size_t end = std::min(entry.find('\r', kHead.size()), entry.size() - kTail.size());
  const std::string error = entry.substr(kHead.size(), end - kHead.size());
  if (error == std::exchange(lastError_, "")) return;
  std::string told = error;
  if (end + kCrLf.size() < entry.size() - kTail.size()) {
    const std::string_view batch = std::string_view(entry).substr(
        end + kCrLf.size(), entry.size() - kTail.size() - end - kCrLf.size());
    if (const auto origin = OriginOf(run, batch)) {
      told = origin->Script + " line " + std::to_string(origin->Line) + ": " + error;
    }
  }
  Tell("error", told + Explained(run, error));
  // The wizard tests every data source over one connection: each after the first gets this entry,
  // which does no harm.
  if (error != "Operation is not allowed when the object is open.") ++failures_;
}

std::optional<DatabaseBuild::BatchOrigin> PlanAccount::OriginOf(PlannedRun& run,
                                                                std::string_view batch) {
  if (placesOf_ != run.ScriptsOpened()) {
    placesOf_ = run.ScriptsOpened();
    places_.reset();
    const std::string& path = run.ScriptPath();
    const SimulatedDisk::Node* script = run.Machine.Disk.Find(path);
    if (script == nullptr || script->IsFolder || script->Content->Size > kLongestText) return {};
    places_.emplace(path.substr(path.rfind('\\') + 1),
                    run.Machine.CodePage.ToText(script->Content->All()));
  }
  if (!places_) return std::nullopt;
  // The build may log several errors of a batch before it sends it, the backup only one.
  const bool again = connections_ > 0 && statementsAtPlace_ == counts_["sql"];
  statementsAtPlace_ = counts_["sql"];
  return places_->Find(batch, run.Wizard.State.DBFolderPath, again);
}

/// What an error of the run-time means that says nothing by itself.
std::string PlanAccount::Explained(const PlannedRun& run, const std::string& error) const {
  const std::string nothing = StandardDescription(error::kInvalidProcedureCall);
  if (error.ends_with("-" + nothing)) {
    return "\r\n(a file's name has less than four characters; it is copied all the same)";
  }
  if (error != nothing || run.Machine.Windows.VisibleForm() != "FrmSQLNonQuery") return "";
  if (connections_ == 0) {
    return "\r\n(the backup looks for a name in the batch and finds no blank behind it; "
           "packcheck check tells which)";
  }
  return "\r\n(the build looks in the batch for a name's end, a drive or .mdf and does not find "
         "it; "
         "packcheck check tells which)";
}

// Whether this one, which succeeded, is still shown.
bool PlanAccount::Passes(const char* label) {
  return ++onPage_[label] <= listed_;
}

void PlanAccount::EndPage() {
  for (const auto& [label, count] : onPage_) {
    if (count <= listed_) continue;
    out_ << "  " << std::left << std::setw(kLabelWidth) << label << " (" << count - listed_
         << (listed_ > 0 ? " more" : "") << "; --full shows all)\n";
  }
  onPage_.clear();
}

void PlanAccount::Tell(const char* label, const std::string& text, const JournalEvent& event) {
  if (!event.Error && !Passes(label)) return;
  Tell(label, event.Error ? text + "  fails: " + event.Error->Description : text);
}

void PlanAccount::Tell(const char* label, const std::string& text) {
  out_ << "  " << std::left << std::setw(kLabelWidth) << label << ' '
       << Lines(WithoutPasswords(text), kTextIndent) << '\n';
}

void PlanAccount::End(const PlannedRun& run) {
  EndPage();
  const Journal& journal = run.Machine.Journal;
  if (!finalMessage_.empty()) Tell("last words", finalMessage_);
  out_ << '\n'
       << (run.Finished() ? "Finished: Finish ended the program" : "Stopped: " + run.Stop())
       << ".\n"
       << Counted(counts_["sql"], "statement") << " (" << counts_["failed sql"] << " failed), "
       << Counted(counts_["copy"], "file") << ", " << Counted(counts_["dsn"], "data source") << ", "
       << Counted(counts_["shortcut"], "shortcut") << ", "
       << Counted(counts_["run"] + counts_["start"], "command") << ", "
       << Counted(counts_["msgbox"], "message") << "; " << Counted(journal.Requests(), "request")
       << " to the machine.\n";
  if (counts_["doubted sql"] > 0) {
    out_ << Counted(counts_["doubted sql"], "time")
         << " above it cannot tell: what EXEC makes shows "
         << "on a real server.\n";
  }
  if (failures_ > 0) out_ << Counted(failures_, "failure") << " above.\n";
  if (options_.FailRequest == 0) return;
  const std::string& failed = journal.FailedRequest();
  out_ << "Request " << options_.FailRequest
       << (failed.empty() ? " never came.\n" : " (" + failed + ") was made to fail.\n");
}

}  // namespace talu::packcheck
