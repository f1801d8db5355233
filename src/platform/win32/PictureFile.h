#pragma once

#include <memory>
#include <string>

#include "platform/WindowSystem.h"
#include "platform/win32/Windows.h"

namespace talu {

/// A picture that Windows' own loader has read (JPEG, GIF, bitmap, icon, metafile).
class PictureFile : public Picture {
 public:
  /// Raises 53 when the file is missing, 481 when it is no picture.
  explicit PictureFile(const std::string& path);

  /// Draws the picture over the whole of `area`, as large as it must be to cover it and cut evenly
  /// on both sides.
  void Cover(HDC target, const RECT& area) const;

 private:
  struct Release {
    void operator()(IUnknown* object) const { object->Release(); }
  };

  std::unique_ptr<IPicture, Release> picture_;
};

}  // namespace talu
