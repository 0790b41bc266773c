// Duplicate detection: has this message been brought in already?
#include <random>

#include "support/seam_recorder.h"
#include "support/text.h"
#include "unit/sms/engine_fixture.h"

namespace sms_tests {
namespace {

using testing_support::Recorder;
using testing_support::utf8;

constexpr StringView me = u"Me [+4670]";
constexpr StringView time = u"010203040506";
constexpr std::int32_t noFolder = 2;

String topicOf(StringView recipient, StringView sentOn) { return concat(recipient, u"\x01", sentOn); }

Lines joined(std::initializer_list<Lines> parts) {
  Lines all;
  for (const Lines& part : parts) all.insert(all.end(), part.begin(), part.end());
  return all;
}

Lines texts(const coltextmessage& records) {
  Lines result;
  for (const Ref<clstextmessage>& r : records)
    result.push_back(utf8(r->Recipient()) + "|" + utf8(r->SentOn()) + "|" + utf8(r->MessageBody()));
  return result;
}

class Duplicates : public EngineFixture {
 protected:
  Duplicates() { start(); }

  bool find(StringView recipient, StringView body, StringView sentOn, std::int32_t folder = FOLDER_INBOX) {
    String text(body);
    return probe().FindTextMessage(folder, recipient, u"subject", text, String(sentOn));
  }
  bool findSameAsMine(StringView body) { return find(me, body, time); }

  // Reads the folders, so that what follows finds the caches there; then clears the trace.
  void readFolders() {
    probe().GetFolderCollection(FOLDER_INBOX);
    probe().GetFolderCollection(FOLDER_DELETEDITEMS);
    clear();
  }

