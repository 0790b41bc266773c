// The mail client's icons, as shapes.
#pragma once

#include "mailclient/view/canvas.h"
#include "mailclient/view/columns.h"

namespace mailclient {

enum class Art : std::uint8_t {
  None,
  MailUnread,
  MailRead,
  TextUnread,
  TextRead,
  Contact,
  Store,
  Inbox,
  Drafts,
  Outbox,
  Sent,
  Deleted,
  Contacts,
  Folder,
  NewMail,
  NewContact,
  Reply,
  ReplyAll,
  Forward,
  Delete,
  Send,
  Save,
  Application,
};
inline constexpr int artCount = static_cast<int>(Art::Application) + 1;

Canvas draw(Art art, int size);

Art artOf(FolderKind kind);
Art artOf(const Message& message);
// The picture of an Office button face; none for the faces that this mail client does not have.
Art artOfFace(std::int32_t faceId);

}  // namespace mailclient
