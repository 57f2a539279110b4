#include "effect/CreatePlugin.h"

#include "effect/CLooper.h"

extern "C" Korvanel::MidiEffect* CreatePlugin()
{
    return new CLooper;
}

extern "C" Korvanel::MidiEffect* CreateMidiEffect()
{
    return CreatePlugin();
}
