#include "addin/sms/clscontactfolder.h"

#include "support/seam_recorder.h"
#include "support/text.h"
#include "unit/sms/engine_fixture.h"

namespace sms_tests {
namespace {

using testing_support::Recorder;
using testing_support::utf8;

class FindContact : public EngineFixture {
 protected:
  FindContact() { finder.ContactsFld(contacts.facade()); }

  // The name of the contact found; "Nothing" when there is none.
  std::string found(const Variant& number) {
    const outlook::ContactItem contact = finder.FindContact(number);
    return contact ? utf8(contact.FullName()) : "Nothing";
  }

  clscontactfolder finder;
};

TEST_F(FindContact, NumberWithSpacesAndParentheses_IsTheSameNumber) {
  addContact(contacts, u"Anna", u"+12 (34) 567 89 01");
  EXPECT_EQ(found(u"+12345678901"), "Anna");
  EXPECT_EQ(trace(), Lines{});
}

TEST_F(FindContact, NumberWrittenOtherwise_IsNotTheSame) {
  addContact(contacts, u"National form", u"034 567 89 01");
  addContact(contacts, u"With a dash", u"+1234-5678901");
  addContact(contacts, u"Longer", u"+123456789012");
  addContact(contacts, u"Shorter", u"+1234567890");
  addContact(contacts, u"With a tab", u"+12\t345678901");
  EXPECT_EQ(found(u"+12345678901"), "Nothing");
}

TEST_F(FindContact, OnlyTheContactsNumberIsTidied) {
  addContact(contacts, u"Anna", u"+12345678901");
  EXPECT_EQ(found(u"+12 345678901"), "Nothing");
  EXPECT_EQ(found(u"(+12345678901)"), "Nothing");
}

TEST_F(FindContact, LettersAreComparedWithCase) {
  addContact(contacts, u"Anna", u"1800call");
  EXPECT_EQ(found(u"1800CALL"), "Nothing");
  EXPECT_EQ(found(u"1800call"), "Anna");
}

TEST_F(FindContact, NumberGivenAsANumber_IsTakenAsText) {
  addContact(contacts, u"Anna", u"12 345");
  EXPECT_EQ(found(12345), "Anna");
}

TEST_F(FindContact, TwoMatches_TheFirstWins) {
  addContact(contacts, u"Other", u"+1");
  addContact(contacts, u"First", u"+2");
  addContact(contacts, u"Second", u"+2");
  EXPECT_EQ(found(u"+2"), "First");
}

TEST_F(FindContact, OwnContactsComeBeforeThoseOfSubfolders) {
  addContact(contacts.addSubfolder("Private"), u"In a subfolder", u"+1");
  addContact(contacts, u"On top", u"+1");
  EXPECT_EQ(found(u"+1"), "On top");
}

TEST_F(FindContact, InASubfolder_IsFound) {
  contacts.addSubfolder("Empty");
  addContact(contacts.addSubfolder("Private"), u"Anna", u"+1");
  EXPECT_EQ(found(u"+1"), "Anna");
}

// Depth first: what lies below a folder comes before its next sibling.
TEST_F(FindContact, BelowASubfolder_ComesBeforeTheNextSibling) {
  FakeFolder& first = contacts.addSubfolder("First");
  addContact(first.addSubfolder("Below").addSubfolder("Deeper"), u"Below the first", u"+1");
  addContact(contacts.addSubfolder("Second"), u"In the second", u"+1");
  EXPECT_EQ(found(u"+1"), "Below the first");
}

TEST_F(FindContact, WithoutAMatch_AsksEveryFolderInOrder) {
  FakeFolder& a = contacts.addSubfolder("A");
  a.addSubfolder("A1");
  contacts.addSubfolder("B");
  const Recorder recorder;
  EXPECT_EQ(found(u"+1"), "Nothing");
  EXPECT_EQ(recorder.linesWith("Restrict"), (Lines{"Contacts.Items.Restrict(\"[MobileTelephoneNumber] > ''\")",
                                                   "A.Items.Restrict(\"[MobileTelephoneNumber] > ''\")",
                                                   "A1.Items.Restrict(\"[MobileTelephoneNumber] > ''\")",
                                                   "B.Items.Restrict(\"[MobileTelephoneNumber] > ''\")"}));
}

TEST_F(FindContact, MatchOnTop_AsksNoSubfolderAndNoFurtherContact) {
  addContact(contacts, u"Anna", u"+1");
  addContact(contacts, u"Bo", u"+2");
  addContact(contacts.addSubfolder("A"), u"Cid", u"+1");
  const Recorder recorder;
  const outlook::ContactItem contact = finder.FindContact(u"+1");
  EXPECT_EQ(recorder.lines(), (Lines{"Contacts.Items", "Contacts.Items.Restrict(\"[MobileTelephoneNumber] > ''\")",
                                     "Contacts.Items restricted.Count", "Contacts.Items restricted.Item(1)",
                                     "Contact Anna.MobileTelephoneNumber"}));
}

TEST_F(FindContact, WithoutAFolder_LogsError7AndFindsNothing) {
  clscontactfolder empty;
  EXPECT_FALSE(empty.FindContact(u"+1"));
  EXPECT_EQ(trace(), Lines{"Error:7, No m_objContacts object, FindContact"});
}

TEST_F(FindContact, FolderThatCannotBeRestricted_IsLoggedAndTheWalkGoesOn) {
  contacts.items->fails(u"Restrict", 70);
  FakeFolder& locked = contacts.addSubfolder("Locked");
  locked.items->fails(u"Restrict", 75);
  addContact(locked.addSubfolder("Below"), u"Anna", u"+1");
  EXPECT_EQ(found(u"+1"), "Anna");
  EXPECT_EQ(trace(), (Lines{"Error:70, Permission denied, mrktxtmsg", "Error:75, Path/File access error, mrktxtmsg"}));
}

TEST_F(FindContact, NameOfAContactThatDoesNotMatch_IsNotAskedFor) {
  addContact(contacts, u"Nameless", u"+2")->fails(u"FullName", 438);
  addContact(contacts, u"Anna", u"+1");
  EXPECT_EQ(found(u"+1"), "Anna");
  EXPECT_EQ(trace(), Lines{});
}

TEST_F(FindContact, SubfoldersThatCannotBeRead_AreLoggedAndNothingIsFound) {
  contacts.folders->fails(u"Count", 70);
  EXPECT_EQ(found(u"+1"), "Nothing");
  EXPECT_EQ(trace(), Lines{"Error:70, Permission denied, mrktxtmsg"});
}

TEST_F(FindContact, SubfolderWhoseItemsFail_EndsTheWalk) {
  contacts.addSubfolder("Locked").folder->fails(u"Items", 70);
  addContact(contacts.addSubfolder("Open"), u"Anna", u"+1");
  EXPECT_EQ(found(u"+1"), "Nothing");
  EXPECT_EQ(trace(), Lines{"Error:70, Permission denied, mrktxtmsg"});
}

TEST_F(FindContact, FolderWhoseItemsFail_IsAnErrorOfTheSearchItself) {
  contacts.folder->fails(u"Items", 70);
  addContact(contacts.addSubfolder("A"), u"Anna", u"+1");
  EXPECT_EQ(found(u"+1"), "Nothing");
  EXPECT_EQ(trace(), Lines{"Error:70, Permission denied, mrktxtmsg"});
}

}  // namespace
}  // namespace sms_tests
