// The value types of the seam, under their short names, for the whole of the stand-in mail client.
#pragma once

#include "addin/platform/native.h"

namespace mailclient {

using platform::Args;
using platform::Date;
using platform::field;
using platform::Guid;
using platform::make;
using platform::Member;
using platform::method;
using platform::Object;
using platform::Opaque;
using platform::property;
using platform::raiseError;
using platform::readOnly;
using platform::Ref;
using platform::RuntimeError;
using platform::sameName;
using platform::String;
using platform::StringView;
using platform::Variant;

// Failures of the mail client itself: status codes of MAPI, with the mail client's name as the source.
namespace failure {
inline constexpr auto notFound = static_cast<std::int32_t>(0x8004010F);      // MAPI_E_NOT_FOUND
inline constexpr auto deleted = static_cast<std::int32_t>(0x8004010A);       // MAPI_E_OBJECT_DELETED
inline constexpr auto collision = static_cast<std::int32_t>(0x80040604);     // MAPI_E_COLLISION
inline constexpr auto noAccess = static_cast<std::int32_t>(0x80070005);      // MAPI_E_NO_ACCESS
inline constexpr auto notOnDisk = static_cast<std::int32_t>(0x80040116);     // MAPI_E_DISK_ERROR
inline constexpr auto busy = static_cast<std::int32_t>(0x8004010B);          // MAPI_E_BUSY
inline constexpr auto computed = static_cast<std::int32_t>(0x8004011A);      // MAPI_E_COMPUTED
inline constexpr auto unknownTag = static_cast<std::int32_t>(0x80040102);    // MAPI_E_NO_SUPPORT
inline constexpr auto fileNotFound = static_cast<std::int32_t>(0x80030002);  // STG_E_FILENOTFOUND
inline constexpr auto badFile = static_cast<std::int32_t>(0x800300FB);       // STG_E_INVALIDHEADER
inline constexpr auto unspecified = static_cast<std::int32_t>(0x80004005);   // E_FAIL
inline constexpr auto invalid = static_cast<std::int32_t>(0x80070057);       // MAPI_E_INVALID_PARAMETER
inline constexpr std::int32_t automation = 440;                              // what it calls everything else
}  // namespace failure

inline constexpr StringView productName = u"Microsoft Outlook";

[[noreturn]] inline void fail(std::int32_t number, StringView description) {
  platform::raiseError(number, productName, description);
}

}  // namespace mailclient
