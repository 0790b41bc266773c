#include "mailclient/built_in_commands.h"

#include <algorithm>

#include "mailclient/command_bars.h"

namespace mailclient {
namespace {

constexpr std::array commands{
    BuiltInCommand{menu::newItem, command::newMail, u"&Mail Message", u"Create a new mail message", face::newMail,
                   false},
    BuiltInCommand{menu::newItem, command::newContact, u"&Contact", u"Create a new contact", face::newContact, false},
    BuiltInCommand{menu::newItem, command::newFolder, u"Fol&der...", u"Create a folder in the present one", 0, false},
    BuiltInCommand{menu::file, command::open, u"&Open Selected Items", u"Open the selected items", 0, true},
    BuiltInCommand{menu::file, command::exit, u"E&xit", u"Close all windows", 0, true},
    BuiltInCommand{menu::edit, command::remove, u"&Delete", u"Delete the selected items", face::erase, false},
    BuiltInCommand{menu::edit, command::selectAll, u"Select A&ll", u"Select all items", 0, false},
    BuiltInCommand{menu::edit, command::markRead, u"Mark as &Read", u"Mark the selected items as read", 0, true},
    BuiltInCommand{menu::edit, command::markUnread, u"Mark as U&nread", u"Mark the selected items as unread", 0, false},
    BuiltInCommand{menu::view, command::readingPane, u"&Reading Pane", u"Show the selected item below the list", 0,
                   false},
    BuiltInCommand{menu::tools, command::options, u"&Options...", u"Change the settings", 0, false},
    BuiltInCommand{menu::actions, command::reply, u"&Reply", u"Answer the sender", face::reply, false},
    BuiltInCommand{menu::actions, command::replyAll, u"Reply to A&ll", u"Answer the sender and all recipients",
                   face::replyAll, false},
    BuiltInCommand{menu::actions, command::forward, u"For&ward", u"Send the item on to somebody else", face::forward,
                   false},
    BuiltInCommand{menu::help, command::assistant, u"Show the Office &Assistant", u"Let the Assistant show its notices",
                   0, false},
    BuiltInCommand{menu::help, command::about, u"A&bout Mail Client", u"Show which program this is", 0, false},
    BuiltInCommand{0, command::newMail, u"New Mail", u"New mail message", face::newMail, false},
    BuiltInCommand{0, command::newContact, u"New Contact", u"New contact", face::newContact, false},
    BuiltInCommand{0, command::reply, u"Reply", u"Reply to the sender", face::reply, true},
    BuiltInCommand{0, command::forward, u"Forward", u"Forward", face::forward, false},
    BuiltInCommand{0, command::remove, u"Delete", u"Delete", face::erase, true},
};

struct Keys {
  std::int32_t id;
  StringView text;
};
constexpr std::array keys{
    Keys{command::newMail, u"Ctrl+N"},         Keys{command::newContact, u"Ctrl+Shift+C"},
    Keys{command::newFolder, u"Ctrl+Shift+E"}, Keys{command::open, u"Ctrl+O"},
    Keys{command::remove, u"Ctrl+D"},          Keys{command::selectAll, u"Ctrl+A"},
    Keys{command::markRead, u"Ctrl+Q"},        Keys{command::markUnread, u"Ctrl+U"},
    Keys{command::reply, u"Ctrl+R"},           Keys{command::replyAll, u"Ctrl+Shift+R"},
    Keys{command::forward, u"Ctrl+F"},
};

}  // namespace

std::span<const BuiltInCommand> builtInCommands() { return commands; }

StringView keysOf(std::int32_t id) {
  const auto* const at = std::find_if(keys.begin(), keys.end(), [&](const Keys& k) { return k.id == id; });
  return at == keys.end() ? StringView() : at->text;
}

}  // namespace mailclient
