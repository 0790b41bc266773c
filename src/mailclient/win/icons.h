// Icons in the forms that Windows wants.
#pragma once

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
  HICON icon(Art art, int size);

 private:
  Icons();

  HIMAGELIST list_;
};

inline int imageOf(Art art) { return static_cast<int>(art); }

}  // namespace mailclient::win
