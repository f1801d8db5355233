#pragma once

#include <memory>
#include <string>

#include "platform/WindowSystem.h"
#include "platform/win32/Windows.h"

namespace talu {

/// A picture loaded by Windows' own loader (JPEG, GIF, bitmap, icon, metafile).
class PictureFile : public Picture {
 public:
  /// Raises 53 when the file is missing, 481 when it is not a picture, and what opening it raises.
  explicit PictureFile(const std::string& path);

  /// Draws the picture over the whole of `area`, scaled just enough to cover it and cut evenly on
  /// both sides.
  void Cover(HDC target, const RECT& area) const;

 private:
  struct Release {
    void operator()(IUnknown* object) const { object->Release(); }
  };

  std::unique_ptr<IPicture, Release> picture_;
};

}  // namespace talu
