// Icons in the forms that Windows wants.
#pragma once

#include <array>

#include "mailclient/view/icon_art.h"
#include "mailclient/win/ui.h"

namespace mailclient::win {

class Icons {
 public:
  static Icons& instance();
  Icons(const Icons&) = delete;
  Icons& operator=(const Icons&) = delete;

  // Every picture, at its number.
  HIMAGELIST list() const { return list_; }
  // On the colour of menus; null for no picture. Kept until the program ends.
  HBITMAP menuBitmap(Art art);
  HICON icon(Art art, int size);

 private:
  Icons();

  HIMAGELIST list_;
  std::array<HBITMAP, artCount> menus_{};
};

inline int imageOf(Art art) { return static_cast<int>(art); }

}  // namespace mailclient::win
