#include "mailclient/model_object.h"

#include "mailclient/application.h"
#include "mailclient/client.h"

namespace mailclient {

ModelObject::ModelObject(ClientPtr client, StringView className) : client_(std::move(client)), className_(className) {
  ++client_->census[className_];
}

ModelObject::~ModelObject() {
  const auto count = client_->census.find(className_);
  if (--count->second == 0) client_->census.erase(count);
}

Object ModelObject::application() const { return client_->application().get()->object(); }
Object ModelObject::session() const { return client_->nameSpace().get()->object(); }

std::size_t positionOf(const Variant& index, std::size_t count) {
  const std::int32_t position = platform::CLng(index);
  if (position < 1 || static_cast<std::size_t>(position) > count)
    fail(failure::automation, u"Array index out of bounds.");
  return static_cast<std::size_t>(position) - 1;
}

}  // namespace mailclient
