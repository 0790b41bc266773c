#include "support/win32/installed_product.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "com/windows.h"

namespace installed_product {
namespace {

using namespace testing_support;

void expectDone(const Lines& lines) {
  for (const std::string& line : lines) EXPECT_FALSE(line.starts_with("failed")) << line;
}

std::wstring freshFolder() {
  wchar_t temporary[MAX_PATH + 1];
  GetTempPathW(MAX_PATH, temporary);
  const std::wstring folder = temporary + (L"mrktxtmsg_tests." + std::to_wstring(GetCurrentProcessId()) + L"." +
                                           std::to_wstring(GetTickCount()));
  CreateDirectoryW(folder.c_str(), nullptr);
  return folder;
}

void removeFolder(const std::wstring& folder) {
  WIN32_FIND_DATAW found;
  const HANDLE search = FindFirstFileW((folder + L"\\*").c_str(), &found);
  if (search == INVALID_HANDLE_VALUE) return;
  do {
    const std::wstring name = found.cFileName;
    const std::wstring path = folder + L"\\" + name;
    if (!(found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY))
      DeleteFileW(path.c_str());
    else if (name != L"." && name != L"..")
      removeFolder(path);
  } while (FindNextFileW(search, &found));
  FindClose(search);
  RemoveDirectoryW(folder.c_str());
}

// ---- masking --------------------------------------------------------------------------------------------------------

constexpr std::string_view digits = "0123456789";

// Lines whose rest is a tick or a time.
constexpr std::array<std::string_view, 4> endInATime{"SetupSendMessage: ", "m_objTimer_Timer: ", "Guard time passed! ",
                                                     " *********** ProcessName: mrktxtmsg - Level: 2 - Time: "};

// What a transaction's number stands behind.
constexpr std::array<std::string_view, 7> beforeATransaction{
    "TransID:",        "tranid: ",         "Transaction ID = ", "transaction id: ",
    "TransactionID: ", "TransactionID = ", "delete SMS: "};

void maskTransaction(std::string& line) {
  for (const std::string_view before : beforeATransaction) {
    const std::size_t at = line.find(before);
    if (at == std::string::npos) continue;
    const std::size_t start = at + before.size();
    const std::size_t end = std::min(line.find_first_not_of(digits, start), line.size());
    if (end > start) line.replace(start, end - start, "#");
  }
}

// An EntryID is a long run of hexadecimal digits.
void maskEntryId(std::string& line) {
  constexpr std::size_t idLength = 56;
  constexpr std::string_view hexadecimal = "0123456789ABCDEF";
  for (std::size_t start = 0; (start = line.find_first_of(hexadecimal, start)) != std::string::npos;) {
    const std::size_t end = std::min(line.find_first_not_of(hexadecimal, start), line.size());
    if (end - start == idLength) {
      line.replace(start, idLength, "#");
      ++start;
    } else {
      start = end;
    }
  }
}

std::string masked(std::string line) {
  constexpr std::string_view usual = "mrktxtmsg (2) :";
  if (line.starts_with(usual)) line.erase(0, usual.size());
  for (const std::string_view start : endInATime)
    if (const std::size_t at = line.find(start); at != std::string::npos)
      line.replace(at + start.size(), line.size(), "#");
  if (line.starts_with("SetupGuard ") && !line.starts_with("SetupGuard [")) line = "SetupGuard #";
  maskTransaction(line);
  maskEntryId(line);
  return line;
}

// Whether and when the send timer ticks once more with nothing to send depends on how quick the machine is.
Lines withoutIdleTicks(const Lines& lines) {
  Lines kept;
  for (std::size_t i = 0; i < lines.size(); ++i) {
    const bool idle =
        lines[i] == "m_objTimer_Timer: #" && (i + 1 == lines.size() || lines[i + 1] != "Inside Function SendMessage");
    if (!idle) kept.push_back(lines[i]);
  }
  return kept;
}

std::string shortened(const std::string& body) {
  constexpr std::size_t shown = 20;
  constexpr std::size_t longest = 200;
  return body.size() <= longest ? body : body.substr(0, shown) + "... " + std::to_string(body.size());
}

}  // namespace

void Registration::SetUp() { expectDone(registerProduct()); }
void Registration::TearDown() { expectDone(unregisterProduct()); }

InstalledProduct::InstalledProduct() : folder_(freshFolder()) {
  OleInitialize(nullptr);
  endWorker();
  setLoadBehavior(3);  // a user who has disconnected the add-in would not get it at the next start
  removeAllOptions();
  setOption(L"WizardDone", 1);
  setOption(L"SendReceive_UseAuto", 0u);
  setShortMinute(0);
  trace_ = std::make_unique<TraceLog>(folder_ + L"\\trace.log");
  // The add-in starts it too, but waits for it for little more than a second.
  EXPECT_TRUE(trace_->startViewer());
}

InstalledProduct::~InstalledProduct() {
  endWorker();
  client_ = nullptr;
  trace_ = nullptr;
  removeFolder(folder_);
  OleUninitialize();
}

void InstalledProduct::TearDown() {
  if (HasFailure())
    for (const std::string& line : trace_->lines()) std::printf("    %s\n", line.substr(0, 200).c_str());
  if (!client_) return;
  if (quitsByItself_) {
    ASSERT_TRUE(client_->waitForEnd(patience)) << "the mail client was told to quit, and has not";
    EXPECT_EQ(client_->exitCode(), 0u);
    return;
  }
  ASSERT_TRUE(client_->isRunning()) << "the mail client has ended with " << client_->exitCode();
  const Answer status = ask("status");
  ASSERT_TRUE(status.ok) << "the mail client hangs";
  const auto connected = std::find(status.lines.begin(), status.lines.end(), "add-in mrktxtmsg.connect connected");
  if (connected != status.lines.end()) letGoOfAddIn();
  EXPECT_EQ(ask("references").lines, Lines{});
  EXPECT_TRUE(client_->quit(patience)) << "the mail client does not quit";
  EXPECT_EQ(client_->exitCode(), 0u);
}

void InstalledProduct::startClient(const std::wstring& arguments) {
  client_ = std::make_unique<MailClientProcess>(arguments);
  ASSERT_TRUE(client_->isReady());
}

void InstalledProduct::restartClient(const std::wstring& arguments) {
  letGoOfAddIn();
  EXPECT_EQ(ask("references").lines, Lines{});
  ASSERT_TRUE(client_->quit(patience));
  startClient(arguments);
}

void InstalledProduct::compose(const std::string& to, const std::string& body) {
  EXPECT_TRUE(ask("compose " + MailClientProcess::quoted(to) + " " + MailClientProcess::quoted(body)).ok);
}

bool InstalledProduct::isSendReceiveEnabled() {
  for (const std::string& line : ask("buttons").lines)
    if (MailClientProcess::field(line, "tag") == "Send & Receive Text Message")
      return MailClientProcess::field(line, "enabled") == "1";
  return false;
}

bool InstalledProduct::waitForItems(const std::string& folder, std::size_t count) {
  const std::string command = "wait " + MailClientProcess::quoted(folder) + " " + std::to_string(count);
  return client_->ask(command + " " + std::to_string(patience), 2 * patience).result == "yes";
}

Lines InstalledProduct::items() {
  Lines all;
  for (const std::string folder : {"Inbox", "Outbox", "Sent Items", "Deleted Items", "Drafts"})
    for (const std::string& line : ask("list " + MailClientProcess::quoted(folder)).lines)
      all.push_back(folder + ": " + shortened(MailClientProcess::field(line, "body")));
  return all;
}

std::string InstalledProduct::itemOf(const std::string& folder, std::size_t position) {
  const Lines all = ask("list " + MailClientProcess::quoted(folder)).lines;
  return position < all.size() ? all[position] : "no such item";
}

Lines InstalledProduct::traced(std::size_t from) const {
  Lines lines = trace_->lines(from);
  std::transform(lines.begin(), lines.end(), lines.begin(), masked);
  return withoutIdleTicks(lines);
}

bool InstalledProduct::waitForTrace(const std::string& line, std::size_t from) const {
  return trace_->waitFor(line, from, patience);
}

}  // namespace installed_product
