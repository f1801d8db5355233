#include <gtest/gtest.h>

#include <random>

#include "Packets.h"
#include "Requests.h"
#include "TestClient.h"
#include "Text.h"

namespace talu::standin {
namespace {

std::string Packet(int type, int status, std::string_view body) {
  std::string packet{static_cast<char>(type), static_cast<char>(status)};
  const std::size_t size = body.size() + kPacketHeaderSize;
  packet += static_cast<char>(size >> 8);
  packet += static_cast<char>(size & 0xFF);
  return packet.append(4, '\0').append(body);
}

TEST(MessageReader, JoinsPacketsWhereverTheBytesAreCut) {
  const std::string bytes = Packet(1, 0, "ab") + Packet(1, 0, "") + Packet(1, 1, "cd") +
                            Packet(18, 9, "xyz") + Packet(1, 3, "ignored") + Packet(6, 1, "");
  for (std::size_t cut = 0; cut <= bytes.size(); ++cut) {
    MessageReader reader(100);
    reader.Feed(std::string_view(bytes).substr(0, cut));
    reader.Feed(std::string_view(bytes).substr(cut));
    EXPECT_TRUE(reader.HasAttention());
    EXPECT_EQ(reader.Next()->Payload, "abcd");
    const auto second = reader.Next();
    EXPECT_EQ(second->Payload, "xyz");
    EXPECT_TRUE(second->ResetsSession);
    EXPECT_EQ(reader.Next()->Type, MessageType::Attention);
    EXPECT_FALSE(reader.HasMessage());
  }
}

TEST(MessageReader, AnAttentionGivesUpTheMessageThatWasBeingSent) {
  MessageReader reader(100);
  reader.Feed(Packet(1, 0, "half") + Packet(6, 1, "") + Packet(1, 1, "whole"));
  EXPECT_EQ(reader.Next()->Type, MessageType::Attention);
  EXPECT_EQ(reader.Next()->Payload, "whole");
}

TEST(MessageReader, RefusesWhatIsNoPacket) {
  const std::string tooShort("\x01\x01\x00\x07\x00\x00\x00\x00", 8);
  for (const std::string& bytes :
       {std::string("GET / HTTP/1.1\r\n"), tooShort, Packet(4, 1, ""), Packet(99, 1, ""),
        Packet(1, 0, "a") + Packet(3, 1, "b"),
        Packet(1, 0, std::string(60, 'x')) + Packet(1, 0, std::string(60, 'x'))}) {
    MessageReader reader(100);
    EXPECT_THROW(reader.Feed(bytes), ProtocolError) << bytes;
  }
}

TEST(Login, IsReadWithItsPassword) {
  const LoginRequest login =
      ParseLogin(LoginPayload("sa", "Gr\xC3\xBC\xC3\x9F'; \xE2\x82\xAC", "Sales"));
  EXPECT_EQ(login.User, "sa");
  EXPECT_EQ(login.Password, "Gr\xC3\xBC\xC3\x9F'; \xE2\x82\xAC");
  EXPECT_EQ(login.Database, "Sales");
  EXPECT_EQ(login.Version, kTdsVersion74);
}

/// Every parser gets every beginning of a good message, and thousands of spoilt ones: each ends
/// with a result or a ProtocolError, and the sanitizers see no byte read outside.
TEST(Requests, SurviveCutAndSpoiltMessages) {
  const std::string batch = BatchPayload("SEL");
  const std::string preLogin = AnswerPreLogin("\xFF");
  const auto tryAll = [](const std::string& bytes) {
    const std::vector<std::function<void()>> parsers = {
        [&] { ParseLogin(bytes); }, [&] { ParseBatch(bytes, kTdsVersion72); },
        [&] { ParseProcedureName(bytes, kTdsVersion72); },
        [&] { ParseTransaction(bytes, kTdsVersion72); }, [&] { AnswerPreLogin(bytes); }};
    for (const auto& parse : parsers) {
      try {
        parse();
      } catch (const ProtocolError&) {
      }
    }
  };
  std::mt19937 random(1);
  for (const std::string& good : {LoginPayload("sa", "pw", "db"), batch, preLogin}) {
    for (std::size_t size = 0; size < good.size(); ++size) tryAll(good.substr(0, size));
    for (int i = 0; i < 3000; ++i) {
      std::string spoilt = good;
      for (int n = 0; n < 3; ++n) spoilt[random() % spoilt.size()] = static_cast<char>(random());
      tryAll(spoilt);
    }
  }
  EXPECT_THROW(ParseLogin(LoginPayload(std::string(129, 'u'), "")), ProtocolError);
}

TEST(Text, KeepsWhatClientsSend) {
  for (const std::string& utf16 :
       {std::string("a\0\0\0b\0", 6), std::string("\x00\xD8x\0", 4),
        std::string("\x3D\xD8\x00\xDE", 4), std::string("\xFC\x00\xAC\x20", 4)}) {
    std::string back;
    AppendUtf16(back, Utf8FromUtf16(utf16));
    EXPECT_EQ(back, utf16);
  }
  EXPECT_TRUE(SameName("M\xC3\x9CLLER", "m\xC3\xBCller"));
}

}  // namespace
}  // namespace talu::standin
