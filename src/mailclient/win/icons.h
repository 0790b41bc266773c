// Icons in the forms that Windows wants.
#pragma once

#include <map>
#include <utility>

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
  // Made once for each size, however many windows show it.
  HICON icon(Art art, int size);

 private:
  Icons();

  HIMAGELIST list_;
  std::map<std::pair<Art, int>, HICON> icons_;
};

inline int imageOf(Art art) { return static_cast<int>(art); }

}  // namespace mailclient::win
