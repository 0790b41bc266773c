#include "support/native_registry.h"

#include <algorithm>
#include <cstring>

namespace testing_support {
namespace {

char asciiUpperByte(char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; }

std::string inQuotes(const std::string& name) { return " \"" + name + "\""; }

}  // namespace

bool NativeRegistry::IgnoringCase::operator()(const std::string& a, const std::string& b) const {
  return std::lexicographical_compare(a.begin(), a.end(), b.begin(), b.end(),
                                      [](char x, char y) { return asciiUpperByte(x) < asciiUpperByte(y); });
}

std::int32_t NativeRegistry::openKey(platform::RootKey root, const std::string& path, platform::KeyHandle& key) {
  key = 0;
  const std::string place = placeOf(root, path);
  std::int32_t status = failureOf("open");
  if (status == 0 && path.starts_with('\\')) status = errorBadPathname;
  if (status == 0 && !path.empty() && !keys_.contains(place)) status = errorFileNotFound;
  if (status == 0) key = newHandle(place);
  return done("open " + place, status);
}

std::int32_t NativeRegistry::createKey(platform::RootKey root, const std::string& path, platform::KeyHandle& key) {
  key = 0;
  const std::string place = placeOf(root, path);
  std::int32_t status = failureOf("create");
  if (status == 0 && path.starts_with('\\')) status = errorBadPathname;
  if (status == 0) {
    for (auto end = path.find('\\'); end != std::string::npos; end = path.find('\\', end + 1))
      setKey(root, path.substr(0, end));
    if (!path.empty()) setKey(root, path);
    key = newHandle(place);
  }
  return done("create " + place, status);
}

std::int32_t NativeRegistry::queryValue(platform::KeyHandle key, const std::string& name, std::uint32_t& type,
                                        std::byte* data, std::uint32_t& size) {
  const std::string call = data ? "query data" : "query size";
  const std::string text = call + " " + nameOf(key) + inQuotes(name);
  if (const std::int32_t failure = failureOf(call)) return done(text, failure);
  const Values* const values = valuesOf(key);
  if (!values) return done(text, errorInvalidHandle);
  const auto at = values->find(name);
  if (at == values->end()) return done(text, errorFileNotFound);

  const std::string& bytes = at->second.bytes;
  const std::uint32_t room = size;
  type = at->second.type;
  size = static_cast<std::uint32_t>(bytes.size());
  if (!data) return done(text, 0);
  if (bytes.size() > room) return done(text, errorMoreData);
  if (!bytes.empty()) std::memcpy(data, bytes.data(), bytes.size());
  return done(text, 0);
}

std::int32_t NativeRegistry::setValue(platform::KeyHandle key, const std::string& name, std::uint32_t type,
                                      std::span<const std::byte> data) {
  const std::string text = "set " + nameOf(key) + inQuotes(name) + " type " + std::to_string(type) + ", " +
                           std::to_string(data.size()) + " bytes";
  if (const std::int32_t failure = failureOf("set")) return done(text, failure);
  Values* const values = valuesOf(key);
  if (!values) return done(text, errorInvalidHandle);
  Value& value = (*values)[name];
  value.type = type;
  value.bytes.clear();
  for (const std::byte b : data) value.bytes += static_cast<char>(b);
  return done(text, 0);
}

void NativeRegistry::closeKey(platform::KeyHandle key) {
  const std::string text = "close " + nameOf(key);
  done(text, handles_.erase(key) == 1 ? 0 : errorInvalidHandle);
}

void NativeRegistry::setBytes(platform::RootKey root, const std::string& path, const std::string& name,
                              std::uint32_t type, std::string bytes) {
  keys_[placeOf(root, path)][name] = {type, std::move(bytes)};
}

void NativeRegistry::setDword(platform::RootKey root, const std::string& path, const std::string& name,
                              std::uint32_t number) {
  std::string bytes;  // lowest byte first, as Windows stores it
  for (unsigned shift = 0; shift < 32; shift += 8) bytes += static_cast<char>(number >> shift & 0xFF);
  setBytes(root, path, name, regDword, bytes);
}

void NativeRegistry::deleteValue(platform::RootKey root, const std::string& path, const std::string& name) {
  if (const auto key = keys_.find(placeOf(root, path)); key != keys_.end()) key->second.erase(name);
}

std::optional<NativeRegistry::Value> NativeRegistry::value(platform::RootKey root, const std::string& path,
                                                           const std::string& name) const {
  const auto key = keys_.find(placeOf(root, path));
  if (key == keys_.end()) return std::nullopt;
  const auto at = key->second.find(name);
  return at == key->second.end() ? std::nullopt : std::optional(at->second);
}

std::string NativeRegistry::placeOf(platform::RootKey root, const std::string& path) {
  const std::string name = root == platform::rootCurrentUser    ? "HKCU"
                           : root == platform::rootLocalMachine ? "HKLM"
                                                                : "root " + std::to_string(root);
  return path.empty() ? name : name + "\\" + path;
}

std::string NativeRegistry::nameOf(platform::KeyHandle key) const {
  const auto at = handles_.find(key);
  return at == handles_.end() ? "(no key)" : at->second;
}

NativeRegistry::Values* NativeRegistry::valuesOf(platform::KeyHandle key) {
  const auto at = handles_.find(key);
  return at == handles_.end() ? nullptr : &keys_[at->second];
}

std::int32_t NativeRegistry::failureOf(const std::string& call) const {
  const auto at = failing_.find(call);
  return at == failing_.end() ? 0 : at->second;
}

std::int32_t NativeRegistry::done(const std::string& text, std::int32_t status) {
  const std::string line = status == 0 ? text : text + " -> " + std::to_string(status);
  log_.write(line);
  journal_.write(line);
  if (afterCall) afterCall(line);
  return status;
}

platform::KeyHandle NativeRegistry::newHandle(const std::string& place) {
  lastHandle_ += 4;
  handles_[lastHandle_] = place;
  return lastHandle_;
}

}  // namespace testing_support
