#include "ConvertedFiles.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <ostream>
#include <stdexcept>
#include <system_error>

#include "runtime/TextFunctions.h"

namespace talu::packcheck {
namespace {

namespace fs = std::filesystem;

std::string ReadFile(const fs::path& path) {
  std::ifstream file(path, std::ios::binary);
  std::string bytes(std::istreambuf_iterator<char>(file), {});
  if (!file || fs::is_directory(path)) throw std::runtime_error(Utf8Path(path) + " cannot be read");
  return bytes;
}

/// The path with an ending that no file has yet.
fs::path Unused(const fs::path& path, const char* ending) {
  for (int number = 1;; ++number) {
    fs::path unused = path;
    unused += ending + (number > 1 ? std::to_string(number) : "");
    if (!fs::exists(fs::symlink_status(unused))) return unused;
  }
}

void WriteFile(const fs::path& path, const std::string& bytes) {
  std::ofstream file(path, std::ios::binary);
  if (!file.write(bytes.data(), static_cast<std::streamsize>(bytes.size())).flush()) {
    file.close();
    std::error_code ignored;
    fs::remove(path, ignored);
    throw std::runtime_error(Utf8Path(path) + " cannot be written");
  }
}

/// Puts bytes in a file's place and returns the copy of what it was, which stays beside it. At
/// every moment the file is there, whole. After a failure nothing new is left.
fs::path Replaced(const fs::path& file, const std::string& bytes) {
  const fs::path made = Unused(file, ".new");
  const fs::path copy = Unused(file, ".bak");
  WriteFile(made, bytes);
  const auto check = [&](const std::error_code& error, const fs::path& path, const char* what) {
    if (!error) return;
    std::error_code ignored;
    fs::remove(made, ignored);
    fs::remove(copy, ignored);
    throw std::runtime_error(Utf8Path(path) + " cannot be " + what + ": " + error.message());
  };
  std::error_code error;
  fs::copy_file(file, copy, error);
  check(error, copy, "written");
  fs::permissions(made, fs::status(file).permissions(), error);
  check(error, made, "written");
  fs::rename(made, file, error);
  check(error, file, "replaced");
  return copy;
}

}  // namespace

std::string Utf8Path(const fs::path& path) {
  const std::u8string text = path.u8string();
  return {text.begin(), text.end()};
}

ConvertedFiles::ConvertedFiles(const ConvertOptions& options, const ConvertTarget& target,
                               std::ostream& out)
    : options_(options), target_(target), out_(out) {}

ConvertedFile ConvertedFiles::Take(const fs::path& file, const fs::path& place, FileKind kind) {
  const fs::path to = target_.Folder.empty() ? file : target_.Folder / place;
  ConvertedFile converted = Convert(ReadFile(file), kind, options_);
  WriteAccount(converted, Utf8Path(file), Utf8Path(to), options_, out_);
  if (!converted.LeftBecause.empty()) {
    left_ = true;
    return converted;
  }
  if (target_.Folder.empty()) {
    if (converted.IsChanged()) waiting_.push_back({file, to, converted.After});
    return converted;
  }
  // On Windows a.sql and A.SQL are one file.
  const std::string name = UCase(Utf8Path(to));
  const bool isTwice = std::ranges::any_of(
      waiting_, [&](const Waiting& other) { return UCase(Utf8Path(other.To)) == name; });
  if (isTwice) throw std::runtime_error("two files would become " + Utf8Path(to));
  if (!fs::exists(fs::symlink_status(to))) {
    waiting_.push_back({file, to, converted.After});
  } else if (ReadFile(to) != converted.After) {
    throw std::runtime_error(Utf8Path(to) + " is there already, and it is not overwritten");
  }
  return converted;
}

void ConvertedFiles::Write() {
  if (target_.DryRun || (target_.Folder.empty() && !target_.InPlace)) {
    if (waiting_.empty()) return;
    out_ << "nothing is written"
         << (target_.DryRun ? "" : " yet: --in-place does it, convert --to FOLDER elsewhere")
         << '\n';
    return;
  }
  if (!out_.flush()) return;  // nothing is written that could not be shown
  for (const Waiting& file : waiting_) {
    if (target_.InPlace) {
      // A link stays, and what it leads to changes.
      const fs::path to = fs::is_symlink(file.To) ? fs::canonical(file.To) : file.To;
      const fs::path copy = Replaced(to, file.Bytes);
      out_ << "written: " << Utf8Path(to) << "; as it was: " << Utf8Path(copy.filename()) << '\n';
    } else {
      fs::create_directories(file.To.parent_path());
      WriteFile(file.To, file.Bytes);
      out_ << "written: " << Utf8Path(file.To) << '\n';
    }
  }
}

}  // namespace talu::packcheck
