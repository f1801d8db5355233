#pragma once

#include <gtest/gtest.h>

#include <string>

#include "HostFolder.h"

namespace talu::packcheck {

/// A configuration block; every line of `values` ends in CR LF.
inline std::string Block(const std::string& key, const std::string& values) {
  return key + "\r\n{\r\n" + values + "}\r\n";
}

}  // namespace talu::packcheck
