// The operating system of the tests. While it lives, it is the System that the add-in calls.
//
//   NativeSystem system;
//   system.windows.openViewer();
//   system.registry.setDword(platform::rootCurrentUser, optionsKey, "WizardDone", 1);
//   …
//   EXPECT_EQ(system.windows.trace(), (std::vector<std::string>{"Inside Function SendAll"}));
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <vector>

#include "addin/platform/form.h"
#include "addin/platform/runtime_error.h"
#include "addin/platform/system.h"
#include "support/journal.h"
#include "support/native_locale.h"
#include "support/native_registry.h"
#include "support/native_time.h"
#include "support/native_windows.h"
#include "support/scripted_view.h"

namespace testing_support {

class NativeShell final : public platform::Shell {
 public:
  struct Start {
    platform::String command;
    std::int16_t windowStyle = 0;
    friend bool operator==(const Start&, const Start&) = default;
  };
  struct Help {
    platform::WindowHandle owner = 0;
    std::string path;
    std::uint32_t command = 0;
    std::uint32_t data = 0;
    friend bool operator==(const Help&, const Help&) = default;
  };

  explicit NativeShell(Journal& journal) : journal_(journal) {}
  void start(platform::StringView command, std::int16_t windowStyle) override;
  void htmlHelp(platform::WindowHandle owner, const std::string& path, std::uint32_t command,
                std::uint32_t data) override;
  std::int32_t platformId() override { return platform; }

  std::vector<Start> started;  // those that did not fail
  std::vector<Help> helps;
  bool programsAreMissing = false;   // start fails with 53
  bool helpViewerIsMissing = false;  // htmlHelp fails with 53
  std::int32_t platform = 2;
  std::function<void()> whenStarting;  // the new program's first deeds

 private:
  Journal& journal_;
};

class NativeObjects final : public platform::Objects {
 public:
  using Factory = std::function<platform::Object()>;

  explicit NativeObjects(Journal& journal) : journal_(journal) {}
  platform::Object create(platform::StringView progId) override;

  // An earlier factory of the same ProgID is replaced.
  void provide(platform::StringView progId, Factory factory);
  void withdraw(platform::StringView progId);
  void withdrawAll() { entries_.clear(); }
  std::vector<platform::String> asked;  // every ProgID in order, as the caller wrote it; the refused ones too

 private:
  struct Entry {
    platform::String progId;
    Factory factory;
  };
  std::vector<Entry>::iterator find(platform::StringView progId);

  Journal& journal_;
  std::vector<Entry> entries_;
};

// Files in memory, by their path as it was written.
class NativeFiles final : public platform::Files {
 public:
  explicit NativeFiles(Journal& journal) : journal_(journal) {}
  void read(platform::StringView path, const std::function<bool(std::string_view piece)>& take) override;

  std::map<platform::String, std::string> contents;
  std::size_t pieceSize = 4;               // small, so that what is read lies across their borders
  std::size_t breaksAt = std::size_t(-1);  // a file fails with 75 when so many bytes of it have been read

 private:
  Journal& journal_;
};

class NativeUserInterface final : public platform::UserInterface {
 public:
  struct Box {
    platform::String prompt;
    std::int32_t flags = 0;
    platform::String title;
    friend bool operator==(const Box&, const Box&) = default;
  };
  struct Shown {
    platform::String name;
    platform::FormModality modality{};
    friend bool operator==(const Shown&, const Shown&) = default;
  };

  NativeUserInterface(Journal& journal, platform::Pump& pump) : journal_(journal), pump_(pump) {}
  std::int32_t messageBox(platform::StringView prompt, std::int32_t flags, platform::StringView title) override;
  // A modal form is open until posted work, or `whenShown`, unloads it.
  bool showForm(platform::Form& form, platform::FormModality modality) override;

  // The view of an open form; a test failure when there is none of that name.
  ScriptedView& view(platform::StringView form);
  bool isOpen(platform::StringView form) const { return find(form) != nullptr; }
  void closeAll();

  std::vector<Box> boxes;
  std::vector<Shown> shown;  // every time that a form was shown or brought to the front
  std::int32_t answer = 1;   // IDOK
  std::function<void()> whileBoxIsOpen;
  std::function<void(ScriptedView& view)> whenShown;  // the user's first doings
  bool windowsCannotBeMade = false;                   // showForm fails with 7

 private:
  ScriptedView* find(platform::StringView form) const;

  Journal& journal_;
  platform::Pump& pump_;
  std::vector<std::shared_ptr<ScriptedView>> views_;  // those of unloaded forms too, which may still be on the stack
};

class NativeModule final : public platform::Module {
 public:
  platform::Version version() override {
    if (hasNoVersion) platform::raiseError(53);
    return versionNumber;
  }
  platform::String folder() override { return path; }

  platform::Version versionNumber{1, 0, 0};
  bool hasNoVersion = false;
  platform::String path = u"C:\\Program Files\\Marrick";
};

class NativeSystem {
 public:
  NativeSystem() : before_(platform::currentSystem) { platform::currentSystem = &system_; }
  ~NativeSystem() {
    ui.closeAll();
    time.dropWork();  // what ends with the work and the factories may still call the system
    objects.withdrawAll();
    platform::currentSystem = before_;
  }
  NativeSystem(const NativeSystem&) = delete;
  NativeSystem& operator=(const NativeSystem&) = delete;

  Journal journal;  // what was asked of all parts, in order
  NativeTime time{journal};
  NativeLocale locale;
  NativeRegistry registry{journal};
  NativeWindows windows{journal, time};
  NativeShell shell{journal};
  NativeObjects objects{journal};
  NativeFiles files{journal};
  NativeUserInterface ui{journal, time};
  NativeModule module;

  // The texts that the viewer received (windows.openViewer() first).
  std::vector<std::string> trace() const { return windows.trace(); }

 private:
  platform::System system_{time, time, locale, registry, windows, shell, objects, files, ui, module};
  platform::System* before_;
};

}  // namespace testing_support
