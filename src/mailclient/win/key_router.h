// Keys of our windows - accelerators, Tab between fields - in every message loop of this thread.
//
// An add-in's waits and dialogs serve messages with loops of their own, which know nothing of our windows. So the keys
// are taken as the messages leave the queue, whoever fetches them.
#pragma once

#include <functional>

#include "mailclient/win/ui.h"

namespace mailclient::win {

class KeyRouter {
 public:
  // Serves a key message for a top-level window; true when it is used up.
  using Route = std::function<bool(HWND top, MSG& message)>;
  explicit KeyRouter(Route route);
  KeyRouter(const KeyRouter&) = delete;
  KeyRouter& operator=(const KeyRouter&) = delete;
  ~KeyRouter();

 private:
  static LRESULT CALLBACK hook(int code, WPARAM wide, LPARAM extra);

  Route route_;
  HHOOK hook_;
  static constinit KeyRouter* current;
};

}  // namespace mailclient::win
