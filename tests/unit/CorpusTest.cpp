// What the wizard makes of the fuzzers' committed inputs is what the plainest reading of them says
// (fuzz/Naive.h). A difference is printed, and ends the program.
#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>

using Fuzzer = int(const std::uint8_t* data, std::size_t size);
extern "C" Fuzzer FuzzConfiguration, FuzzLines, FuzzScripts;

TEST(CorpusTest, IsReadAsThePlainestReadingSays) {
  const std::pair<const char*, Fuzzer*> fuzzers[] = {
      {"configuration", FuzzConfiguration}, {"lines", FuzzLines}, {"scripts", FuzzScripts}};
  for (const auto& [name, feed] : fuzzers) {
    int inputs = 0;
    for (const auto& input : std::filesystem::directory_iterator(TALU_CORPUS + std::string(name))) {
      std::ifstream file(input.path(), std::ios::binary);
      const std::string bytes(std::istreambuf_iterator<char>(file), {});
      feed(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
      ++inputs;
    }
    EXPECT_GT(inputs, 0) << name;
  }
}
