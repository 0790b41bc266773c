// The phone books.
#include "phonesim/handset/commands.h"
#include "unit/phonesim/fixture.h"

namespace phonesim {
namespace {

using PhoneBookTest = DialogueTest;

TEST_F(PhoneBookTest, Books_AreChosenAndCounted) {
  EXPECT_EQ(ask("AT+CPBS=?;+CPBS?"), "+CPBS: (\"SM\",\"ME\",\"ON\")|+CPBS: \"SM\",0,100|OK|");
  EXPECT_EQ(ask("AT+CPBW=,\"+4670\",145,\"Anna\""), "OK|");
  EXPECT_EQ(ask("AT+CPBS?"), "+CPBS: \"SM\",1,100|OK|");
  EXPECT_EQ(ask("AT+CPBS=\"ME\";+CPBS?"), "+CPBS: \"ME\",0,100|OK|");
  EXPECT_EQ(ask("AT+CPBS=\"MC\""), "+CME ERROR: 4|");
  EXPECT_EQ(ask("AT+CPBS=\"SM\",1,2"), "+CME ERROR: 50|");
  EXPECT_EQ(ask("AT+CPBS"), "+CME ERROR: 4|");
  EXPECT_EQ(ask("AT+CPBS?"), "+CPBS: \"ME\",0,100|OK|");
}

TEST_F(PhoneBookTest, Entries_AreWrittenReadAndRemoved) {
  EXPECT_EQ(ask("AT+CPBW=?;+CPBR=?;+CPBF=?"),
            "+CPBW: (1-100),21,(129,145,161),18|+CPBR: (1-100),21,18|+CPBF: 21,18|OK|");
  EXPECT_EQ(ask("AT+CPBW=3,\"+46701234567\",145,\"Anna\""), "OK|");
  EXPECT_TRUE(handset.takeChanged());
  EXPECT_EQ(ask("AT+CPBW=,\"0701\",129,\"Bo; \"\";+CPBW=,\"0702\""), "ERROR|");  // quotes cannot stand in quotes
  EXPECT_EQ(ask("AT+CPBW=,\"0701\",129,\"Bo; Co, Do\";+CPBW=,\"46702\",145"), "OK|");
  EXPECT_EQ(
      ask("AT+CPBR=1,100"),
      "+CPBR: 1,\"0701\",129,\"Bo; Co, Do\"|+CPBR: 2,\"+46702\",145,\"\"|+CPBR: 3,\"+46701234567\",145,\"Anna\"|OK|");
  EXPECT_EQ(ask("AT+CPBR=2"), "+CPBR: 2,\"+46702\",145,\"\"|OK|");
  EXPECT_EQ(ask("AT+CPBW=2;+CPBW=1,\"\""), "OK|");
  EXPECT_EQ(ask("AT+CPBR=1,3"), "+CPBR: 3,\"+46701234567\",145,\"Anna\"|OK|");
  EXPECT_EQ(ask("AT+CPBW=50"), "OK|");  // nothing was there
  EXPECT_EQ(handset.contacts(Place::Sim).used(), 1);
}

TEST_F(PhoneBookTest, WhatIsNoEntry_IsRefused) {
  EXPECT_EQ(ask("AT+CPBR=1"), "OK|");  // it is empty, which is no error
  EXPECT_EQ(ask("AT+CPBR=1,100"), "OK|");
  for (const char* const wrong : {"AT+CPBR=0", "AT+CPBR=101", "AT+CPBR=5,4", "AT+CPBR=1,101", "AT+CPBR=",
                                  "AT+CPBR=\"1\"", "AT+CPBW=0,\"1\"", "AT+CPBW=101", "AT+CPBW=x,\"1\"", "AT+CPBW="})
    EXPECT_EQ(ask(wrong), "+CME ERROR: 21|") << wrong;
  EXPECT_EQ(ask("AT+CPBW=1,\"Anna\""), "+CME ERROR: 27|");
  EXPECT_EQ(ask("AT+CPBW=1,\"+467012345678901234567\""), "+CME ERROR: 26|");
  EXPECT_EQ(ask("AT+CPBW=1,\"1\",129,\"1234567890123456789\""), "+CME ERROR: 24|");
  EXPECT_EQ(ask("AT+CPBW=1,\"1\",129,\"\xE5\""), "+CME ERROR: 25|");
  EXPECT_EQ(ask("AT+CPBW=1,\"1\",208,\"x\""), "+CME ERROR: 50|");
  EXPECT_EQ(ask("AT+CPBW=1,\"1\",1"), "+CME ERROR: 50|");
  EXPECT_EQ(ask("AT+CPBW=1,\"1\",129,\"x\",1"), "+CME ERROR: 50|");
  EXPECT_EQ(ask("AT+CPBW"), "+CME ERROR: 4|");
  EXPECT_EQ(handset.contacts(Place::Sim).used(), 0);
}

TEST_F(PhoneBookTest, Number_MayComePlainInAnyCharacterSet) {
  ask("AT+CSCS=\"UCS2\"");
  // Eight digits could be two characters, were these letters of a number.
  EXPECT_EQ(ask("AT+CPBW=1,\"46701234\",145,\"0041\";+CPBW=2,\"+46701\",145;+CPBW=3,\"00340036\",129"), "OK|");
  const auto& entries = handset.contacts(Place::Sim).entries();
  EXPECT_EQ(entries.at(1).number, number(u"+46701234"));
  EXPECT_EQ(entries.at(2).number, number(u"+46701"));
  EXPECT_EQ(entries.at(3).number, number(u"46"));
}

TEST_F(PhoneBookTest, NumberThatIsTooLong_IsToldFromOneThatIsNone) {
  ask("AT+CSCS=\"UCS2\"");
  std::string twenty = "002B";
  for (int i = 0; i < 20; ++i) twenty += "0034";
  EXPECT_EQ(ask("AT+CPBW=1,\"" + twenty + "\""), "OK|");
  EXPECT_EQ(ask("AT+CPBW=1,\"" + twenty + "0034\""), "+CME ERROR: 26|");
  EXPECT_EQ(ask("AT+CPBW=1,\"123456789012345678901\""), "+CME ERROR: 26|");
  EXPECT_EQ(ask("AT+CPBW=1,\"0041006E006E0061006C006900730061\""), "+CME ERROR: 27|");
}

TEST_F(PhoneBookTest, Numbers_AreReadAsDigitsWhateverTheCharacterSet) {
  ask("AT+CPBW=1,\"+46701234\",145,\"Al\"");
  EXPECT_EQ(ask("AT+CSCS=\"UCS2\";+CPBR=1;+CPBF=\"0041\";+CNUM"),
            "+CPBR: 1,\"+46701234\",145,\"0041006C\"|+CPBF: 1,\"+46701234\",145,\"0041006C\"|"
            "+CNUM: ,\"+46700000001\",145|OK|");
  EXPECT_EQ(ask("AT+CPBS=\"ON\";+CPBR=1"), "+CPBR: 1,\"+46700000001\",145,\"\"|OK|");
}

TEST_F(PhoneBookTest, Type_IsKept) {
  EXPECT_EQ(ask("AT+CPBW=1,\"0701\",161,\"A\";+CPBW=2,\"+4670\",129;+CPBW=3,\"4670\",255"), "OK|");
  EXPECT_EQ(ask("AT+CPBR=1,3"), R"(+CPBR: 1,"0701",161,"A"|+CPBR: 2,"4670",129,""|+CPBR: 3,"4670",255,""|OK|)");
}

// The backslash's code is a letter of the 7-bit alphabet.
TEST_F(PhoneBookTest, NameWithQuotesAndLineEnds_ComesBackWhole) {
  EXPECT_EQ(ask(R"(AT+CPBW=1,"1",129,"\22Bo\22\0d\0ACo")"), "OK|");
  const auto& name = [this]() -> const std::u16string& { return handset.contacts(Place::Sim).entries().at(1).name; };
  EXPECT_EQ(name(), u"\"Bo\"\r\nCo");
  EXPECT_EQ(ask("AT+CPBR=1"), R"(+CPBR: 1,"1",129,"\22Bo\22\0D\0ACo"|OK|)");
  EXPECT_EQ(ask(R"(AT+CPBW=1,"1",129,"\be 5\5C22 \")"), "OK|");
  EXPECT_EQ(name(), u"\u00D6be 5\u00D622 \u00D6");
  EXPECT_EQ(ask("AT+CPBR=1"), R"(+CPBR: 1,"1",129,"\be 5\5C22 \"|OK|)");
  ask("AT+CSCS=\"UCS2\"");
  EXPECT_EQ(ask("AT+CPBW=1,\"1\",129,\"00220031\";+CPBR=1"), "+CPBR: 1,\"1\",129,\"00220031\"|OK|");
}

TEST_F(PhoneBookTest, Full_IsFull) {
  for (int i = 1; i <= PhoneBook::capacity; ++i) ASSERT_EQ(ask("AT+CPBW=,\"1\""), "OK|");
  EXPECT_EQ(ask("AT+CPBW=,\"1\""), "+CME ERROR: 20|");
  EXPECT_EQ(ask("AT+CPBW=7;+CPBW=,\"2\";+CPBR=7"), "+CPBR: 7,\"2\",129,\"\"|OK|");
}

TEST_F(PhoneBookTest, Find_GivesNamesThatBeginLikeThat) {
  ask("AT+CPBW=1,\"1\",129,\"Anna\";+CPBW=2,\"2\",129,\"Bo\";+CPBW=3,\"3\",129,\"ANDERS\"");
  EXPECT_EQ(ask("AT+CPBF=\"an\""), "+CPBF: 1,\"1\",129,\"Anna\"|+CPBF: 3,\"3\",129,\"ANDERS\"|OK|");
  EXPECT_EQ(ask("AT+CPBF=\"nn\""), "+CME ERROR: 22|");
  EXPECT_EQ(ask("AT+CPBF=\"Annabel\""), "+CME ERROR: 22|");
  EXPECT_EQ(ask("AT+CPBF"), "+CME ERROR: 4|");
}

TEST_F(PhoneBookTest, Names_AreInTheCharacterSetThatWasChosen) {
  EXPECT_EQ(ask("AT+CSCS=\"UCS2\";+CPBW=1,\"002B00340036\",145,\"00C5042F\""), "OK|");
  EXPECT_EQ(handset.contacts(Place::Sim).entries().at(1), (Contact{number(u"+46"), u"\u00C5\u042F"}));
  EXPECT_EQ(ask("AT+CPBR=1"), "+CPBR: 1,\"+46\",145,\"00C5042F\"|OK|");
  EXPECT_EQ(ask("AT+CSCS=\"HEX\";+CPBR=1"), "+CPBR: 1,\"+46\",145,\"0E3F\"|OK|");  // the alphabet lacks the second
  EXPECT_EQ(ask("AT+CSCS=\"IRA\";+CPBR=1"), "+CPBR: 1,\"+46\",145,\"??\"|OK|");
}

TEST_F(PhoneBookTest, OwnNumber_IsReadOnly) {
  EXPECT_EQ(ask("AT+CPBS=\"ON\";+CPBS?"), "+CPBS: \"ON\",1,1|OK|");
  EXPECT_EQ(ask("AT+CPBR=?;+CPBR=1"), "+CPBR: (1-1),21,18|+CPBR: 1,\"+46700000001\",145,\"\"|OK|");
  EXPECT_EQ(ask("AT+CPBR=2"), "+CME ERROR: 21|");
  EXPECT_EQ(ask("AT+CPBW=1"), "+CME ERROR: 3|");
}

TEST_F(PhoneBookTest, LockedSim_KeepsThemToItself) {
  handset.insertSim("1234");
  EXPECT_EQ(ask("AT+CPBR=1"), "+CME ERROR: 11|");
  handset.removeSim();
  EXPECT_EQ(ask("AT+CPBS=\"ME\""), "+CME ERROR: 10|");
}

}  // namespace
}  // namespace phonesim
