// The installed product, as tests set it up: registration, settings, the trace, the simulated handset.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "addin/platform/object.h"
#include "support/patience.h"

namespace testing_support {

// Registers every server and the add-in, from the folder of the programs under test, the sample list of service centres
// and, as the only phone, the simulated handset. The lines say what was done; a line that begins with "failed" says
// what was not.
std::vector<std::string> registerProduct();
std::vector<std::string> unregisterProduct();

// One file of the product, such as timermm.dll or dvmworker.exe. False when it could not be done.
bool registerServer(const std::wstring& file);
bool unregisterServer(const std::wstring& file);

// What a mail client remembers of the add-in: 3 loads it at the next start, 2 does not.
void setLoadBehavior(std::uint32_t number);

// Values under the add-in's Options key of the present user.
extern const wchar_t* const optionsKey;  // under HKEY_CURRENT_USER
void setOption(const wchar_t* name, std::uint32_t number);
void setOption(const wchar_t* name, const wchar_t* text);
void setOption(const wchar_t* name, std::uint32_t type, const std::vector<std::byte>& data);  // of any type and size
void removeOption(const wchar_t* name);
void removeAllOptions();

// Who the system says it belongs to; an empty name removes the value. The answer is who it was.
std::wstring setRegisteredOwner(const std::wstring& name);
// Where the help files are said to lie, and in which language; an empty folder removes both values.
void setHelpFiles(const std::wstring& folder, std::uint32_t language);
// Puts the stand-in help viewer into the system folder, under Wine alone. False when it is not there afterwards.
bool installHelpViewer();

// A value under HKEY_CURRENT_USER; 0 milliseconds or an empty text removes it.
void setShortMinute(std::uint32_t milliseconds);
void setHandsetStateFile(const std::wstring& path);
// Where dvmworker.exe notes which messages may have been sent; an empty path removes the value.
void setSendFile(const std::wstring& path);
// Which phones dvmworker.exe looks for, when it starts the next time. Registering the product says "sim".
void setPorts(const std::wstring& list);

// The values of all keys that the product and its tests use, put back as they were.
class SavedSettings {
 public:
  SavedSettings();
  ~SavedSettings();
  SavedSettings(const SavedSettings&) = delete;
  SavedSettings& operator=(const SavedSettings&) = delete;

 private:
  class Key;
  std::vector<std::unique_ptr<Key>> keys_;
};

// The trace: the add-in starts the viewer itself, which writes what it shows into the file.
class TraceLog {
 public:
  explicit TraceLog(std::wstring file);
  ~TraceLog();  // ends the viewer, and waits for that: the next one is not to find it
  TraceLog(const TraceLog&) = delete;
  TraceLog& operator=(const TraceLog&) = delete;

  // Starts the viewer before the add-in does, or instead of it. False when it does not come.
  bool startViewer() const;
  void endViewer() const;
  // What the add-in finds of its own settings: the trace's key, or the one below it for its level.
  enum class Where : std::uint8_t { Channel, Writer };
  static void set(Where where, const wchar_t* name, std::uint32_t type, const std::vector<std::byte>& data);

  // Lines from a position on, without the line end.
  std::vector<std::string> lines(std::size_t from = 0) const;
  std::size_t size() const { return lines().size(); }
  // Waits until some line from `from` on contains the text.
  bool waitFor(const std::string& text, std::size_t from, std::uint32_t milliseconds = patience) const;
  std::size_t count(const std::string& text, std::size_t from = 0) const;

 private:
  std::wstring viewerCommand() const;

  std::wstring file_;
};

// The simulated handset in dvmworker.exe; see servers/dvmworker/handset_control.h. COM must be initialised.
class Handset : public platform::Object {
 public:
  using Object::Object;
  static Handset connect();  // error 429 when the server cannot be started

  void Plug() const { call(u"Plug"); }
  void Unplug() const { call(u"Unplug"); }
  std::int16_t Deliver(platform::StringView from, platform::StringView text, platform::StringView time) const {
    return call<std::int16_t>(u"Deliver", from, text, time);
  }
  std::int16_t Put(std::int32_t store, std::int32_t status, platform::StringView number, platform::StringView text,
                   platform::StringView time) const {
    return call<std::int16_t>(u"Put", store, status, number, text, time);
  }
  void SetCapacity(std::int32_t store, std::int16_t capacity) const { call(u"SetCapacity", store, capacity); }
  void Clear(std::int32_t store) const { call(u"Clear", store); }
  std::int16_t Fill(std::int32_t store) const { return call<std::int16_t>(u"Fill", store); }
  std::int32_t StoredCount(std::int32_t store) const { return call<std::int32_t>(u"StoredCount", store); }
  platform::String Stored(std::int32_t store) const { return call<platform::String>(u"Stored", store); }
  void AnswerNext(platform::StringView operation, std::int32_t result) const { call(u"AnswerNext", operation, result); }
  void SilenceNext(platform::StringView operation) const { call(u"SilenceNext", operation); }
  // A server that still runs from the test before may have some.
  void ForgetOutcomes() const { call(u"ForgetOutcomes"); }
  std::int32_t SentCount() const { return call<std::int32_t>(u"SentCount"); }
  platform::String SentDestination(std::int32_t i) const { return call<platform::String>(u"SentDestination", i); }
  platform::String SentText(std::int32_t i) const { return call<platform::String>(u"SentText", i); }
  platform::String SentServiceCentre(std::int32_t i) const { return call<platform::String>(u"SentServiceCentre", i); }
  void ClearSent() const { call(u"ClearSent"); }
  std::int32_t ProcessId() const { return call<std::int32_t>(u"ProcessId"); }
};

// Kills a process, as a crash would, and waits for its end.
bool killProcess(std::uint32_t id);
// Whether dvmworker.exe runs, without starting it.
bool workerRuns();
// COM starts a server that is not there, but Wine then looks for it once a second only.
void startWorker();
// Kills dvmworker.exe when it runs.
void endWorker();

// Waits until the condition holds. False when the time is over.
template <class F>
bool waitUntil(F&& condition, std::uint32_t milliseconds = patience);

// Waits for a top-level window with this title and closes it. False when none came in time.
bool closeWindow(const wchar_t* title, std::uint32_t milliseconds = patience);

void pauseBriefly();       // between two looks
std::uint32_t ticksNow();  // milliseconds

template <class F>
bool waitUntil(F&& condition, std::uint32_t milliseconds) {
  const std::uint32_t start = ticksNow();
  while (!condition()) {
    if (ticksNow() - start > milliseconds) return false;
    pauseBriefly();
  }
  return true;
}

}  // namespace testing_support
