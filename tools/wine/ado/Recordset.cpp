#include "Recordset.h"

#include <utility>

#include "Errors.h"

namespace talu::wine {

Recordset::Recordset(std::shared_ptr<OdbcSession> session)
    : DispatchObject({
          {L"State",
           DISPATCH_PROPERTYGET,
           {},
           [this](const Arguments&, VARIANT& result) { result = NumberResult(IsOpen() ? 1 : 0); }},
          {L"Close", DISPATCH_METHOD, {}, [this](const Arguments&, VARIANT&) { Close(); }},
      }),
      session_(std::move(session)) {}

Recordset::~Recordset() {
  if (session_) session_->Discard();
}

void Recordset::Close() {
  if (!IsOpen()) throw NotAllowedWhenClosed(L"ADODB.Recordset");
  std::exchange(session_, nullptr)->Discard();
}

}  // namespace talu::wine
