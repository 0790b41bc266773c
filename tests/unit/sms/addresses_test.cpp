// Phone numbers, the service centre, and the names of people.
#include "support/seam_recorder.h"
#include "support/text.h"
#include "unit/sms/engine_fixture.h"

namespace sms_tests {
namespace {

using testing_support::Recorder;
using testing_support::utf8;

constexpr const char* optionsKey = "Software\\Microsoft\\Office\\9.0\\Outlook\\Options\\TextMessage";
constexpr const char* fallback = "+46701740699";

class Addresses : public EngineFixture {
 protected:
  Addresses() { start(); }

  void option(const std::string& name, const std::string& text) {
    system.registry.setString(rootCurrentUser, optionsKey, name, text);
  }
  void option(const std::string& name, std::uint32_t number) {
    system.registry.setDword(rootCurrentUser, optionsKey, name, number);
  }
  std::string serviceCentre() { return utf8(probe().GetServiceCentreAddress()); }
  std::string own() { return utf8(probe().GetOwnAddress()); }
  std::string from(StringView number) { return utf8(probe().BuildFromAddress(number)); }
};

class GetServiceCentreAddress : public Addresses {};
class GetOwnAddress : public Addresses {};
class BuildFromAddress : public Addresses {};

// Taking addresses apart ---------------------------------------------------------------------------------------------

TEST(ExtractPhoneNumber, OfADisplayAddress_IsTheBracketedNumberWithoutSpacesAndParentheses) {
  const auto numberOf = [](StringView address) { return utf8(SMSHandlerProbe::ExtractPhoneNumber(address)); };
  EXPECT_EQ(numberOf(u"Contact Name [+12 (34) 567 89 01]"), "+12345678901");
  EXPECT_EQ(numberOf(u"[+12 34 5678901]"), "+12345678901");
  EXPECT_EQ(numberOf(u"Name (work) [ +1 ] [+2]"), "+1");
  EXPECT_EQ(numberOf(u"[+12-34]"), "+12-34");
}

TEST(ExtractPhoneNumber, WithoutBrackets_IsEmpty) {
  for (const StringView address : {u"", u"+12345678901", u"Anna [+123", u"Anna +123]", u"Anna []", u"Anna ]+1["})
    EXPECT_EQ(utf8(SMSHandlerProbe::ExtractPhoneNumber(address)), "") << utf8(address);
}

TEST(ExtractParenthesisedNumber, OfAServiceCentreText_IsTheNumberWithoutSpaces) {
  const auto numberOf = [](StringView text) { return utf8(SMSHandlerProbe::ExtractParenthesisedNumber(text)); };
  EXPECT_EQ(numberOf(u"Operator (+46 70 174 06 99)"), "+46701740699");
  EXPECT_EQ(numberOf(u"(+1)"), "+1");
  EXPECT_EQ(numberOf(u"((+1))"), "(+1");  // only spaces are removed
  EXPECT_EQ(numberOf(u"(a) (+1)"), "a");
  EXPECT_EQ(numberOf(u"+46701740699"), "");
  EXPECT_EQ(numberOf(u"()"), "");
  EXPECT_EQ(numberOf(u""), "");
}

// The service centre
// ---------------------------------------------------------------------------------------------------

TEST_F(GetServiceCentreAddress, NothingSet_IsTheBuiltInNumber) {
  EXPECT_EQ(serviceCentre(), fallback);
  EXPECT_EQ(trace(), Lines{});
}

TEST_F(GetServiceCentreAddress, ReadsItsThreeSettingsOfTheCurrentUserInOrder) {
  system.registry.setKey(rootCurrentUser, optionsKey);
  system.registry.clearLog();
  serviceCentre();
  const std::string key = std::string("HKCU\\") + optionsKey;
  Lines expected;
  for (const char* const name : {"SCAddress", "SCAddress_UseOwn", "SCAddress_Own"}) {
    expected.push_back("open " + key);
    expected.push_back("query size " + key + " \"" + name + "\" -> 2");
    expected.push_back("close " + key);
  }
  EXPECT_EQ(system.registry.log(), expected);
}

TEST_F(GetServiceCentreAddress, ChosenEntry_IsUsed) {
  option("SCAddress", "Operator (+47 123)");
  EXPECT_EQ(serviceCentre(), "+47123");
  option("SCAddress_UseOwn", 0);
  option("SCAddress_Own", "(+48)");
  EXPECT_EQ(serviceCentre(), "+47123");
}

TEST_F(GetServiceCentreAddress, OwnNumber_IsUsedWhenTheUserWantsIt) {
  option("SCAddress", "Operator (+47 123)");
  option("SCAddress_Own", "(+48 1)");
  option("SCAddress_UseOwn", 1);
  EXPECT_EQ(serviceCentre(), "+481");
  option("SCAddress_UseOwn", 4294967295u);  // any number but 0
  EXPECT_EQ(serviceCentre(), "+481");
  option("SCAddress_UseOwn", "1");
  EXPECT_EQ(serviceCentre(), "+481");
}

TEST_F(GetServiceCentreAddress, OwnNumberWantedButEmpty_IsTheBuiltInNumberEvenWithAChosenEntry) {
  option("SCAddress", "Operator (+47 123)");
  option("SCAddress_UseOwn", 1);
  EXPECT_EQ(serviceCentre(), fallback);
  option("SCAddress_Own", "()");
  EXPECT_EQ(serviceCentre(), fallback);
  option("SCAddress_Own", "+48");  // without parentheses there is no number
  EXPECT_EQ(serviceCentre(), fallback);
}

TEST_F(GetServiceCentreAddress, ChosenEntryWithoutANumber_IsTheBuiltInNumber) {
  option("SCAddress", "Operator");
  option("SCAddress_Own", "(+48)");
  EXPECT_EQ(serviceCentre(), fallback);
}

TEST_F(GetServiceCentreAddress, FlagThatIsNoNumber_IsLoggedAndGivesTheBuiltInNumber) {
  option("SCAddress", "Operator (+47 123)");
  option("SCAddress_UseOwn", "yes");
  EXPECT_EQ(serviceCentre(), fallback);
  EXPECT_EQ(trace(), Lines{"Error:13, Type mismatch, mrktxtmsg"});
}

TEST_F(GetServiceCentreAddress, FlagThatIsAnEmptyText_CountsAsMissing) {
  option("SCAddress", "Operator (+47 123)");
  option("SCAddress_UseOwn", "");
  EXPECT_EQ(serviceCentre(), "+47123");
  EXPECT_EQ(trace(), Lines{});
}

TEST_F(GetServiceCentreAddress, SettingsOfTheMachine_AreNotLookedAt) {
  system.registry.setString(rootLocalMachine, optionsKey, "SCAddress", "Operator (+47 123)");
  EXPECT_EQ(serviceCentre(), fallback);
}

// The user's own address
// -----------------------------------------------------------------------------------------------

TEST_F(GetOwnAddress, NameAndNumber_AreJoinedAsADisplayAddress) {
  option("My_FullName", "Anna Berg");
  option("My_PhoneNo", "+46 (70) 1");
  EXPECT_EQ(own(), "Anna Berg [+46 (70) 1]");  // the number as typed
}

TEST_F(GetOwnAddress, ReadsTheNameAndThenTheNumber) {
  system.registry.setKey(rootCurrentUser, optionsKey);
  system.registry.clearLog();
  own();
  const std::string key = std::string("HKCU\\") + optionsKey;
  EXPECT_EQ(system.registry.log(),
            (Lines{"open " + key, "query size " + key + " \"My_FullName\" -> 2", "close " + key, "open " + key,
                   "query size " + key + " \"My_PhoneNo\" -> 2", "close " + key}));
}

TEST_F(GetOwnAddress, OnlyAName_EndsInASpace) {
  option("My_FullName", "Anna Berg");
  EXPECT_EQ(own(), "Anna Berg ");
}

TEST_F(GetOwnAddress, OnlyANumber_IsTheBracketedNumber) {
  option("My_PhoneNo", "+461");
  EXPECT_EQ(own(), "[+461]");
}

TEST_F(GetOwnAddress, Neither_IsEmpty) {
  EXPECT_EQ(own(), "");
  option("My_FullName", "");
  option("My_PhoneNo", "");
  EXPECT_EQ(own(), "");
  EXPECT_EQ(trace(), Lines{});
}

TEST_F(GetOwnAddress, NumberStoredAsANumber_IsTakenAsText) {
  option("My_PhoneNo", 4670);
  EXPECT_EQ(own(), "[4670]");
}

TEST_F(GetOwnAddress, SettingsOfTheMachine_AreNotLookedAt) {
  system.registry.setString(rootLocalMachine, optionsKey, "My_FullName", "Anna");
  EXPECT_EQ(own(), "");
}

// The sender's address
// -------------------------------------------------------------------------------------------------

TEST_F(BuildFromAddress, KnownNumber_IsTheContactsNameAndTheBracketedNumber) {
  addContact(contacts, u"Anna Berg", u"+46 (70) 1");
  EXPECT_EQ(from(u"+46701"), "Anna Berg [+46701]");
  EXPECT_EQ(trace(), Lines{});
}

TEST_F(BuildFromAddress, ContactInASubfolder_IsFound) {
  addContact(contacts.addSubfolder("A").addSubfolder("A1"), u"Anna", u"+46701");
  EXPECT_EQ(from(u"+46701"), "Anna [+46701]");
}

TEST_F(BuildFromAddress, UnknownNumber_IsTheBracketedNumber) {
  addContact(contacts, u"Anna", u"+46702");
  EXPECT_EQ(from(u"+46701"), "[+46701]");
  EXPECT_EQ(from(u""), "[]");
  EXPECT_EQ(trace(), Lines{});
}

TEST_F(BuildFromAddress, ContactWithoutAName_KeepsTheSpace) {
  addContact(contacts, u"", u"+46701");
  EXPECT_EQ(from(u"+46701"), " [+46701]");
}

TEST_F(BuildFromAddress, WithoutAContactsFolder_LogsError7AndKeepsTheNumber) {
  handler().Contacts({});
  EXPECT_EQ(from(u"+46701"), "[+46701]");
  EXPECT_EQ(trace(), Lines{"Error:7, No m_objContacts object, BuildFromAddress"});
}

TEST_F(BuildFromAddress, NameThatCannotBeRead_IsLoggedAndKeepsTheNumber) {
  addContact(contacts, u"Anna", u"+46701")->fails(u"FullName", 70);
  EXPECT_EQ(from(u"+46701"), "[+46701]");
  EXPECT_EQ(trace(), Lines{"Error:70, Permission denied, mrktxtmsg"});
}

TEST_F(BuildFromAddress, SearchThatFails_IsLoggedThereAndKeepsTheNumber) {
  contacts.folder->fails(u"Items", 70);
  EXPECT_EQ(from(u"+46701"), "[+46701]");
  EXPECT_EQ(trace(), Lines{"Error:70, Permission denied, mrktxtmsg"});
}

TEST_F(BuildFromAddress, AsksInOrder_OwnContactsThenSubfoldersThenTheName) {
  addContact(contacts.addSubfolder("A"), u"Anna", u"+46701");
  const Recorder recorder;
  from(u"+46701");
  EXPECT_EQ(recorder.lines(),
            (Lines{"Contacts.Items", "Contacts.Items.Restrict(\"[MobileTelephoneNumber] > ''\")",
                   "Contacts.Items restricted.Count", "Contacts.Folders", "Contacts.Folders.Count",
                   "Contacts.Folders.Item(1)", "A.Items", "A.Items.Restrict(\"[MobileTelephoneNumber] > ''\")",
                   "A.Items restricted.Count", "A.Items restricted.Item(1)", "Contact Anna.MobileTelephoneNumber",
                   "Contact Anna.FullName"}));
}

TEST_F(BuildFromAddress, EachCallLooksAtTheFolderOfThatMoment) {
  addContact(contacts, u"Anna", u"+46701");
  EXPECT_EQ(from(u"+46701"), "Anna [+46701]");
  handler().Contacts(contacts.addSubfolder("Other").facade());
  EXPECT_EQ(from(u"+46701"), "[+46701]");
}

}  // namespace
}  // namespace sms_tests