  // The trace of a search whose cache is there already.
  static Lines searched(const Lines& walk, bool result) {
    return joined({{"Inside Function FindTextMessage", "Inside Function FindInFolderCollection",
                    "Inside Function GetFolderCollection", "GetFolderCollection called"},
                   walk,
                   {result ? "FindInFolderCollection = True" : "FindInFolderCollection = False"}});
  }
};

class FindTextMessage : public Duplicates {};
class GetFolderCollection : public Duplicates {};
class BuildFolderCollection : public Duplicates {};
class FindInFolderCollection : public Duplicates {};
class CompareStrings : public Duplicates {};

const Lines foundLines{"YES,SAME DATE", "YES,SAME RECIPIENT", "FOUND DUPLICATE!"};

// FindTextMessage
// ------------------------------------------------------------------------------------------------------

TEST_F(FindTextMessage, FirstSearchOfTheInbox_BuildsItsCacheAndFinds) {
  addItem(inbox, topicOf(me, time), u"Hello");
  EXPECT_TRUE(findSameAsMine(u"Hello"));
  EXPECT_EQ(trace(),
            (Lines{"Inside Function FindTextMessage", "Inside Function FindInFolderCollection",
                   "Inside Function GetFolderCollection", "Inside Function BuildFolderCollection",
                   "Restrict folder items to TextMessage's", "colfolder.Add called",
                   "Case FOLDER_INBOX - BuildFolderCollection called", "GetFolderCollection called", "YES,SAME DATE",
                   "YES,SAME RECIPIENT", "FOUND DUPLICATE!", "FindInFolderCollection = True"}));
}

TEST_F(FindTextMessage, FirstSearchOfDeletedItems_HasTwoBlanksInItsLine) {
  EXPECT_FALSE(find(me, u"Hello", time, FOLDER_DELETEDITEMS));
  EXPECT_EQ(trace(),
            (Lines{"Inside Function FindTextMessage", "Inside Function FindInFolderCollection",
                   "Inside Function GetFolderCollection", "Inside Function BuildFolderCollection",
                   "Restrict folder items to TextMessage's", "Case FOLDER_DELETEDITEMS -  BuildFolderCollection called",
                   "GetFolderCollection called", "FindInFolderCollection = False"}));
}

TEST_F(FindTextMessage, LaterSearch_UsesTheCache) {
  addItem(inbox, topicOf(me, time), u"Hello");
  readFolders();
  const Recorder recorder;
  EXPECT_TRUE(findSameAsMine(u"Hello"));
  EXPECT_EQ(trace(), searched(foundLines, true));
  EXPECT_EQ(recorder.lines(), Lines{});
}

TEST_F(FindTextMessage, ItemThatCameAfterTheCacheWasBuilt_IsNotFound) {
  readFolders();
  addItem(inbox, topicOf(me, time), u"Hello");
  EXPECT_FALSE(findSameAsMine(u"Hello"));
  EXPECT_EQ(trace(), searched({}, false));
}

TEST_F(FindTextMessage, ItemInTheOtherFolder_IsNotFound) {
  addItem(deletedItems, topicOf(me, time), u"Hello");
  readFolders();
  EXPECT_FALSE(findSameAsMine(u"Hello"));
  EXPECT_TRUE(find(me, u"Hello", time, FOLDER_DELETEDITEMS));
}

TEST_F(FindTextMessage, OtherDate_WritesNoLine) {
  addItem(inbox, topicOf(me, u"010203040507"), u"Hello");
  readFolders();
  EXPECT_FALSE(findSameAsMine(u"Hello"));
  EXPECT_EQ(trace(), searched({}, false));
}

TEST_F(FindTextMessage, SameDateOtherRecipient_WritesOneLine) {
  addItem(inbox, topicOf(u"ME [+4670]", time), u"Hello");
  readFolders();
  EXPECT_FALSE(findSameAsMine(u"Hello"));
  EXPECT_EQ(trace(), searched({"YES,SAME DATE"}, false));
}

TEST_F(FindTextMessage, SameDateAndRecipientOtherText_WritesTwoLines) {
  addItem(inbox, topicOf(me, time), u"hello");  // texts that differ only in case are not duplicates
  readFolders();
  EXPECT_FALSE(findSameAsMine(u"Hello"));
  EXPECT_EQ(trace(), searched({"YES,SAME DATE", "YES,SAME RECIPIENT"}, false));
}

TEST_F(FindTextMessage, SeveralOfOneDate_AreWalkedInTheOrderOfAddingUntilTheFirstMatch) {
  addItem(inbox, topicOf(u"Other", time), u"Hello");
  addItem(inbox, topicOf(me, u"other time"), u"Hello");
  addItem(inbox, topicOf(me, time), u"Another text");
  addItem(inbox, topicOf(me, time), u"Hello");
  addItem(inbox, topicOf(me, time), u"Hello");
  readFolders();
  EXPECT_TRUE(findSameAsMine(u"Hello"));
  EXPECT_EQ(trace(), searched({"YES,SAME DATE", "YES,SAME DATE", "YES,SAME RECIPIENT", "YES,SAME DATE",
                               "YES,SAME RECIPIENT", "FOUND DUPLICATE!"},
                              true));
}

TEST_F(FindTextMessage, TextsThatDifferInSpacesAndLineBreaksOnly_AreDuplicates) {
  addItem(inbox, topicOf(me, time), u"Hello there,\r\nAnna\r\n");
  readFolders();
  for (const StringView same :
       {u"Hello there,\r\nAnna\r\n", u"Hellothere,Anna", u"Hello there,\nAnna", u"Hello there,\rAnna\n\n\r\r\n",
        u"  H e l l o t h e r e , A n n a  ", u"\r\nHello there,\n\rAnna"})
    EXPECT_TRUE(findSameAsMine(same)) << utf8(same);
  for (const StringView other : {u"", u"Hello there, anna", u"Hello there,\tAnna", u"Hello there,\u00A0Anna",
                                 u"Hello there.Anna", u"Hello there,AnnaB", u"Hello there,\vAnna"})
    EXPECT_FALSE(findSameAsMine(other)) << utf8(other);
}

TEST_F(FindTextMessage, TextsOfNothingButSpacesAndLineBreaks_AreEqual) {
  addItem(inbox, topicOf(me, time), u" \r\n ");
  readFolders();
  EXPECT_TRUE(findSameAsMine(u""));
  EXPECT_TRUE(findSameAsMine(u"\n"));
}

TEST_F(FindTextMessage, SubjectIsNotLookedAt) {
  addItem(inbox, topicOf(me, time), u"Hello")->value(u"Subject", u"One");
  readFolders();
  String body = u"Hello";
  EXPECT_TRUE(probe().FindTextMessage(FOLDER_INBOX, me, u"Two", body, String(time)));
}

// The item must get the text as it came, so the search works on its own copy.
TEST_F(FindTextMessage, TheCallersTextIsNotNormalised) {
  String body = u"a b\r\n";
  probe().FindTextMessage(FOLDER_INBOX, me, u"", body, String(time));
  EXPECT_EQ(body, u"a b\r\n");
}

TEST_F(FindTextMessage, OfAnUnknownFolder_IsFalse) {
  EXPECT_FALSE(find(me, u"Hello", time, noFolder));
  EXPECT_EQ(trace(), searched({}, false));
  EXPECT_FALSE(find(me, u"Hello", time, -1));
}

// Item topics
// ----------------------------------------------------------------------------------------------------------

TEST_F(FindTextMessage, ItemWithoutTheSeparator_NeverMatchesATimeStamp) {
  addItem(inbox, me, u"Hello");
  addItem(inbox, time, u"Hello");
  addItem(inbox, concat(me, u" ", time), u"Hello");
  readFolders();
  EXPECT_FALSE(findSameAsMine(u"Hello"));
  EXPECT_EQ(trace(), searched({}, false));
}

TEST_F(FindTextMessage, ItemWithoutTheSeparator_MatchesAMessageWithoutATimeStamp) {
  addItem(inbox, me, u"Hello");
  readFolders();
  EXPECT_TRUE(find(me, u"Hello", u""));
}

// FindInFolderCollection
// -----------------------------------------------------------------------------------------------

TEST_F(FindInFolderCollection, LeavesTheBodyNormalised) {
  readFolders();
  String body = u" a b\r\nc\rd\n\r\n";
  EXPECT_FALSE(probe().FindInFolderCollection(FOLDER_INBOX, me, u"", body, String(time)));
  EXPECT_EQ(body, u"abcd");
  EXPECT_EQ(trace(), (Lines{"Inside Function FindInFolderCollection", "Inside Function GetFolderCollection",
                            "GetFolderCollection called"}));
}

TEST_F(FindInFolderCollection, WithoutACollection_LeavesTheBodyAlone) {
  String body = u" a b\r\n";
  EXPECT_FALSE(probe().FindInFolderCollection(noFolder, me, u"", body, String(time)));
  EXPECT_EQ(body, u" a b\r\n");
}

// GetFolderCollection
// --------------------------------------------------------------------------------------------------

TEST_F(GetFolderCollection, Twice_BuildsOnceAndGivesTheSame) {
  const Ref<coltextmessage> first = probe().GetFolderCollection(FOLDER_INBOX);
  EXPECT_EQ(trace(),
            (Lines{"Inside Function GetFolderCollection", "Inside Function BuildFolderCollection",
                   "Restrict folder items to TextMessage's", "Case FOLDER_INBOX - BuildFolderCollection called"}));
  clear();
  EXPECT_EQ(probe().GetFolderCollection(FOLDER_INBOX), first);
  EXPECT_EQ(trace(), Lines{"Inside Function GetFolderCollection"});
  EXPECT_NE(probe().GetFolderCollection(FOLDER_DELETEDITEMS), first);
}

TEST_F(GetFolderCollection, OfAnUnknownFolder_IsNothing) {
  EXPECT_FALSE(probe().GetFolderCollection(noFolder));
  EXPECT_EQ(trace(), Lines{"Inside Function GetFolderCollection"});
}

TEST_F(GetFolderCollection, FolderThatCannotBeRestricted_GivesAnEmptyCacheThatIsKept) {
  addItem(inbox, topicOf(me, time), u"Hello");
  inbox.items->fails(u"Restrict", 70);
  const Ref<coltextmessage> cache = probe().GetFolderCollection(FOLDER_INBOX);
  ASSERT_TRUE(cache);
  EXPECT_EQ(cache->Count(), 0);
  EXPECT_EQ(trace(), (Lines{"Inside Function GetFolderCollection", "Inside Function BuildFolderCollection",
                            "Restrict folder items to TextMessage's", "Error:70, Permission denied, mrktxtmsg",
                            "Case FOLDER_INBOX - BuildFolderCollection called"}));
  EXPECT_EQ(probe().GetFolderCollection(FOLDER_INBOX), cache);
  EXPECT_FALSE(findSameAsMine(u"Hello"));
}

TEST_F(GetFolderCollection, WithoutAFolder_LogsTheErrorAndIsEmpty) {
  handler().Inbox({});
  const Ref<coltextmessage> cache = probe().GetFolderCollection(FOLDER_INBOX);
  ASSERT_TRUE(cache);
  EXPECT_EQ(cache->Count(), 0);
  EXPECT_EQ(trace(), (Lines{"Inside Function GetFolderCollection", "Inside Function BuildFolderCollection",
                            "Restrict folder items to TextMessage's",
                            "Error:91, Object variable or With block variable not set, mrktxtmsg",
                            "Case FOLDER_INBOX - BuildFolderCollection called"}));
}

// BuildFolderCollection
// ------------------------------------------------------------------------------------------------

TEST_F(BuildFolderCollection, SplitsEachTopicAndNormalisesEachBody) {
  addItem(inbox, topicOf(me, time), u"Hello there\r\n");
  addItem(inbox, u"Only a recipient", u"1");
  addItem(inbox, u"", u"2");
  addItem(inbox, u"\x01", u"3");
  addItem(inbox, topicOf(u"", time), u"4");
  addItem(inbox, topicOf(me, u""), u"5");
  addItem(inbox, concat(me, u"\x01", time, u"\x01", u"later\x01pieces"), u"6");
  addItem(inbox, topicOf(me, time), u"Hello there");
  const auto records = make<coltextmessage>();
  EXPECT_TRUE(probe().BuildFolderCollection(inbox.facade(), records));
  EXPECT_EQ(texts(*records),
            (Lines{"Me [+4670]|010203040506|Hellothere", "Only a recipient||1", "||2", "||3", "|010203040506|4",
                   "Me [+4670]||5", "Me [+4670]|010203040506|6", "Me [+4670]|010203040506|Hellothere"}));
  EXPECT_EQ(trace(), joined({{"Inside Function BuildFolderCollection", "Restrict folder items to TextMessage's"},
                             Lines(8, "colfolder.Add called")}));
}

TEST_F(BuildFolderCollection, TakesTextMessagesOnly) {
  addItem(inbox, topicOf(me, time), u"A mail", u"IPM.Note");
  addItem(inbox, topicOf(me, time), u"A text message");
  const auto records = make<coltextmessage>();
  EXPECT_TRUE(probe().BuildFolderCollection(inbox.facade(), records));
  EXPECT_EQ(texts(*records), Lines{"Me [+4670]|010203040506|Atextmessage"});
}

TEST_F(BuildFolderCollection, AsksTheFolderInOrder) {
  addItem(inbox, topicOf(me, time), u"Hello");
  addItem(inbox, topicOf(me, time), u"Hello");
  const Recorder recorder;
  probe().BuildFolderCollection(inbox.facade(), make<coltextmessage>());
  EXPECT_EQ(recorder.lines(), (Lines{"Inbox.Items", "Inbox.Items.Restrict(\"[MessageClass] = 'IPM.Note.TxtMsg'\")",
                                     "Inbox.Items restricted.Count", "Inbox.Items restricted.Item(1)",
                                     "Item ID-1.ConversationTopic", "Item ID-1.Body", "Inbox.Items restricted.Item(2)",
                                     "Item ID-2.ConversationTopic", "Item ID-2.Body"}));
}

TEST_F(BuildFolderCollection, RestrictionThatGivesNothing_IsTrueAndEmpty) {
  addItem(inbox, topicOf(me, time), u"Hello");
  inbox.items->method(u"Restrict", [](Args) -> Variant { return Object(); });
  const auto records = make<coltextmessage>();
  EXPECT_TRUE(probe().BuildFolderCollection(inbox.facade(), records));
  EXPECT_EQ(records->Count(), 0);
  EXPECT_EQ(trace(), (Lines{"Inside Function BuildFolderCollection", "Restrict folder items to TextMessage's"}));
}

TEST_F(BuildFolderCollection, ItemThatFails_IsFalseAndKeepsWhatWasRead) {
  addItem(inbox, topicOf(me, time), u"First");
  addItem(inbox, topicOf(me, time), u"Second")->fails(u"Body", 70);
  addItem(inbox, topicOf(me, time), u"Third");
  const auto records = make<coltextmessage>();
  EXPECT_FALSE(probe().BuildFolderCollection(inbox.facade(), records));
  EXPECT_EQ(texts(*records), Lines{"Me [+4670]|010203040506|First"});
  EXPECT_EQ(trace(), (Lines{"Inside Function BuildFolderCollection", "Restrict folder items to TextMessage's",
                            "colfolder.Add called", "Error:70, Permission denied, mrktxtmsg"}));
}

// The trace goes to another program, which may let the caches go while a folder is read.
TEST_F(BuildFolderCollection, CacheDroppedMeanwhile_IsReadToItsEnd) {
  addItem(inbox, topicOf(me, time), u"First");
  addItem(inbox, topicOf(me, time), u"Second");
  system.windows.viewer().whenReceiving = [&](const testing_support::CopyData&) { probe().colInbox() = nullptr; };
  EXPECT_FALSE(findSameAsMine(u"First"));  // the cache is gone by the time it is asked for
  system.windows.viewer().whenReceiving = nullptr;
  const Lines lines = trace();
  EXPECT_EQ(std::count(lines.begin(), lines.end(), "colfolder.Add called"), 2);
  EXPECT_EQ(std::count_if(lines.begin(), lines.end(), [](const auto& l) { return l.starts_with("Error:"); }), 0);
  EXPECT_FALSE(probe().colInbox());
  EXPECT_TRUE(findSameAsMine(u"First"));
}

// The text rules
// -------------------------------------------------------------------------------------------------------

TEST(BuildSubject, UpToTenCharactersAndThreeDots) {
  const auto subject = [](StringView text) { return utf8(SMSHandlerProbe::BuildSubject(text)); };
  EXPECT_EQ(subject(u"Hi"), "Hi...");
  EXPECT_EQ(subject(u"0123456789"), "0123456789...");
  EXPECT_EQ(subject(u"0123456789AB"), "0123456789...");
  EXPECT_EQ(subject(u" "), " ...");
  EXPECT_EQ(subject(u""), "");
}

TEST(BuildSubject, LineBreaksBecomeSpaces_APairOneSpace) {
  const auto subject = [](StringView text) { return utf8(SMSHandlerProbe::BuildSubject(text)); };
  EXPECT_EQ(subject(u"a\r\nb\rc\nd"), "a b c d...");
  EXPECT_EQ(subject(u"\r\n"), " ...");
  EXPECT_EQ(subject(u"\n\r"), "  ...");
  EXPECT_EQ(subject(u"\r\r\n\n"), "   ...");
  EXPECT_EQ(subject(u"012345678\r\n9"), "012345678 ...");
  EXPECT_EQ(subject(u"a\tb"), "a\tb...");
}

TEST(BuildSubject, CountsUtf16Units) {
  EXPECT_EQ(SMSHandlerProbe::BuildSubject(u"\U0001F600\U0001F600\U0001F600\U0001F600\U0001F600\U0001F600"),
            u"\U0001F600\U0001F600\U0001F600\U0001F600\U0001F600...");
  EXPECT_EQ(SMSHandlerProbe::BuildSubject(u"012345678\U0001F600"), String(u"012345678") + char16_t{0xD83D} + u"...");
}

TEST(TrimTrailingLineBreaks, OnlyLineBreaksAtTheEndGo) {
  const auto trimmed = [](StringView text) { return utf8(SMSHandlerProbe::TrimTrailingLineBreaks(text)); };
  EXPECT_EQ(trimmed(u"a\r\nb\r\n\n\r"), "a\r\nb");
  EXPECT_EQ(trimmed(u"a \r\n"), "a ");
  EXPECT_EQ(trimmed(u"a\r\n "), "a\r\n ");
  EXPECT_EQ(trimmed(u"a"), "a");
  EXPECT_EQ(trimmed(u"\r\na"), "\r\na");
  EXPECT_EQ(trimmed(u""), "");
  EXPECT_EQ(trimmed(u"\r\n\r\n"), "");
  EXPECT_EQ(trimmed(u"\n"), "");
}

TEST_F(CompareStrings, Equal_SaysSo) {
  probe().CompareStrings(u"abc", u"abc");
  EXPECT_EQ(trace(), (Lines{"Len s1 = 3", "Len s2 = 3", "They are the same after all"}));
}

TEST_F(CompareStrings, OfDifferentLengths_Stops) {
  probe().CompareStrings(u"abc", u"");
  EXPECT_EQ(trace(), (Lines{"Len s1 = 3", "Len s2 = 0"}));
}

TEST_F(CompareStrings, OfOneLength_ShowsEachPosition) {
  probe().CompareStrings(u"a b", u"A b");
  EXPECT_EQ(trace(), (Lines{"Len s1 = 3", "Len s2 = 3", "1 : 97 : 65 Differs", "2 : 32 : 32", "3 : 98 : 98"}));
}

// The look-up by time stamp is a short cut that nobody can see: result and trace are those of a plain walk
// -------------

class PlainWalk : public Duplicates {
 protected:
  // The walk as it is described: every record, in the order of adding.
  static bool walk(const coltextmessage& records, StringView recipient, StringView body, StringView sentOn,
                   Lines& lines) {
    for (std::int32_t i = 1; i <= records.Count(); ++i) {
      const Ref<clstextmessage> record = records.Item(i);
      if (record->SentOn() != sentOn) continue;
      lines.push_back("YES,SAME DATE");
      if (record->Recipient() != recipient) continue;
      lines.push_back("YES,SAME RECIPIENT");
      if (record->MessageBody() != body) continue;
      lines.push_back("FOUND DUPLICATE!");
      return true;
    }
    return false;
  }

