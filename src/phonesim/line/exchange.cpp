#include "phonesim/line/exchange.h"

#include <algorithm>
#include <filesystem>
#include <fstream>

#include "phone/pdu/decode.h"
#include "phone/pdu/hex.h"

namespace phonesim {

namespace {

constexpr std::chrono::milliseconds patience{5000};
constexpr std::chrono::milliseconds pause{1000};
constexpr std::size_t longestLine = 1024;

std::string digitsOf(std::string_view number) {
  std::string digits;
  for (const char c : number)
    if (c >= '0' && c <= '9') digits += c;
  digits.erase(0, std::min(digits.find_first_not_of('0'), digits.size()));
  return digits;
}

// Calls back with each line, without its end.
class LineSplitter {
 public:
  explicit LineSplitter(std::function<void(std::string)> take) : take_(std::move(take)) {}
  void receive(std::string_view octets) {
    for (const char c : octets) {
      if (c == '\n')
        take_(std::exchange(line_, {}));
      else if (line_.size() < longestLine)
        line_ += c;
    }
  }

 private:
  std::function<void(std::string)> take_;
  std::string line_;
};

}  // namespace

bool sameNumber(std::string_view one, std::string_view other) {
  std::string longer = digitsOf(one), shorter = digitsOf(other);
  if (longer.size() < shorter.size()) swap(longer, shorter);
  constexpr std::size_t enough = 7;  // digits that tell subscribers apart
  return longer == shorter || (shorter.size() >= enough && longer.ends_with(shorter));
}

Exchange::Exchange(EventLoop& loop, Options options, const std::string& number, OnMessage onMessage,
                   OnAttempt onAttempt)
    : loop_(loop),
      options_(std::move(options)),
      number_(number),
      onMessage_(std::move(onMessage)),
      onAttempt_(std::move(onAttempt)),
      listener_(loop, options_.listen, [this](std::shared_ptr<Stream> stream) { answerCall(std::move(stream)); }),
      alarm_(loop, [this] { end(false); }) {
  if (options_.folder.empty()) return;
  std::filesystem::create_directories(options_.folder);
  // In one step, for others that are looking.
  const std::string file = fileOf(number_), written = file + ".new";
  std::ofstream(written) << toText(endpoint()) << '\n';
  std::filesystem::rename(written, file);
}

Exchange::~Exchange() {
  for (const auto& stream : incoming_) stream->close();
  if (outgoing_) outgoing_->close();
  // The number stays one that a simulator has: what is sent to it meanwhile waits.
  if (!options_.folder.empty()) std::ofstream(fileOf(number_), std::ios::trunc);
}

std::string Exchange::fileOf(const std::string& number) const {
  return (std::filesystem::path(options_.folder) / digitsOf(number)).string();
}

bool Exchange::knows(const std::string& number) const {
  return std::ranges::any_of(options_.peers, [&](const auto& peer) { return sameNumber(peer.first, number); }) ||
         !filesFor(number).empty();
}

std::vector<std::filesystem::path> Exchange::filesFor(const std::string& number) const {
  std::vector<std::filesystem::path> files;
  if (options_.folder.empty()) return files;
  std::error_code error;
  for (const auto& entry : std::filesystem::directory_iterator(options_.folder, error)) {
    const std::string name = entry.path().filename().string();
    if (name.find_first_not_of("0123456789") == name.npos && sameNumber(name, number)) files.push_back(entry.path());
  }
  return files;
}

std::optional<Endpoint> Exchange::find(const std::string& number) const {
  for (const auto& [peer, endpoint] : options_.peers)
    if (sameNumber(peer, number)) return endpoint;
  for (const auto& path : filesFor(number)) {
    std::string line;
    std::ifstream file(path);
    if (!std::getline(file, line)) continue;
    try {
      return parseEndpoint(line);
    } catch (const std::runtime_error&) {
      continue;
    }
  }
  return std::nullopt;
}

void Exchange::answerCall(std::shared_ptr<Stream> stream) {
  incoming_.push_back(stream);
  // Its owner is the list: a stream that kept itself would stay for ever.
  const auto splitter = std::make_shared<LineSplitter>([this, stream = stream.get()](const std::string& line) {
    constexpr std::string_view word = "message ";
    const auto blank = line.find(' ', word.size());
    auto pdu = line.starts_with(word) && blank != line.npos ? phone::fromHex(std::string_view(line).substr(blank + 1))
                                                            : std::nullopt;
    const std::string mark = line.substr(0, blank).substr(std::min(word.size(), line.size()));
    if (!pdu || !isMark(mark) || pdu->size() > longestPdu || !phone::tpduLength(*pdu)) {
      stream->write("error\n");
      return;
    }
    onMessage_(mark, std::move(*pdu));
    stream->write("ok\n");
  });
  stream->onOctets = [splitter](std::string_view octets) { splitter->receive(octets); };
  stream->onClosed = [this, closed = stream.get()] {
    std::erase_if(incoming_, [closed](const auto& other) { return other.get() == closed; });
  };
  stream->start();
}

void Exchange::work(const std::deque<Travelling>& messages) {
  if (underway_) return;
  const auto now = EventLoop::now();
  const auto due = std::ranges::find_if(messages, [&](const Travelling& message) {
    const auto rest = restsUntil_.find(message.number);
    return rest == restsUntil_.end() || rest->second <= now;
  });
  if (due == messages.end()) return;
  underway_ = *due;
  const auto endpoint = find(due->number);
  if (!endpoint) {
    end(false);
    return;
  }
  alarm_.set(now + patience);
  callTcp(loop_, *endpoint, [this, attempt = ++attempts_](std::shared_ptr<Stream> stream) {
    if (!underway_ || attempts_ != attempt) return;  // too late
    if (stream)
      talk(std::move(stream));
    else
      end(false);
  });
}

void Exchange::talk(std::shared_ptr<Stream> stream) {
  outgoing_ = std::move(stream);
  const auto splitter = std::make_shared<LineSplitter>([this](const std::string& line) { end(line == "ok"); });
  outgoing_->onOctets = [splitter](std::string_view octets) { splitter->receive(octets); };
  outgoing_->onClosed = [this] { end(false); };
  outgoing_->write("message " + underway_->mark + ' ' + phone::toHex(underway_->pdu) + '\n');
  outgoing_->start();
}

void Exchange::end(bool arrived) {
  if (!underway_) return;
  alarm_.cancel();
  if (const auto stream = std::exchange(outgoing_, nullptr)) stream->close();
  const Travelling message = *std::exchange(underway_, std::nullopt);
  if (arrived)
    restsUntil_.erase(message.number);
  else
    restsUntil_[message.number] = EventLoop::now() + pause;
  onAttempt_(message.mark, arrived);
}

std::optional<std::chrono::milliseconds> Exchange::nextWork() const {
  if (underway_ || restsUntil_.empty()) return std::nullopt;
  return std::ranges::min_element(restsUntil_, {}, [](const auto& entry) { return entry.second; })->second;
}

}  // namespace phonesim
