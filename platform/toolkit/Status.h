/// What toolkit calls answer: 0 for success, else one of these numbers.
#pragma once
#include <cstdint>

namespace toolkit {

using Status = std::int32_t;

constexpr Status noErr = 0;
constexpr Status paramErr = -50;                        ///< an argument is outside its range
constexpr Status fileNotFoundErr = -43;                 ///< no such file
constexpr Status userCanceledErr = -128;                ///< the user changed their mind
constexpr Status itemNotFoundErr = -4971;               ///< the browser has no such item
constexpr Status propertyNotFoundErr = -4972;           ///< the browser has no such column
constexpr Status propertyNotSupportedErr = -4979;       ///< the item has no such property
constexpr Status eventNotHandledErr = -9874;            ///< pass the event on
constexpr Status eventParameterNotFoundErr = -9870;     ///< the event carries no such parameter
constexpr Status descriptionNotFoundErr = -10960;       ///< no interface description of that name
constexpr Status descriptionWindowNotFoundErr = -10961; ///< the description names no such window
constexpr Status descriptionInvalidErr = -10962;        ///< the description cannot be understood
constexpr Status noDisplayErr = -10980;                 ///< there is no screen to show a window on
constexpr Status parentNotFoundErr = -10981;            ///< the host's parent window does not exist
constexpr Status loopNotRunningErr = -10982;            ///< no message loop; see EventLoop.h

} // namespace toolkit
