#include "RandomPack.h"

#include <array>
#include <fstream>
#include <random>
#include <span>
#include <string_view>
#include <utility>

#include "runtime/TextFunctions.h"

namespace talu::packcheck {
namespace {

using Texts = std::vector<std::string>;

/// What authors write, and what a build or a backup may misread. In all fragments $D stands for a
/// database of the pack, $L for a login, $N for a name that is new.
constexpr std::array kFragments = {
    "PRINT 'CREATE DATABASE is done, see FILENAME'",
    "PRINT 'a CREATE LOGIN may follow'",
    "-- CREATE DATABASE and FILENAME are explained in the manual",
    "/* CREATE LOGIN\ncomes later */\nPRINT 'x'",
    "CREATE PROCEDURE dbo.Make$N @n sysname AS\nEXEC (N'CREATE DATABASE [' + @n + N'] ON "
    "(FILENAME = N''C:\\D\\d.mdf'')')",
    "DECLARE @n sysname\nEXEC (N'CREATE LOGIN [' + @n + N'] WITH PASSWORD = N''x''')",
    "EXEC (N'CREATE DATABASE $N')",
    "EXEC sp_executesql N'create database $N'",
    "CREATE USER $L FOR LOGIN $L",
    "CREATE USER $N FOR LOGIN $N",
    "CREATE USER $N WITHOUT LOGIN",
    "IF DB_ID(N'$D') IS NULL\nCREATE DATABASE $D ON (FILENAME = N'C:\\D\\$D.mdf')",
    "IF DB_ID(N'$N') IS NULL CREATE DATABASE $N ON (FILENAME = N'C:\\D\\$N.mdf')",
    "IF NOT EXISTS (SELECT 1 FROM sys.server_principals WHERE name = N'$L')\nCREATE LOGIN $L FROM "
    "WINDOWS",
    "CREATE DATABASE $N",
    "CREATE DATABASE $N ON (FILENAME = N'C:\\D\\$N.mdf')",
    "CREATE DATABASE [$N] ON (FILENAME = N'C:\\D\\$N.mdf') LOG ON (FILENAME = N'C:\\L\\$N.ldf')",
    "CREATE DATABASE [$N-1] ON (FILENAME = N'C:\\D\\$N.mdf')",
    "CREATE DATABASE 2$N ON (FILENAME = N'C:\\D\\$N.mdf')",
    "CREATE DATABASE $N\nON (FILENAME = N'C:\\D\\$N.mdf')",
    "CREATE DATABASE $N ON (FILENAME = N'C:\\D\\$N.MDF')",
    "CREATE DATABASE $N ON (FILENAME = N'$N.mdf')",
    "create database $N on (filename = N'C:\\D\\$N.mdf')",
    "CREATE DATABASE $D ON (FILENAME = N'C:\\D\\twice.mdf')",
    "CREATE DATABASE $N ON (FILENAME = N'C:\\E\\same.mdf')",
    "CREATE DATABASE $N ON (FILENAME = N'C:\\F\\same.mdf')",
    "CREATE LOGIN $N WITH PASSWORD = N'x'",
    "CREATE LOGIN [$N] WITH PASSWORD = N'x'",
    "CREATE LOGIN [A\\$N] FROM WINDOWS",
    "CREATE LOGIN [$N-1] FROM WINDOWS",
    "CREATE LOGIN $N\nWITH PASSWORD = N'x'",
    "CREATE LOGIN $N",
    "create login $N with password = 'x'",
    "EXEC sp_addlogin N'$N', N'x'",
    "DROP DATABASE $D",
    "DROP DATABASE $N",
    "DROP LOGIN $L",
    "DROP DATABASE IF EXISTS $N",
    "ALTER DATABASE $D SET RECOVERY SIMPLE",
    "ALTER DATABASE [$D] SET RECOVERY SIMPLE",
    "ALTER DATABASE $D\nSET RECOVERY SIMPLE",
    "ALTER DATABASE CURRENT SET RECOVERY SIMPLE",
    "ALTER LOGIN $L DISABLE",
    "USE $D",
    "USE [$D]",
    "USE $D;",
    "use $D",
    "USE $D\nPRINT 'x'",
    "USE $N",
    "USE master",
    "USE [master]",
    "PRINT 'BECAUSE of'",
    "-- USEful words",
    "PRINT 'two\nGO\nlines'",
    "/* GO\nGO\n*/",
    "PRINT 'it is --taluGO'",
    "-- see --taluLineByLine",
    "PRINT 1\nGO 5",
    "PRINT 1\nGO;",
    ":setvar Name Value\nPRINT '$(Name)'",
    "PRINT $(Name)",
    "CREATE DATABASE $N ON (FILENAME = N'C:\\D\\$N.mdf')\nUSE $N",
    "CREATE VIEW dbo.V$N AS SELECT 1 AS a",
    "PRINT 'x'\nCREATE VIEW dbo.V$N AS SELECT 1 AS a",
    "CREATE TABLE dbo.T$N (a INT NOT NULL)",
    "SELECT 1",
    "SET NOCOUNT ON",
    "PRINT '\xE4\xF6\xFC'",
    "GRANT CREATE DATABASE TO $L",
    "DROP TABLE dbo.Item",
    "INSERT INTO dbo.$N (Id) VALUES (1)",
    "ALTER TABLE dbo.Item ADD FOREIGN KEY (Id) REFERENCES dbo.$N (Id)",
    "GRANT SELECT TO $N",
    "CREATE USER $N WITHOUT LOGIN\nDENY SELECT TO $N",
    "CREATE ROLE $N\nEXEC sp_addrolemember N'$N', N'$L'",
    "ALTER ROLE db_owner ADD MEMBER $L",
    "BACKUP DATABASE $D TO DISK = N'C:\\D\\$D.bak'",
};

/// What stands in place of a value, or around it; $V is the value.
constexpr std::array kValues = {
    "$V ",    " $V", "$V.",      "$V\t",      "$V,x",   "",     " ",    "CON",    "NUL.txt",
    "$V\\x",  "A B", "AppT",     "{",         "}",      "a:b",  "$V$V", "\\$V",   "TA",
    "x,y",    ".",   "..",       "\xE4",      "lpt1",   "$V;",  "'$V",  "[$V]",   "-$V",
    "$V.sql", "App", "AppTitle", "SystemDSN", "x\x01y", "sa,,", "a?b",  "$V.mdf", "A  B",
};

/// A pack as an author thinks of it: blocks of values, and scripts of batches.
struct Draft {
  std::vector<std::pair<std::string, Texts>> Blocks;
  struct Script {
    std::string Path;
    Texts Batches;
    bool LineByLine = false;
  };
  std::vector<Script> Scripts;
};

class Maker {
 public:
  Maker(RandomPack& pack, std::uint64_t seed) : pack_(pack), chance_(seed) {}

