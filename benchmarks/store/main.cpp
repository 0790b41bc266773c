// Makes the store that the mail client's window is measured with. Natively: under Wine each new file of a large folder
// takes longer than reading all of them.
#include <cstdio>
#include <cstdlib>
#include <string>

#include "mailclient/maildir.h"
#include "mailclient/store.h"

namespace {

using mailclient::String;
using mailclient::Text;

constexpr char windowsSeparator = ';';

String digitsOf(int number) {
  const std::string text = std::to_string(number);
  return {text.begin(), text.end()};
}

// As the add-in files a received message. The order of arrival, of the senders and of the subjects are three.
void addMessage(mailclient::Store& store, mailclient::Folder& folder, int i) {
  const String number = digitsOf(10000 + i * 7919 % 90000);
  const String name = u"Sender " + digitsOf(i * 31 % 400);
  const auto message = mailclient::Store::create(folder, mailclient::textMessageClass);
  mailclient::setSubject(*message, u"Bring the papers of order " + number);
  (*message)[Text::Body] = u"Bring the papers of order " + number + u", and be at the café by the bridge before noon.";
  (*message)[Text::SenderName] = name + u" [+467011" + number + u"]";
  (*message)[Text::To] = u"Eva Moberg [+46700000001]";
  (*message)[Text::BillingInformation] = u"0102030" + number;
  message->sentOn = message->receivedTime = platform::Date{36925.5 + 0.001 * i};
  message->unsent = false;
  message->unread = i % 3 == 0;
  store.save(message);
}

}  // namespace

int main(int count, char** texts) {
  if (count != 3) {
    std::fputs("bench_store FOLDER COUNT: a new store with text messages in its Inbox\n", stderr);
    return 2;
  }
  const auto environment = std::make_shared<mailclient::Environment>();
  mailclient::Store store(std::make_unique<mailclient::Maildir>(texts[1], environment, windowsSeparator));
  const auto inbox = store.defaultFolder(mailclient::DefaultFolder::Inbox);
  for (int i = 0; i < std::atoi(texts[2]); ++i) addMessage(store, *inbox, i);
  return 0;
}
