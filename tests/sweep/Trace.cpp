#include "Trace.h"

#include <algorithm>
#include <array>
#include <stdexcept>
#include <string_view>
#include <utility>

#include "runtime/TextFunctions.h"

namespace talu {
namespace {

struct Shortened {
  std::string_view From;
  std::string_view To;
};

/// With the usual places shortened and line ends shown as "~".
std::string Short(std::string text) {
  constexpr std::array kShortened = {
      Shortened{"C:\\Progs\\TA-LU\\App BackUp\\AppFolderBkp_7_3_2012_9_15", "DATED"},
      Shortened{"C:\\Progs\\TA-LU\\App\\", "APP\\"}, Shortened{"D:\\Pack\\", "PACK\\"},
      Shortened{"\r\n", "~"}, Shortened{"\r", "~"}};
  for (const Shortened& one : kShortened) {
    for (std::size_t at = text.find(one.From); at != std::string::npos;
         at = text.find(one.From, at + one.To.size())) {
      text.replace(at, one.From.size(), one.To);
    }
  }
  return text;
}

std::string TextOf(const JournalEvent& event) {
  std::string text = event.Kind;
  if (event.Kind == "set") {
    text = event.Text("form");
    if (!event.Text("control").empty()) text += " " + event.Text("control");
    const std::string property = event.Text("property");
    if (property != "Caption") text += " " + property;
    // How far the bar goes is a sum of all that went before.
    if (property != "Width") text += " " + event.Text("value");
  } else {
    for (const auto& [name, value] : event.Fields) {
      if (name != "ok") text += " " + event.Text(name);
    }
  }
  if (event.Error) text += " failed: " + event.Error->Description;
  return Short(std::move(text));
}

/// Gathers the lines, one a happening.
class Gatherer {
 public:
  explicit Gatherer(Journal& journal) : journal_(journal), seen_(journal.Events().size()) {
    journal_.OnNote = [this](const char* what, const std::string& about) {
      Flush();
      Add(Short(std::string(what) + " " + about));
    };
  }
  ~Gatherer() { journal_.OnNote = nullptr; }
  Gatherer(const Gatherer&) = delete;
  Gatherer& operator=(const Gatherer&) = delete;

  /// A request is about to be carried out: it is what was just noted, or the next event.
  void Request(int number, const std::string& kind) {
    Flush();
    const bool noted =
        !lines_.empty() && lines_.back().Request == 0 && lines_.back().Text.starts_with(kind + " ");
    (noted ? lines_.back().Request : next_) = number;
  }
  std::vector<Trace::Line> Lines() {
    Flush();
    return std::move(lines_);
  }
  std::uint64_t Digest() const { return digest_; }

 private:
  void Flush() {
    for (; seen_ < journal_.Events().size(); ++seen_) {
      const JournalEvent& event = journal_.Events()[seen_];
      Add(TextOf(event), std::exchange(next_, 0));
      if (event.Kind == "set" && lines_.back().Text.ends_with(" Width")) Sum(event.Text("value"));
    }
  }
  void Add(std::string text, int request = 0) {
    Sum(text);
    lines_.push_back({std::move(text), {}, request});
  }
  // FNV-1a: the same in every build.
  void Sum(const std::string& text) {
    for (const char byte : text)
      digest_ = (digest_ ^ static_cast<unsigned char>(byte)) * 0x100000001B3U;
  }

  Journal& journal_;
  std::vector<Trace::Line> lines_;
  std::size_t seen_;
  int next_ = 0;
  std::uint64_t digest_ = 0xCBF29CE484222325U;
};

/// A file that is closed and opened again for each text that is printed to it.
struct Reopened {
  std::string_view Close;
  std::string_view Open;
  /// The beginning of the print, and of the line that stands for it.
  std::string_view Print;
  std::string_view Name;
};

/// What the lines from `at` on are together, and how many they are; none when they are nothing.
std::pair<std::string, std::size_t> Together(const std::vector<Trace::Line>& lines,
                                             std::size_t at) {
  constexpr std::array kReopened = {
      Reopened{"close APP\\Ta-luErrLog.txt", "open APP\\Ta-luErrLog.txt",
               "print APP\\Ta-luErrLog.txt //~", "log "},
      Reopened{"close APP\\Uninstall.dat", "open APP\\Uninstall.dat", "print APP\\Uninstall.dat ",
               "record "}};
  const auto is = [&](std::size_t behind, std::string_view text) {
    return at + behind < lines.size() && lines[at + behind].Text.starts_with(text);
  };
  if (is(0, "open PACK\\AppCfg.txt") && is(1, "read PACK\\AppCfg.txt") &&
      is(2, "close PACK\\AppCfg.txt"))
    return {"config", 3};
  for (const Reopened& file : kReopened) {
    const std::size_t closed = is(0, file.Close) ? 1 : 0;
    if (!is(closed, file.Open) || !is(closed + 1, file.Print)) continue;
    const std::string_view text = std::string_view(lines[at + closed + 1].Text);
    if (!text.ends_with("~~") || text.size() < file.Print.size() + 2) continue;
    std::string line(file.Name);
    line += text.substr(file.Print.size(), text.size() - file.Print.size() - 2);
    return {std::move(line), closed + 2};
  }
  return {"", 0};
}

}  // namespace

Trace Trace::Of(Installation& run, int fault, const RuntimeError& error, int bound) {
  Journal& journal = run.Machine.Journal;
  Trace trace;
  const int before = journal.Requests();
  if (fault != 0) journal.FailRequest(before + fault, error);
  Gatherer gatherer(journal);
  journal.OnRequest = [&](int number, const char* kind) {
    if (number - before > bound) throw std::logic_error("no end in sight");
    gatherer.Request(number - before, kind);
    trace.Requests.emplace_back(kind);
  };
  run.Run();
  journal.OnRequest = nullptr;
  std::vector<Line> lines = gatherer.Lines();
  trace.Digest = gatherer.Digest();
  for (std::size_t at = 0; at < lines.size();) {
    auto [text, count] = Together(lines, at);
    Line line = std::move(lines[at]);
    if (count > 1) {
      line.Parts.push_back(std::exchange(line.Text, text));
      for (std::size_t part = at + 1; part < at + count; ++part) {
        line.Request = std::max(line.Request, lines[part].Request);
        line.Parts.push_back(std::move(lines[part].Text));
      }
    }
    if (fault != 0 && error.Number == error::kOutOfMemory)
      line.Text = Replace(line.Text, "Out of memory", error.Description);
    trace.Lines.push_back(std::move(line));
    at += std::max<std::size_t>(count, 1);
  }
  return trace;
}

std::size_t Trace::At(int request) const {
  const auto line = std::ranges::find_if(
      Lines, [request](const Line& candidate) { return candidate.Request >= request; });
  return static_cast<std::size_t>(line - Lines.begin());
}

}  // namespace talu
