#include "platform/win32/PictureFile.h"

#include "platform/win32/Text.h"
#include "platform/win32/Win32TextFile.h"
#include "runtime/RuntimeError.h"

namespace talu {

PictureFile::PictureFile(const std::string& path) {
  const DWORD attributes = GetFileAttributesW(Wide(path).c_str());
  if (attributes == INVALID_FILE_ATTRIBUTES || (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0) {
    throw RuntimeError(error::kFileNotFound);
  }
  // By its bytes: the loader of paths takes them for addresses, in which "#" and "%" mean
  // something.
  Win32TextFile file(path, OpenMode::Input);
  const auto size = static_cast<std::size_t>(file.Size());
  if (size == 0) throw RuntimeError(error::kInvalidPicture);
  const HGLOBAL memory = GlobalAlloc(GMEM_MOVEABLE, size);
  if (memory == nullptr) throw RuntimeError(error::kOutOfMemory);
  IStream* stream = nullptr;
  if (FAILED(CreateStreamOnHGlobal(memory, TRUE, &stream))) {
    GlobalFree(memory);
    throw RuntimeError(error::kOutOfMemory);
  }
  const std::unique_ptr<IStream, Release> held(stream);
  const std::size_t got = file.Read(static_cast<char*>(GlobalLock(memory)), size);
  GlobalUnlock(memory);
  if (got != size) throw RuntimeError(error::kInvalidPicture);
  void* object = nullptr;
  if (FAILED(OleLoadPicture(stream, static_cast<LONG>(size), FALSE, IID_IPicture, &object)) ||
      object == nullptr) {
    throw RuntimeError(error::kInvalidPicture);
  }
  picture_.reset(static_cast<IPicture*>(object));
  OLE_XSIZE_HIMETRIC width = 0;
  if (FAILED(picture_->get_Width(&width)) || width <= 0) throw RuntimeError(error::kInvalidPicture);
}

void PictureFile::Cover(HDC target, const RECT& area) const {
  OLE_XSIZE_HIMETRIC width = 0;
  OLE_YSIZE_HIMETRIC height = 0;
  picture_->get_Width(&width);
  picture_->get_Height(&height);
  const int areaWidth = area.right - area.left;
  const int areaHeight = area.bottom - area.top;
  int drawnWidth = areaWidth;
  int drawnHeight = MulDiv(areaWidth, height, width);
  if (drawnHeight < areaHeight) {
    drawnHeight = areaHeight;
    drawnWidth = MulDiv(areaHeight, width, height);
  }
  SetStretchBltMode(target, HALFTONE);
  SetBrushOrgEx(target, 0, 0, nullptr);
  // The rows of a picture are in upward order.
  picture_->Render(target, area.left + (areaWidth - drawnWidth) / 2,
                   area.top + (areaHeight - drawnHeight) / 2, drawnWidth, drawnHeight, 0, height,
                   width, -height, nullptr);
}

}  // namespace talu
