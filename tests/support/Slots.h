/// Objects as a caller sees them who knows the order of their virtual operations only.
#pragma once

/// @param object  the address of the part that has the operations
/// @tparam Mirror  declares the same operations in the order that the caller believes in
template <typename Mirror>
Mirror& through(void* object)
{
    return *static_cast<Mirror*>(object);
}
