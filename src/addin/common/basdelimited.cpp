#include "addin/common/basdelimited.h"

namespace addin {
namespace {

constexpr char endOfText = 26;  // Ctrl+Z, from the days when files had no length in bytes

}  // namespace

bool DelimitedText::add(std::string_view piece) {
  for (const char c : piece) {
    if (state_ == State::Ended) break;
    if (c == endOfText) {
      end();
    } else if (std::exchange(afterCr_, false) && c == '\n') {
      continue;
    } else {
      addCharacter(c);
    }
  }
  return state_ != State::Ended;
}

void DelimitedText::end() {
  if (state_ == State::Ended) return;
  const bool itemIsOpen = state_ == State::Plain || state_ == State::Quoted || begun_;
  state_ = State::Ended;
  if (itemIsOpen) handOn();
}

bool DelimitedText::isEndOfItem(char c) const { return c == ',' || c == '\r' || c == '\n'; }

void DelimitedText::addCharacter(char c) {
  if (state_ == State::Quoted) {
    if (c != '"') {
      item_ += c;
      return;
    }
    state_ = State::AfterQuote;
    handOn();
    return;
  }
  if (!isEndOfItem(c)) {
    addToItem(c);
    return;
  }
  const bool complete = state_ == State::AfterQuote;  // handed on already; this only closes it
  state_ = State::BeforeItem;
  afterCr_ = c == '\r';
  if (!complete) handOn();
}

// Of an item without quotes, or what stands around one with quotes.
void DelimitedText::addToItem(char c) {
  if (state_ == State::Plain) {
    item_ += c;
  } else if (c == ' ') {
    begun_ = state_ == State::BeforeItem;
  } else if (c == '"') {  // text right behind a closing quote begins the next item
    state_ = State::Quoted;
  } else {
    state_ = State::Plain;
    item_ += c;
  }
}

void DelimitedText::handOn() {
  begun_ = false;
  const std::string item = std::exchange(item_, {});
  take_(item);
}

}  // namespace addin
