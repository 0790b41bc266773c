// The pages of the Options dialog, as add-ins offer them.
#pragma once

#include <optional>
#include <vector>

#include "mailclient/model_object.h"

namespace mailclient {

struct OptionsPage {
  Variant page;  // the page object, or the ProgID of a control
  String title;
};

class PropertyPages final : public ModelObject {
 public:
  explicit PropertyPages(ClientPtr client) : ModelObject(std::move(client), u"PropertyPages") {}
  std::span<const Member> members() const override;

  void add(const Variant& page, std::optional<String> title);
  std::int32_t count() { return static_cast<std::int32_t>(pages_.size()); }
  Variant item(const Variant& index);
  void remove(const Variant& index);
  const std::vector<OptionsPage>& pages() const { return pages_; }

 private:
  std::vector<OptionsPage> pages_;
};

}  // namespace mailclient
