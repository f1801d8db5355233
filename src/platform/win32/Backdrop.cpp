#include "platform/win32/Backdrop.h"

namespace talu {

std::unique_ptr<Canvas> MakeBackdrop(int width, int height, const PictureFile* picture,
                                     const Appearance& appearance) {
  auto backdrop = std::make_unique<Canvas>(width, height);
  const Palette& colours = appearance.Colours();
  backdrop->Fill(colours.Page);
  if (picture != nullptr) picture->Cover(backdrop->Dc(), {0, 0, width, height});

  const int inset = appearance.Pixels(kCardInset);
  const RECT card = {inset, inset, width - inset, height - inset};
  const double radius = appearance.Scaled(6);
  backdrop->FillRound(card, radius, colours.Card, colours.CardOpacity);
  backdrop->FrameRound(card, radius, 1, colours.CardEdge);
  return backdrop;
}

}  // namespace talu
