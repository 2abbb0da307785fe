#pragma once

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

namespace doubles {

/// A temporary folder for one test, removed with everything in it.
class ScratchFolder {
 public:
  ScratchFolder() {
    std::string pattern = (std::filesystem::temp_directory_path() / "scratch.XXXXXX").string();
    path_ = ::mkdtemp(pattern.data());
  }
  ~ScratchFolder() {
    std::error_code ignored;
    std::filesystem::permissions(path_, std::filesystem::perms::owner_all, ignored);
    std::filesystem::remove_all(path_, ignored);
  }
  ScratchFolder(const ScratchFolder &) = delete;
  ScratchFolder &operator=(const ScratchFolder &) = delete;

  const std::filesystem::path &path() const { return path_; }
  std::string file(const std::string &name) const { return (path_ / name).string(); }
  long entries() const { return std::distance(std::filesystem::directory_iterator(path_), {}); }

  std::string write(const std::string &name, const std::string &content) const {
    std::ofstream(file(name), std::ios::binary) << content;
    return file(name);
  }
  static std::string read(const std::string &path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
  }

 private:
  std::filesystem::path path_;
};

}  // namespace doubles
