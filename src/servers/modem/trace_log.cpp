#include "servers/modem/trace_log.h"

#include <string>

namespace servers::modem {

namespace {

std::string printable(std::string_view line) {
  static constexpr std::string_view digits = "0123456789ABCDEF";
  std::string shown;
  for (const char c : line) {
    const auto octet = static_cast<unsigned char>(c);
    if (octet >= 0x20 && octet < 0x7F)
      shown += c;
    else
      (shown += "\\x") += {digits[octet >> 4], digits[octet & 0xF]};
  }
  return shown;
}

}  // namespace

void TraceLog::write(std::string_view stamp, std::string_view line) noexcept {
  try {
    const std::string text = std::string(stamp) + ' ' + printable(line) + "\r\n";
    if (makeRoom(text.size())) files_->append(text);
  } catch (...) {
    // Out of memory: one line less.
  }
}

// False when there is none.
bool TraceLog::makeRoom(std::size_t size) noexcept {
  const auto length = files_->open();
  if (!length || *length == 0 || *length + size <= longest) return length.has_value();
  if (sinceHeld_ && *sinceHeld_ + size <= longest) {
    *sinceHeld_ += size;
  } else if (becomesOlder()) {
    sinceHeld_.reset();
    return files_->open().has_value();
  } else {
    sinceHeld_ = size;
    if (!files_->open()) return false;
  }
  return *length + size <= longestHeld;
}

bool TraceLog::becomesOlder() noexcept {
  for (int number = older - 1; number > 0; --number) files_->shift(number);  // there may be none of that number
  return files_->shift(0);
}

}  // namespace servers::modem
