#include "platform/simulated/SimulatedFiles.h"

#include <cstdint>
#include <utility>

#include "runtime/RuntimeError.h"

namespace talu {
namespace {

class SimulatedFolder : public Folder {
 public:
  SimulatedFolder(Journal& journal, SimulatedDisk& disk, std::string path, std::string name)
      : journal_(journal), disk_(disk), path_(std::move(path)), name_(std::move(name)) {}

  std::string Path() const override { return path_; }
  std::string Name() const override { return name_; }
  std::vector<FolderItem> Files() const override { return List("files", false); }
  std::vector<FolderItem> SubFolders() const override { return List("folders", true); }

 private:
  std::vector<FolderItem> List(const char* request, bool folders) const {
    journal_.Count(request, path_);
    std::vector<FolderItem> items;
    for (const auto& [upper, node] : disk_.FolderAt(path_).Children) {
      if (node->IsFolder == folders) items.push_back({node->Name, path_ + "\\" + node->Name});
    }
    return items;
  }

  Journal& journal_;
  SimulatedDisk& disk_;
  std::string path_;
  std::string name_;
};

class SimulatedInput : public TextFile {
 public:
  SimulatedInput(Journal& journal, std::shared_ptr<const FileContent> content, std::string path)
      : journal_(journal), content_(std::move(content)), path_(std::move(path)) {}
  ~SimulatedInput() override { journal_.Note("close", path_); }

  std::uint64_t Size() const override { return content_->Size; }
  std::size_t Read(char* buffer, std::size_t size) override {
    journal_.Count("read", path_);
    const std::size_t got = content_->Read(at_, buffer, size);
    at_ += got;
    return got;
  }
  void Write(std::string_view) override { throw RuntimeError(error::kBadFileMode); }

 private:
  Journal& journal_;
  std::shared_ptr<const FileContent> content_;
  std::string path_;
  std::uint64_t at_ = 0;
};

class SimulatedOutput : public TextFile {
 public:
  SimulatedOutput(Journal& journal, SimulatedDisk& disk, const CodePage& codePage,
                  SimulatedDisk::Node& node, std::string path)
      : journal_(journal), disk_(disk), codePage_(codePage), node_(node), path_(std::move(path)) {
    ++node_.Writers;
  }
  ~SimulatedOutput() override {
    --node_.Writers;
    journal_.Note("close", path_);
  }

  std::uint64_t Size() const override { return node_.Content->Size; }
  std::size_t Read(char*, std::size_t) override { throw RuntimeError(error::kBadFileMode); }
  void Write(std::string_view bytes) override {
    const std::string text = codePage_.ToText(std::string(bytes));
    journal_.Request({"print", {{"path", path_}, {"text", text}}}, false, [&] {
      disk_.Use(bytes.size());
      // A copy shares the bytes until they are written to.
      if (node_.Content.use_count() > 1 || !node_.Content->HostFile.empty()) {
        auto own = std::make_shared<FileContent>();
        own->Bytes = node_.Content->All();
        node_.Content = std::move(own);
      }
      node_.Content->Bytes += bytes;
      node_.Content->Size = node_.Content->Bytes.size();
      disk_.Touch(node_);
    });
  }

 private:
  Journal& journal_;
  SimulatedDisk& disk_;
  const CodePage& codePage_;
  SimulatedDisk::Node& node_;
  std::string path_;
};

}  // namespace

void SimulatedFiles::CreateFolder(const std::string& path) {
  journal_.Request({"mkdir", {{"path", path}}}, false, [&] { disk_.CreateFolder(path); });
}

void SimulatedFiles::DeleteFile(const std::string& path, bool force) {
  journal_.Request({"delete", {{"path", path}}}, false, [&] { disk_.DeleteFile(path, force); });
}

std::unique_ptr<Folder> SimulatedFiles::GetFolder(const std::string& path) {
  journal_.Count("folder", path);
  const std::string name = disk_.FolderAt(path).Name;
  return std::make_unique<SimulatedFolder>(journal_, disk_, disk_.FullPath(path), name);
}

std::string SimulatedFiles::GetSpecialFolder(int number) {
  journal_.Count("special folder", std::to_string(number));
  switch (number) {
    case 0:
      return disk_.OwnSpelling("C:\\Windows");
    case 1:
      return disk_.OwnSpelling("C:\\Windows\\System32");
    case 2:
      return disk_.OwnSpelling("C:\\Windows\\Temp");
    default:
      throw RuntimeError(error::kInvalidProcedureCall);
  }
}

std::unique_ptr<TextFile> SimulatedFiles::OpenTextFile(const std::string& path, OpenMode mode) {
  journal_.Count("open", path);
  if (mode == OpenMode::Input) {
    SimulatedDisk::Node* node = disk_.Find(path);
    if (node == nullptr) {
      const std::string full = disk_.FullPath(path);
      const std::size_t at = full.rfind('\\');
      const bool folderThere =
          at != std::string::npos && disk_.FolderExists(full.substr(0, at + 1));
      throw RuntimeError(folderThere ? error::kFileNotFound : error::kPathNotFound);
    }
    if (node->IsFolder || node->Denied) throw RuntimeError(error::kPathFileAccess);
    return std::make_unique<SimulatedInput>(journal_, node->Content, path);
  }
  SimulatedDisk::Node& node = disk_.FileForWriting(path);
  if (mode == OpenMode::Output) node.Content = std::make_shared<FileContent>();
  return std::make_unique<SimulatedOutput>(journal_, disk_, codePage_, node, path);
}

int SimulatedFiles::FileOperation(int operation, const std::string& from, const std::string& to,
                                  int flags) {
  // The service's own return codes for a failure; source: its documentation (DE_ codes).
  constexpr int kInvalidFiles = 0x7C;
  const JournalEvent event{
      "copy", {{"from", from}, {"to", to}, {"flags", static_cast<std::int64_t>(flags)}}};
  try {
    return journal_.Request(event, false, [&]() -> int {
      if (operation == 2 && disk_.CopyFile(from, to)) return 0;
      throw RuntimeError(kInvalidFiles,
                         "The path in the source or destination or both was invalid.");
    });
  } catch (const RuntimeError& error) {
    if (error.Number == error::kOutOfMemory) throw;  // the service returns no such code
    return error.Number == 0 ? kInvalidFiles : error.Number;
  }
}

}  // namespace talu
