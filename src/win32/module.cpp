#include "win32/module.h"

#include <cstddef>
#include <cstring>

#include "com/registration.h"

extern "C" IMAGE_DOS_HEADER __ImageBase;  // the linker's name for where this module begins

namespace win32 {
namespace {

// The beginning of a version resource (VS_VERSIONINFO of the platform's documentation).
struct VersionResource {
  WORD length;
  WORD valueLength;
  WORD type;
  WCHAR key[16];  // "VS_VERSION_INFO"
  WORD padding;
  VS_FIXEDFILEINFO value;
};
static_assert(offsetof(VersionResource, value) == 40);

}  // namespace

HMODULE ownModule() noexcept { return reinterpret_cast<HMODULE>(&__ImageBase); }

platform::Version Module::version() {
  const HMODULE module = ownModule();
  const HRSRC found = FindResourceW(module, MAKEINTRESOURCEW(VS_VERSION_INFO), RT_VERSION);
  if (!found || SizeofResource(module, found) < sizeof(VersionResource)) return {};
  const HGLOBAL loaded = LoadResource(module, found);
  const void* const bytes = loaded ? LockResource(loaded) : nullptr;
  if (!bytes) return {};
  VersionResource resource;
  std::memcpy(&resource, bytes, sizeof resource);
  const VS_FIXEDFILEINFO& info = resource.value;
  return {HIWORD(info.dwFileVersionMS), LOWORD(info.dwFileVersionMS), LOWORD(info.dwFileVersionLS)};
}

platform::String Module::folder() {
  const platform::String path = com::modulePath(ownModule());
  const std::size_t end = path.find_last_of(u'\\');
  return path.substr(0, end == platform::String::npos ? 0 : end);
}

}  // namespace win32
