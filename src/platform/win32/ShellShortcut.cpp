#include "platform/win32/ShellShortcut.h"

#include <utility>

#include "platform/win32/Text.h"
#include "runtime/RuntimeError.h"

namespace talu {
namespace {

void Check(HRESULT result) {
  if (FAILED(result)) throw RuntimeError(result, SystemMessage(result), "ShellShortcut");
}

}  // namespace

ShellShortcut::ShellShortcut(std::string path) : path_(std::move(path)) {
  void* object = nullptr;
  if (FAILED(CoCreateInstance(CLSID_ShellLink, nullptr, CLSCTX_INPROC_SERVER, IID_IShellLinkW,
                              &object))) {
    throw RuntimeError(error::kCannotCreateObject);
  }
  link_.reset(static_cast<IShellLinkW*>(object));
}

void ShellShortcut::TargetPath(const std::string& path) {
  Check(link_->SetPath(Wide(path).c_str()));
}

void ShellShortcut::WorkingDirectory(const std::string& path) {
  Check(link_->SetWorkingDirectory(Wide(path).c_str()));
}

void ShellShortcut::IconLocation(const std::string& path) {
  Check(link_->SetIconLocation(Wide(path).c_str(), 0));
}

void ShellShortcut::Save() {
  void* object = nullptr;
  Check(link_->QueryInterface(IID_IPersistFile, &object));
  const std::unique_ptr<IPersistFile, Release> file(static_cast<IPersistFile*>(object));
  Check(file->Save(Wide(path_).c_str(), TRUE));
}

}  // namespace talu
