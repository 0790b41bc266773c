// The command line.
#include "phonesim/options.h"

#include <algorithm>
#include <set>
#include <stdexcept>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace phonesim {
namespace {

using testing::Pair;
using testing::UnorderedElementsAre;

using Arguments = std::vector<std::string>;

// What is wrong with them.
std::string refusalOf(const Arguments& arguments) {
  try {
    parseOptions(arguments);
  } catch (const std::runtime_error& error) {
    return error.what();
  }
  return "nothing";
}

std::string at(const std::optional<Endpoint>& endpoint) { return endpoint ? toText(*endpoint) : "nowhere"; }

// "--a", "--b" out of a text.
std::set<std::string> optionsIn(std::string_view text) {
  std::set<std::string> names;
  for (std::size_t start = 0; (start = text.find("--", start)) != text.npos;) {
    const auto end = text.find_first_not_of("-abcdefghijklmnopqrstuvwxyz", start);
    names.emplace(text.substr(start, end - start));
    start = std::min(end, text.size());
  }
  return names;
}

const char* const flags[] = {"--no-tcp", "--terminal", "--no-console"};
const char* const settings[] = {"--number",    "--manufacturer",  "--model",  "--memory",  "--me",
                                "--sm",        "--centre",        "--speed",  "--pin",     "--listen",
                                "--link",      "--control",       "--script", "--network", "--peer",
                                "--elsewhere", "--network-listen"};

TEST(OptionsTest, Help_TellsEveryOptionAndNoOther) {
  std::set<std::string> all(std::begin(flags), std::end(flags));
  all.insert(std::begin(settings), std::end(settings));
  EXPECT_EQ(optionsIn(optionsHelp()), all);
  EXPECT_TRUE(parseOptions({"--help"}).help);
}

TEST(OptionsTest, NoArguments_AreTheDefaults) {
  const Options options = parseOptions({});
  EXPECT_FALSE(options.help);
  EXPECT_EQ(options.identity.number, "+46700000001");
  EXPECT_EQ(options.identity.manufacturer, "Marrick");
  EXPECT_EQ(options.identity.model, "Simulated handset");
  EXPECT_EQ(options.memoryFile, "");
  EXPECT_EQ(options.phoneCapacity, std::nullopt);
  EXPECT_EQ(options.simCapacity, std::nullopt);
  EXPECT_EQ(options.centre, std::nullopt);
  EXPECT_EQ(options.pin, "");
  EXPECT_EQ(options.lineSpeed, 0);
  EXPECT_EQ(at(options.listen), "127.0.0.1:0");
  EXPECT_FALSE(options.terminal);
  EXPECT_EQ(options.terminalLink, "");
  EXPECT_EQ(at(options.control), "nowhere");
  EXPECT_EQ(options.script, "");
  EXPECT_TRUE(options.console);
  EXPECT_FALSE(options.exchange);
  EXPECT_EQ(options.network.folder, "");
  EXPECT_TRUE(options.network.peers.empty());
  EXPECT_EQ(at(options.network.listen), "127.0.0.1:0");
  EXPECT_EQ(options.elsewhere, Elsewhere::Lost);
}

TEST(OptionsTest, Identity_IsWhatTheOptionsSay) {
  const Options options =
      parseOptions({"--number", "+46 (70) 123-45 67", "--manufacturer", "Acme Phones", "--model", "One"});
  EXPECT_EQ(options.identity.number, "+46701234567");
  EXPECT_EQ(options.identity.manufacturer, "Acme Phones");
  EXPECT_EQ(options.identity.model, "One");
}

// Two handsets of different numbers are two devices for programs that tell them apart by this. The check digits are
// those of ISO/IEC 7812-1: with every second digit from the right doubled, and its digits added, the sum ends in 0.
TEST(OptionsTest, Imei_EndsLikeTheNumberAndHasItsCheckDigit) {
  EXPECT_EQ(parseOptions({}).identity.imei, "004999010000015");
  EXPECT_EQ(parseOptions({"--number", "+46700000002"}).identity.imei, "004999010000023");
  EXPECT_EQ(parseOptions({"--number", "+46709876543"}).identity.imei, "004999018765437");
  EXPECT_EQ(parseOptions({"--number", "15"}).identity.imei, "004999010000155");
}

TEST(OptionsTest, Memory_AndItsSizesAreTaken) {
  const Options options = parseOptions({"--memory", "a folder/my.phone", "--me", "0", "--sm", "10000"});
  EXPECT_EQ(options.memoryFile, "a folder/my.phone");
  EXPECT_EQ(options.phoneCapacity, 0);
  EXPECT_EQ(options.simCapacity, 10000);
}

TEST(OptionsTest, Sim_HasServiceCentreAndPin) {
  const Options options = parseOptions({"--centre", "+46 705 008 999", "--pin", "0123", "--speed", "115200"});
  EXPECT_EQ(options.centre, "+46705008999");
  EXPECT_EQ(options.pin, "0123");
  EXPECT_EQ(options.lineSpeed, 115200);
  EXPECT_EQ(parseOptions({"--centre", ""}).centre, "") << "a SIM that knows none";
}

TEST(OptionsTest, PlacesToBeReachedAt_AreTaken) {
  EXPECT_EQ(at(parseOptions({"--listen", "0.0.0.0:65535"}).listen), "0.0.0.0:65535");
  EXPECT_EQ(at(parseOptions({"--listen", "::1:80"}).listen), "::1:80");
  EXPECT_EQ(at(parseOptions({"--no-tcp"}).listen), "nowhere");
  EXPECT_EQ(at(parseOptions({"--control", "localhost:0"}).control), "localhost:0");
  EXPECT_TRUE(parseOptions({"--terminal"}).terminal);
  const Options linked = parseOptions({"--link", "/tmp/phone"});
  EXPECT_TRUE(linked.terminal) << "a link is one to a terminal";
  EXPECT_EQ(linked.terminalLink, "/tmp/phone");
}

TEST(OptionsTest, Commands_ComeFromWhereTheOptionsSay) {
  const Options options = parseOptions({"--script", "bad day.txt", "--no-console"});
  EXPECT_EQ(options.script, "bad day.txt");
  EXPECT_FALSE(options.console);
}

TEST(OptionsTest, EachWayToOtherSimulators_SwitchesTheNetworkOn) {
  const Options byFolder = parseOptions({"--network", "net"});
  EXPECT_TRUE(byFolder.exchange);
  EXPECT_EQ(byFolder.network.folder, "net");
  const Options heard = parseOptions({"--network-listen", "127.0.0.2:0"});
  EXPECT_TRUE(heard.exchange);
  EXPECT_EQ(at(heard.network.listen), "127.0.0.2:0");
  const Options told = parseOptions({"--peer", "+46 70-2=127.0.0.1:1002", "--peer", "0703=localhost:1003"});
  EXPECT_TRUE(told.exchange);
  std::vector<std::pair<std::string, std::string>> peers;
  for (const auto& [number, endpoint] : told.network.peers) peers.emplace_back(number, toText(endpoint));
  EXPECT_THAT(peers, UnorderedElementsAre(Pair("+46702", "127.0.0.1:1002"), Pair("0703", "localhost:1003")));
}

TEST(OptionsTest, Elsewhere_IsOneOfThree) {
  EXPECT_EQ(parseOptions({"--elsewhere", "lost"}).elsewhere, Elsewhere::Lost);
  EXPECT_EQ(parseOptions({"--elsewhere", "returned"}).elsewhere, Elsewhere::Returned);
  EXPECT_EQ(parseOptions({"--elsewhere", "answered"}).elsewhere, Elsewhere::Answered);
  EXPECT_EQ(refusalOf({"--elsewhere", "Lost"}), "\"Lost\" is none of: lost, returned, answered");
}

TEST(OptionsTest, OptionGivenTwice_TheLastOneCounts) {
  const Options options = parseOptions({"--me", "5", "--no-tcp", "--me", "6", "--listen", "127.0.0.1:9"});
  EXPECT_EQ(options.phoneCapacity, 6);
  EXPECT_EQ(at(options.listen), "127.0.0.1:9");
}

TEST(OptionsTest, UnknownArgument_IsNamed) {
  for (const char* const word : {"--modell", "-h", "phone", "", "--me=5", "--Help"})
    EXPECT_EQ(refusalOf({"--no-console", word}), "unknown option " + std::string(word) + "; try --help");
}

TEST(OptionsTest, MissingValue_IsNoticedForEveryOptionThatNeedsOne) {
  for (const char* const name : settings)
    EXPECT_EQ(refusalOf({"--no-tcp", name}), std::string(name) + " needs a value; try --help");
  for (const char* const name : flags)
    EXPECT_EQ(refusalOf({name, "value"}), "unknown option value; try --help") << name << " takes none";
}

TEST(OptionsTest, WrongNumbers_AreRefusedWithWhatTheyShouldBe) {
  for (const char* const option : {"--me", "--sm"})
    for (const char* const word : {"", "-1", "10001", "5 ", "+5", "0x5", "many", "99999999999999999999"})
      EXPECT_EQ(refusalOf({option, word}), '"' + std::string(word) + "\" is not a number of slots") << option;
  EXPECT_EQ(parseOptions({"--speed", "10000000"}).lineSpeed, 10000000);
  for (const char* const word : {"10000001", "-300", "fast", ""})
    EXPECT_EQ(refusalOf({"--speed", word}), '"' + std::string(word) + "\" is not a number of bits per second");
}

TEST(OptionsTest, WrongPhoneNumbers_AreRefused) {
  for (const char* const word : {"Anna", "+", "+46+70", "123456789012345678901", "(-)"}) {
    const std::string refusal = '"' + std::string(word) + "\" is not a phone number";
    EXPECT_EQ(refusalOf({"--number", word}), refusal);
    EXPECT_EQ(refusalOf({"--centre", word}), refusal);
    EXPECT_EQ(refusalOf({"--peer", std::string(word) + "=127.0.0.1:1"}), refusal);
  }
  EXPECT_EQ(refusalOf({"--number", ""}), "\"\" is not a phone number");
}

TEST(OptionsTest, WrongPlaces_AreRefused) {
  for (const char* const word : {"", "127.0.0.1", ":5", "host:", "host:65536", "host:-1", "host:1x", "host: 1"}) {
    const std::string refusal = '"' + std::string(word) + "\" is not HOST:PORT";
    for (const char* const option : {"--listen", "--control", "--network-listen"})
      EXPECT_EQ(refusalOf({option, word}), refusal) << option;
    EXPECT_EQ(refusalOf({"--peer", "0702=" + std::string(word)}), refusal);
  }
  for (const char* const word : {"", "0702", "127.0.0.1:5"})
    EXPECT_EQ(refusalOf({"--peer", word}), '"' + std::string(word) + "\" is not NUMBER=HOST:PORT");
}

}  // namespace
}  // namespace phonesim
