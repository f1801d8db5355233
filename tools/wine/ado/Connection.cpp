#include "Connection.h"

#include "Errors.h"

namespace talu::wine {

namespace {

constexpr wchar_t kClassName[] = L"ADODB.Connection";

}  // namespace

const IID kConnectionIdentity = {
    0x6b0a3c52, 0x8f1d, 0x4c6e, {0x9a, 0x57, 0x21, 0xd4, 0x7e, 0x0c, 0x93, 0xb8}};

Connection::Connection()
    : DispatchObject({
          {L"ConnectionString",
           DISPATCH_PROPERTYGET,
           {},
           [this](const Arguments&, VARIANT& result) { result = TextResult(connectionString_); }},
          {L"ConnectionString",
           DISPATCH_PROPERTYPUT,
           {L"Value"},
           [this](const Arguments& arguments, VARIANT&) { PutConnectionString(arguments); }},
          {L"Open",
           DISPATCH_METHOD,
           {L"ConnectionString", L"UserID", L"Password", L"Options"},
           [this](const Arguments& arguments, VARIANT&) { Open(arguments); }},
          {L"Close", DISPATCH_METHOD, {}, [this](const Arguments&, VARIANT&) { Close(); }},
          {L"State",
           DISPATCH_PROPERTYGET,
           {},
           [this](const Arguments&, VARIANT& result) { result = NumberResult(session_ ? 1 : 0); }},
      }) {}

STDMETHODIMP Connection::QueryInterface(REFIID id, void** object) {
  if (object == nullptr || !IsEqualIID(id, kConnectionIdentity)) {
    return DispatchObject::QueryInterface(id, object);
  }
  *object = this;
  AddRef();
  return S_OK;
}

void Connection::RefuseWhenOpen() const {
  if (session_) throw NotAllowedWhenOpen(kClassName);
}

void Connection::PutConnectionString(const Arguments& arguments) {
  RefuseWhenOpen();
  connectionString_ = arguments.Text(0);
}

void Connection::Open(const Arguments& arguments) {
  RefuseWhenOpen();
  if (arguments.Number(3, -1) != -1) throw FeatureNotAvailable(kClassName);
  if (const std::wstring given = arguments.Text(0); !given.empty()) connectionString_ = given;
  std::wstring text = connectionString_;
  if (const std::wstring user = arguments.Text(1); !user.empty()) text += L";UID=" + user;
  if (const std::wstring word = arguments.Text(2); !word.empty()) text += L";PWD=" + word;
  session_ = std::make_shared<OdbcSession>(text);
}

void Connection::Close() {
  if (!session_) throw NotAllowedWhenClosed(kClassName);
  // Commands may still hold the session: it ends for them too.
  session_->Close();
  session_.reset();
}

}  // namespace talu::wine
