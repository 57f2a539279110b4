/// The plug-in, loaded as any host loads it.
#pragma once
#include "effect/MidiEffect.h"

#include <memory>
#include <string>

/// Keeps the bundle loaded. Effects are destroyed before it.
class Bundle
{
public:
    /// @param path  a .bundle folder or the library in it; empty for the one that belongs to this
    /// program Throws CommandError (NoBundle).
    explicit Bundle(const std::string& path);

    /// Throws CommandError (NoBundle) when the plug-in makes none.
    std::unique_ptr<Korvanel::MidiEffect> createEffect() const;

private:
    struct Close
    {
        void operator()(void* library) const;
    };

    using Create = Korvanel::MidiEffect* (*)();

    std::unique_ptr<void, Close> mLibrary;
    Create mCreate = nullptr;
};
