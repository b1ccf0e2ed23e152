#pragma once

#include <exception>
#include <string>
#include <utility>
#include <variant>

namespace ReelCore {

/// The root of every failure that the library reports. `description()` is one text for people,
/// fit to be shown as it stands; `what()` is the same text.
class Error : public std::exception {
public:
    explicit Error(std::string description) : description_(std::move(description)) {}

    const std::string& description() const noexcept { return description_; }
    const char* what() const noexcept override { return description_.c_str(); }

private:
    std::string description_;
};

/// An error enumeration. `Cases` holds one small struct a case, each with a `description()`, and
/// their variant as `Cases::Any`. A caller asks for a case by its type:
///
///     catch (const OffloadError& error) { if (error.is<OffloadError::Cancelled>()) ... }
template <class Cases>
class CaseError : public Error, public Cases {
public:
    using Any = typename Cases::Any;

    CaseError(Any value)
        : Error(std::visit([](const auto& one) { return one.description(); }, value)),
          value_(std::move(value)) {}

    template <class Case>
    bool is() const noexcept {
        return std::holds_alternative<Case>(value_);
    }

    /// The case's payload, or null where this error is another case.
    template <class Case>
    const Case* get() const noexcept {
        return std::get_if<Case>(&value_);
    }

private:
    Any value_;
};

}  // namespace ReelCore
