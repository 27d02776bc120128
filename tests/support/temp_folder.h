// A folder of a test's own, removed with everything in it at the end.
#pragma once

#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <string_view>

namespace quorvel::test {

/// Content of a file; empty when it is missing.
inline std::string readFile(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

class TempFolder {
 public:
  TempFolder()
      : m_path(std::filesystem::temp_directory_path() / ("quorvel-test-" + std::to_string(std::random_device{}()))) {
    std::filesystem::create_directories(m_path);
  }
  ~TempFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(m_path, ignored);
  }
  TempFolder(const TempFolder&) = delete;
  TempFolder& operator=(const TempFolder&) = delete;

  [[nodiscard]] const std::filesystem::path& path() const { return m_path; }
  [[nodiscard]] std::filesystem::path operator/(std::string_view name) const { return m_path / name; }

  /// Writes a file in the folder and returns its full name.
  std::filesystem::path write(std::string_view name, std::string_view content) const {
    std::ofstream(m_path / name, std::ios::binary) << content;
    return m_path / name;
  }
  [[nodiscard]] std::string read(std::string_view name) const { return readFile(m_path / name); }
  [[nodiscard]] bool has(std::string_view name) const { return std::filesystem::exists(m_path / name); }

 private:
  std::filesystem::path m_path;
};

}  // namespace quorvel::test
