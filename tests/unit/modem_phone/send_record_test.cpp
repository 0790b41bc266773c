#include "servers/modem/send_record.h"

#include <gtest/gtest.h>

#include "unit/modem_phone/rig.h"

namespace {

using handset::OutgoingMessage;
using modem_testing::Notebook;
using modem_testing::NotebookNotes;
using modem_testing::RigClock;
using phone::Milliseconds;
using phone::Outcome;
using servers::modem::SendRecord;
using State = SendRecord::State;

const OutgoingMessage greeting{u"", u"+46701234567", u"hello"};
const std::string keyOfHello = "7dc0d41daed92b80";

class SendRecordTest : public testing::Test {
 protected:
  void begin() {
    record_.emplace(time_, clock_, std::make_unique<NotebookNotes>(notebook_));
    record_->phoneFound();
  }
  // A server that begins after one that has ended at once.
  void beginWith(const std::string& notes) {
    record_.reset();
    notebook_.text = notes;
    begin();
  }
  State stateOf(const OutgoingMessage& message) { return record_->request(message).state; }

  testing_support::Journal journal_;
  testing_support::NativeTime time_{journal_};
  RigClock clock_;
  Notebook notebook_;
  std::optional<SendRecord> record_;
};

TEST_F(SendRecordTest, Key_TellsNumberAndTextApart) {
  const auto key = [](const char16_t* number, const char16_t* text) { return SendRecord::keyOf({u"", number, text}); };
  EXPECT_EQ(key(u"12", u"3"), SendRecord::keyOf({u"+46", u"12", u"3"}));
  EXPECT_NE(key(u"12", u"3"), key(u"1", u"23"));
  EXPECT_NE(key(u"12", u""), key(u"", u"12"));
  EXPECT_NE(key(u"12", u"\u0101"), key(u"12", u"\u0001"));
  EXPECT_NE(key(u"12", u"ab"), key(u"12", u"ba"));
}

TEST_F(SendRecordTest, WhatWasNeverHandedIn_IsNotNoted) {
  begin();
  record_->ended(record_->request(greeting), {Outcome::Kind::BadNumber}, 0, true);
  EXPECT_EQ(notebook_.saves, 0);
}

TEST_F(SendRecordTest, MessageThatIsHandedIn_IsNotedWithoutItsTextAndNumber) {
  begin();
  record_->begins(record_->request(greeting), 7);
  EXPECT_EQ(notebook_.text, "sends 1\n" + keyOfHello + " open 1 7 0 11000\n");
  EXPECT_EQ(notebook_.saves, 1);
}

TEST_F(SendRecordTest, SettledMessage_IsNotedUntilTheAnswerHasHadTimeToArrive) {
  begin();
  auto& entry = record_->request(greeting);
  record_->begins(entry, 7);
  record_->ended(entry, {}, 1, true);
  time_.run(SendRecord::settling - 1);
  EXPECT_EQ(notebook_.text, "sends 1\n" + keyOfHello + " open 1 7 0 11000\n");
  time_.run(1);
  EXPECT_EQ(notebook_.text, "");
  EXPECT_EQ(notebook_.saves, 2);
  EXPECT_EQ(time_.pendingWork(), 0u);
}

TEST_F(SendRecordTest, SettledMessage_IsANewOneAtOnce) {
  begin();
  auto& entry = record_->request(greeting);
  record_->begins(entry, 7);
  record_->ended(entry, {}, 1, true);
  EXPECT_EQ(stateOf(greeting), State::Unsent);
}

TEST_F(SendRecordTest, OpenWhenTheServerBegins_IsUnknownAndTheFailureIsNotCounted) {
  beginWith("sends 1\n" + keyOfHello + " open 1 7 0 11000\n");
  for (int i = 0; i < SendRecord::attempts; ++i) EXPECT_EQ(stateOf(greeting), State::Unknown);
  EXPECT_EQ(notebook_.text, "");
  EXPECT_EQ(stateOf(greeting), State::Unsent);
}

TEST_F(SendRecordTest, AskedForMoreOftenThanUsualWhileOpen_IsNotForgottenByTheNextServer) {
  begin();
  record_->begins(record_->request(greeting), 7);
  for (int more = 0; more < 300; ++more) EXPECT_EQ(stateOf(greeting), State::Open);
  beginWith(notebook_.text);
  EXPECT_EQ(stateOf(greeting), State::Unknown);
}

TEST_F(SendRecordTest, NotesThatCannotBeSaved_AreTriedAgain) {
  begin();
  auto& entry = record_->request(greeting);
  notebook_.isFull = true;
  record_->begins(entry, 7);
  EXPECT_EQ(notebook_.text, "");
  notebook_.isFull = false;
  record_->ended(entry, {Outcome::Kind::Unknown}, 0, true);
  EXPECT_EQ(notebook_.text, "sends 1\n" + keyOfHello + " unknown 1 7 0 11000\n");
  notebook_.isFull = true;
  clock_.pass(SendRecord::window);
  time_.run(SendRecord::window.count());
  EXPECT_NE(notebook_.text, "");
  notebook_.isFull = false;
  time_.run(SendRecord::window.count());
  EXPECT_EQ(notebook_.text, "");
  EXPECT_EQ(time_.pendingWork(), 0u);
}

TEST_F(SendRecordTest, AnotherPhoneThatComes_ProlongsNothing) {
  beginWith("sends 1\n" + keyOfHello + " untold 1 7 0 11000\n");
  clock_.pass(SendRecord::window - Milliseconds(1));
  record_->phoneFound();
  clock_.pass(Milliseconds(1));
  EXPECT_EQ(stateOf(greeting), State::Unsent);
}

TEST_F(SendRecordTest, UnknownAndUntoldOnes_AreFoundAgain) {
  beginWith("sends 1\n" + keyOfHello + " unknown 1 7 0 11000\n");
  EXPECT_EQ(stateOf(greeting), State::Unknown);
  EXPECT_EQ(notebook_.text, "sends 1\n" + keyOfHello + " unknown 2 7 0 11000\n");
  for (const char* const state : {"untold", "settled"}) {
    beginWith("sends 1\n" + keyOfHello + " " + state + " 1 7 0 11000\n");
    EXPECT_EQ(stateOf(greeting), State::Untold);
  }
}

TEST_F(SendRecordTest, PartsThatWereSent_AreFoundAgain) {
  begin();
  auto& entry = record_->request(greeting);
  record_->begins(entry, 200);
  record_->ended(entry, {Outcome::Kind::Refused}, 2, true);
  const std::string notes = "sends 1\n" + keyOfHello + " unsent 1 200 2 11000\n";
  EXPECT_EQ(notebook_.text, notes);
  beginWith(notes);
  const auto& again = record_->request(greeting);
  EXPECT_EQ(again.state, State::Unsent);
  EXPECT_EQ(again.reference, 200);
  EXPECT_EQ(again.partsSent, 2u);
}

TEST_F(SendRecordTest, RefusedWithoutAnythingSent_IsNotNoted) {
  begin();
  auto& entry = record_->request(greeting);
  record_->begins(entry, 7);
  record_->ended(entry, {Outcome::Kind::Refused}, 0, true);
  EXPECT_EQ(notebook_.text, "");
}

TEST_F(SendRecordTest, AskersThatLeft_HaveNotCountedAFailure) {
  begin();
  auto& entry = record_->request(greeting);
  record_->begins(entry, 7);
  record_->left(entry, 1);
  record_->ended(entry, {Outcome::Kind::Unknown}, 0, false);
  EXPECT_EQ(notebook_.text, "sends 1\n" + keyOfHello + " unknown 0 7 0 11000\n");
  for (int i = 0; i < SendRecord::attempts; ++i) EXPECT_EQ(stateOf(greeting), State::Unknown);
  EXPECT_EQ(stateOf(greeting), State::Unsent);
}

TEST_F(SendRecordTest, NotAskedForAgainForAWhile_IsANewMessage) {
  beginWith("sends 1\n" + keyOfHello + " unknown 1 7 0 11000\n");
  clock_.pass(SendRecord::window - Milliseconds(1));
  EXPECT_EQ(stateOf(greeting), State::Unknown);
  clock_.pass(SendRecord::window);
  EXPECT_EQ(stateOf(greeting), State::Unsent);
}

TEST_F(SendRecordTest, TimeWithoutAPhone_DoesNotCount) {
  beginWith("sends 1\n" + keyOfHello + " unknown 1 7 0 11000\n");
  record_->phoneLost();
  clock_.pass(100 * SendRecord::window);
  time_.run(SendRecord::window.count());
  EXPECT_NE(notebook_.text, "");
  record_->phoneFound();
  EXPECT_EQ(stateOf(greeting), State::Unknown);
}

TEST_F(SendRecordTest, OldNotes_GoByThemselves) {
  beginWith("sends 1\n" + keyOfHello + " unknown 1 7 0 11000\n");
  clock_.pass(SendRecord::window);
  time_.run(SendRecord::window.count());
  EXPECT_EQ(notebook_.text, "");
  EXPECT_EQ(time_.pendingWork(), 0u);
}

TEST_F(SendRecordTest, NotesOfLastWeek_CountNoMore) {
  const std::string notes = "sends 1\n" + keyOfHello + " unknown 1 7 0 11000\n";
  notebook_.day = 11000 + SendRecord::mostDays;
  beginWith(notes);
  EXPECT_EQ(stateOf(greeting), State::Unknown);
  notebook_.day = 11000 + SendRecord::mostDays + 1;
  beginWith(notes);
  EXPECT_EQ(stateOf(greeting), State::Unsent);
  notebook_.day = 10000;  // somebody has put the clock back
  beginWith(notes);
  EXPECT_EQ(stateOf(greeting), State::Unknown);
}

TEST_F(SendRecordTest, OpenMessage_NeverExpires) {
  begin();
  record_->begins(record_->request(greeting), 7);
  clock_.pass(2 * SendRecord::window);
  EXPECT_EQ(stateOf(greeting), State::Open);
}

TEST_F(SendRecordTest, NonsenseInTheNotes_IsPassedOver) {
  const std::string good = keyOfHello + " unknown 1 7 0 11000\n";
  for (const std::string& bad :
       {std::string("\n"), std::string("\0\0\n", 3), std::string("1\n"), "g" + good, keyOfHello + good,
        keyOfHello + " lost 1 7 0 11000\n", keyOfHello + " open 4 7 0 11000\n", keyOfHello + " open -1 7 0 11000\n",
        keyOfHello + " open 1 256 0 11000\n", keyOfHello + " open 1 7 256 11000\n",
        keyOfHello + " open 1 7 0 99999999999\n", keyOfHello + " open 1 7 0 11000 1\n", std::string(100000, 'a') + "\n",
        std::string(100000, ' ') + "\n"}) {
    beginWith("sends 1\n" + bad + good);
    EXPECT_EQ(stateOf(greeting), State::Unknown) << bad.substr(0, 50);
    beginWith("sends 1\n" + bad);
    EXPECT_EQ(stateOf(greeting), State::Unsent) << bad.substr(0, 50);
  }
  for (const std::string& notes : {good, "sends 2\n" + good, std::string("sends 1"), std::string()}) {
    beginWith(notes);
    EXPECT_EQ(stateOf(greeting), State::Unsent);
  }
  // Cut off, and twice the same: the first counts.
  beginWith("sends 1\n" + keyOfHello + " untold 1 7 0 11000\n" + keyOfHello + " unknown 1 7 0 11000");
  EXPECT_EQ(stateOf(greeting), State::Untold);
}

TEST_F(SendRecordTest, ManyMessages_TheOldestAreForgottenButNoneThatIsOpen) {
  begin();
  record_->begins(record_->request(greeting), 7);
  for (std::size_t i = 0; i < 2 * SendRecord::most; ++i) {
    auto& entry = record_->request({u"", u"1", platform::String(i, u'x')});
    record_->begins(entry, 8);
    record_->ended(entry, {Outcome::Kind::Unknown}, 0, true);
  }
  EXPECT_EQ(std::count(notebook_.text.begin(), notebook_.text.end(), '\n'), 1 + static_cast<int>(SendRecord::most));
  EXPECT_EQ(stateOf(greeting), State::Open);
  EXPECT_EQ(stateOf({u"", u"1", platform::String(2 * SendRecord::most - 1, u'x')}), State::Unknown);
  EXPECT_EQ(stateOf({u"", u"1", platform::String()}), State::Unsent);
}

}  // namespace
