#include "platform/toolkit/native/ControlImpl.h"

namespace toolkit::native {

namespace {

/// How many bytes the character at `text` has; 0 when these are no UTF-8.
std::size_t sequenceLength(const std::string& text, std::size_t at)
{
    const auto first = static_cast<unsigned char>(text[at]);
    const std::size_t length = first < 0x80                    ? 1
                               : first >= 0xc2 && first < 0xe0 ? 2
                               : first >= 0xe0 && first < 0xf0 ? 3
                               : first >= 0xf0 && first < 0xf5 ? 4
                                                               : 0;
    if (length == 0 || at + length > text.size())
        return 0;
    return juce::CharPointer_UTF8::isValidString(text.data() + at, static_cast<int>(length))
               ? length
               : 0;
}

} // namespace

juce::String toJuce(const std::string& text)
{
    std::string clean;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t length = sequenceLength(text, at);
        clean += length > 0 ? text.substr(at, length) : "\xef\xbf\xbd";
        at += std::max<std::size_t>(length, 1);
    }
    return juce::String::fromUTF8(clean.data(), static_cast<int>(clean.size()));
}

std::uint32_t buttonBits(const juce::ModifierKeys& keys)
{
    return (keys.isLeftButtonDown() ? leftButton : 0u) |
           (keys.isRightButtonDown() ? rightButton : 0u) |
           (keys.isMiddleButtonDown() ? middleButton : 0u);
}

std::uint32_t keyBits(const juce::ModifierKeys& keys)
{
    return (keys.isShiftDown() ? shiftKey : 0u) | (keys.isCtrlDown() ? controlKey : 0u) |
           (keys.isAltDown() ? altKey : 0u);
}

char32_t characterOf(const juce::KeyPress& key)
{
    const int code = key.getKeyCode();
    if (code == juce::KeyPress::leftKey)
        return 28;
    if (code == juce::KeyPress::rightKey)
        return 29;
    if (code == juce::KeyPress::upKey)
        return 30;
    if (code == juce::KeyPress::downKey)
        return 31;
    if (code == juce::KeyPress::deleteKey)
        return 127;
    if (code == juce::KeyPress::backspaceKey)
        return 8;
    if (code == juce::KeyPress::returnKey)
        return 13;
    return static_cast<char32_t>(key.getTextCharacter());
}

} // namespace toolkit::native
