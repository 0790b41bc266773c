#include "addin/settings/bashelp.h"

#include <algorithm>
#include <array>

#include "addin/common/basapi.h"
#include "addin/settings/clsReg.h"

namespace addin {
namespace {

constexpr std::int16_t englishUS = 1033;
constexpr StringView englishFile = u"smsx_en-us.chm";

struct Language {
  std::int16_t id;
  StringView file;
};

// Whole identifiers: another sublanguage of one of these gets the English file.
constexpr std::array languages{
    Language{1028, u"smsx_zh-tw.chm"},  // Chinese (Taiwan)
    Language{1030, u"smsx_da.chm"},     // Danish
    Language{1031, u"smsx_de.chm"},     // German
    Language{1034, u"smsx_es.chm"},     // Spanish (traditional sort)
    Language{1035, u"smsx_fi.chm"},     // Finnish
    Language{1036, u"smsx_fr.chm"},     // French
    Language{1040, u"smsx_it.chm"},     // Italian
    Language{1043, u"smsx_nl.chm"},     // Dutch
    Language{1044, u"smsx_no.chm"},     // Norwegian
    Language{1053, u"smsx_sv.chm"},     // Swedish
    Language{2052, u"smsx_zh-cn.chm"},  // Chinese (PRC)
    Language{2070, u"smsx_pt.chm"},     // Portuguese (Portugal)
};

StringView fileOf(std::int16_t language) {
  const auto* const at =
      std::find_if(languages.begin(), languages.end(), [&](const Language& l) { return l.id == language; });
  return at == languages.end() ? englishFile : at->file;
}

}  // namespace

String HelpFile() {
  clsReg reg;
  const String key(KEY_INSTALLATION);
  const String folder = reg.GetRegString(key, u"RESPATH", u"");
  if (folder.empty()) return String(englishFile);
  return concat(folder, u"\\", fileOf(reg.GetRegDword(key, u"LANGID", englishUS)));
}

void ShowHelp() { HtmlHelp(system().locale.toAnsi(HelpFile()), HH_DISPLAY_TOPIC); }

}  // namespace addin
