// The help file in the user's language.
#pragma once

#include "addin/common/basGlobal.h"

namespace addin {

// Its full path; the English file's bare name when the installation says no folder.
String HelpFile();

// Opens it in the help viewer and does not wait for that. Error 53 when this system has no help viewer; a help file
// that is missing is the viewer's to tell.
void ShowHelp();

}  // namespace addin
