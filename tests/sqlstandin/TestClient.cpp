#include "TestClient.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdlib>
#include <stdexcept>
#include <thread>

#include "Requests.h"
#include "Text.h"

namespace talu::standin {
namespace {

/// Where the messages go that the library passes on while a call of this thread runs.
thread_local Answer* receiving = nullptr;

int OnMessage(DBPROCESS*, DBINT number, int state, int severity, char* text, char*, char*, int) {
  if (receiving != nullptr) {
    receiving->Messages.push_back(
        {number, static_cast<std::uint8_t>(severity), static_cast<std::uint8_t>(state), text});
  }
  return 0;
}

/// What the library has to say itself shows in the results of its calls.
int OnError(DBPROCESS*, int, int, int, char*, char*) {
  return INT_CANCEL;
}

void StartLibrary() {
  [[maybe_unused]] static const bool started = [] {
    setenv("FREETDSCONF", "/dev/null", 1);
    dbinit();
    dberrhandle(OnError);
    dbmsghandle(OnMessage);
    constexpr int patience = 60;  // seconds
    dbsetlogintime(patience);
    dbsettime(patience);
    return true;
  }();
}

std::string Value(DBPROCESS* process, int column) {
  const BYTE* data = dbdata(process, column);
  if (data == nullptr) return "NULL";
  const int size = dbdatlen(process, column);
  std::string text(static_cast<std::size_t>(size) * 2 + 64, '\0');
  // With -1 the text ends in a NUL and keeps its blanks.
  const int length = dbconvert(process, dbcoltype(process, column), data, size, SYBCHAR,
                               reinterpret_cast<BYTE*>(text.data()), -1);
  text.resize(static_cast<std::size_t>(std::max(length, 0)));
  return text;
}

void Put(std::string& bytes, std::uint64_t value, std::size_t size) {
  for (std::size_t i = 0; i < size; ++i) bytes.push_back(static_cast<char>(value >> (8 * i)));
}

}  // namespace

std::string Answer::Summary() const {
  std::string text;
  const auto add = [&text](const std::string& part) {
    if (!text.empty()) text += ';';
    text += part;
  };
  for (const auto& row : Rows) {
    std::string line;
    for (const auto& value : row) line.append(line.empty() ? "" : ",").append(value);
    add(line);
  }
  for (const SqlMessage& each : Messages) {
    if (each.Severity > 10) add(std::string("!").append(std::to_string(each.Number)));
    if (each.Number == 0) add("i0:" + each.Text);
  }
  return text;
}

TestClient::~TestClient() {
  if (process_ != nullptr) dbclose(process_);
}

Answer TestClient::LogIn(const std::string& user, const std::string& password,
                         const std::string& database, int version) {
  StartLibrary();
  Answer answer;
  receiving = &answer;
  LOGINREC* login = dblogin();
  DBSETLUSER(login, user.c_str());
  DBSETLPWD(login, password.c_str());
  DBSETLCHARSET(login, "UTF-8");
  DBSETLVERSION(login, static_cast<BYTE>(version));
  if (!database.empty()) DBSETLDBNAME(login, database.c_str());
  process_ = dbopen(login, ("127.0.0.1:" + std::to_string(port_)).c_str());
  dbloginfree(login);
  receiving = nullptr;
  if (process_ != nullptr) answer.Database = dbname(process_);
  return answer;
}

Answer TestClient::Batch(const std::string& utf8) {
  Answer answer;
  receiving = &answer;
  dbcmd(process_, utf8.c_str());
  dbsqlexec(process_);
  // A statement that fails does not end the others' results.
  while (dbresults(process_) != NO_MORE_RESULTS && !dbdead(process_)) {
    while (dbnextrow(process_) == REG_ROW) {
      std::vector<std::string>& row = answer.Rows.emplace_back();
      for (int at = 1; at <= dbnumcols(process_); ++at) row.push_back(Value(process_, at));
    }
    if (dbiscount(process_) != 0) answer.Counts.push_back(dbcount(process_));
  }
  receiving = nullptr;
  answer.Database = dbname(process_);
  answer.IsClosed = dbdead(process_) != 0;
  return answer;
}

void TestClient::Cancel(const std::string& utf8, int milliseconds) {
  dbcmd(process_, utf8.c_str());
  dbsqlsend(process_);
  std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
  dbcancel(process_);
}

RawClient::RawClient(std::uint16_t port) : socket_(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  address.sin_port = htons(port);
  if (connect(socket_, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0) {
    throw std::runtime_error("cannot connect");
  }
  const timeval patience{60, 0};
  setsockopt(socket_, SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof patience);
}

RawClient::~RawClient() {
  close(socket_);
}

bool RawClient::Send(std::string_view bytes) const {
  while (!bytes.empty()) {
    const ssize_t size = send(socket_, bytes.data(), bytes.size(), MSG_NOSIGNAL);
    if (size <= 0) return false;  // what it did shows in Receive
    bytes.remove_prefix(static_cast<std::size_t>(size));
  }
  return true;
}

void RawClient::SendMessage(MessageType type, std::string_view payload) const {
  std::string packet{static_cast<char>(type), '\1'};
  const std::size_t size = kPacketHeaderSize + payload.size();
  packet += static_cast<char>(size >> 8);
  packet += static_cast<char>(size & 0xFF);
  Send(packet.append("\0\0\1\0", 4).append(payload));
}

std::string RawClient::Receive() const {
  std::string bytes(4096, '\0');
  const ssize_t size = recv(socket_, bytes.data(), bytes.size(), 0);
  bytes.resize(static_cast<std::size_t>(std::max<ssize_t>(size, 0)));
  return bytes;
}

bool RawClient::LogIn(const std::string& payload) const {
  constexpr char error = '\xAA';
  SendMessage(MessageType::Login, payload);
  const std::string answer = Receive();
  return answer.size() > kPacketHeaderSize && answer[kPacketHeaderSize] != error;
}

std::string LoginPayload(const std::string& user, const std::string& password,
                         const std::string& database) {
  std::string secret = Utf16(password);
  for (char& byte : secret) {
    const auto plain = static_cast<unsigned char>(byte);
    byte = static_cast<char>((((plain << 4) | (plain >> 4)) & 0xFF) ^ 0xA5);
  }
  const std::array<std::string, 9> fields = {
      Utf16("host"), Utf16(user), secret,         Utf16("test"), Utf16("server"), "",
      Utf16("lib"),  "",          Utf16(database)};
  std::string directory;
  std::string data;
  constexpr std::size_t kHeadSize = 94;
  for (const std::string& field : fields) {
    Put(directory, kHeadSize + data.size(), 2);
    Put(directory, field.size() / 2, 2);
    data += field;
  }
  std::string payload;
  Put(payload, kHeadSize + data.size(), 4);
  Put(payload, kTdsVersion74, 4);
  Put(payload, 4096, 4);
  payload.append(24, '\0');
  payload += directory;
  payload.append(kHeadSize - payload.size(), '\0');
  return payload + data;
}

std::string BatchPayload(std::string_view utf8) {
  // The header says that no transaction is open.
  return std::string("\x16\0\0\0\x12\0\0\0\x02\0\0\0\0\0\0\0\0\0\x01\0\0\0", 22) + Utf16(utf8);
}

std::string Utf16(std::string_view utf8) {
  std::string bytes;
  AppendUtf16(bytes, utf8);
  return bytes;
}

}  // namespace talu::standin
