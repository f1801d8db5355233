#include "platform/CodePage.h"

#include <iconv.h>
#include <wctype.h>

#include <cerrno>
#include <clocale>
#include <cstdint>
#include <stdexcept>

#include "runtime/Unicode.h"

namespace talu {
namespace {

constexpr char32_t kReplacement = 0xFFFD;

std::string NameOf(int number) {
  return number == 65001 ? "UTF-8" : "CP" + std::to_string(number);
}

/// One direction between two encodings.
class Conversion {
 public:
  Conversion(const std::string& to, const std::string& from)
      : handle_(iconv_open(to.c_str(), from.c_str())) {}
  ~Conversion() {
    if (IsKnown()) iconv_close(handle_);
  }
  Conversion(const Conversion&) = delete;
  Conversion& operator=(const Conversion&) = delete;

  // iconv_open gives (iconv_t)-1 for an encoding that it does not know.
  bool IsKnown() const { return reinterpret_cast<std::intptr_t>(handle_) != -1; }

  /// Converts all of it; `replace` takes what cannot be converted from the front of the rest and
  /// appends something in its place.
  template <class Replace>
  std::string Convert(std::string_view bytes, const Replace& replace) const {
    std::string result;
    char* in = const_cast<char*>(bytes.data());  // iconv only reads it
    std::size_t left = bytes.size();
    while (left > 0) {
      char buffer[4096];
      char* out = buffer;
      std::size_t room = sizeof buffer;
      const std::size_t done = iconv(handle_, &in, &left, &out, &room);
      result.append(buffer, sizeof buffer - room);
      if (done != static_cast<std::size_t>(-1) || errno == E2BIG) continue;
      const std::size_t taken = replace(std::string_view(in, left), result);
      in += taken;
      left -= taken;
    }
    return result;
  }

 private:
  iconv_t handle_;
};

}  // namespace

struct CodePage::Converter {
  explicit Converter(int number)
      : ToUtf8("UTF-8", NameOf(number)),
        FromUtf8(NameOf(number), "UTF-8"),
        HasControls(number / 10 == 125),
        Replacement(number == 65001 ? kReplacement
                    : number == 932 ? 0x30FB
                                    : '?') {}

  /// Windows gives the bytes that a code page of single bytes leaves open to the control characters
  /// of the same number; what is malformed in others is replaced, with the byte that follows.
  std::size_t Replace(std::string_view rest, std::string& text) const {
    const auto byte = static_cast<unsigned char>(rest.front());
    AppendCharacter(text, HasControls && byte < 0xA0 ? byte : Replacement);
    return HasControls || Replacement == kReplacement || rest.size() == 1 ? 1 : 2;
  }

  Conversion ToUtf8;
  Conversion FromUtf8;
  bool HasControls;
  char32_t Replacement;
};

CodePage::CodePage(int number) : converter_(std::make_unique<Converter>(number)) {
  const auto keep = [](std::string_view rest, std::string&) { return rest.size(); };
  const std::string ascii = "{A}";
  if (!converter_->ToUtf8.IsKnown() || !converter_->FromUtf8.IsKnown() ||
      converter_->ToUtf8.Convert(ascii, keep) != ascii) {
    throw std::runtime_error("this system has no ANSI code page " + std::to_string(number));
  }
}

CodePage::~CodePage() = default;

std::string CodePage::ToText(std::string bytes) const {
  if (IsAscii(bytes)) return bytes;
  const auto replace = [this](std::string_view rest, std::string& text) {
    return converter_->Replace(rest, text);
  };
  return DecodePieces(bytes, [&](std::string_view piece, std::string& text) {
    text += converter_->ToUtf8.Convert(piece, replace);
  });
}

// Windows encodes units of UTF-16: what has two of them is replaced twice.
std::string CodePage::FromText(std::string text) const {
  if (IsAscii(text)) return text;
  const auto replace = [this](std::string_view rest, std::string& bytes) {
    std::size_t taken = 0;
    const char32_t character = NextCharacter(rest, taken);
    const bool control = converter_->HasControls && character >= 0x80 && character < 0xA0;
    bytes.append(character < 0x10000 ? 1 : 2, control ? static_cast<char>(character) : '?');
    return taken;
  };
  return converter_->FromUtf8.Convert(text, replace);
}

std::string UpperCase(std::string_view text) {
  static const locale_t kLetters = [] {
    const locale_t unicode = newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr);
    return unicode != nullptr ? unicode : newlocale(LC_CTYPE_MASK, "C", nullptr);
  }();
  std::string upper;
  upper.reserve(text.size());
  for (std::size_t at = 0; at < text.size();) {
    const auto character = static_cast<wint_t>(NextCharacter(text, at));
    AppendCharacter(upper, static_cast<char32_t>(towupper_l(character, kLetters)));
  }
  return upper;
}

}  // namespace talu
