// What values and objects look like in the lines that tests compare.
#pragma once

#include <map>
#include <string>

#include "addin/platform/variant.h"

namespace testing_support {

// An object of the tests that knows what to be called.
class Labelled {
 public:
  virtual std::string label() const = 0;

 protected:
  ~Labelled() = default;
};

// Names given to objects by a test. An object without one is called by its own label, else by its C++ class.
class Labels {
 public:
  // The object must outlive the use of the name: it is recognised by identity.
  void name(const platform::Object& object, std::string label);
  std::string of(platform::Automation& object) const;

  // "text" (quotes doubled, line ends as \r\n), 5, 2.5, True, #2/3/2001#, <label>, Nothing, Empty, Null, Missing,
  // error 80004005, and & in front of what a by-reference argument holds.
  std::string textOf(const platform::Variant& value) const;

 private:
  std::map<const void*, std::string> names_;
};

// One line for a use of a member:
//   MailItem.Body                      get         MailItem.Save()                   call
//   MailItem.Mileage = "2"             let         set CommandBarButton.Tag = <x>    set
//   MailItem[default]                  the default member
std::string lineOf(const Labels& labels, const std::string& object, platform::StringView member,
                   platform::Access access, platform::Args args);

}  // namespace testing_support
