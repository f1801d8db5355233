#pragma once

#include <memory>

#include "platform/win32/Appearance.h"
#include "platform/win32/Canvas.h"
#include "platform/win32/PictureFile.h"

namespace talu {

/// What a page shows behind its controls: the picture (a plain light background for nullptr) and,
/// over it, the card that keeps the texts readable. Sizes in pixels.
std::unique_ptr<Canvas> MakeBackdrop(int width, int height, const PictureFile* picture,
                                     const Appearance& appearance);

}  // namespace talu
