#include "mailclient/maildir.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <fstream>
#include <iterator>
#include <random>
#include <tuple>

#include "mailclient/maildir_names.h"
#include "mailclient/message_file.h"
#include "mailclient/state_file.h"
#include "mailclient/text_coding.h"

namespace mailclient {
namespace {

namespace fs = std::filesystem;

constexpr char seen = 'S';
constexpr std::string_view stateName = "mailclient.state";
constexpr std::string_view cacheName = "mailclient.cache";
constexpr std::string_view lockName = "mailclient.lock";
constexpr std::string_view markerName = "maildirfolder";
constexpr std::string_view ourSuffix = ".mailclient";
constexpr std::size_t secondDigits = 10;
constexpr std::uint64_t largestId = std::uint64_t{1} << 62;  // above it an EntryID was damaged
constexpr StringView inboxName = u"Inbox";
constexpr std::streamoff largestFile = std::streamoff{64} << 20;  // what is larger is left alone

// Failures of the file system in the mail client's own terms.
template <class Action>
auto guarded(Action&& action) {
  try {
    return action();
  } catch (const fs::filesystem_error&) {
    fail(failure::notOnDisk, u"The message store could not be read or written.");
  }
}

std::optional<std::string> readFile(const fs::path& path) {
  std::ifstream stream(path, std::ios::binary | std::ios::ate);
  if (!stream) return std::nullopt;
  const auto size = static_cast<std::streamoff>(stream.tellg());
  if (size < 0 || size > largestFile) return std::nullopt;
  std::string content(static_cast<std::size_t>(size), '\0');
  stream.seekg(0);
  stream.read(content.data(), static_cast<std::streamsize>(content.size()));
  content.resize(static_cast<std::size_t>(stream.gcount()));
  return content;
}

// A file's or directory's own name; nothing when it cannot be a name of ours (and some systems could not convert it).
std::optional<std::string> asciiName(const fs::path& path) {
  const std::u16string name = path.filename().u16string();
  if (std::any_of(name.begin(), name.end(), [](char16_t c) { return c > 0x7E; })) return std::nullopt;
  return std::string(name.begin(), name.end());
}

std::uint64_t number(std::string_view text, int base) {
  std::uint64_t value = 0;
  std::from_chars(text.data(), text.data() + text.size(), value, base);
  return value;
}

std::string padded(std::uint64_t number, std::size_t width) {
  std::string text = std::to_string(number);
  return text.size() < width ? std::string(width - text.size(), '0') + text : text;
}

String randomStoreId() {
  std::random_device random;
  String id;
  for (int i = 0; i < 32; ++i) id += u"0123456789ABCDEF"[random() & 15];
  return id;
}

// The identifier of a message that nobody has saved yet follows from its file's name, so that it is the same in each
// run.
String derivedEntryId(const String& storeId, const std::string& base) {
  const std::uint64_t hash = fingerprint(base);
  String id = u"0000000F" + storeId;
  for (int shift = 60; shift >= 0; shift -= 4) id += u"0123456789ABCDEF"[hash >> shift & 15];
  return id;
}

void makeFolder(const fs::path& path, ItemType type) {
  for (const char* const part : {"tmp", "new", "cur"}) fs::create_directories(path / part);
  std::ofstream(path / markerName, std::ios::binary) << "type " << static_cast<int>(type) << "\n";
}

ItemType folderType(const fs::path& path) {
  const auto marker = readFile(path / markerName);
  const std::uint64_t type =
      marker && marker->rfind("type ", 0) == 0 ? number(std::string_view(*marker).substr(5), 10) : 0;
  return type <= static_cast<std::uint64_t>(ItemType::Post) ? static_cast<ItemType>(type) : ItemType::Mail;
}

// The file of a message, also when another program has changed its flags or its place since; empty when it has gone.
fs::path locate(const fs::path& folder, const Message& message) {
  if (fs::exists(folder / message.file)) return message.file;
  const std::string base = parseName(asciiName(message.file).value_or(std::string())).base;
  for (const char* const part : {"cur", "new"})
    for (const auto& entry : fs::directory_iterator(folder / part)) {
      const auto name = asciiName(entry.path());
      if (name && parseName(*name).base == base) return fs::path(part) / *name;
    }
  return {};
}

}  // namespace

Maildir::Maildir(fs::path root, std::shared_ptr<Environment> environment, char separator, std::size_t worthACache)
    : root_(std::move(root)), environment_(std::move(environment)), separator_(separator), worthACache_(worthACache) {}

fs::path Maildir::folderPath(const std::vector<String>& names) const {
  if (names.size() == 1 && sameName(names[0], inboxName)) return root_;
  return root_ / folderDirectory(names);
}

// The tree is made of the names of the directories; folders that are only part of another's name are made on the way.
LoadedStore Maildir::load() {
  return guarded([&] {
    makeFolder(root_, ItemType::Mail);
    lock_ = environment_->lockFile(root_ / lockName);
    if (!lock_) fail(failure::busy, u"The message store is in use by another program.");
    LoadedStore loaded;
    loaded.state = readStateFile(readFile(root_ / stateName).value_or(std::string()));
    const bool isNew = loaded.state.storeId.empty();
    if (isNew) loaded.state.storeId = randomStoreId();
    storeId_ = loaded.state.storeId;

    cache_.read(readFile(root_ / cacheName).value_or(std::string()));
    fromCache_ = 0;
    cacheIsTrue_ = !cache_.isEmpty();
    std::vector<std::vector<String>> paths{{String(inboxName)}};
    for (const auto& entry : fs::directory_iterator(root_)) {
      const auto name = asciiName(entry.path());
      const auto names = name && entry.is_directory() ? folderNames(*name) : std::nullopt;
      // Of a name that is written differently from ours, the folder could not be found again.
      if (names && folderPath(*names) == root_ / *name) paths.push_back(*names);
    }
    std::sort(paths.begin(), paths.end());
    for (const auto& names : paths) {
      std::vector<LoadedFolder>* level = &loaded.folders;
      LoadedFolder* folder = nullptr;
      std::vector<String> above;
      for (const String& name : names) {
        above.push_back(name);
        auto at = std::find_if(level->begin(), level->end(), [&](const LoadedFolder& f) { return f.name == name; });
        if (at == level->end()) {
          const fs::path path = folderPath(above);
          if (!fs::is_directory(path / "cur")) makeFolder(path, ItemType::Mail);
          at = level->insert(level->end(), {name, folderType(path), {}, {}});
        }
        folder = &*at;
        level = &folder->children;
      }
      loadMessages(folderPath(names), *folder);
    }
    loaded.state.nextId = std::max(loaded.state.nextId, highestId_ + 1);
    cacheIsTrue_ = cacheIsTrue_ && fromCache_ == cache_.size();
    cache_ = {};
    if (isNew) writeState(loaded.state);
    return loaded;
  });
}

void Maildir::loadMessages(const fs::path& folder, LoadedFolder& into) {
  // By base name, which is the order of arrival. The stamps are older than what is read: never newer.
  std::vector<std::tuple<std::string, fs::path, FileStamp>> files;
  for (const char* const part : {"cur", "new"})
    for (const FileEntry& entry : environment_->filesIn(folder / part)) {
      const auto name = asciiName(entry.name);
      if (name && name->front() != '.') files.emplace_back(parseName(*name).base, fs::path(part) / *name, entry.stamp);
    }
  const auto order = [](const auto& file) { return std::tie(std::get<0>(file), std::get<1>(file)); };
  std::sort(files.begin(), files.end(), [&](const auto& a, const auto& b) { return order(a) < order(b); });
  for (const auto& [base, file, stamp] : files) {
    if (const auto cached = cache_.find(cacheKey(folder, base), stamp)) {
      ++fromCache_;
      noteArrival(base);
      into.messages.push_back(loadMessage(file, stamp, *cached));
      continue;
    }
    cacheIsTrue_ = false;
    const auto content = readFile(folder / file);
    if (!content) continue;
    noteArrival(base);
    into.messages.push_back(loadMessage(file, stamp, *content));
  }
}

MessagePtr Maildir::loadMessage(const fs::path& file, const FileStamp& stamp, std::string_view content) {
  auto message = std::make_shared<Message>();
  readMessageFile(content, *message);
  const FlaggedName name = parseName(*asciiName(file));
  message->file = file;
  message->stamp = stamp;
  message->unread = name.flags.find(seen) == std::string::npos;
  if (message->entryId.empty()) message->entryId = derivedEntryId(storeId_, name.base);
  const String prefix = u"00000000" + storeId_;
  if (message->entryId.size() == prefix.size() + 16 && message->entryId.compare(0, prefix.size(), prefix) == 0) {
    const String digits = message->entryId.substr(prefix.size());
    const std::uint64_t id = number(std::string(digits.begin(), digits.end()), 16);
    if (id < largestId) highestId_ = std::max(highestId_, id);
  }
  return message;
}

// Of names of ours only: "<second>.<number>_<item>.mailclient".
void Maildir::noteArrival(const std::string& base) {
  const std::size_t dot = base.find('.');
  const bool isOurs =
      base.size() > ourSuffix.size() && base.compare(base.size() - ourSuffix.size(), ourSuffix.size(), ourSuffix) == 0;
  if (!isOurs || dot != secondDigits) return;
  const std::pair found{number(base.substr(0, dot), 10), number(base.substr(dot + 1, base.find('_') - dot - 1), 10)};
  std::tie(lastSecond_, lastNumber_) = std::max(std::pair{lastSecond_, lastNumber_}, found);
}

std::string Maildir::freshBase(const Message& message, const fs::path& folder) {
  constexpr double daysTo1970 = 25569;
  const double seconds = (environment_->utcNow().days - daysTo1970) * 86400;
  const auto now = seconds > 0 ? static_cast<std::uint64_t>(std::llround(seconds)) : 0;
  const String tail = message.entryId.substr(message.entryId.size() - std::min<std::size_t>(8, message.entryId.size()));
  std::string item;
  for (const char16_t c : tail)
    if ((c >= u'0' && c <= u'9') || (c >= u'A' && c <= u'Z')) item += static_cast<char>(c);
  for (;;) {
    if (now > lastSecond_)
      lastNumber_ = 0;
    else
      ++lastNumber_;
    lastSecond_ = std::max(lastSecond_, now);
    std::string base =
        padded(lastSecond_, secondDigits) + "." + padded(lastNumber_, 6) + "_" + item + std::string(ourSuffix);
    const auto isTaken = [&](bool unread) {
      return fs::exists(folder / "cur" / joinName(withFlag({base, {}}, seen, !unread), separator_));
    };
    if (!isTaken(true) && !isTaken(false)) return base;
  }
}

FileStamp Maildir::replaceFile(const fs::path& folder, const fs::path& name, const std::string& content) {
  const fs::path temporary = folder / "tmp" / name.filename();
  {
    std::ofstream stream(temporary, std::ios::binary | std::ios::trunc);
    stream.write(content.data(), static_cast<std::streamsize>(content.size()));
    stream.close();
    if (!stream) {
      std::error_code ignored;
      fs::remove(temporary, ignored);
      fail(failure::notOnDisk, u"The message store could not be written.");
    }
  }
  environment_->flushToDisk(temporary);
  const FileStamp stamp = environment_->stampOf(temporary);  // while nobody else can have changed it
  fs::rename(temporary, folder / name);
  return stamp;
}

void Maildir::createFolder(const Folder& folder) {
  guarded([&] {
    const fs::path path = folderPath(folder);
    if (fs::exists(path) && path != root_) fail(failure::collision, u"A folder with this name already exists.");
    makeFolder(path, folder.type());
  });
}

// Everything below is renamed too; the folder itself last, so that a crash leaves every file in some folder.
void Maildir::renameFolder(const Folder& folder, StringView newName) {
  cacheIsTrue_ = false;
  guarded([&] {
    const std::vector<String> from = folder.path();
    std::vector<String> to = from;
    to.back() = newName;
    if (fs::exists(folderPath(to)) && folderPath(to) != folderPath(from))
      fail(failure::collision, u"A folder with this name already exists.");
    std::vector<const Folder*> all{&folder};
    for (std::size_t i = 0; i < all.size(); ++i)
      for (const auto& below : all[i]->children()) all.push_back(below.get());
    for (auto at = all.rbegin(); at != all.rend(); ++at) {
      std::vector<String> names = (*at)->path();
      const fs::path old = folderPath(names);
      names[from.size() - 1] = newName;
      fs::rename(old, folderPath(names));
    }
  });
}

void Maildir::removeFolder(const Folder& folder) {
  cacheIsTrue_ = false;
  guarded([&] {
    for (const auto& below : folder.children()) removeFolder(*below);
    fs::remove_all(folderPath(folder));
  });
}

void Maildir::write(const Folder& folder, Message& message) {
  guarded([&] {
    const fs::path path = folderPath(folder);
    fs::path file = message.file.empty() ? fs::path() : locate(path, message);
    const std::string original =
        message.foreign && !file.empty() ? readFile(path / file).value_or(std::string()) : std::string();
    if (file.empty())
      file = fs::path("cur") / joinName(withFlag({freshBase(message, path), {}}, seen, !message.unread), separator_);
    // Where times are coarse, the new file can have the old one's stamp.
    if (!message.file.empty()) dropCache();
    cacheIsTrue_ = false;
    message.stamp = replaceFile(path, file, messageFile(message, original));
    message.file = file;
  });
}

void Maildir::writeReadState(const Folder& folder, Message& message) {
  guarded([&] {
    const fs::path path = folderPath(folder);
    const fs::path file = locate(path, message);
    if (file.empty()) return;  // gone from the disk: the next save writes it anew
    const FlaggedName name = withFlag(parseName(*asciiName(file)), seen, !message.unread);
    const fs::path target = fs::path("cur") / joinName(name, separator_);
    if (target != file) fs::rename(path / file, path / target);
    message.file = target;
  });
}

void Maildir::move(Message& message, const Folder& from, const Folder& to) {
  guarded([&] {
    const fs::path source = folderPath(from);
    const fs::path target = folderPath(to);
    const fs::path file = locate(source, message);
    if (file.empty()) {
      message.file.clear();
      write(to, message);
      return;
    }
    FlaggedName name = parseName(*asciiName(file));
    // A foreign name stays while it can: the item's identifier may follow from it.
    if (!message.foreign || fs::exists(target / "cur" / joinName(name, separator_)))
      name.base = freshBase(message, target);
    const fs::path moved = fs::path("cur") / joinName(name, separator_);
    cacheIsTrue_ = false;
    fs::rename(source / file, target / moved);
    message.file = moved;
  });
}

void Maildir::erase(const Folder& folder, const Message& message) {
  guarded([&] {
    const fs::path path = folderPath(folder);
    const fs::path file = locate(path, message);
    cacheIsTrue_ = false;
    if (!file.empty()) fs::remove(path / file);
  });
}

void Maildir::writeState(const StoreState& state) {
  guarded([&] { replaceFile(root_, fs::path(stateName), stateFile(state)); });
}

// ---- the cache ------------------------------------------------------------------------------------------------------

std::string Maildir::cacheKey(const fs::path& folder, const std::string& base) const {
  return (folder == root_ ? std::string(".") : asciiName(folder).value_or(std::string())) + "/" + base;
}

void Maildir::dropCache() {
  cacheIsTrue_ = false;
  std::error_code ignored;
  fs::remove(root_ / cacheName, ignored);
}

// Empty for a store that is not worth one. Files of other programs are read from their own place: only there they are
// exactly what they are.
std::string Maildir::cacheOf(const Folder& root) const {
  StoreCache::Writer writer;
  std::vector<const Folder*> waiting{&root};
  while (!waiting.empty()) {
    const Folder* const folder = waiting.back();
    waiting.pop_back();
    for (const auto& below : folder->children()) waiting.push_back(below.get());
    for (const MessagePtr& message : folder->messages()) {
      const auto name = asciiName(message->file);
      if (message->foreign || message->changed || !name) continue;
      writer.add(cacheKey(folderPath(*folder), parseName(*name).base), message->stamp, messageFile(*message));
    }
  }
  return writer.size() >= worthACache_ ? writer.content() : std::string();
}

void Maildir::finish(const Folder& root) {
  if (cacheIsTrue_) return;
  try {
    guarded([&] {
      const std::string content = cacheOf(root);
      const bool isKept = !content.empty() && content.size() <= static_cast<std::size_t>(largestFile);
      // What was deleted does not live on in it.
      if (isKept)
        replaceFile(root_, fs::path(cacheName), content);
      else
        fs::remove(root_ / cacheName);
      cacheIsTrue_ = isKept;
    });
  } catch (const RuntimeError&) {
    // The next start takes longer; no reason to disturb the end of this one.
  }
}

}  // namespace mailclient