  void Make() {
    MakeDatabases();
    MakeConfiguration();
    const std::size_t changes = Below(4);
    for (std::size_t i = 0; i < changes; ++i) ChangeDraft();
    Write();
    if (Below(6) == 0) ChangeFile();
  }

 private:
  std::size_t Below(std::size_t count) { return chance_() % count; }
  bool Often() { return Below(3) != 0; }
  template <class List>
  auto& OneOf(List& list) {
    return list[Below(list.size())];
  }
  std::string NewName() { return "New" + std::to_string(++names_); }

  std::string Create(const std::string& name) {
    const std::string folder = Below(2) == 0 ? "C:\\Data\\" : "D:\\SQL Data\\";
    const std::string shown = Below(3) == 0 ? "[" + name + "]" : name;
    const char* space = Below(2) == 0 ? " " : "\n";
    return "CREATE DATABASE " + shown + " ON PRIMARY" + space + "(NAME = N'" + name +
           "', FILENAME = N'" + folder + name + ".mdf')" + space + "LOG ON (NAME = N'" + name +
           "_log', FILENAME = N'" + folder + name + "_log.ldf')";
  }

  void MakeDatabases() {
    const std::size_t databases = 1 + Below(3);
    const std::size_t logins = Below(3);
    for (const char* type : {"Fresh", "Demo"}) {
      Draft::Script script{std::string("SQLScript/") + type + "/Create.sql", {}};
      Draft::Script rows{std::string("SQLScript/") + type + "/Rows.sql", {}, true};
      for (std::size_t i = 0; i < databases; ++i) {
        const std::string name = "Shop_" + std::to_string(i);
        if (type[0] == 'F') pack_.Databases.push_back(name);
        script.Batches.push_back(Create(name));
      }
      for (std::size_t i = 0; i < logins; ++i) {
        const std::string name = "Clerk" + std::to_string(i);
        if (type[0] == 'F') pack_.Logins.push_back(name);
        script.Batches.push_back("CREATE LOGIN " + name + " WITH PASSWORD = N'Key-" + name + "'");
      }
      for (const std::string& name : pack_.Databases) {
        script.Batches.push_back("USE " + name);
        script.Batches.push_back("CREATE TABLE dbo.Item (Id INT NOT NULL)");
        rows.Batches.push_back("USE " + name);
        rows.Batches.emplace_back("INSERT INTO dbo.Item (Id) VALUES (1)");
      }
      draft_.Scripts.push_back(std::move(script));
      if (Often()) draft_.Scripts.push_back(std::move(rows));
    }
    Draft::Script upgrade{"SQLScript/Upgrade/Change.sql", {}};
    for (const std::string& name : pack_.Databases) {
      upgrade.Batches.push_back("USE " + name);
      upgrade.Batches.emplace_back("ALTER TABLE dbo.Item ADD Pages INT NULL");
    }
    draft_.Scripts.push_back(std::move(upgrade));
  }

