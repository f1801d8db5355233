#include "platform/simulated/Journal.h"

#include <array>

namespace talu {
namespace {

// Code page 1252, 0x80 to 0x9F, as Unicode. Source: the code page's published table (bestfit1252);
// the five places that it leaves open map to the control characters of the same number.
constexpr std::array<char32_t, 32> kHigh = {
    0x20AC, 0x81,   0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x8D,   0x017D, 0x8F,   0x90,   0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x9D,   0x017E, 0x0178};

char32_t UnicodeOf(unsigned char character) {
  return character >= 0x80 && character < 0xA0 ? kHigh[character - 0x80] : character;
}

void AppendUtf8(std::string& text, char32_t code) {
  if (code < 0x80) {
    text += static_cast<char>(code);
  } else if (code < 0x800) {
    text += static_cast<char>(0xC0 | (code >> 6));
    text += static_cast<char>(0x80 | (code & 0x3F));
  } else {
    text += static_cast<char>(0xE0 | (code >> 12));
    text += static_cast<char>(0x80 | ((code >> 6) & 0x3F));
    text += static_cast<char>(0x80 | (code & 0x3F));
  }
}

void AppendQuoted(std::string& json, const std::string& text) {
  constexpr char kHex[] = "0123456789abcdef";
  json += '"';
  for (const char character : text) {
    const auto byte = static_cast<unsigned char>(character);
    if (character == '"' || character == '\\') {
      json += '\\';
      json += character;
    } else if (byte < 0x20) {
      json += "\\u00";
      json += kHex[byte >> 4];
      json += kHex[byte & 15];
    } else {
      AppendUtf8(json, UnicodeOf(byte));
    }
  }
  json += '"';
}

}  // namespace

std::string JournalEvent::Text(const std::string& field) const {
  for (const auto& [name, value] : Fields) {
    if (name != field) continue;
    if (const auto* text = std::get_if<std::string>(&value)) return *text;
    if (const auto* number = std::get_if<std::int64_t>(&value)) return std::to_string(*number);
    return std::get<bool>(value) ? "true" : "false";
  }
  return "";
}

std::string JournalEvent::ToJson() const {
  std::string json = "{\"event\":\"" + Kind + "\"";
  for (const auto& [name, value] : Fields) {
    json += ",\"" + name + "\":";
    if (const auto* text = std::get_if<std::string>(&value)) {
      AppendQuoted(json, *text);
    } else if (const auto* number = std::get_if<std::int64_t>(&value)) {
      json += std::to_string(*number);
    } else {
      json += std::get<bool>(value) ? "true" : "false";
    }
  }
  if (Error) {
    json += ",\"ok\":false,\"error\":{\"number\":" + std::to_string(Error->Number) +
            ",\"description\":";
    AppendQuoted(json, Error->Description);
    json += "}";
  }
  return json + "}";
}

void Journal::Count(const char* request) {
  ++requests_;
  if (OnRequest) OnRequest(requests_, request);
  if (requests_ != failAt_) return;
  failedRequest_ = request;
  throw RuntimeError(*failure_);
}

void Journal::FailRequest(int request, const RuntimeError& error) {
  failAt_ = request;
  failure_ = error;
}

std::vector<std::string> Journal::Texts(const std::string& kind, const std::string& field) const {
  std::vector<std::string> texts;
  for (const JournalEvent& event : events_) {
    if (event.Kind == kind) texts.push_back(event.Text(field));
  }
  return texts;
}

std::string Utf8FromAnsi(const std::string& text) {
  std::string utf8;
  for (const char character : text)
    AppendUtf8(utf8, UnicodeOf(static_cast<unsigned char>(character)));
  return utf8;
}

std::string AnsiFromUtf8(const std::string& text) {
  std::string ansi;
  for (std::size_t at = 0; at < text.size();) {
    const auto lead = static_cast<unsigned char>(text[at]);
    const std::size_t length = lead < 0x80 ? 1 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
    char found = '?';
    if (length == 1) found = text[at];
    for (int byte = 0x80; byte < 0x100 && length > 1; ++byte) {
      std::string candidate;
      AppendUtf8(candidate, UnicodeOf(static_cast<unsigned char>(byte)));
      if (text.compare(at, length, candidate) == 0) found = static_cast<char>(byte);
    }
    ansi += found;
    at += length;
  }
  return ansi;
}

}  // namespace talu
