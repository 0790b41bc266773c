#include "mailclient/win/icons.h"

#include <algorithm>

namespace mailclient::win {
namespace {

HBITMAP bitmapOf(const Canvas& canvas) {
  BITMAPINFO info{};
  info.bmiHeader.biSize = sizeof info.bmiHeader;
  info.bmiHeader.biWidth = canvas.size();
  info.bmiHeader.biHeight = -canvas.size();  // from the top
  info.bmiHeader.biPlanes = 1;
  info.bmiHeader.biBitCount = 32;
  void* bits = nullptr;
  const HBITMAP bitmap = CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
  if (bitmap) std::copy(canvas.pixels().begin(), canvas.pixels().end(), static_cast<std::uint32_t*>(bits));
  return bitmap;
}

}  // namespace

Icons& Icons::instance() {
  static Icons icons;
  return icons;
}

Icons::Icons() {
  const int size = scaled(16);
  list_ = ImageList_Create(size, size, ILC_COLOR32, artCount, 0);
  for (int i = 0; i < artCount; ++i) {
    const HBITMAP bitmap = bitmapOf(draw(static_cast<Art>(i), size));
    ImageList_Add(list_, bitmap, nullptr);
    DeleteObject(bitmap);
  }
}

HICON Icons::icon(Art art, int size) {
  HICON& icon = icons_[{art, size}];
  if (icon) return icon;
  ICONINFO info{};
  info.fIcon = TRUE;
  info.hbmColor = bitmapOf(draw(art, size));
  info.hbmMask = CreateBitmap(size, size, 1, 1, nullptr);
  icon = CreateIconIndirect(&info);
  DeleteObject(info.hbmColor);
  DeleteObject(info.hbmMask);
  return icon;
}

}  // namespace mailclient::win
