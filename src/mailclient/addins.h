// The mail client's list of add-ins: COMAddIns and COMAddIn. The latter is the AddInInst of OnConnection.
#pragma once

#include <functional>
#include <memory>
#include <vector>

#include "mailclient/model_object.h"

namespace mailclient {

class COMAddIn;

struct AddInEntry {
  String progId;
  String description;
  bool connected = false;
  Object object;                           // what the add-in chose to show to other programs
  std::function<void(bool connect)> wire;  // connects or disconnects it; set by whoever loads add-ins
  View<COMAddIn> view;
};
using AddInPtr = std::shared_ptr<AddInEntry>;

struct AddIns {
  std::vector<AddInPtr> entries;

  AddInPtr add(StringView progId, StringView description);
  AddInPtr find(StringView progId) const;  // null when there is none
};

class COMAddIns final : public ModelObject {
 public:
  explicit COMAddIns(ClientPtr client) : ModelObject(std::move(client), u"COMAddIns") {}
  std::span<const Member> members() const override;

  std::int32_t count();
  Ref<COMAddIn> item(const Variant& index);  // a position from 1, or a ProgID
};

class COMAddIn final : public ModelObject {
 public:
  COMAddIn(ClientPtr client, AddInPtr entry) : ModelObject(std::move(client), u"COMAddIn"), entry_(std::move(entry)) {}
  std::span<const Member> members() const override;
  void terminate() noexcept override { entry_->view.leave(); }

  String description() { return entry_->description; }
  String progId() { return entry_->progId; }
  bool connect() { return entry_->connected; }
  void putConnect(bool connect);
  Object shown() { return entry_->object; }
  void putShown(const Object& object) { entry_->object = object; }

 private:
  AddInPtr entry_;
};

}  // namespace mailclient
