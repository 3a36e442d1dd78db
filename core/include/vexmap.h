// The module's hash map: the standard unordered map under the module's name.
// Keys of type CXStringW hash through the std::hash of vextypes.h.
#pragma once

#include <unordered_map>

template <class K, class V>
using VexMap = std::unordered_map<K, V>;
