#include "mailclient/filter.h"

#include "unit/mailclient/fixture.h"

namespace mailclient {
namespace {

Message message(StringView messageClass) {
  Message m;
  m[Text::MessageClass] = messageClass;
  return m;
}

TEST(FilterTest, TextEqual_ComparesWithoutCaseAndWhole) {
  const Filter filter(u"[MessageClass] = 'IPM.Note.TxtMsg'");
  EXPECT_TRUE(filter.matches(message(u"IPM.Note.TxtMsg")));
  EXPECT_TRUE(filter.matches(message(u"ipm.note.txtmsg")));
  EXPECT_FALSE(filter.matches(message(u"IPM.Note.TxtMsg.More")));
  EXPECT_FALSE(filter.matches(message(u"IPM.Note")));
}

TEST(FilterTest, GreaterThanEmpty_IsThereAtAll) {
  const Filter filter(u"[MobileTelephoneNumber] > ''");
  Message contact = message(u"IPM.Contact");
  EXPECT_FALSE(filter.matches(contact));
  contact[Text::MobileTelephoneNumber] = u"+46";
  EXPECT_TRUE(filter.matches(contact));
}

TEST(FilterTest, AbsentProperty_MatchesNothing) {
  EXPECT_FALSE(Filter(u"[MobileTelephoneNumber] = ''").matches(message(u"IPM.Note")));
  EXPECT_FALSE(Filter(u"[MobileTelephoneNumber] <> 'x'").matches(message(u"IPM.Note")));
}

TEST(FilterTest, JoinedComparisons_AndBindsCloserThanOr) {
  Message m = message(u"IPM.Note");
  m[Text::Subject] = u"it's";
  m.unread = true;
  EXPECT_TRUE(Filter(u"[Subject] = 'it''s' And [UnRead] = True").matches(m));
  EXPECT_TRUE(Filter(u"[Subject] = \"it's\" or [UnRead] = False And [Sent] = True").matches(m));
  EXPECT_FALSE(Filter(u"([Subject] = 'it''s' OR [UnRead] = True) and [Sent] = True").matches(m));
  EXPECT_TRUE(Filter(u"Not ([Subject] < 'h')").matches(m));
}

TEST(FilterTest, Unreadable_IsAnError) {
  const std::vector<StringView> filters{u"",
                                        u"MessageClass = 'x'",
                                        u"[MessageClass = 'x'",
                                        u"[MessageClass] 'x'",
                                        u"[MessageClass] = x",
                                        u"[MessageClass] = 'x",
                                        u"[MessageClass] = 'x' [Subject] = 'y'",
                                        u"[MessageClass] = 'x' And",
                                        u"([MessageClass] = 'x'",
                                        u"[Body] = 'x'",
                                        u"[Class] = 43",
                                        u"[Unheard] = 'x'",
                                        u"[UnRead] > True",
                                        u"[UnRead] = 'x'"};
  for (const StringView text : filters) expectError(failure::automation, [&] { Filter{text}; });
  expectError(failure::automation, [] { Filter{String(100'000, u'(')}; });
}

}  // namespace
}  // namespace mailclient
