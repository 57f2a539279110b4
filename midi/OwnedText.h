/// A C text that a record owns, or none: copies are deep.
#pragma once
#include <optional>
#include <string>

namespace Korvanel {

/// Setting and copying allocate. Thread: one at a time.
class OwnedText
{
public:
    OwnedText() = default;

    /// Copies the text; null leaves none.
    OwnedText& operator=(const char* text)
    {
        if (text == nullptr)
            mText.reset();
        else
            mText = std::string(text); // first a copy: `text` may be our own
        return *this;
    }

    /// Null when there is none; valid until the text changes.
    const char* c_str() const { return mText ? mText->c_str() : nullptr; }

    bool exists() const { return mText.has_value(); }

    void clear() { mText.reset(); }

private:
    std::optional<std::string> mText;
};

} // namespace Korvanel