  void MakeConfiguration() {
    auto& blocks = draft_.Blocks;
    blocks = {{"AppTitle", {"Shop"}}, {"AppFolder", {"Shop"}}, {"DBFolder", {"Data"}}};
    for (const char* type : {"Fresh", "Demo", "Upgrade"}) {
      Texts names;
      for (const auto& script : draft_.Scripts) {
        if (Contains(script.Path, "/" + std::string(type) + "/")) {
          names.push_back(script.Path.substr(script.Path.rfind('/') + 1));
        }
      }
      blocks.push_back({std::string(type) + "DBSript", names});
    }
    blocks.push_back({"DBSript", {"Main", "Rows"}});
    pack_.Files["Application/Shop.exe"] = "MZ";
    pack_.Files["Application/Help/Read me.txt"] = "x";
    pack_.Files["Setup.exe"] = "MZ";
    if (Often() && !pack_.Logins.empty()) {
      blocks.push_back({"SystemDSN",
                        {"SQL Server, Shop, " + pack_.Databases[0] + ", " + pack_.Logins[0] +
                         ", Key-" + pack_.Logins[0]}});
    }
    if (Often())
      blocks.push_back({"Shotcut", {"\\Shop.exe,Desktop,Shop", "\\Shop.exe,Programs,Shop"}});
    if (Often()) blocks.push_back({"WriteSettings", {"\\Help\\Server.txt,Server=,SERVER"}});
    if (Below(3) == 0) {
      blocks.push_back({"AddOns", {"Tool.exe"}});
      pack_.Files["AddOns/Tool.exe"] = "MZ";
    }
    if (Often()) blocks.push_back({"FinalMsg", {"Done.", "Start the shop."}});
  }

  std::string Filled(std::string_view fragment) {
    std::string text(fragment);
    const std::string name = NewName();
    text = Replace(text, "$D", OneOf(pack_.Databases));
    text = Replace(text, "$L", pack_.Logins.empty() ? "sa" : pack_.Logins[0]);
    return Replace(text, "$N", name);
  }

