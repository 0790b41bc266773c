#include "win32/pictures.h"

#include <algorithm>

#include "win32/module.h"
#include "win32/text.h"

namespace win32 {
namespace {

// The resolutions that they are drawn for, as the resources' names end. What lies between takes the larger one, made
// smaller: every further size would cost 40 KB.
constexpr platform::StringView resolutions[] = {u"_96", u"_144"};

}  // namespace

const Pictures::Picture& Pictures::load(const platform::String& resource) {
  const auto at =
      std::find_if(loaded_.begin(), loaded_.end(), [&](const Picture& p) { return p.resource == resource; });
  if (at != loaded_.end()) return *at;
  Picture picture;
  picture.resource = resource;
  picture.bitmap =
      GdiObject(static_cast<HBITMAP>(LoadImageW(ownModule(), wide(resource), IMAGE_BITMAP, 0, 0, LR_CREATEDIBSECTION)));
  BITMAP bitmap{};
  if (picture.bitmap && GetObjectW(picture.bitmap.get(), sizeof bitmap, &bitmap))
    picture.size = {bitmap.bmWidth, bitmap.bmHeight};
  loaded_.push_back(std::move(picture));
  return loaded_.back();
}

const Pictures::Picture* Pictures::find(platform::StringView name, int height) {
  const Picture* best = nullptr;
  for (const platform::StringView resolution : resolutions) {
    platform::String resource = u"PICTURE_";
    std::transform(name.begin(), name.end(), std::back_inserter(resource), platform::asciiUpper);
    resource += resolution;
    if (load(resource).bitmap) best = &load(resource);
    if (best && best->size.cy >= height) break;
  }
  return best;
}

void Pictures::draw(HDC dc, platform::StringView name, const RECT& place) {
  const int height = place.bottom - place.top;
  const Picture* const picture = find(name, height);
  if (!picture || picture->size.cy == 0) return;
  const int natural = MulDiv(picture->size.cx, height, picture->size.cy);
  const int room = place.right - place.left;
  // A few pixels more or less are the font's rounding: the picture then fills its place.
  const int width = natural * 10 > room * 9 ? room : natural;
  const HDC source = CreateCompatibleDC(dc);
  const HGDIOBJ before = SelectObject(source, picture->bitmap.get());
  SetStretchBltMode(dc, HALFTONE);
  SetBrushOrgEx(dc, 0, 0, nullptr);
  StretchBlt(dc, place.right - width, place.top, width, height, source, 0, 0, picture->size.cx, picture->size.cy,
             SRCCOPY);
  SelectObject(source, before);
  DeleteDC(source);
}

}  // namespace win32
