#include "library/Pattern.h"

#include "midi/CMidiTrack.h"
#include "shared/System/kvException.h"

#include <exception>

namespace Korvanel {

bool Pattern::LoadTo(CMidiTrack* track) const
{
    if (track == nullptr || mLeaf == nullptr)
        return false;
    try {
        const auto input = Ref<DirectoryTrees::InStream>::adopt(mLeaf->GetInput());
        return input && track->Load(*input, nullptr, nullptr) == 0;
    } catch (const Exception&) {
        return false;
    } catch (const std::exception&) {
        return false;
    }
}

} // namespace Korvanel
