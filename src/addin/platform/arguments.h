// From a block of automation arguments to the typed parameters of a C++ function, and back for by-reference ones.
#pragma once

#include <optional>
#include <tuple>
#include <utility>

#include "addin/platform/convert.h"

namespace platform::detail {

template <class T>
inline constexpr bool isOptional = false;
template <class T>
inline constexpr bool isOptional<std::optional<T>> = true;

// One parameter. `T&` writes its value back through the argument when the call ends; std::optional<T> and Variant may
// be left out by the caller, everything else then is error 449.
template <class P>
struct Parameter {
  using Type = std::remove_cvref_t<P>;
  static constexpr bool writesBack = std::is_lvalue_reference_v<P> && !std::is_const_v<std::remove_reference_t<P>>;

  explicit Parameter(const Variant& argument) : value(read(argument)) {}

  static Type read(const Variant& argument) {
    if constexpr (isOptional<Type>) {
      return argument.isMissing() ? Type() : Type(to<typename Type::value_type>(argument));
    } else {
      if constexpr (!std::same_as<Type, Variant>)
        if (argument.isMissing()) raiseError(449);
      return to<Type>(argument);
    }
  }

  void writeBack(Variant& argument) const {
    if constexpr (writesBack) {
      Variant* const target = argument.target();
      (target ? *target : argument) = Variant(value);
    }
  }

  Type value;
};

// Calls `f` with one typed value per argument. Error 450 when the counts differ. By-reference values are written back
// even when `f` fails, as a caller's variable would have been changed by then.
template <class... P, class F>
decltype(auto) withArguments(Args args, F&& f) {
  if (args.size() != sizeof...(P)) raiseError(450);
  return [&]<std::size_t... I>(std::index_sequence<I...>) -> decltype(auto) {
    std::tuple<Parameter<P>...> parameters{Parameter<P>(args[I])...};
    struct WriteBack {
      std::tuple<Parameter<P>...>& parameters;
      Args args;
      ~WriteBack() { (std::get<I>(parameters).writeBack(args[I]), ...); }
    };
    const WriteBack back{parameters, args};
    return f(std::get<I>(parameters).value...);
  }(std::index_sequence_for<P...>{});
}

}  // namespace platform::detail
