/// Base of the exceptions that the system itself throws.
#pragma once

namespace Korvanel {

class Exception
{
public:
    Exception() = default;
    Exception(const Exception&) = default;
    Exception& operator=(const Exception&) = default;
    virtual ~Exception() = default;

    /// The same text for every kind of exception; never null, not owned by the caller.
    virtual const char* GetText() const { return "Korvanel::Exception"; }
};

} // namespace Korvanel
