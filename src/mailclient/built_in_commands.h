// The mail client's own commands: what its menus and its toolbar hold before programs add to them. Their identifiers
// are those of Office where Office has the command.
#pragma once

#include <array>
#include <span>

#include "mailclient/types.h"

namespace mailclient {

namespace command {
inline constexpr std::int32_t newMail = 1757, newContact = 607, newFolder = 1591, open = 23, exit = 752;
inline constexpr std::int32_t remove = 478, selectAll = 756, markRead = 1075, markUnread = 1076;
inline constexpr std::int32_t readingPane = 1100, options = 522, assistant = 984, about = 927;
inline constexpr std::int32_t reply = 354, replyAll = 355, forward = 356;
}  // namespace command

// Button faces: those of the commands.
namespace face {
inline constexpr std::int32_t newMail = command::newMail, newContact = command::newContact, reply = command::reply,
                              replyAll = command::replyAll, forward = command::forward, erase = command::remove;
}  // namespace face

struct BuiltInCommand {
  std::int32_t menu;  // the popup that it lies in; 0: on the toolbar
  std::int32_t id;
  StringView caption;
  StringView tooltip;
  std::int32_t faceId;
  bool beginGroup;
};
// In the order of their menus.
std::span<const BuiltInCommand> builtInCommands();

// The keys of a command, as a menu shows them ("Ctrl+N"); empty when it has none.
StringView keysOf(std::int32_t id);

}  // namespace mailclient
