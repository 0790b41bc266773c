#include "addin/diag/basDebug.h"

#include "addin/diag/basDbgOut.h"

namespace addin {

void LogError(const RuntimeError& error, StringView prefix) noexcept {
  DbgOut(2, prefix, error.number, u", ", error.description, u", ", error.source);
}

}  // namespace addin
