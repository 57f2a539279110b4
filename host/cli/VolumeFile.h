/// Libraries to and from volume files (docs/formats/volume.md).
#pragma once
#include <string>

/// What a command packed or unpacked.
struct VolumeCount
{
    int patterns = 0;
    int styles = 0;
};

/// Writes the library in a folder into one file, patterns whole; descriptions are not part of a
/// volume. Throws CommandError: BadPattern when something cannot be read, CannotWrite when the file
/// cannot be written, which is then as it was before.
VolumeCount packVolume(const std::string& folder, const std::string& file);

/// Makes the folder from a volume; it must not be there yet, or be empty. Throws CommandError:
/// BadPattern for a file that is no volume, is damaged or holds names that are no file names;
/// CannotWrite when the folder cannot be made. Nothing is left behind then.
VolumeCount unpackVolume(const std::string& file, const std::string& folder);
