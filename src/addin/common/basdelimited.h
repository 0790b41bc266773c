// Reading of delimited text: items between commas and line ends.
#pragma once

#include <functional>
#include <string>

#include "addin/common/basGlobal.h"

namespace addin {

// Takes the text piece by piece and hands on each item as soon as it is complete, in the bytes of the text.
//
// An item ends at a comma, CR, LF or CR LF; its leading blanks are dropped. One in double quotes goes on to the closing
// quote whatever it holds, and the quotes are removed. A blank line is an empty item; a last line end is followed by
// none. The character code 26 ends the text.
class DelimitedText {
 public:
  using Take = std::function<void(const std::string& item)>;

  explicit DelimitedText(Take take) : take_(std::move(take)) {}

  // False when the text has ended: what follows is not looked at.
  bool add(std::string_view piece);
  // The text ends here.
  void end();

 private:
  enum class State : std::uint8_t { BeforeItem, Plain, Quoted, AfterQuote, Ended };

  void addCharacter(char c);
  void addToItem(char c);
  bool isEndOfItem(char c) const;
  void handOn();

  Take take_;
  std::string item_;
  State state_ = State::BeforeItem;
  bool begun_ = false;    // something stood behind the last end of an item, be it a blank
  bool afterCr_ = false;  // an LF now belongs to the line end that is past
};

}  // namespace addin
