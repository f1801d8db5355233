#include "database/NameList.h"

#include <algorithm>
#include <cstring>

#include "runtime/TextFunctions.h"

namespace talu {
namespace {

constexpr std::size_t kPiece = sizeof(std::uint32_t);

}  // namespace

std::uint32_t NameList::PieceAt(std::string_view text, std::size_t at) {
  std::uint32_t piece = 0;
  std::memcpy(&piece, text.data() + at, kPiece);
  return piece;
}

bool NameList::Contains(std::string_view part) const {
  if (part.size() < kPiece) return talu::Contains(text_, part);
  // Only the places of the part's rarest piece can be those of the part.
  const std::vector<std::uint32_t>* rarest = nullptr;
  std::size_t offset = 0;
  for (std::size_t at = 0; at + kPiece <= part.size(); ++at) {
    const auto found = places_.find(PieceAt(part, at));
    if (found == places_.end()) return false;
    if (rarest == nullptr || found->second.size() < rarest->size()) {
      rarest = &found->second;
      offset = at;
    }
  }
  return rarest != nullptr && std::ranges::any_of(*rarest, [&](std::uint32_t place) {
           return place >= offset && text_.compare(place - offset, part.size(), part) == 0;
         });
}

void NameList::Append(std::string_view name) {
  text_.append(1, ',').append(name);
  for (; indexed_ + kPiece <= text_.size(); ++indexed_) {
    places_[PieceAt(text_, indexed_)].push_back(static_cast<std::uint32_t>(indexed_));
  }
}

}  // namespace talu
