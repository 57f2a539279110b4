#include "platform/toolkit/native/Display.h"
#include "platform/toolkit/native/Graveyard.h"

#include <dlfcn.h>

namespace toolkit::native {

namespace {

// As the X library declares them; its header would rename half of ours.
using ErrorHandler = int (*)(void* display, void* event);
using SetErrorHandler = ErrorHandler (*)(ErrorHandler);

int ignoreError(void*, void*)
{
    return 0;
}

/// The library is loaded for as long as the process lives: the toolkit's own library has it open.
SetErrorHandler setErrorHandler()
{
    static const auto set = [] {
        void* library = ::dlopen("libX11.so.6", RTLD_NOW | RTLD_LOCAL);
        return library ? reinterpret_cast<SetErrorHandler>(::dlsym(library, "XSetErrorHandler"))
                       : nullptr;
    }();
    return set;
}

void restoreDefault()
{
    const auto set = setErrorHandler();
    const auto current = set(nullptr);
    if (current != &ignoreError) // somebody has set another since: it stays
        set(current);
}

} // namespace

void surviveErrors()
{
    const auto set = setErrorHandler();
    if (!set)
        return;
    const auto current = set(&ignoreError);
    if (current == &ignoreError)
        return;
    // Null asks for the default; what then was there before the next call is the default itself.
    set(nullptr);
    const auto fallback = set(current);
    if (current != fallback)
        return;
    set(&ignoreError);
    whenLoopStops(restoreDefault);
}

} // namespace toolkit::native
