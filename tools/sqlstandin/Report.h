#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <map>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include "Catalogue.h"
#include "Journal.h"

namespace talu::standin {

/// What became of all batches. Safe to use from several threads.
class Report {
 public:
  /// `number` counts from 1, as in the journal; batches may come in any order.
  void Add(std::uint64_t number, const std::string& database, std::string_view batch,
           const Outcome& outcome);

  /// Writes all of it, and what there is on the server now, as JSON. Raises std::runtime_error when
  /// the file cannot be written; a file that was there before is whole at any moment.
  void Write(const std::filesystem::path& file, const Catalogue& server, bool isStrict) const;

 private:
  /// A batch that was not carried out whole.
  struct Entry {
    std::string Database;
    std::size_t Line = 1;
    std::optional<SqlMessage> Error;
    std::vector<std::string> Noted;
  };

  mutable std::mutex mutex_;
  /// A letter for each batch: carried out, kept, noted, refused, x for cut or cancelled.
  std::string fates_;
  std::map<std::uint64_t, Entry> entries_;
};

}  // namespace talu::standin
