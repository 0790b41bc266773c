#include "phonesim/options.h"

#include <algorithm>
#include <charconv>
#include <functional>
#include <stdexcept>

#include "phonesim/console/words.h"

namespace phonesim {

namespace {

int numberIn(const std::string& text, int most, const char* what) {
  int value = -1;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc() || end != text.data() + text.size() || value < 0 || value > most)
    throw std::runtime_error("\"" + text + "\" is not a number of " + what);
  return value;
}

int capacityIn(const std::string& text) { return numberIn(text, maximalCapacity, "slots"); }

std::string phoneNumberIn(const std::string& text) {
  const auto address = phone::parseNumber(fromUtf8(text));
  if (!address) throw std::runtime_error("\"" + text + "\" is not a phone number");
  return toUtf8(phone::shown(*address));
}

// A checksum (ISO/IEC 7812-1, B) makes it look real, the end of the number makes it this handset's own.
std::string imeiFor(const std::string& number) {
  std::string imei = "00499901000000";
  const std::size_t count = std::min<std::size_t>(6, number.size());
  for (std::size_t i = 0; i < count; ++i) {
    const char c = number[number.size() - 1 - i];
    if (c >= '0' && c <= '9') imei[imei.size() - 1 - i] = c;
  }
  int sum = 0;
  for (std::size_t i = 0; i < imei.size(); ++i) {
    const int digit = (imei[i] - '0') * (i % 2 == 1 ? 2 : 1);
    sum += digit > 9 ? digit - 9 : digit;
  }
  return imei + static_cast<char>('0' + (10 - sum % 10) % 10);
}

void setPeer(Options& options, const std::string& text) {
  const auto equals = text.find('=');
  if (equals == text.npos) throw std::runtime_error("\"" + text + "\" is not NUMBER=HOST:PORT");
  options.network.peers[phoneNumberIn(text.substr(0, equals))] = parseEndpoint(text.substr(equals + 1));
  options.exchange = true;
}

void setElsewhere(Options& options, const std::string& text) {
  if (text == "lost")
    options.elsewhere = Elsewhere::Lost;
  else if (text == "returned")
    options.elsewhere = Elsewhere::Returned;
  else if (text == "answered")
    options.elsewhere = Elsewhere::Answered;
  else
    throw std::runtime_error("\"" + text + "\" is none of: lost, returned, answered");
}

struct Switch {
  std::string_view name;
  std::function<void(Options&)> set;
};

struct Setting {
  std::string_view name;
  std::function<void(Options&, const std::string&)> set;
};

const Switch switchOptions[] = {
    {"--help", [](Options& o) { o.help = true; }},
    {"--no-tcp", [](Options& o) { o.listen.reset(); }},
    {"--terminal", [](Options& o) { o.terminal = true; }},
    {"--no-console", [](Options& o) { o.console = false; }},
};

const Setting valueOptions[] = {
    {"--number", [](Options& o, const std::string& v) { o.identity.number = phoneNumberIn(v); }},
    {"--manufacturer", [](Options& o, const std::string& v) { o.identity.manufacturer = v; }},
    {"--model", [](Options& o, const std::string& v) { o.identity.model = v; }},
    {"--memory", [](Options& o, const std::string& v) { o.memoryFile = v; }},
    {"--me", [](Options& o, const std::string& v) { o.phoneCapacity = capacityIn(v); }},
    {"--sm", [](Options& o, const std::string& v) { o.simCapacity = capacityIn(v); }},
    {"--centre", [](Options& o, const std::string& v) { o.centre = v.empty() ? v : phoneNumberIn(v); }},
    {"--speed", [](Options& o, const std::string& v) { o.lineSpeed = numberIn(v, fastestLine, "bits per second"); }},
    {"--pin", [](Options& o, const std::string& v) { o.pin = v; }},
    {"--listen", [](Options& o, const std::string& v) { o.listen = parseEndpoint(v); }},
    {"--link", [](Options& o, const std::string& v) { o.terminal = true, o.terminalLink = v; }},
    {"--control", [](Options& o, const std::string& v) { o.control = parseEndpoint(v); }},
    {"--script", [](Options& o, const std::string& v) { o.script = v; }},
    {"--network", [](Options& o, const std::string& v) { o.exchange = true, o.network.folder = v; }},
    {"--network-listen",
     [](Options& o, const std::string& v) { o.exchange = true, o.network.listen = parseEndpoint(v); }},
    {"--peer", setPeer},
    {"--elsewhere", setElsewhere},
};

}  // namespace

Options parseOptions(const std::vector<std::string>& arguments) {
  Options options;
  auto next = [&, at = std::size_t{0}]() mutable -> const std::string* {
    return at < arguments.size() ? &arguments[at++] : nullptr;
  };
  while (const std::string* const argument = next()) {
    const auto flag = std::ranges::find(switchOptions, *argument, &Switch::name);
    if (flag != std::end(switchOptions)) {
      flag->set(options);
      continue;
    }
    const auto setting = std::ranges::find(valueOptions, *argument, &Setting::name);
    if (setting == std::end(valueOptions)) throw std::runtime_error("unknown option " + *argument + "; try --help");
    const std::string* const value = next();
    if (!value) throw std::runtime_error(*argument + " needs a value; try --help");
    setting->set(options, *value);
  }
  options.identity.imei = imeiFor(options.identity.number);
  return options;
}

std::string_view optionsHelp() {
  return R"(phonesim: a handset that does not exist, for programs that speak AT commands

  --listen HOST:PORT     where programs reach it; port 0: any that is free (127.0.0.1:0)
  --no-tcp               not by TCP
  --terminal             on a pseudo-terminal (not on Windows)
  --link PATH            the same, with a link to it that keeps its name
  --memory FILE          keeps messages, phone books, service centre and what is on its way
  --me N, --sm N         slots of phone and SIM (100 and 20); 0: no such memory
  --number NUMBER        its own (+46700000001)
  --centre NUMBER        the service centre that the SIM knows (+46700000000)
  --speed BITS           per second, as a serial line has it; 0, the default: as fast as it can
  --pin PIN              the SIM asks for it
  --manufacturer NAME, --model NAME
  --network FOLDER       finds other simulators, and is found by them, through files there
  --peer NUMBER=HOST:PORT  another simulator's --network-listen; may be repeated
  --network-listen HOST:PORT  where other simulators reach it (127.0.0.1:0)
  --elsewhere lost|returned|answered  what becomes of a message for a number that no simulator has:
                         nothing more; it comes back; the number that it was sent to sends it back
  --script FILE          runs these commands
  --control HOST:PORT    commands by TCP too
  --no-console           no commands on standard input, whose end ends the program otherwise

Commands: type help.
)";
}

}  // namespace phonesim
