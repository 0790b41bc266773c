// Small files of the server's own, which no other program writes.
#pragma once

#include <cstdint>
#include <string>

#include "addin/platform/text.h"

namespace servers::dvmworker {

// The file in the user's application data, whose folder is made when it is not there; empty when there is no such
// place.
platform::String inApplicationData(platform::StringView name);

// Empty for a file that is not there, or is longer than `longest`.
std::string readTextFile(const platform::String& path, std::size_t longest);

// What the file outlives. The second one costs some milliseconds.
enum class Outlives : std::uint8_t { TheProcess, APowerFailure };

// Writes a new file and puts it in the old one's place: whoever reads finds the one or the other, whole. False when it
// could not be done, or `path` is empty.
bool replaceTextFile(const platform::String& path, const std::string& text, Outlives what) noexcept;
// True when there is none afterwards.
bool removeTextFile(const platform::String& path) noexcept;

}  // namespace servers::dvmworker
