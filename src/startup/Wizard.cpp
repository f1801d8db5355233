#include "startup/Wizard.h"

#include "database/MdlDataBaseBackup.h"
#include "pages/FrmApplication.h"
#include "pages/FrmAuthentication.h"
#include "pages/FrmLocation.h"
#include "pages/FrmMode.h"
#include "pages/FrmSQLNonQuery.h"
#include "pages/FrmType.h"

namespace talu {

Wizard::Wizard(const talu::Machine& machine) : Machine(machine), TextFiles(machine.Files) {}

Wizard::~Wizard() = default;

template <class PageType>
PageType& Wizard::Page() {
  auto& page = std::get<std::unique_ptr<PageType>>(pages_);
  if (!page) page = std::make_unique<PageType>(*this);
  return *page;
}

template FrmType& Wizard::Page<FrmType>();
template FrmMode& Wizard::Page<FrmMode>();
template FrmAuthentication& Wizard::Page<FrmAuthentication>();
template FrmLocation& Wizard::Page<FrmLocation>();
template FrmSQLNonQuery& Wizard::Page<FrmSQLNonQuery>();
template FrmApplication& Wizard::Page<FrmApplication>();

std::string Wizard::ServerConnectionString() const {
  return "driver={SQL Server};server=" + State.ServerName + ";uid=" + State.SqlUser +
         ";pwd=" + State.SqlPassword + ";database=Master";
}

MdlDataBaseBackup& Wizard::DataBaseBackup() {
  if (!dataBaseBackup_) dataBaseBackup_ = std::make_unique<MdlDataBaseBackup>(*this);
  return *dataBaseBackup_;
}

}  // namespace talu
