#include "pages/Pages.h"

#include "pages/FrmApplication.h"
#include "pages/FrmAuthentication.h"
#include "pages/FrmLocation.h"
#include "pages/FrmMode.h"
#include "pages/FrmSQLNonQuery.h"
#include "pages/FrmType.h"

namespace talu {

Pages::Pages(InstallContext& install) : Install(install) {}

Pages::~Pages() = default;

template <class PageType>
PageType& Pages::Page() {
  auto& page = std::get<std::unique_ptr<PageType>>(pages_);
  if (!page) page = std::make_unique<PageType>(*this);
  return *page;
}

template FrmType& Pages::Page<FrmType>();
template FrmMode& Pages::Page<FrmMode>();
template FrmAuthentication& Pages::Page<FrmAuthentication>();
template FrmLocation& Pages::Page<FrmLocation>();
template FrmSQLNonQuery& Pages::Page<FrmSQLNonQuery>();
template FrmApplication& Pages::Page<FrmApplication>();

}  // namespace talu
