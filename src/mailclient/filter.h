// The filters of Items.Restrict and Items.Find: comparisons of a property in brackets with a text, a number or a truth
// value, joined by And, Or, Not and parentheses.
//
//   [MessageClass] = 'IPM.Note.TxtMsg'
//   [MobileTelephoneNumber] > '' And Not ([UnRead] = True)
//
// Texts stand between ' or ", a doubled one inside means itself, and compare without regard to case. An item that lacks
// the property matches no comparison. Whatever cannot be read is an error, as are the properties that the mail client
// refuses to search (Body and others).
#pragma once

#include <memory>

#include "mailclient/message.h"

namespace mailclient {

class Filter {
 public:
  class Node;

  explicit Filter(StringView text);
  Filter(Filter&&) noexcept;
  ~Filter();
  bool matches(const Message& message) const;

 private:
  std::unique_ptr<Node> root_;
};

}  // namespace mailclient
