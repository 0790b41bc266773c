#include "phonesim/memory_file.h"

#include <filesystem>
#include <fstream>
#include <stdexcept>

namespace phonesim {

namespace fs = std::filesystem;

namespace {

constexpr std::uintmax_t longestFile = 64 << 20;

// A name that no file has.
std::string freeName(const std::string& path) {
  std::string name = path + ".bad";
  for (int i = 2; fs::exists(name); ++i) name = path + ".bad" + std::to_string(i);
  return name;
}

}  // namespace

State loadState(const std::string& path, State defaults, std::string& setAside) {
  if (!fs::exists(path)) return defaults;
  if (!fs::is_regular_file(path)) throw std::runtime_error(path + " is no file");
  if (fs::file_size(path) > longestFile) throw std::runtime_error(path + " is too long to be a handset's memory");
  std::ifstream file(path, std::ios::binary);
  if (!file) throw std::runtime_error(path + " cannot be read");
  const std::string text((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
  ReadState read = fromText(text, std::move(defaults));
  if (read.passedOver > 0) {
    setAside = freeName(path);
    fs::copy_file(path, setAside);
  }
  return std::move(read.state);
}

void saveState(const std::string& path, const State& state) {
  const std::string written = path + ".new";
  {
    std::ofstream file(written, std::ios::binary | std::ios::trunc);
    file << toText(state);
    file.flush();
    if (!file) throw std::runtime_error(written + " cannot be written");
  }
  fs::rename(written, path);
}

}  // namespace phonesim
