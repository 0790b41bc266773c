// Message files: exact round trips of every text, legal lines, and what is made of other programs' files.
#include "mailclient/message_file.h"

#include <algorithm>

#include "mailclient/header_text.h"
#include "mailclient/properties.h"
#include "mailclient/text_coding.h"
#include "unit/mailclient/fixture.h"

namespace mailclient {
namespace {

using testing::HasSubstr;
using testing::Not;

Message textMessage() {
  Message m;
  m[Text::MessageClass] = textMessageClass;
  m.entryId = u"00AB";
  return m;
}

Message readBack(const std::string& file) {
  Message m;
  readMessageFile(file, m);
  return m;
}

std::vector<std::string> linesOf(const std::string& file) {
  std::vector<std::string> lines;
  for (std::size_t at = 0; at < file.size();) {
    const std::size_t end = file.find("\r\n", at);
    lines.push_back(file.substr(at, end == std::string::npos ? end : end - at));
    at = end == std::string::npos ? file.size() : end + 2;
  }
  return lines;
}

const std::vector<String>& awkwardTexts() {
  static const std::vector<String> texts{
      u"",
      u"plain",
      u" blanks around ",
      u"two  blanks\tand a tab",
      u"line\r\nbreak",
      u"line\r\n.\r\n\r\n",
      u"lone \r and \n and \r\r\n",
      u"=20 =?UTF-8?Q?x?= % %0041 _",
      String(u"code \u0001 and ") + char16_t{0} + u" and \u007F",
      u"r\u00E4ksm\u00F6rg\u00E5s \u20AC",
      u"emoji \U0001F600\U0001F468",
      String(u"lone high ") + char16_t{0xD800} + u" end",
      String(u"lone low ") + char16_t{0xDC00},
      String(1, char16_t{0xDBFF}) + String(1, char16_t{0xD800}) + char16_t{0xDC01},
      u"\uFEFF\uFFFE\uFFFF",
      u"ends with a blank \r\nand tab\t",
      u"From here\r\n--boundary\r\nX-Mailclient-Body: trap",
      String(1'000, u'x'),
      String(1'000, u'\u00E5'),
      String(1'000, char16_t{0xD83D}),
  };
  return texts;
}

TEST(MessageFileTest, EveryTextProperty_ComesBackExactly) {
  for (const String& text : awkwardTexts()) {
    Message m = textMessage();
    for (const TextProperty& p : textProperties())
      if (p.text != Text::MessageClass) m[p.text] = text;
    const Message back = readBack(messageFile(m));
    for (const TextProperty& p : textProperties())
      EXPECT_TRUE(back[p.text] == m[p.text]) << toUtf8(p.name) << " of " << toUtf8(text.substr(0, 40));
  }
}

TEST(MessageFileTest, SubjectAloneAndBodyAlone_ComeBackExactly) {
  for (const String& text : awkwardTexts()) {
    Message m = textMessage();
    m[Text::Subject] = text;
    EXPECT_TRUE(readBack(messageFile(m))[Text::Subject] == text) << toUtf8(text.substr(0, 40));
    m = textMessage();
    m[Text::Body] = text;
    EXPECT_TRUE(readBack(messageFile(m))[Text::Body] == text) << toUtf8(text.substr(0, 40));
  }
}

TEST(MessageFileTest, LongTexts_ComeBackExactly) {
  for (const char16_t c : {u'x', u'\u00E5', char16_t{0xD83D}}) {
    Message m = textMessage();
    m[Text::Subject] = m[Text::ConversationTopic] = m[Text::Body] = String(100'000, c);
    const Message back = readBack(messageFile(m));
    for (const Text text : {Text::Subject, Text::ConversationTopic, Text::Body}) EXPECT_TRUE(back[text] == m[text]);
  }
}

TEST(MessageFileTest, TopicWithCodeOne_ComesBackExactly) {
  Message m = textMessage();
  m[Text::ConversationTopic] = u"Anna [+46 70]\u0001010203040506";
  const std::string file = messageFile(m);
  EXPECT_THAT(file, HasSubstr("X-Mailclient-ConversationTopic: Anna_[+46_70]%0001010203040506\r\n"));
  EXPECT_EQ(readBack(file)[Text::ConversationTopic], m[Text::ConversationTopic]);
}

TEST(MessageFileTest, TimesAndFlags_ComeBackExactly) {
  Message m = textMessage();
  m.sentOn = Date{36925.123456789};
  m.receivedTime = Date{36925 + 1.0 / 3};
  m.unsent = false;
  const Message back = readBack(messageFile(m));
  EXPECT_EQ(back.sentOn, m.sentOn);
  EXPECT_EQ(back.receivedTime, m.receivedTime);
  EXPECT_FALSE(back.unsent);
  EXPECT_EQ(back.entryId, u"00AB");
  EXPECT_FALSE(back.foreign);
  EXPECT_TRUE(readBack(messageFile(textMessage())).unsent);
}

TEST(MessageFileTest, Lines_AreLegal) {
  for (const String& text : awkwardTexts()) {
    Message m = textMessage();
    for (const TextProperty& p : textProperties()) m[p.text] = text;
    const std::string file = messageFile(m);
    for (const std::string& line : linesOf(file)) {
      EXPECT_LE(line.size(), 78u) << line;
      const auto isLegal = [](char c) { return (c >= ' ' && c < 0x7F) || c == '\t'; };
      EXPECT_TRUE(std::all_of(line.begin(), line.end(), isLegal)) << line;
    }
  }
}

TEST(MessageFileTest, UsualHeaders_ShowTheItemToOtherPrograms) {
  Message m = textMessage();
  m[Text::Subject] = u"Lunch at noon";
  m[Text::To] = u"Bj\u00F6rn [+46]";
  m[Text::SenderName] = u"Anna";
  m[Text::Body] = u"Caf\u00E9?\r\nBye";
  m.sentOn = Date{36925.5};
  const std::string file = messageFile(m);
  EXPECT_THAT(file, HasSubstr("Subject: Lunch at noon\r\n"));
  EXPECT_THAT(file, HasSubstr("From: =?UTF-8?Q?Anna?= <textmessage@mailclient.invalid>\r\n"));
  EXPECT_THAT(file, HasSubstr("To: =?UTF-8?Q?Bj=C3=B6rn_=5B+46=5D?= <textmessage@mailclient.invalid>\r\n"));
  EXPECT_THAT(file, HasSubstr("Date: Sat, 03 Feb 2001 12:00:00 +0000\r\n"));
  EXPECT_THAT(file, HasSubstr("\r\n\r\nCaf=C3=A9?\r\nBye"));
  EXPECT_THAT(file, Not(HasSubstr("X-Mailclient-Subject"))) << "the usual header says it all";
}

TEST(MessageFileTest, ForeignMail_IsReadAsMail) {
  const Message m = readBack(
      "From: =?iso-8859-1?Q?Bj=F6rn?= <b@example.org>\nTo: a@example.org,\n b@example.org\n"
      "Subject: =?utf-8?B?w6Ug?= =?UTF-8?Q?=C3=A4?= plain\nDate: Sat, 3 Feb 2001 13:00:00 +0100 (CET)\n"
      "Content-Type: text/plain; charset=\"utf-8\"\nContent-Transfer-Encoding: base64\n\nw6UK\nYg==\n");
  EXPECT_TRUE(m.foreign);
  EXPECT_EQ(m[Text::MessageClass], u"IPM.Note");
  EXPECT_EQ(m[Text::SenderName], u"Bj\u00F6rn <b@example.org>");
  EXPECT_EQ(m[Text::To], u"a@example.org, b@example.org");
  EXPECT_EQ(m[Text::Subject], u"\u00E5 \u00E4 plain");
  EXPECT_EQ(m[Text::ConversationTopic], m[Text::Subject]);
  EXPECT_NEAR(m.sentOn.days, 36925.5, 1e-9);
  EXPECT_EQ(m[Text::Body], u"\u00E5\r\nb");
}

TEST(MessageFileTest, ForeignMultipart_GivesItsPlainText) {
  const Message m = readBack(
      "Subject: s\r\nContent-Type: multipart/mixed; boundary=\"a\"\r\n\r\npreamble\r\n--a\r\n"
      "Content-Type: multipart/alternative; boundary=b\r\n\r\n--b\r\nContent-Type: text/html\r\n\r\n<p>\r\n--b\r\n"
      "Content-Type: text/plain\r\nContent-Transfer-Encoding: "
      "quoted-printable\r\n\r\nh=69=\r\n!\r\n--b--\r\n--a--\r\n");
  EXPECT_EQ(m[Text::Body], u"hi!\r\n");
}

TEST(MessageFileTest, ForeignMail_Saved_KeepsEverythingItHeld) {
  const std::string original = "Received: by x\nSubject: a\nX-Mailclient-Mileage: old\n\nThe \xE5 body\n";
  Message m = readBack(original);
  m.entryId = u"0F";
  m[Text::Mileage] = u"3";
  m[Text::Body] = u"changed";
  const std::string file = messageFile(m, original);
  EXPECT_THAT(file, HasSubstr("Received: by x\nSubject: a\n\r\nThe \xE5 body\n"));
  EXPECT_THAT(file, Not(HasSubstr("old")));
  const Message back = readBack(file);
  EXPECT_TRUE(back.foreign);
  EXPECT_EQ(back.entryId, u"0F");
  EXPECT_EQ(back[Text::Mileage], u"3");
  EXPECT_EQ(back[Text::Body], u"changed");
  EXPECT_EQ(back[Text::Subject], u"a");

  m[Text::Body] = u"The \u00E5 body\r\n";  // as it was
  EXPECT_THAT(messageFile(m, file), Not(HasSubstr("X-Mailclient-Body")));
}

TEST(MessageFileTest, DamagedFiles_AreReadAsFarAsTheyGo) {
  Message m = textMessage();
  m[Text::Subject] = u"\u00E5";
  m[Text::Body] = u"b\u0001";
  const std::string sound = messageFile(m);
  for (std::size_t size = 0; size <= sound.size(); ++size) readBack(sound.substr(0, size));
  for (std::size_t at = 0; at < sound.size(); ++at)
    for (const char value : {'\0', '\n', ':', '=', '%', '\xFF'}) {
      std::string damaged = sound;
      damaged[at] = value;
      EXPECT_FALSE(readBack(damaged)[Text::MessageClass].empty());
    }
  EXPECT_EQ(readBack("")[Text::MessageClass], u"IPM.Note");
  EXPECT_EQ(readBack("no header at all")[Text::Body], u"");
  for (const char* const days : {"1e300", "-700000", "-657435", "2958466", "nan", "inf"})
    EXPECT_EQ(readBack(std::string("X-Mailclient-Version: 1\nX-Mailclient-SentOn: ") + days + "\n\n").sentOn, Date{})
        << days;
  EXPECT_EQ(readBack("X-Mailclient-Version: 1\nX-Mailclient-SentOn: -657434\n\n").sentOn, Date{-657434})
      << "the calendar's first day";
}

TEST(HeaderTextTest, Dates_OfSeveralShapes) {
  EXPECT_EQ(parseDateText("3 Feb 2001 12:00 GMT"), Date{36925.5});
  EXPECT_EQ(parseDateText("Sat, 03 Feb 01 12:00:00 -0000"), Date{36925.5});
  EXPECT_NEAR(parseDateText("3 Feb 2001 23:30:00 -0530")->days, 36926 + 5.0 / 24, 1e-9);
  for (const char* const bad : {"", "yesterday", "31 Feb 2001 12:00", "3 Feb", "3 Feb 2001", "3 Feb 2001 25:00"})
    EXPECT_FALSE(parseDateText(bad)) << bad;
}

// A zone that is none would carry the date out of the calendar, where no program can show it.
TEST(HeaderTextTest, Dates_WithAZoneThatIsNone_CountAsGreenwich) {
  for (const char* const zone : {"+2147483647", "-2147483647", "+1401", "+9999999", "+1260"})
    EXPECT_EQ(parseDateText("1 Jan 2000 00:00:00 " + std::string(zone)), Date{36526}) << zone;
  EXPECT_NEAR(parseDateText("1 Jan 2000 00:00:00 +1400")->days, 36526 - 14.0 / 24, 1e-9);
  EXPECT_FALSE(parseDateText("31 Dec 9999 23:59:00 -0100")) << "behind the calendar";
}

}  // namespace
}  // namespace mailclient
