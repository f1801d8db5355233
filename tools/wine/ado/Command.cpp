#include "Command.h"

#include <cstdlib>

#include "Connection.h"
#include "Errors.h"
#include "Recordset.h"

namespace talu::wine {

namespace {

constexpr wchar_t kClassName[] = L"ADODB.Command";

long DefaultTimeout() {
  const char* const given = std::getenv("WINEADO_COMMAND_TIMEOUT");
  return given != nullptr ? std::atol(given) : 30;
}

}  // namespace

Command::Command()
    : DispatchObject({
          {L"ActiveConnection",
           DISPATCH_PROPERTYPUTREF,
           {L"Value"},
           [this](const Arguments& arguments, VARIANT&) { PutActiveConnection(arguments); }},
          {L"CommandTimeout",
           DISPATCH_PROPERTYGET,
           {},
           [this](const Arguments&, VARIANT& result) { result = NumberResult(timeout_); }},
          {L"CommandTimeout",
           DISPATCH_PROPERTYPUT,
           {L"Value"},
           [this](const Arguments& arguments, VARIANT&) { PutTimeout(arguments); }},
          {L"CommandText",
           DISPATCH_PROPERTYGET,
           {},
           [this](const Arguments&, VARIANT& result) { result = TextResult(text_); }},
          {L"CommandText",
           DISPATCH_PROPERTYPUT,
           {L"Value"},
           [this](const Arguments& arguments, VARIANT&) { text_ = arguments.Text(0); }},
          {L"Execute",
           DISPATCH_METHOD,
           {L"RecordsAffected", L"Parameters", L"Options"},
           [this](const Arguments& arguments, VARIANT& result) { result = Execute(arguments); }},
      }),
      timeout_(DefaultTimeout()) {}

void Command::PutActiveConnection(const Arguments& arguments) {
  Connection* connection = nullptr;
  IUnknown* object = arguments.Object(0);
  if (object == nullptr ||
      FAILED(object->QueryInterface(kConnectionIdentity, reinterpret_cast<void**>(&connection)))) {
    throw InvalidArgument(kClassName);
  }
  const std::shared_ptr<OdbcSession> session = connection->Session();
  connection->Release();
  if (!session) throw InvalidConnection(kClassName);
  session_ = session;
}

void Command::PutTimeout(const Arguments& arguments) {
  const long seconds = arguments.Number(0);
  if (seconds < 0) throw InvalidArgument(kClassName);
  timeout_ = seconds;
}

VARIANT Command::Execute(const Arguments& arguments) const {
  // Automation looks at the arguments before the object does at its state.
  const bool wantsMore = arguments.Has(0) || arguments.Has(1) || arguments.Number(2, -1) != -1;
  if (wantsMore) throw FeatureNotAvailable(kClassName);
  if (!session_ || !session_->IsOpen()) throw InvalidConnection(kClassName);
  if (text_.empty()) throw NoCommandText(kClassName);
  const bool hasRows = session_->Execute(text_, timeout_);
  return ObjectResult(new Recordset(hasRows ? session_ : nullptr));
}

}  // namespace talu::wine