  std::size_t below(std::size_t n) { return std::uniform_int_distribution<std::size_t>(0, n - 1)(random_); }
  StringView oneOf(std::initializer_list<StringView> choices) { return choices.begin()[below(choices.size())]; }
  String someTime() { return String(oneOf({u"", u"010203040506", u"010203040507", u"01020304050", u"x", u"X"})); }
  String someRecipient() { return String(oneOf({u"", u"Me [+4670]", u"me [+4670]", u"Me [+4670] "})); }
  String someBody() { return String(oneOf({u"", u"Hello", u"hello", u"Hello2", u"\t"})); }

  void change(const Ref<coltextmessage>& records) {
    const auto position = [&] {
      return static_cast<std::int32_t>(below(static_cast<std::size_t>(records->Count()))) + 1;
    };
    switch (records->Count() == 0 ? 0 : below(6)) {
      case 0:
      case 1:
        records->Add(someRecipient(), someTime(), someBody());
        break;
      case 2:
        records->Item(position())->SentOn(someTime());
        break;
      case 3:
        records->Item(position())->Recipient(someRecipient());
        break;
      case 4:
        records->Item(position())->MessageBody(someBody());
        break;
      default:
        records->Remove(position());
    }
  }

  void searchesAreWalks(unsigned seed) {
    random_.seed(seed);
    for (int i = 0; i < 20; ++i) addItem(inbox, topicOf(someRecipient(), someTime()), someBody());
    readFolders();
    const Ref<coltextmessage> records = probe().colInbox();
    ASSERT_EQ(records->Count(), 20);
    int hits = 0;
    for (int step = 0; step < 150; ++step) {
      change(records);
      const String recipient = someRecipient(), body = someBody(), sentOn = someTime();
      Lines lines;
      const bool expected = walk(*records, recipient, body, sentOn, lines);
      clear();
      ASSERT_EQ(find(recipient, body, sentOn), expected) << "seed " << seed << ", step " << step;
      ASSERT_EQ(trace(), searched(lines, expected)) << "seed " << seed << ", step " << step;
      hits += expected ? 1 : 0;
    }
    EXPECT_GT(hits, 0);
    EXPECT_LT(hits, 150);
    inbox.contents.clear();
    probe().colInbox() = nullptr;
  }

 private:
  std::mt19937 random_;
};

TEST_F(PlainWalk, AfterRandomWritesAndRemovals_EverySearchIsIndistinguishableFromIt) {
  for (const unsigned seed : {1u, 2u, 3u, 4u, 5u, 6u, 7u, 8u}) searchesAreWalks(seed);
}

}  // namespace
}  // namespace sms_tests
