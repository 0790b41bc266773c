// A registry in memory: both roots, keys and names without regard to case, values of any type as bytes.
#pragma once

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "addin/platform/system.h"
#include "support/journal.h"

namespace testing_support {

inline constexpr std::uint32_t regSz = 1, regExpandSz = 2, regBinary = 3, regDword = 4, regMultiSz = 7;

// Win32 status codes that the registry calls return.
inline constexpr std::int32_t errorFileNotFound = 2, errorAccessDenied = 5, errorInvalidHandle = 6,
                              errorBadPathname = 161, errorMoreData = 234;

class NativeRegistry final : public platform::Registry {
 public:
  explicit NativeRegistry(Journal& journal) : journal_(journal) {}

  std::int32_t openKey(platform::RootKey root, const std::string& path, platform::KeyHandle& key) override;
  std::int32_t createKey(platform::RootKey root, const std::string& path, platform::KeyHandle& key) override;
  std::int32_t queryValue(platform::KeyHandle key, const std::string& name, std::uint32_t& type, std::byte* data,
                          std::uint32_t& size) override;
  std::int32_t setValue(platform::KeyHandle key, const std::string& name, std::uint32_t type,
                        std::span<const std::byte> data) override;
  void closeKey(platform::KeyHandle key) override;

  // For tests: these are not logged, and make the key when it is missing ---------------------------------------------

  struct Value {
    std::uint32_t type = 0;
    std::string bytes;
    friend bool operator==(const Value&, const Value&) = default;
  };

  void setKey(platform::RootKey root, const std::string& path) { keys_[placeOf(root, path)]; }
  void setBytes(platform::RootKey root, const std::string& path, const std::string& name, std::uint32_t type,
                std::string bytes);
  void setString(platform::RootKey root, const std::string& path, const std::string& name, const std::string& ansi) {
    setBytes(root, path, name, regSz, ansi + '\0');
  }
  void setStringWithoutNul(platform::RootKey root, const std::string& path, const std::string& name,
                           const std::string& ansi) {
    setBytes(root, path, name, regSz, ansi);
  }
  void setDword(platform::RootKey root, const std::string& path, const std::string& name, std::uint32_t number);
  void deleteValue(platform::RootKey root, const std::string& path, const std::string& name);
  void deleteKey(platform::RootKey root, const std::string& path) { keys_.erase(placeOf(root, path)); }

  bool hasKey(platform::RootKey root, const std::string& path) const { return keys_.contains(placeOf(root, path)); }
  std::optional<Value> value(platform::RootKey root, const std::string& path, const std::string& name) const;
  std::size_t keyCount() const { return keys_.size(); }  // without the roots

  // The calls in order, with what they were given and the status when it is not 0:
  //   open HKCU\Software\Key -> 2
  //   query size HKCU\Software\Key "Name"
  //   set HKCU\Software\Key "Name" type 1, 3 bytes
  const std::vector<std::string>& log() const { return log_.lines(); }
  void clearLog() { log_.clear(); }
  std::size_t openHandles() const { return handles_.size(); }

  // From now on that call fails with the status, and changes nothing: "open", "create", "query size", "query data",
  // "set".
  void fail(const std::string& call, std::int32_t status) { failing_[call] = status; }
  void failNoMore() { failing_.clear(); }
  // Runs at the end of each call, with the line that the log got; it may change values, or throw (not for "close").
  std::function<void(const std::string& line)> afterCall;

 private:
  struct IgnoringCase {
    bool operator()(const std::string& a, const std::string& b) const;
  };
  using Values = std::map<std::string, Value, IgnoringCase>;

  static std::string placeOf(platform::RootKey root, const std::string& path);
  std::string nameOf(platform::KeyHandle key) const;
  Values* valuesOf(platform::KeyHandle key);
  std::int32_t failureOf(const std::string& call) const;
  std::int32_t done(const std::string& text, std::int32_t status);
  platform::KeyHandle newHandle(const std::string& place);

  Journal& journal_;
  Journal log_;
  std::map<std::string, Values, IgnoringCase> keys_;  // by root and path
  std::map<platform::KeyHandle, std::string> handles_;
  platform::KeyHandle lastHandle_ = 0x100;
  std::map<std::string, std::int32_t> failing_;
};

}  // namespace testing_support
