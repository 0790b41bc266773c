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

void Pictures::draw(HDC dc, platform::StringView name, const RECT& place, Fit fit) {
  RECT to = place;
  const Picture* const picture = find(name, to.bottom - to.top);
  if (!picture || picture->size.cx == 0 || picture->size.cy == 0 || IsRectEmpty(&to)) return;
  const int height = to.bottom - to.top;
  SIZE from = picture->size;
  if (fit == Fit::RightEnd) {
    to.left = to.right - MulDiv(from.cx, height, from.cy);
  } else {
    // The part of the picture that has the shape of the place.
    const int width = to.right - to.left;
    from.cx = std::min(from.cx, static_cast<LONG>(MulDiv(picture->size.cy, width, height)));
    from.cy = std::min(from.cy, static_cast<LONG>(MulDiv(picture->size.cx, height, width)));
  }
  const HDC source = CreateCompatibleDC(dc);
  const HGDIOBJ before = SelectObject(source, picture->bitmap.get());
  SetStretchBltMode(dc, HALFTONE);
  SetBrushOrgEx(dc, 0, 0, nullptr);
  StretchBlt(dc, to.left, to.top, to.right - to.left, height, source, (picture->size.cx - from.cx) / 2,
             (picture->size.cy - from.cy) / 2, from.cx, from.cy, SRCCOPY);
  SelectObject(source, before);
  DeleteDC(source);
}

}  // namespace win32
