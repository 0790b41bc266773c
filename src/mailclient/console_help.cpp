#include "mailclient/console.h"

namespace mailclient {

std::string_view Console::helpText() {
  return R"(help                              these lines
status                            explorers, inspectors, add-ins
folders                           every folder: path, items, unread ones
list FOLDER                       every item of a folder
compose TO BODY                   a new text message, sent: it goes to the Outbox. ok ENTRYID
item FOLDER CLASS SUBJECT BODY    a new item of any class, saved in a folder. ok ENTRYID
contact NAME MOBILE [FOLDER]      a new contact, in a folder below Contacts (made when missing). ok ENTRYID
delete ENTRYID                    into Deleted Items; from there for good
move ENTRYID FOLDER
select [ENTRYID...]               in the active explorer
reply|replyall|forward ENTRYID    ok BILLING-INFORMATION of the new item, which is not saved
buttons                           the buttons that programs added: menu, tag, caption, tooltip, enabled
click TAG                         a button. ok clicked, or ok ignored when it is disabled or not there
menus                             the items of the front window's menus, where there is a window
explorer open [FOLDER] | close    a window for a folder | the active one
inspector open ENTRYID | close
options                           opens the Options dialog: the pages that add-ins put in
assistant on|off                  the Office Assistant
balloons                          what the Assistant has shown
form                              the published forms
connect PROGID                    an add-in, as when the user switches it on (connect mode 0)
disconnect PROGID [MODE]          as when the user switches it off (mode 1), or with another remove mode
wait FOLDER COUNT MILLISECONDS    until the folder has so many items. ok yes, or ok no when the time is over
idle MILLISECONDS                 serves messages for so long
references                        object-model objects that somebody outside holds, by class
quit                              closes all windows, disconnects the add-ins and ends
)";
}

}  // namespace mailclient
