// mailclient.exe, the stand-in mail client.

#include <cstdio>
#include <cwchar>
#include <filesystem>
#include <string_view>
#include <vector>

#include "com/bridge.h"
#include "com/lasting_interfaces.h"
#include "mailclient/console.h"
#include "mailclient/maildir.h"
#include "mailclient/text_coding.h"
#include "mailclient/win/console_input.h"
#include "mailclient/win/headless.h"
#include "mailclient/win/mapi_face.h"
#include "mailclient/win/ui.h"
#include "mailclient/win/window_program.h"
#include "mailclient/win/windows_environment.h"

namespace {

constexpr const char* usage =
    "mailclient [--headless | --console] [--store FOLDER] [--no-explorer] [--no-assistant] [--without-menu ID]...\n"
    "\n"
    "  --headless         no window: commands on standard input, one a line; the answers begin with the command's "
    "number\n"
    "  --console          the window, and commands on standard input as well\n"
    "  --store FOLDER     keep folders and items in this Maildir tree; without it, in memory\n"
    "  --no-explorer      start without a window, as when another program starts the mail client\n"
    "  --no-assistant     as later mail clients, which have no Office Assistant\n"
    "  --without-menu ID  leave out a built-in menu: New 30037, Tools 30007, Help 30010\n"
    "\n"
    "Commands:\n\n";

struct Arguments {
  bool headless = false;
  bool console = false;
  bool help = false;
  bool good = true;
  std::filesystem::path store;
  std::vector<std::int32_t> menusLeftOut;
  mailclient::AssistantPresence assistant = mailclient::AssistantPresence::Present;
  mailclient::win::HeadlessOptions options;
};

Arguments parse(int count, wchar_t** texts) {
  Arguments a;
  for (int i = 1; i < count; ++i) {
    const std::wstring_view text = texts[i];
    if (text == L"--headless")
      a.headless = true;
    else if (text == L"--console")
      a.console = true;
    else if (text == L"--no-explorer")
      a.options.explorer = false;
    else if (text == L"--no-assistant")
      a.assistant = mailclient::AssistantPresence::Fails;
    else if (text == L"--help")
      a.help = true;
    else if (text == L"--without-menu" && i + 1 < count)
      a.menusLeftOut.push_back(static_cast<std::int32_t>(std::wcstol(texts[++i], nullptr, 10)));
    else if (text == L"--store" && i + 1 < count)
      a.store = texts[++i];
    else
      a.good = false;
  }
  return a;
}

constexpr int noDisplay = 3;  // of runWindows()

int run(const Arguments& arguments) {
  com::opaqueConverter = &mailclient::win::mapiFace;
  mailclient::ClientOptions options;
  options.environment = std::make_shared<mailclient::win::WindowsEnvironment>();
  options.assistant = arguments.assistant;
  options.menusLeftOut = arguments.menusLeftOut;
  if (!arguments.store.empty())
    options.persistence = std::make_unique<mailclient::Maildir>(arguments.store, options.environment);
  const mailclient::ClientPtr client = mailclient::MailClient::create(std::move(options));
  if (arguments.headless) return mailclient::win::runHeadless(client, arguments.options);
  const int code = mailclient::win::runWindows(client, {arguments.options.explorer, arguments.console});
  if (code == noDisplay) std::fputs("mailclient: there is no display; --headless works without one\n", stderr);
  return code;
}

}  // namespace

int wmain(int count, wchar_t** texts) {
  const Arguments arguments = parse(count, texts);
  if (arguments.help || !arguments.good) {
    std::FILE* const to = arguments.help ? stdout : stderr;
    const std::string_view commands = mailclient::Console::helpText();
    std::fputs(usage, to);
    std::fwrite(commands.data(), 1, commands.size(), to);
    return arguments.help ? 0 : 2;
  }
  if (FAILED(OleInitialize(nullptr))) return 1;
  int code = 1;
  try {
    const com::LastingInterfaces lasting;  // add-ins hand out sinks and objects of this process
    code = run(arguments);
  } catch (const mailclient::RuntimeError& error) {
    std::fprintf(stderr, "mailclient: %s\n", mailclient::toUtf8(error.description).c_str());
    if (!arguments.headless && !arguments.console)
      MessageBoxW(nullptr, mailclient::win::wide(error.description), L"Mail Client", MB_OK | MB_ICONEXCLAMATION);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "mailclient: %s\n", error.what());
  }
  OleUninitialize();
  mailclient::win::endProcess(code);
  return code;
}
