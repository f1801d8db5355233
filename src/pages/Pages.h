#pragma once

#include <memory>
#include <tuple>

namespace talu {

class InstallContext;
class FrmType;
class FrmMode;
class FrmAuthentication;
class FrmLocation;
class FrmSQLNonQuery;
class FrmApplication;

/// The six pages of one installation.
class Pages {
 public:
  explicit Pages(InstallContext& install);
  Pages(const Pages&) = delete;
  Pages& operator=(const Pages&) = delete;
  ~Pages();

  InstallContext& Install;

  /// The page of this type, made at first use.
  template <class PageType>
  PageType& Page();

 private:
  std::tuple<std::unique_ptr<FrmType>, std::unique_ptr<FrmMode>, std::unique_ptr<FrmAuthentication>,
             std::unique_ptr<FrmLocation>, std::unique_ptr<FrmSQLNonQuery>,
             std::unique_ptr<FrmApplication>>
      pages_;
};

}  // namespace talu
