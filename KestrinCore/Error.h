// The base of every error that a user may see.
#pragma once

#include <exception>
#include <string>

namespace kestrin {

// One family of errors is one type derived from this (ProjectFormatError, FileError, …); its cases carry their
// payload. Deciding code asks for the type and the case, never for words in a message.
class Error : public std::exception {
 public:
    // The one sentence for the user, in the user's language where the catalogue has it.
    virtual std::string errorDescription() const = 0;

    // The same text, for whoever knows only std::exception. Valid as long as the error lives.
    const char* what() const noexcept override;

 private:
    mutable std::string what_;
};

// Joins lambdas into one visitor, so that a switch over the cases of a variant has no default: a new case doesn't
// compile without its branch.
template <class... Branches>
struct Overloaded : Branches... {
    using Branches::operator()...;
};
template <class... Branches>
Overloaded(Branches...) -> Overloaded<Branches...>;

}  // namespace kestrin
