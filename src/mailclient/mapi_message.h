// An item's MAPIOBJECT: the same message without the object model's rules.
#pragma once

#include "mailclient/message.h"
#include "mailclient/model_object.h"
#include "mapi/mapi_props.h"

namespace mailclient {

class MapiMessage final : public mapi::MessageProps {
 public:
  MapiMessage(ClientPtr client, MessagePtr message) : client_(std::move(client)), message_(std::move(message)) {}

  void setString(std::uint32_t tag, StringView text) override;
  void setTime(std::uint32_t tag, Date utc) override;
  void setLong(std::uint32_t tag, std::int32_t value) override;

  // For the COM face of this object: SaveChanges, and what the object model would say.
  void saveChanges();
  const MessagePtr& message() const { return message_; }

 private:
  Message& changing();

  ClientPtr client_;
  MessagePtr message_;
};

}  // namespace mailclient
