#include "platform/toolkit/FontEngineText.h"
#include "platform/toolkit/native/ControlImpl.h"

#include <cmath>
#include <string_view>
#include <vector>

namespace toolkit::native {

juce::String toJuce(const std::string& text)
{
    std::vector<juce::CharPointer_UTF32::CharType> characters;
    characters.reserve(text.size());
    for (std::string_view rest = text; !rest.empty();)
        characters.push_back(static_cast<juce::juce_wchar>(takeCharacter(rest)));
    return {juce::CharPointer_UTF32(characters.data()), characters.size()};
}

Rect pixelsOf(const Rect& points, double scale)
{
    constexpr double roundingError = 5e-4;
    const auto begin = [=](int point) {
        return static_cast<int>(std::floor(point * scale + roundingError));
    };
    const auto end = [=](int point) {
        return static_cast<int>(std::ceil(point * scale - roundingError));
    };
    const int x = begin(points.x);
    const int y = begin(points.y);
    return {x, y, end(points.x + points.width) - x, end(points.y + points.height) - y};
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
