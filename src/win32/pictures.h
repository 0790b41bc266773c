// The product's pictures, as the module's resources hold them: each in several sizes.
#pragma once

#include <deque>

#include "addin/platform/text.h"
#include "win32/dialog_look.h"

namespace win32 {

class Pictures {
 public:
  enum class Fit : std::uint8_t { Cover, RightEnd };

  // Covers `place`, cutting off what is too much at the edges, or fills its height at its right end. Nothing when the
  // module has no picture of that name.
  void draw(HDC dc, platform::StringView name, const RECT& place, Fit fit);

 private:
  struct Picture {
    platform::String resource;
    GdiObject<HBITMAP> bitmap;
    SIZE size{};
  };
  // The smallest size that is no lower than `height`; else the largest.
  const Picture* find(platform::StringView name, int height);
  const Picture& load(const platform::String& resource);

  std::deque<Picture> loaded_;  // those that are not there too; references stay valid
};

}  // namespace win32
