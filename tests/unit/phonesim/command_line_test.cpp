#include "phonesim/handset/command_line.h"

#include <gtest/gtest.h>

namespace phonesim {
namespace {

Invocation only(std::string_view body) {
  const auto command = takeCommand(body);
  EXPECT_TRUE(command) << body;
  EXPECT_EQ(body, "");
  return command.value_or(Invocation{});
}

bool isRefused(std::string_view body) { return !takeCommand(body); }

TEST(CommandLine, Body_StandsBehindThePrefixInAnyCaseAndBehindRubbish) {
  EXPECT_EQ(bodyOf("AT"), "");
  EXPECT_EQ(bodyOf("at+CSQ"), "+CSQ");
  EXPECT_EQ(bodyOf("aTE1"), "E1");
  EXPECT_EQ(bodyOf("0791AAAT+CSQ"), "+CSQ");
  EXPECT_EQ(bodyOf("0791AA"), std::nullopt);
  EXPECT_EQ(bodyOf(""), std::nullopt);
  EXPECT_EQ(bodyOf("A"), std::nullopt);
}

TEST(CommandLine, Extended_HasFourForms) {
  EXPECT_EQ(only("+csq"), (Invocation{"+CSQ", Form::Execute, {}, {}}));
  EXPECT_EQ(only("+CPMS?"), (Invocation{"+CPMS", Form::Read, {}, {}}));
  EXPECT_EQ(only("+CPMS=?"), (Invocation{"+CPMS", Form::Test, {}, {}}));
  EXPECT_EQ(only("+CMGL=4"), (Invocation{"+CMGL", Form::Set, {}, {{"4", false}}}));
}

TEST(CommandLine, Arguments_MayBeQuotedLeftOutAndSurroundedByBlanks) {
  EXPECT_EQ(only("+CPMS= \"SM\" , \"ME\""), (Invocation{"+CPMS", Form::Set, {}, {{"SM", true}, {"ME", true}}}));
  EXPECT_EQ(only("+CNMI=2,,0"), (Invocation{"+CNMI", Form::Set, {}, {{"2", false}, {"", false}, {"0", false}}}));
  EXPECT_EQ(only("+CSCA=\"a;b,c\""), (Invocation{"+CSCA", Form::Set, {}, {{"a;b,c", true}}}));
  EXPECT_EQ(only("+CMGD="), (Invocation{"+CMGD", Form::Set, {}, {{"", false}}}));
}

TEST(CommandLine, CodesInQuotes_StandForWhatCannotStandThere) {
  EXPECT_EQ(only(R"(+CPBF="\22\0d\0A\5C22")"), (Invocation{"+CPBF", Form::Set, {}, {{"\"\r\n\\22", true}}}));
  // Of other octets there is no need to speak in codes; without quotes nothing is one.
  EXPECT_EQ(only(R"(+CPBF="\41\2")"), (Invocation{"+CPBF", Form::Set, {}, {{"\\41\\2", true}}}));
  EXPECT_EQ(only(R"(+CPBF=\22)"), (Invocation{"+CPBF", Form::Set, {}, {{"\\22", false}}}));
}

TEST(CommandLine, SeveralCommands_AreTakenOneByOne) {
  std::string_view body = "E0V1+CMEE=1;+CREG=2;S3?&F";
  EXPECT_EQ(takeCommand(body), (Invocation{"E", Form::Execute, 0, {}}));
  EXPECT_EQ(takeCommand(body), (Invocation{"V", Form::Execute, 1, {}}));
  EXPECT_EQ(takeCommand(body), (Invocation{"+CMEE", Form::Set, {}, {{"1", false}}}));
  EXPECT_EQ(takeCommand(body), (Invocation{"+CREG", Form::Set, {}, {{"2", false}}}));
  EXPECT_EQ(takeCommand(body), (Invocation{"S", Form::Read, 3, {}}));
  EXPECT_EQ(takeCommand(body), (Invocation{"&F", Form::Execute, {}, {}}));
  EXPECT_EQ(body, "");
}

TEST(CommandLine, Dialling_TakesTheRestOfTheLine) {
  EXPECT_EQ(only("D+4670;E1"), (Invocation{"D", Form::Execute, {}, {{"+4670;E1", false}}}));
}

TEST(CommandLine, WhatCannotBeRead_IsRefused) {
  EXPECT_TRUE(isRefused("+"));
  EXPECT_TRUE(isRefused("+=1"));
  EXPECT_TRUE(isRefused("+CPMS=\"SM"));
  EXPECT_TRUE(isRefused("+CPMS=\"SM\"x"));
  EXPECT_TRUE(isRefused("+CSQ?1"));
  EXPECT_TRUE(isRefused("="));
  EXPECT_TRUE(isRefused("&"));
  EXPECT_TRUE(isRefused("E12345678901234"));
}

TEST(CommandLine, Numbers_AreDigitsWithinTheLimits) {
  const Invocation command = only("+X=12,\"3\",,-1,1234567890,x");
  EXPECT_EQ(command.numberAt(0, 0, 12), 12);
  EXPECT_EQ(command.numberAt(0, 0, 11), std::nullopt);
  EXPECT_EQ(command.numberAt(0, 13, 99), std::nullopt);
  EXPECT_EQ(command.numberAt(1, 0, 99), std::nullopt);  // in quotes it is a text
  EXPECT_EQ(command.numberAt(2, 0, 99), std::nullopt);
  EXPECT_EQ(command.numberAt(2, 0, 99, 7), 7);
  EXPECT_EQ(command.numberAt(3, 0, 99, 7), std::nullopt);
  EXPECT_EQ(command.numberAt(4, 0, 2000000000), std::nullopt);
  EXPECT_EQ(command.numberAt(5, 0, 99), std::nullopt);
  EXPECT_EQ(command.numberAt(6, 0, 99), std::nullopt);
  EXPECT_EQ(command.numberAt(6, 0, 99, 5), 5);
}

}  // namespace
}  // namespace phonesim
