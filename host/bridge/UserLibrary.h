/// Where an effect finds its patterns when nothing is installed beside its bundle.
#pragma once
#include <string>

/// The factory patterns: those in this module's bundle, else those of a data folder of the system;
/// "" when there are none.
std::string factoryLibrary();

/// `installed` where that is a folder; else the user's own library, Korvanel/Loops in the user's
/// data folder. A library that is not there yet is made from the factory patterns: it appears with
/// all of them or not at all, and one that is there is never touched.
/// @param factory  may be ""
/// @return `installed` also when the user's library cannot be made
std::string chooseLibrary(const std::string& installed, const std::string& factory);
