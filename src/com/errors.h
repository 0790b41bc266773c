// Failures on the border: HRESULT and EXCEPINFO here, RuntimeError there, and the wall that no exception passes.
#pragma once

#include <new>

#include "addin/platform/runtime_error.h"
#include "com/windows.h"

namespace com {

// The run-time error that a failure from outside is.
//
// * DISP_E_EXCEPTION with a record: the record's number (0x800Axxxx is its low word), source and description. Fills
//   the record in when that was deferred. The record's strings stay its own.
// * DISP_E_* and a few others: the run-time error that says the same (13, 6, 438, 450, …).
// * 0x800Axxxx: its low word. Everything else: the HRESULT as a signed number, with the system's text on one line.
//
// Without a source of its own the error comes from "mrktxtmsg".
platform::RuntimeError errorOf(HRESULT failure, EXCEPINFO* info = nullptr);

// Throws errorOf() of a failure; does nothing for a success.
void check(HRESULT result);

// What a COM method returns for an error: with a record, DISP_E_EXCEPTION and the record filled; without, the number as
// an HRESULT. A run-time error's number becomes 0x800Axxxx. Always a failure.
HRESULT resultOf(const platform::RuntimeError& error, EXCEPINFO* info) noexcept;

// Runs the body of a COM method, which returns its HRESULT. Nothing that it throws leaves the module.
template <class Body>
HRESULT guarded(Body&& body, EXCEPINFO* info = nullptr) noexcept {
  try {
    return body();
  } catch (const platform::RuntimeError& error) {
    return resultOf(error, info);
  } catch (const std::bad_alloc&) {
    return E_OUTOFMEMORY;
  } catch (...) {
    return E_UNEXPECTED;
  }
}

// The same for window procedures and callbacks: `otherwise` is the result when the body throws.
template <class Result, class Body>
Result guardedOr(Result otherwise, Body&& body) noexcept {
  try {
    return body();
  } catch (...) {
    return otherwise;
  }
}

}  // namespace com
