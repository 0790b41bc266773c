#include "mailclient/filter.h"

#include <optional>

#include "mailclient/properties.h"

namespace mailclient {

class Filter::Node {
 public:
  virtual ~Node() = default;
  virtual bool matches(const Message& message) const = 0;
};

namespace {

using NodePtr = std::unique_ptr<Filter::Node>;

enum class Operator : std::uint8_t { Equal, Unequal, Less, LessOrEqual, Greater, GreaterOrEqual };

[[noreturn]] void cannotParse(StringView rest) {
  fail(failure::automation, String(u"Cannot parse condition. Error at \"").append(rest).append(u"\"."));
}

int compareText(StringView a, StringView b) {
  for (std::size_t i = 0; i < a.size() && i < b.size(); ++i) {
    const char16_t x = platform::asciiUpper(a[i]);
    const char16_t y = platform::asciiUpper(b[i]);
    if (x != y) return x < y ? -1 : 1;
  }
  return a.size() == b.size() ? 0 : a.size() < b.size() ? -1 : 1;
}

bool holds(Operator op, int order) {
  switch (op) {
    case Operator::Equal:
      return order == 0;
    case Operator::Unequal:
      return order != 0;
    case Operator::Less:
      return order < 0;
    case Operator::LessOrEqual:
      return order <= 0;
    case Operator::Greater:
      return order > 0;
    case Operator::GreaterOrEqual:
      return order >= 0;
  }
  return false;
}

class TextComparison final : public Filter::Node {
 public:
  TextComparison(Text property, Operator op, String value) : property_(property), op_(op), value_(std::move(value)) {}
  bool matches(const Message& m) const override {
    return hasProperty(m, property_) && holds(op_, compareText(m[property_], value_));
  }

 private:
  Text property_;
  Operator op_;
  String value_;
};

class TruthComparison final : public Filter::Node {
 public:
  TruthComparison(bool (*property)(const Message&), Operator op, bool value)
      : property_(property), op_(op), value_(value) {}
  bool matches(const Message& m) const override { return (property_(m) == value_) == (op_ == Operator::Equal); }

 private:
  bool (*property_)(const Message&);
  Operator op_;
  bool value_;
};

class Both final : public Filter::Node {
 public:
  Both(NodePtr a, NodePtr b) : a_(std::move(a)), b_(std::move(b)) {}
  bool matches(const Message& m) const override { return a_->matches(m) && b_->matches(m); }

 private:
  NodePtr a_;
  NodePtr b_;
};

class Either final : public Filter::Node {
 public:
  Either(NodePtr a, NodePtr b) : a_(std::move(a)), b_(std::move(b)) {}
  bool matches(const Message& m) const override { return a_->matches(m) || b_->matches(m); }

 private:
  NodePtr a_;
  NodePtr b_;
};

class Negation final : public Filter::Node {
 public:
  explicit Negation(NodePtr a) : a_(std::move(a)) {}
  bool matches(const Message& m) const override { return !a_->matches(m); }

 private:
  NodePtr a_;
};

class Parser {
 public:
  explicit Parser(StringView text) : rest_(text) {}

  NodePtr parse() {
    NodePtr root = alternatives();
    skipBlanks();
    if (!rest_.empty()) cannotParse(rest_);
    return root;
  }

 private:
  void skipBlanks() {
    while (!rest_.empty() && rest_.front() == u' ') rest_.remove_prefix(1);
  }

  bool take(StringView mark) {
    skipBlanks();
    if (rest_.substr(0, mark.size()) != mark) return false;
    rest_.remove_prefix(mark.size());
    return true;
  }

  bool takeWord(StringView word) {
    skipBlanks();
    if (!sameName(rest_.substr(0, word.size()), word)) return false;
    const StringView behind = rest_.substr(word.size());
    if (!behind.empty() && behind.front() != u' ' && behind.front() != u'(' && behind.front() != u')' &&
        behind.front() != u'[')
      return false;
    rest_ = behind;
    return true;
  }

  NodePtr alternatives() {
    NodePtr left = conjunction();
    while (takeWord(u"Or")) left = std::make_unique<Either>(std::move(left), conjunction());
    return left;
  }

  NodePtr conjunction() {
    NodePtr left = factor();
    while (takeWord(u"And")) left = std::make_unique<Both>(std::move(left), factor());
    return left;
  }

  NodePtr factor() {
    constexpr int deepest = 64;  // a filter is a text from outside: no deep recursion on its behalf
    if (depth_ == deepest) cannotParse(rest_);
    ++depth_;
    NodePtr node;
    if (takeWord(u"Not")) {
      node = std::make_unique<Negation>(factor());
    } else if (take(u"(")) {
      node = alternatives();
      if (!take(u")")) cannotParse(rest_);
    } else {
      node = comparison();
    }
    --depth_;
    return node;
  }

  NodePtr comparison() {
    const StringView start = rest_;
    if (!take(u"[")) cannotParse(rest_);
    const std::size_t end = rest_.find(u']');
    if (end == StringView::npos) cannotParse(start);
    const StringView name = rest_.substr(0, end);
    rest_.remove_prefix(end + 1);
    const Operator op = comparisonOperator();
    if (const auto text = searchableText(name)) return std::make_unique<TextComparison>(*text, op, quoted());
    if (sameName(name, u"UnRead")) return truth([](const Message& m) { return m.unread; }, op);
    if (sameName(name, u"Sent")) return truth([](const Message& m) { return !m.unsent; }, op);
    cannotParse(start);
  }

  Operator comparisonOperator() {
    if (take(u"<>")) return Operator::Unequal;
    if (take(u"<=")) return Operator::LessOrEqual;
    if (take(u">=")) return Operator::GreaterOrEqual;
    if (take(u"<")) return Operator::Less;
    if (take(u">")) return Operator::Greater;
    if (take(u"=")) return Operator::Equal;
    cannotParse(rest_);
  }

  NodePtr truth(bool (*property)(const Message&), Operator op) {
    if (op != Operator::Equal && op != Operator::Unequal) cannotParse(rest_);
    const bool isTrue = takeWord(u"True");
    if (!isTrue && !takeWord(u"False")) cannotParse(rest_);
    return std::make_unique<TruthComparison>(property, op, isTrue);
  }

  String quoted() {
    skipBlanks();
    const char16_t quote = rest_.empty() ? u'\0' : rest_.front();
    if (quote != u'\'' && quote != u'"') cannotParse(rest_);
    const StringView start = rest_;
    rest_.remove_prefix(1);
    String text;
    while (!rest_.empty()) {
      const char16_t c = rest_.front();
      rest_.remove_prefix(1);
      if (c != quote) {
        text += c;
      } else if (!rest_.empty() && rest_.front() == quote) {
        text += quote;
        rest_.remove_prefix(1);
      } else {
        return text;
      }
    }
    cannotParse(start);
  }

  StringView rest_;
  int depth_ = 0;
};

}  // namespace

Filter::Filter(StringView text) : root_(Parser(text).parse()) {}
Filter::Filter(Filter&&) noexcept = default;
Filter::~Filter() = default;
bool Filter::matches(const Message& message) const { return root_->matches(message); }

}  // namespace mailclient