  void ChangeDraft() {
    const std::size_t kind = Below(10);
    if (kind < 6) {
      auto& script = OneOf(draft_.Scripts);
      const std::string fragment = Filled(OneOf(kFragments));
      auto& batches = script.Batches;
      const std::size_t at = Below(batches.size() + 1);
      if (Below(4) == 0 && at < batches.size()) {
        batches[at] = Below(2) == 0 ? fragment + "\n" + batches[at] : batches[at] + "\n" + fragment;
        Note(script.Path, "into batch " + std::to_string(at) + ": " + fragment);
      } else {
        batches.insert(batches.begin() + static_cast<std::ptrdiff_t>(at), fragment);
        Note(script.Path, "as batch " + std::to_string(at) + ": " + fragment);
      }
      return;
    }
    auto& block = OneOf(draft_.Blocks);
    if (kind == 6) {
      block.second.clear();
      Note("AppCfg.txt", "no values of " + block.first);
    } else if (!block.second.empty()) {
      std::string& value = OneOf(block.second);
      const std::string was = value;
      if (kind == 7) {
        block.second.push_back(was);
        Note("AppCfg.txt", block.first + " has twice: " + was);
      } else {
        value = Replace(OneOf(kValues), "$V", was);
        Note("AppCfg.txt", block.first + " has: " + value);
      }
    }
  }

  void Note(std::string file, const std::string& change) {
    file = Replace(file, "/", "\\");
    pack_.Changes.push_back(file + ": " + change);
    pack_.Changed.insert(file);
  }

  void Write() {
    std::string configuration;
    for (const auto& [key, values] : draft_.Blocks) {
      configuration += key + "\n{\n";
      for (const std::string& value : values) configuration += value + "\n";
      configuration += "}\n";
    }
    pack_.Files["AppCfg.txt"] = Replace(configuration, "\n", "\r\n");
    for (const auto& script : draft_.Scripts) {
      std::string text = script.LineByLine ? "--taluLineByLine\n" : "--taluGO\n";
      for (const std::string& batch : script.Batches) {
        text += batch + (script.LineByLine ? "\n" : "\nGO\n");
      }
      pack_.Files[script.Path] = Replace(text, "\n", "\r\n");
    }
  }

  /// Something that an editor or a copy does to a whole file.
  void ChangeFile() {
    auto at = pack_.Files.begin();
    std::advance(at, static_cast<std::ptrdiff_t>(Below(pack_.Files.size())));
    auto& [path, bytes] = *at;
    switch (Below(7)) {
      case 0:
        Note(path, "not there");
        pack_.Files.erase(at);
        return;
      case 1:
        Note(path, "with line feeds");
        bytes = Replace(bytes, "\r\n", "\n");
        return;
      case 2:
        Note(path, "with a mark of UTF-8");
        bytes = "\xEF\xBB\xBF" + bytes;
        return;
      case 3: {
        Note(path, "in UTF-16");
        std::string wide("\xFF\xFE");
        for (const char byte : bytes) wide += {byte, '\0'};
        bytes = wide;
        return;
      }
      case 4:
        Note(path, "cut");
        bytes.resize(Below(bytes.size() + 1));
        return;
      case 5:
        Note(path, "without its last line");
        if (bytes.size() > 2) bytes.resize(bytes.rfind("\r\n", bytes.size() - 3) + 2);
        return;
      default:
        Note(path, "an empty line in front");
        bytes = "\r\n" + bytes;
    }
  }

  RandomPack& pack_;
  std::mt19937_64 chance_;
  Draft draft_;
  int names_ = 0;
};

}  // namespace

RandomPack::RandomPack(std::uint64_t seed) {
  Maker(*this, seed).Make();
}

void RandomPack::WriteTo(const std::filesystem::path& folder) const {
  for (const auto& [path, bytes] : Files) {
    std::filesystem::create_directories((folder / path).parent_path());
    std::ofstream file(folder / path, std::ios::binary);
    file << bytes;
    if (!file.flush()) throw std::runtime_error((folder / path).string() + " cannot be written");
  }
}

}  // namespace talu::packcheck
