// Recipients: who is offered, and what a typed one means.
#include "mailclient/view/address_book.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "mailclient/store.h"

namespace mailclient {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class AddressBookTest : public testing::Test {
 protected:
  void add(const std::shared_ptr<Folder>& folder, StringView name, StringView number) {
    const MessagePtr contact = Store::create(*folder, u"IPM.Contact");
    (*contact)[Text::FullName] = name;
    (*contact)[Text::MobileTelephoneNumber] = number;
    store_.save(contact);
  }
  std::vector<AddressEntry> book() { return addressBook(*contacts_); }

  Store store_;
  std::shared_ptr<Folder> contacts_ = store_.defaultFolder(DefaultFolder::Contacts);
};

TEST_F(AddressBookTest, Book_HoldsContactsOfAllFoldersWithAMobileNumber_ByName) {
  const auto family = store_.addFolder(*contacts_, u"Family", ItemType::Contact);
  add(contacts_, u"Örjan Ek", u"+46 70 1");
  add(contacts_, u"No Number", u"");
  add(family, u"anna Berg", u"+46 70 2");
  add(contacts_, u"Paul", u" +46 70 3 ");
  EXPECT_THAT(book(), ElementsAre(AddressEntry{u"anna Berg", u"+46 70 2"}, AddressEntry{u"Örjan Ek", u"+46 70 1"},
                                  AddressEntry{u"Paul", u"+46 70 3"}));
}

TEST_F(AddressBookTest, ContactWithoutAName_IsListedAsItIsFiled) {
  const MessagePtr contact = Store::create(*contacts_, u"IPM.Contact");
  (*contact)[Text::FileAs] = u"Plumber";
  (*contact)[Text::MobileTelephoneNumber] = u"123";
  store_.save(contact);
  EXPECT_THAT(book(), ElementsAre(AddressEntry{u"Plumber", u"123"}));
}

TEST_F(AddressBookTest, DisplayAddress_KeepsWhatTheSenderRemoves_AndNothingElse) {
  EXPECT_EQ(displayAddress({u"Anna", u"+46 (70) 123-45.67/8"}), u"Anna [+46 (70) 12345678]");
  EXPECT_EQ(displayAddress({u"", u"123"}), u"[123]");
  EXPECT_EQ(displayAddress({u"Ann [home]", u"1"}), u"Ann (home) [1]");
  EXPECT_EQ(displayAddress({u"A\u0001b\r\nc", u"1\u00012"}), u"A b  c [1 2]") << "code 1 ends the address in a topic";
}

TEST_F(AddressBookTest, Complete_FindsBeginningsOfWordsAndOfNumbers) {
  const std::vector<AddressEntry> all{{u"Anna Ek", u"+46 70-1"}, {u"Eva Anka", u"070 2"}, {u"Åke Hanna", u"+47 1"}};
  EXPECT_THAT(complete(all, u"an"), ElementsAre(all[0], all[1]));
  EXPECT_THAT(complete(all, u"ake h"), ElementsAre(all[2]));
  EXPECT_THAT(complete(all, u"+46 70"), ElementsAre(all[0]));
  EXPECT_THAT(complete(all, u"07"), ElementsAre(all[1]));
  EXPECT_THAT(complete(all, u" "), IsEmpty());
  EXPECT_THAT(complete(all, u"x"), IsEmpty());
  EXPECT_THAT(complete(all, u"a", 1), ElementsAre(all[0]));
}

TEST_F(AddressBookTest, TypedNumber_IsNotTakenForALongerOne) {
  const std::vector<AddressEntry> found{{u"Anna", u"070 12-34"}, {u"Eva", u"07012"}};
  EXPECT_EQ(preselected(found, u"070"), std::nullopt) << "a number of its own";
  EXPECT_EQ(preselected(found, u" 0701-2 "), 1u) << "exactly hers";
  EXPECT_EQ(preselected(found, u"an"), 0u) << "the beginning of a name";
  EXPECT_EQ(preselected({}, u"an"), std::nullopt);
  EXPECT_EQ(preselected({{u"Anna", u"1"}, {u"Eva", u"1"}}, u"1"), std::nullopt) << "shared by two";
}

TEST_F(AddressBookTest, PhoneNumbers_HaveDigitsAndSeparatorsOnly) {
  EXPECT_TRUE(isPhoneNumber(u" +46 (70) 123-45 67 "));
  EXPECT_TRUE(isPhoneNumber(u"112"));
  EXPECT_FALSE(isPhoneNumber(u"+"));
  EXPECT_FALSE(isPhoneNumber(u""));
  EXPECT_FALSE(isPhoneNumber(u"46+1"));
  EXPECT_FALSE(isPhoneNumber(u"070 ext 2"));
}

TEST_F(AddressBookTest, Recipient_BareNumber_IsPutInBrackets) {
  EXPECT_EQ(resolveRecipient({}, u" +46 70-123 (4) "), u"[+46701234]");
}

TEST_F(AddressBookTest, Recipient_NumberOfOneContact_GetsTheName) {
  EXPECT_EQ(resolveRecipient({{u"Anna", u"+46 70 1"}}, u"+4670-1"), u"Anna [+46 70 1]");
  EXPECT_EQ(resolveRecipient({{u"Anna", u"1"}, {u"Eva", u"1"}}, u"1"), u"[1]") << "shared by two: nobody's name";
}

TEST_F(AddressBookTest, Recipient_DisplayAddress_StaysAsItIs) {
  EXPECT_EQ(resolveRecipient({}, u" Anna [+46 70 1] "), u"Anna [+46 70 1]");
  EXPECT_EQ(resolveRecipient({}, u"Anna [0701-22.3/3] (home)"), u"Anna [07012233] (home)")
      << "the sender does not remove these";
  EXPECT_EQ(resolveRecipient({}, u"An\u0001na [0701]"), u"An na [0701]");
  EXPECT_EQ(resolveRecipient({}, u"Anna [home]"), std::nullopt);
  EXPECT_EQ(resolveRecipient({}, u"Anna []"), std::nullopt);
}

TEST_F(AddressBookTest, Recipient_Name_MeansTheOnlyContactWhoHasIt) {
  const std::vector<AddressEntry> book{{u"Anna", u"1"}, {u"Eva", u"2"}, {u"eva", u"3"}, {u"Odd", u"call me"}};
  EXPECT_EQ(resolveRecipient(book, u"anna"), u"Anna [1]");
  EXPECT_EQ(resolveRecipient(book, u"Eva"), std::nullopt);
  EXPECT_EQ(resolveRecipient(book, u"Ann"), std::nullopt);
  EXPECT_EQ(resolveRecipient(book, u"Odd"), std::nullopt) << "no number to send to";
  EXPECT_EQ(resolveRecipient(book, u""), std::nullopt);
}

}  // namespace
}  // namespace mailclient
